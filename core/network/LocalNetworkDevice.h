// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"
#include "core/network/LocalNetworkDeviceKind.h"

#include <string>
#include <string_view>
#include <vector>

namespace nightjar {

/// One machine of the local network: all services that are announced under one name in one domain.
struct LocalNetworkDevice {
    /// No file sets a shorter delay; seconds.
    static constexpr double leastKeptDelay = 60;

    std::string id;                            ///< of `identifier`; never changes
    std::string name;                          ///< as first heard
    std::string domain;                        ///< as first heard, such as "local."
    std::vector<std::string> serviceTypes{};   ///< ever heard; each once, ascending by code points
    std::vector<std::string> interfaceNames{}; ///< on which it was heard; likewise
    Date lastSeen = distantPast;
    bool isOnline = false; ///< one of its services is announced now
    bool isTracked = false;
    bool lossAlertEnabled = false;
    double lossAlertDelay = 600; ///< seconds of absence before the alert

    /// The identity of whatever is announced under a name in a domain: letter case, and accents of the name,
    /// make no difference.
    [[nodiscard]] static std::string identifier(std::string_view name, std::string_view domain);
    /// What a type of service is called, such as "Printer" for "_ipp._tcp".
    [[nodiscard]] static std::string readableServiceName(std::string_view serviceType);

    /// One of its services is announced. An empty interface name is none.
    void record(std::string_view serviceType, std::string_view interfaceName, Date at);

    [[nodiscard]] LocalNetworkDeviceKind kind() const;
    /// The readable names of all `serviceTypes`, in their order.
    [[nodiscard]] std::string serviceSummary() const;

    bool operator==(const LocalNetworkDevice&) const = default;
};

} // namespace nightjar
