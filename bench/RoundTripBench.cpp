// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// One request after another through a real bridge process: from the call on the main thread to the completion
// there.

#include "bench/Measure.h"
#include "bench/RadioBench.h"

#include <cstdio>
#include <cstdlib>

using namespace nightjar;

int main() {
    bench::RadioBench rig;
    MeshRadio radio(rig.host, rig.mainThread, rig.clock);
    bool done = false;
    radio.connect(rig.port, {}, [&](const auto& result) {
        if (!result)
            std::puts(result.error().description().c_str()), std::exit(1);
        done = true;
    });
    rig.mainThread.runUntil([&] { return done; });

    bench::Durations durations;
    for (int i = 0; i < 20000; ++i) {
        durations.measure([&] {
            done = false;
            radio.sendText("hello", std::nullopt, 0, [&](const auto& result) { done = result.has_value(); });
            rig.mainThread.runUntil([&] { return done; });
        });
    }
    const double milliseconds = durations.median() * 1000;
    std::printf("%-28s %12.3f %-10s %s (wanted: below 0.2)\n", "median round trip", milliseconds, "ms",
                milliseconds < 0.2 ? "ok    " : "MISSED");
    return 0;
}
