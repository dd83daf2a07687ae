// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// Fifty new positions a second onto a full file: how long each waits until it is on the disk. Takes a minute,
// or the seconds given as argument.

#include "bench/Samples.h"
#include "core/mesh/RecordStore.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <future>
#include <mutex>
#include <thread>
#include <vector>

using namespace nightjar;
using Clock = std::chrono::steady_clock;

namespace {

constexpr std::size_t maximumCount = 10'000;

class Waits {
public:
    void add(Clock::duration wait) {
        const std::lock_guard lock(m_mutex);
        m_milliseconds.push_back(std::chrono::duration<double, std::milli>(wait).count());
    }
    void print() {
        const std::lock_guard lock(m_mutex);
        std::ranges::sort(m_milliseconds);
        const double longest = m_milliseconds.back();
        std::printf("%zu positions: median wait %.1f ms, longest %.1f ms %s (wanted: below 1000)\n",
                    m_milliseconds.size(), m_milliseconds[m_milliseconds.size() / 2], longest,
                    longest < 1000 ? "ok" : "MISSED");
    }

private:
    std::mutex m_mutex;
    std::vector<double> m_milliseconds;
};

} // namespace

int main(int count, char** arguments) {
    const int seconds = count > 1 ? std::atoi(arguments[1]) : 60;
    const auto folder =
        std::filesystem::temp_directory_path() / ("nightjar-backlog-" + Uuid::random().text());
    bench::Samples samples;
    Waits waits;
    bool keptAll = false;
    {
        PositionStore store(folder / "positions.json");
        for (std::size_t i = 0; i < maximumCount; ++i)
            store.append(samples.position(static_cast<int>(i)), maximumCount);
        MeshPosition last;
        for (int i = 0; i < seconds * 50; ++i) {
            last = samples.position(static_cast<int>(maximumCount) + i);
            store.append(last, maximumCount,
                         [&waits, asked = Clock::now()](const auto&) { waits.add(Clock::now() - asked); });
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        std::promise<std::vector<MeshPosition>> loaded;
        store.load(
            [&loaded](std::vector<MeshPosition> positions) { loaded.set_value(std::move(positions)); });
        const auto positions = loaded.get_future().get();
        keptAll = positions.size() == maximumCount && positions.back().id == last.id;
    }
    std::filesystem::remove_all(folder);
    waits.print();
    return keptAll ? 0 : 1;
}
