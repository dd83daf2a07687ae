// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "platform/linux/AvahiSettings.h"

#include <compare>
#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <utility>

namespace nightjar {

/// A service on one of our interfaces.
struct ProbedService {
    std::string name{};
    std::string type{};
    int interfaceIndex = 0;

    auto operator<=>(const ProbedService&) const = default;
};

/// Proves that announced services are still there, by asking for each of them again and again: a device that
/// loses its power says no goodbye, and what it announced stays in everybody's memory for more than an hour.
/// Each interface is looked at by itself. Main thread.
///
/// Only time-outs are evidence, and only four in a row. When one device seems to have fallen silent while
/// nobody else on that interface has answered, though there should be others, it is rather our own link: this
/// is doubt. Nothing there is taken for gone then until somebody answers, after which one more time-out
/// decides, or until the doubt has lasted for two minutes: a broken router did take the devices from the
/// network. So that a doubt is rare and short, others are asked as soon as one falls silent.
class ServiceProber {
public:
    enum class Answer { there, thereFromMemory, timeout, error };
    /// Asks for a service and calls back later, once, or never after `clear`.
    using Ask = std::function<void(const ProbedService&, std::function<void(Answer)>)>;
    using IsImportant = std::function<bool(const ProbedService&)>;
    enum class Source {
        heard,       ///< on the network just now
        remembered,  ///< by the daemon: it counts as there after its first answer
        knownBefore, ///< by the daemon, and it was there the last time anyone looked
    };
    struct Handlers {
        std::function<void(const ProbedService&)> changed{};
        /// No service waits for its first answer any more.
        std::function<void()> settled{};
        std::function<void()> doubtChanged{};
    };

    ServiceProber(Scheduler& scheduler, const ProberSettings& settings, Ask ask, Handlers handlers);

    void add(const ProbedService& service, Source source);
    void remove(const ProbedService& service);
    void removeType(const std::string& type);
    /// Forgets all services; answers that are still missing never count.
    void clear();
    /// The important ones are asked first and more often; one that becomes important is asked soon.
    void setImportant(IsImportant isImportant);
    /// While nothing can be heard on an interface of ours, and shortly after, silence there says nothing.
    void setUsable(int interfaceIndex, bool isUsable);

    /// Absent: not known here.
    [[nodiscard]] std::optional<bool> isThere(const ProbedService& service) const;
    [[nodiscard]] bool isUnsettled() const { return m_unsettled > 0; }
    [[nodiscard]] bool isInDoubt() const;

private:
    struct Entry {
        std::uint64_t number = 0;
        SteadyTime due{};
        SteadyTime asked{};
        SteadyTime firstTimeout{}; ///< when the question was asked that began the row
        int timeouts = 0;          ///< in a row
        int memories = 0;          ///< answers out of memory, in a row
        bool isImportant = false;
        bool isInFlight = false;
        bool isUnsettled = false; ///< waits for the end of its first question
        bool isProven = false;
        bool isGone = false;
    };
    /// What is known of an interface.
    struct Line {
        std::optional<SteadyTime> lastLife{}; ///< when anybody was last heard there
        SteadyTime evidenceFrom{};
        bool isUsable = true;
        bool isInDoubt = false;
        bool isSilenceBelieved = false; ///< since a doubt that nobody ended
        Timer doubt{};
    };
    using Entries = std::map<ProbedService, Entry>;
    using Item = Entries::value_type;
    using Queue = std::set<std::pair<SteadyTime, const ProbedService*>>;

    [[nodiscard]] Queue& queueOf(const Entry& entry) { return entry.isImportant ? m_important : m_usual; }
    void schedule(Item& item, std::chrono::milliseconds delay);
    void unschedule(Item& item);
    void bringForward(Item& item, SteadyTime due);
    [[nodiscard]] std::chrono::milliseconds periodOf(const Entry& entry) const;
    [[nodiscard]] std::chrono::milliseconds pauseOf(const Entry& entry) const;
    [[nodiscard]] const ProbedService* nextDue() const;
    void askNext();
    void armTimer();
    void ask(Item& item);
    void answered(const ProbedService& key, std::uint64_t number, Answer answer);
    void foundThere(Item& item, std::chrono::milliseconds nextQuestion);
    [[nodiscard]] std::chrono::milliseconds untilNext(Entry& entry, Answer answer);
    [[nodiscard]] std::chrono::milliseconds apartFromOthers() const;
    void timedOut(Item& item);
    void settle(Entry& entry);

    // In ServiceProberDoubt.cpp: what silence means.
    [[nodiscard]] bool isEvidence(const Item& item);
    void lookForSleep();
    void callWitnesses(const Item& silent);
    [[nodiscard]] bool isWitness(const Item& other, const Item& silent) const;
    [[nodiscard]] bool hasHeardSince(int interfaceIndex, SteadyTime time);
    [[nodiscard]] bool isDoubtful(const Item& item);
    void withdraw(Item& item);
    void heardSomebody(int interfaceIndex);
    void beginDoubt(int interfaceIndex);
    void endDoubt(Line& line);
    void believeSilence(int interfaceIndex);
    [[nodiscard]] std::chrono::milliseconds about(std::chrono::milliseconds time);

    Scheduler& m_scheduler;
    const ProberSettings m_settings;
    Ask m_ask;
    Handlers m_handlers;
    IsImportant m_isImportant;
    Entries m_entries;
    std::map<int, Line> m_lines; ///< by index
    Queue m_important;           ///< those that are not in flight, by the time when they are due
    Queue m_usual;
    std::uint64_t m_lastNumber = 0;
    std::uint64_t m_round = 0; ///< answers of an earlier one are dropped
    std::size_t m_inFlight = 0;
    std::size_t m_unsettled = 0;
    SteadyTime m_evidenceFrom{};
    Seconds m_dateOffset{};
    Timer m_timer;
    std::minstd_rand m_random;
};

} // namespace nightjar
