// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "bench/Measure.h"
#include "bench/Samples.h"
#include "core/bridge/BridgeJson.h"

#include <benchmark/benchmark.h>
#include <simdjson.h>

namespace {

using namespace nightjar;

constexpr int lineCount = 1000;

std::vector<std::string> nodeLines() {
    bench::Samples samples;
    std::vector<std::string> lines;
    for (int i = 0; i < lineCount; ++i) {
        MeshtasticBridgeResponse response;
        response.event = MeshtasticBridgeEvent::node;
        response.node = samples.node(i);
        lines.push_back(encodeLine(response).value());
    }
    return lines;
}

/// Reading `node` lines into records beside only parsing the same bytes. Wanted: at most 1.5 times the bare
/// parse and at least 500,000 lines a second.
void decodeNodeLines(benchmark::State& state) {
    const auto lines = nodeLines();
    auto decoder = makeBridgeDecoder();
    simdjson::dom::parser parser;
    bench::Durations ours;
    bench::Durations bare;
    std::size_t failures = 0;
    std::size_t bytes = 0;
    for (const auto& line : lines)
        bytes += line.size();

    for (auto _ : state) {
        ours.measure([&] {
            for (const auto& line : lines) {
                const auto response = decoder.decode<MeshtasticBridgeResponse>(line);
                failures += !response || !response->node;
            }
        });
        bare.measure([&] {
            for (const auto& line : lines) {
                simdjson::dom::element root;
                failures += parser.parse(line.data(), line.size()).get(root) != simdjson::SUCCESS;
            }
        });
    }
    if (failures)
        state.SkipWithError("a line was not read");
    state.counters["bytes_per_line"] = static_cast<double>(bytes) / lineCount;
    state.counters["ns_per_line"] = ours.median() / lineCount * 1e9;
    state.counters["bare_ns_per_line"] = bare.median() / lineCount * 1e9;
    state.counters["lines_per_second"] = lineCount / ours.median();
    state.counters["times_bare"] = ours.median() / bare.median();
}
BENCHMARK(decodeNodeLines)->Unit(benchmark::kMicrosecond)->MinTime(2);

} // namespace
