// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// A million node lines from a real bridge process to whoever consumes them on the main thread.

#include "bench/RadioBench.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

using namespace nightjar;

namespace {

/// Takes the events on the main thread. Whatever shall be measured behind the radio takes this one's place.
class Consumer {
public:
    virtual ~Consumer() = default;
    virtual void start(bench::RadioBench& rig) = 0;
    [[nodiscard]] virtual bool hasEverything() const = 0;
    [[nodiscard]] virtual std::size_t nodeLines() const = 0;
};

class CountingConsumer final : public Consumer {
public:
    void start(bench::RadioBench& rig) override {
        m_radio.emplace(rig.host, rig.mainThread, rig.clock);
        m_radio->connect(rig.port, {.onEvent = [this](const auto& event) { take(event); }},
                         [](const auto& result) {
                             if (!result)
                                 std::puts(result.error().description().c_str()), std::exit(1);
                         });
    }
    bool hasEverything() const override { return m_ended; }
    std::size_t nodeLines() const override { return m_nodes; }

private:
    void take(const MeshtasticBridgeResponse& event) {
        if (event.node && event.node->position)
            ++m_nodes;
        if (event.event == MeshtasticBridgeEvent::localNode)
            m_ended = true;
    }

    std::size_t m_nodes = 0;
    bool m_ended = false;
    std::optional<MeshRadio> m_radio;
};

double statusMegabytes(const std::string& key) {
    std::ifstream file("/proc/self/status");
    for (std::string line; std::getline(file, line);) {
        if (line.starts_with(key))
            return std::atof(line.c_str() + key.size()) / 1024;
    }
    return 0;
}

void print(const char* what, double value, const char* unit, bool asWanted, const char* wanted) {
    std::printf("%-28s %12.1f %-10s %s (wanted: %s)\n", what, value, unit, asWanted ? "ok    " : "MISSED",
                wanted);
}

} // namespace

int main(int count, char** arguments) {
    const std::string lines = count > 1 ? arguments[1] : "1000000";
    ::setenv("NIGHTJAR_FLOOD_LINES", lines.c_str(), 1);
    bench::RadioBench rig;
    CountingConsumer consumer;
    std::ofstream("/proc/self/clear_refs") << "5";
    const double before = statusMegabytes("VmHWM:");

    const auto start = std::chrono::steady_clock::now();
    consumer.start(rig);
    rig.mainThread.runUntil([&] { return consumer.hasEverything(); });
    const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - start;

    const auto wantedLines = std::strtoull(lines.c_str(), nullptr, 10);
    const double rate = static_cast<double>(consumer.nodeLines()) / seconds.count();
    const double growth = statusMegabytes("VmHWM:") - before;
    const double busy = rig.mainThread.longestMilliseconds();
    print("lines that arrived", static_cast<double>(consumer.nodeLines()), "",
          consumer.nodeLines() == wantedLines, "all");
    print("lines per second", rate, "1/s", rate >= 150000, "at least 150000");
    print("growth of memory at its peak", growth, "MB", growth < 50, "below 50");
    print("longest busy time", busy, "ms", busy <= 20, "at most 20");
    return consumer.nodeLines() == wantedLines ? 0 : 1;
}
