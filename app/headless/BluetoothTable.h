// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/bluetooth/BluetoothTrackerManager.h"
#include "app/headless/ControllerTable.h"

namespace nightjar::headless {

/// Everything that the Bluetooth side publishes and can be told to do. The manager outlives the table.
[[nodiscard]] ControllerTable bluetoothTable(BluetoothTrackerManager& manager);

} // namespace nightjar::headless
