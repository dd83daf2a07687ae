// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "platform/linux/AvahiSettings.h"
#include "platform/linux/NetworkLinks.h"

#include <functional>
#include <map>
#include <set>
#include <string>

namespace nightjar {

/// What can be said about devices in view of our own interfaces. One that is down, or has just come back,
/// shows nothing: what was heard on it is kept. While another interface can hear, that lasts two minutes at
/// most; what goes then has gone from our sight, not from its network. Main thread.
class LinkSight {
public:
    struct Handlers {
        /// Whether devices can be heard there has changed.
        std::function<void(int index, bool isUsable)> usableChanged{};
        /// `keeps` has changed. What goes from the sets now is judged by `judges`.
        std::function<void()> released{};
    };

    LinkSight(NetworkLinks& links, Scheduler& scheduler, const AvahiSettings& settings, Handlers handlers);
    LinkSight(const LinkSight&) = delete;
    LinkSight& operator=(const LinkSight&) = delete;

    void begin();
    /// Takes notice of what the kernel has told up to now.
    void lookNow() { m_links.readNow(); }
    /// Whether there is any interface on which devices can be heard, as far as is known.
    [[nodiscard]] bool canHear() const;
    /// Whether what was heard on the interface of this name is kept, whatever is heard now.
    [[nodiscard]] bool keeps(const std::string& name) const;
    /// Whether what is missing on it is missing because of the device.
    [[nodiscard]] bool judges(const std::string& name) const;

private:
    enum class Phase { usable, down, returning, outOfSight };
    struct Interface {
        Phase phase = Phase::usable;
        bool isUsable = false;
        std::set<std::string> networks{};       ///< now
        std::set<std::string> formerNetworks{}; ///< when it was last heard on
        Timer timer{};
    };

    void changed(int index, const NetworkLinks::Link& link);
    void goDown(const std::string& name, Interface& interface);
    void comeBack(const std::string& name, Interface& interface);
    void giveUp(const std::string& name);
    void settle(const std::string& name);
    [[nodiscard]] static bool isElsewhere(const Interface& interface);

    NetworkLinks& m_links;
    Scheduler& m_scheduler;
    const AvahiSettings& m_settings;
    Handlers m_handlers;
    std::map<std::string, Interface> m_interfaces; ///< by name
};

} // namespace nightjar
