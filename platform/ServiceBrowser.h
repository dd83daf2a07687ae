// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <compare>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// One service that a device announces, on one network interface. Texts are valid UTF-8 and otherwise as the
/// device wished.
struct ServiceInstance {
    std::string name;
    std::string type;   ///< such as "_ssh._tcp"
    std::string domain; ///< with its final dot, such as "local."
    std::optional<std::string> interfaceName{};

    auto operator<=>(const ServiceInstance&) const = default;
};

/// How the browsing of one service type goes.
struct ServiceBrowserState {
    enum class Kind { settingUp, ready, waiting, failed, cancelled };
    /// The code of DNS-SD for an access that is denied by a policy.
    static constexpr int policyDenied = -65570;

    Kind kind = Kind::settingUp;
    int code = 0;              ///< of DNS-SD, for `waiting` and `failed`; 0: another reason
    std::string description{}; ///< for the user, for `waiting` and `failed`

    bool operator==(const ServiceBrowserState&) const = default;
};

/// The services that are announced on the local network. Main thread; no call waits, and none calls the
/// listener before it returns.
class ServiceBrowser {
public:
    struct Listener {
        /// The complete current set of a type that is browsed, after each change of it.
        std::function<void(const std::string& type, const std::vector<ServiceInstance>&)> onResults{};
        /// After each change.
        std::function<void(const ServiceBrowserState&)> onState{};
        /// The latest sets are without these because an interface of this computer went away: nobody knows
        /// whether the devices have left.
        std::function<void(const std::vector<ServiceInstance>&)> onOutOfSight{};
    };

    virtual ~ServiceBrowser() = default;
    /// Replaces the listener; an empty one is told nothing.
    virtual void setListener(Listener listener) = 0;
    /// Browses a type in every domain that is browsed by default, until `cancel`.
    virtual void browse(const std::string& type) = 0;
    /// Ends the browsing of all types.
    virtual void cancel() = 0;
    /// Tells which instances matter most, whenever that changes; kept until then. A system that has to look
    /// whether a device is still there looks for these first.
    virtual void setImportant(std::function<bool(const ServiceInstance&)> isImportant) = 0;
};

} // namespace nightjar
