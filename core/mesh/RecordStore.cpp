// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/RecordStore.h"

#include "core/base/AtomicFile.h"
#include "core/json/Decoder.h"
#include "core/mesh/MeshJson.h"
#include "core/mesh/StoredList.h"

#include <algorithm>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <mutex>
#include <thread>
#include <utility>
#include <variant>

namespace nightjar {
namespace {

using Result = std::expected<void, std::string>;

/// Signals are the business of the thread that waits for them; one that interrupts a write, or ends the
/// process at a file size limit, would cost a record.
void blockSignals() {
    sigset_t all;
    sigfillset(&all);
    pthread_sigmask(SIG_BLOCK, &all, nullptr);
}

} // namespace

template <class Record>
struct RecordStore<Record>::Actor {
public:
    explicit Actor(std::optional<std::filesystem::path> url) : m_url(std::move(url)) {
        m_thread = std::jthread([this] { run(); });
    }

    ~Actor() {
        {
            const std::scoped_lock lock(m_mutex);
            m_ending = true;
        }
        m_changed.notify_one();
    }

    void load(Loaded done) {
        {
            const std::scoped_lock lock(m_mutex);
            m_jobs.emplace_back(std::move(done));
        }
        m_changed.notify_one();
    }

    void append(Record record, std::size_t maximumCount, Appended done) {
        {
            const std::scoped_lock lock(m_mutex);
            m_jobs.emplace_back(Append{std::move(record), maximumCount, std::move(done)});
            ++m_waitingAppends;
            if (m_waitingAppends > 2 * std::max(maximumCount, smallestQueue))
                refuseOldest();
        }
        m_changed.notify_one();
    }

private:
    struct Append {
        Record record;
        std::size_t maximumCount;
        Appended done;
    };
    using Job = std::variant<Loaded, Append>;

    static constexpr std::size_t smallestQueue = 500;

    struct Work {
        Loaded load;                   ///< either this
        std::vector<Append> appends;   ///< or the appends up to the next load
        std::vector<Appended> refused; ///< and whoever did not fit into the queue
    };

    /// While the disk hangs the queue must not grow without end; the oldest would be dropped from the file
    /// anyway.
    void refuseOldest() {
        const auto oldest =
            std::ranges::find_if(m_jobs, [](const Job& job) { return std::holds_alternative<Append>(job); });
        if (auto& done = std::get<Append>(*oldest).done)
            m_refused.push_back(std::move(done));
        m_jobs.erase(oldest);
        --m_waitingAppends;
    }

    void run() {
        blockSignals();
        while (auto work = nextWork()) {
            for (auto& done : work->refused)
                done(std::unexpected("Too many records are waiting to be saved."));
            if (work->load)
                work->load(m_url ? read() : std::vector<Record>());
            if (!work->appends.empty())
                appendAll(work->appends);
        }
    }

    /// Waits for work; absent at the end.
    std::optional<Work> nextWork() {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [this] { return m_ending || !m_jobs.empty(); });
        if (m_jobs.empty())
            return std::nullopt;

        Work work;
        work.refused = std::exchange(m_refused, {});
        if (auto* load = std::get_if<Loaded>(&m_jobs.front())) {
            work.load = std::move(*load);
            m_jobs.pop_front();
            return work;
        }
        while (!m_jobs.empty()) {
            auto* append = std::get_if<Append>(&m_jobs.front());
            if (!append)
                break;
            work.appends.push_back(std::move(*append));
            m_jobs.pop_front();
        }
        m_waitingAppends -= work.appends.size();
        return work;
    }

    std::vector<Record> read() {
        const auto bytes = readWholeFile(*m_url);
        if (!bytes)
            return {};
        return json::Decoder(json::DateForm::iso8601)
            .decodeList<Record>(*bytes)
            .value_or(std::vector<Record>());
    }

    void appendAll(std::vector<Append>& appends) {
        const auto results = m_url ? addToFile(appends) : std::vector<Result>(appends.size());
        for (std::size_t i = 0; i < appends.size(); ++i) {
            if (appends[i].done)
                appends[i].done(results[i]);
        }
    }

    /// Does to the list what the appends do one after the other, and writes it once.
    std::vector<Result> addToFile(const std::vector<Append>& appends) {
        StoredList<Record> list(readWholeFile(*m_url).value_or(std::string()));
        std::vector<Result> results;
        for (const auto& [record, maximumCount, done] : appends) {
            Result& result = results.emplace_back();
            if (!list.holdsDuplicateOf(record))
                result = list.add(record, maximumCount);
        }
        if (!list.hasChanged())
            return results;

        const auto written = replaceFile(*m_url, list.takeText());
        if (written)
            return results;
        for (std::size_t i = 0; i < appends.size(); ++i) {
            if (results[i] && !list.heldDuplicateOf(appends[i].record))
                results[i] = written;
        }
        return results;
    }

    const std::optional<std::filesystem::path> m_url;

    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<Job> m_jobs;
    std::vector<Appended> m_refused;
    std::size_t m_waitingAppends = 0;
    bool m_ending = false;

    std::jthread m_thread; ///< last, so that it has ended before anything that it uses goes
};

template <class Record>
RecordStore<Record>::RecordStore(std::optional<std::filesystem::path> url)
    : m_actor(std::make_unique<Actor>(std::move(url))) {}

template <class Record>
RecordStore<Record>::~RecordStore() = default;

template <class Record>
void RecordStore<Record>::load(Loaded done) {
    m_actor->load(std::move(done));
}

template <class Record>
void RecordStore<Record>::append(Record record, std::size_t maximumCount, Appended done) {
    m_actor->append(std::move(record), maximumCount, std::move(done));
}

template class RecordStore<MeshMessage>;
template class RecordStore<MeshPosition>;

} // namespace nightjar
