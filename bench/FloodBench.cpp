// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// A million node lines from a real bridge process to whoever consumes them on the main thread.

#include "bench/FloodReport.h"
#include "bench/RadioBench.h"

#include <cstdio>
#include <cstdlib>
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

} // namespace

int main(int count, char** arguments) {
    const std::string lines = count > 1 ? arguments[1] : "1000000";
    ::setenv("NIGHTJAR_FLOOD_LINES", lines.c_str(), 1);
    bench::RadioBench rig;
    CountingConsumer consumer;
    const bench::FloodReport report;
    consumer.start(rig);
    rig.mainThread.runUntil([&] { return consumer.hasEverything(); });
    const auto wantedLines = std::strtoull(lines.c_str(), nullptr, 10);
    report.print(consumer.nodeLines(), rig.mainThread.longestMilliseconds());
    return consumer.nodeLines() == wantedLines ? 0 : 1;
}
