// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bluetooth/TrackedBluetoothDevice.h"
#include "core/json/Schema.h"

namespace nightjar::json {

template <>
const Schema& schemaOf<TrackedBluetoothDevice>();

} // namespace nightjar::json
