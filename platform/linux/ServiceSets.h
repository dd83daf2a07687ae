// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "platform/ServiceBrowser.h"
#include "platform/linux/AvahiSettings.h"

#include <compare>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace nightjar {

/// Makes the complete set of each type out of the instances that come and go one by one, each once per
/// interface and protocol. A set is told once it is complete, then after each change; changes that come close
/// together are told at once. What was told last is held for a while when everything begins anew, and what
/// was heard on an interface of ours as long as that is kept. Main thread.
class ServiceSets {
public:
    /// Where an instance was heard.
    struct Place {
        int interfaceIndex = 0;
        int protocol = 0;

        auto operator<=>(const Place&) const = default;
    };
    struct Handlers {
        /// Whether an instance is there, of those that come and go.
        std::function<bool(const std::string& type, const std::string& name, int interfaceIndex)> isThere{};
        /// Whether the interface's name is known by now, and that name if it has one.
        std::function<std::optional<std::optional<std::string>>(int index)> interfaceName{};
        /// Whether more is about to be known, so that a first set is better told a little later.
        std::function<bool()> isUnsettled{};
        /// Whether what is known now may be told; asked each time.
        std::function<bool()> mayTell{};
        /// Whether what was told of an interface is kept.
        std::function<bool(const std::string& interfaceName)> keeps{};
        /// Whether what goes there has gone by itself. If not, `outOfSight` follows the set without it.
        std::function<bool(const std::string& interfaceName)> judges{};
        std::function<void(const std::string& type, const std::vector<ServiceInstance>&)> tell{};
        std::function<void(const std::vector<ServiceInstance>&)> outOfSight{};
    };
    /// In a household there are dozens; what is too many is not taken.
    static constexpr std::size_t mostOfType = 20'000;

    ServiceSets(Scheduler& scheduler, const AvahiSettings& settings, Handlers handlers);

    /// False when there are too many of this type.
    bool add(const std::string& type, const std::string& name, Place place);
    /// Whether that was its last place on the interface.
    bool remove(const std::string& type, const std::string& name, Place place);
    /// The type has been searched: what is missing now is missing.
    void complete(const std::string& type);
    /// What the handlers say of it has changed.
    void touch(const std::string& type);
    /// The same for all types, and not to be waited for.
    void touchAllNow();
    /// All sets at once, when they may be told.
    void tellNow();
    /// Soon those that could not be told before.
    void resume();
    /// Soon all, even those that have not changed.
    void tellAgain();
    /// The instances of this type are announced anew.
    void restart(const std::string& type);
    /// The same for all types.
    void restartAll();
    void clear();

    /// Whether it was there before everything began anew.
    [[nodiscard]] bool isHeld(const std::string& type, const std::string& name) const;
    [[nodiscard]] static ServiceInstance instance(const std::string& type, const std::string& name);

private:
    struct Set {
        std::map<std::string, std::set<Place>> places; ///< by name
        std::set<ServiceInstance> held;
        std::optional<std::vector<ServiceInstance>> told;
        bool isComplete = false;
        bool isDirty = false;
        bool isToldAgain = false; ///< even if it has not changed
        Timer holding;
    };

    void markDirty(Set& set, std::chrono::milliseconds delay);
    void flush();
    void tell(const std::string& type, Set& set);
    using Instances = std::vector<ServiceInstance>;
    [[nodiscard]] std::optional<Instances> snapshot(const std::string& type, const Set& set) const;
    [[nodiscard]] bool keeps(const ServiceInstance& told) const;
    [[nodiscard]] Instances outOfSight(const Instances& before, const Instances& after) const;

    Scheduler& m_scheduler;
    const AvahiSettings& m_settings;
    Handlers m_handlers;
    std::map<std::string, Set> m_sets;
    Timer m_flush;
    SteadyTime m_flushTime{};
};

} // namespace nightjar
