// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/network/LocalNetworkDevicesFile.h"

#include <algorithm>

namespace nightjar {

std::vector<LocalNetworkDevice> LocalNetworkDevicesFile::load() {
    auto devices = m_file.load();
    for (LocalNetworkDevice& device : devices)
        device.lossAlertDelay = std::max(device.lossAlertDelay, LocalNetworkDevice::leastKeptDelay);
    return devices;
}

std::expected<void, std::string> LocalNetworkDevicesFile::save(std::vector<LocalNetworkDevice> devices) {
    for (LocalNetworkDevice& device : devices)
        device.isOnline = false;
    return m_file.save(devices);
}

} // namespace nightjar
