// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/Schema.h"
#include "core/network/LocalNetworkDevice.h"

namespace nightjar::json {

template <>
const Schema& schemaOf<LocalNetworkDevice>();

} // namespace nightjar::json
