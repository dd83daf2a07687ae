// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bluetooth/BluetoothJson.h"

namespace nightjar::json {

template <>
const Schema& schemaOf<TrackedBluetoothDevice>() {
    using Device = TrackedBluetoothDevice;
    static constexpr std::array fields{
        field<&Device::id>("id"),
        field<&Device::name>("name"),
        field<&Device::discoveredName>("discoveredName"),
        field<&Device::addedAt>("addedAt"),
        field<&Device::lastSeen>("lastSeen"),
        field<&Device::lastRSSI>("lastRSSI"),
        field<&Device::latitude>("latitude"),
        field<&Device::longitude>("longitude"),
        defaulted<&Device::lossAlertEnabled>("lossAlertEnabled"),
        defaulted<&Device::lossAlertDelay>("lossAlertDelay"),
    };
    static constexpr Schema schema{fields};
    return schema;
}

} // namespace nightjar::json
