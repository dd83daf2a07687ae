// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "platform/ServiceBrowser.h"
#include "platform/linux/AvahiSettings.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>

namespace nightjar {

/// Proves that announced services are still there, by asking for each of them again and again: a device that
/// loses its power says no goodbye, and what it announced stays in everybody's memory for more than an hour.
/// Knows a service by name, type and domain, whatever the interface. Main thread.
///
/// Only time-outs are evidence, and only three in a row. When the last of several devices seems to have
/// fallen silent while nobody at all has answered, it is rather our own link: this is doubt. Nothing is taken
/// for gone then until somebody answers, after which one more time-out decides, or until the doubt has lasted
/// for two minutes: a broken router did take the devices from the network.
class ServiceProber {
public:
    enum class Answer { there, thereFromMemory, timeout, error };
    /// Asks for a service and calls back later, once, or never after `clear`.
    using Ask = std::function<void(const ServiceInstance&, std::function<void(Answer)>)>;
    enum class Source {
        heard,       ///< on the network just now
        remembered,  ///< by the daemon: it counts as there after its first answer
        knownBefore, ///< by the daemon, and it was there the last time anyone looked
    };
    struct Handlers {
        std::function<void(const ServiceInstance&)> changed{};
        /// No service waits for its first answer any more.
        std::function<void()> settled{};
        std::function<void()> doubtChanged{};
    };

    ServiceProber(Scheduler& scheduler, const ProberSettings& settings, Ask ask, Handlers handlers);

    void add(const ServiceInstance& instance, Source source);
    void remove(const ServiceInstance& instance);
    void removeType(const std::string& type);
    /// Forgets all services; answers that are still missing never count.
    void clear();
    void setImportant(std::function<bool(const ServiceInstance&)> isImportant);

    /// Absent: not known here.
    [[nodiscard]] std::optional<bool> isThere(const ServiceInstance& instance) const;
    [[nodiscard]] bool isUnsettled() const { return m_unsettled > 0; }
    [[nodiscard]] bool isInDoubt() const { return m_isInDoubt; }

private:
    struct Entry {
        std::uint64_t number = 0;
        SteadyTime due{};
        SteadyTime asked{};
        SteadyTime firstTimeout{}; ///< when the question was asked that began the row
        int timeouts = 0;          ///< in a row
        bool isImportant = false;
        bool isInFlight = false;
        bool isUnsettled = false; ///< waits for the end of its first question
        bool isProven = false;
        bool isGone = false;
    };
    using Entries = std::map<ServiceInstance, Entry>;
    using Queue = std::set<std::pair<SteadyTime, const ServiceInstance*>>;

    [[nodiscard]] static ServiceInstance keyOf(const ServiceInstance& instance);
    [[nodiscard]] Queue& queueOf(const Entry& entry) { return entry.isImportant ? m_important : m_usual; }
    void schedule(Entries::value_type& item, std::chrono::milliseconds delay);
    void unschedule(Entries::value_type& item);
    [[nodiscard]] const ServiceInstance* nextDue() const;
    void askNext();
    void armTimer();
    void ask(Entries::value_type& item);
    void answered(const ServiceInstance& key, std::uint64_t number, Answer answer);
    void foundThere(Entries::value_type& item);
    void timedOut(Entries::value_type& item);
    void settle(Entry& entry);
    void lookForSleep();
    [[nodiscard]] bool isDoubtful(const Entries::value_type& item) const;
    void withdraw(Entries::value_type& item);
    void heardSomebody();
    void beginDoubt();
    void endDoubt();
    void believeSilence();
    [[nodiscard]] std::chrono::milliseconds about(std::chrono::milliseconds time);

    Scheduler& m_scheduler;
    const ProberSettings m_settings;
    Ask m_ask;
    Handlers m_handlers;
    std::function<bool(const ServiceInstance&)> m_isImportant;
    Entries m_entries;
    Queue m_important; ///< those that are not in flight, by the time when they are due
    Queue m_usual;
    std::uint64_t m_lastNumber = 0;
    std::uint64_t m_round = 0; ///< answers of an earlier one are dropped
    std::size_t m_inFlight = 0;
    std::size_t m_unsettled = 0;
    std::optional<SteadyTime> m_lastLife; ///< when anybody was last heard on the network
    SteadyTime m_evidenceFrom{};
    Seconds m_dateOffset{};
    bool m_isInDoubt = false;
    bool m_isSilenceBelieved = false; ///< since a doubt that nobody ended
    Timer m_doubt;
    Timer m_timer;
    std::minstd_rand m_random;
};

} // namespace nightjar
