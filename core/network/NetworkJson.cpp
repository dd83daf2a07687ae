// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/network/NetworkJson.h"

namespace nightjar::json {

template <>
const Schema& schemaOf<LocalNetworkDevice>() {
    using Device = LocalNetworkDevice;
    static constexpr std::array fields{
        field<&Device::id>("id"),
        field<&Device::name>("name"),
        field<&Device::domain>("domain"),
        defaulted<&Device::serviceTypes>("serviceTypes"),
        defaulted<&Device::interfaceNames>("interfaceNames"),
        defaulted<&Device::lastSeen>("lastSeen"),
        defaulted<&Device::isOnline>("isOnline"),
        defaulted<&Device::isTracked>("isTracked"),
        defaulted<&Device::lossAlertEnabled>("lossAlertEnabled"),
        defaulted<&Device::lossAlertDelay>("lossAlertDelay"),
    };
    static constexpr Schema schema{fields};
    return schema;
}

} // namespace nightjar::json
