// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bench/BusyMainThread.h"
#include "platform/linux/SteadyPollClock.h"
#include "platform/simulated/SimulatedHostEnvironment.h"
#include "radio/MeshRadio.h"

#include <string>

namespace nightjar::bench {

/// What a radio needs to run against the benchmarks' own bridge program.
struct RadioBench {
    RadioBench() {
        host.addFile(NIGHTJAR_FLOOD_BRIDGE, SimulatedHostEnvironment::FileKind::executable);
        host.setEnvironmentVariable("HALVARD_MESHTASTIC_BRIDGE_PATH", NIGHTJAR_FLOOD_BRIDGE);
        host.plugIn("cu.usbmodem1");
    }

    static constexpr const char* port = "/dev/cu.usbmodem1";
    SimulatedHostEnvironment host;
    BusyMainThread mainThread;
    SteadyPollClock clock;
};

} // namespace nightjar::bench
