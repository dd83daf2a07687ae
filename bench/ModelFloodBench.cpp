// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// A million node lines from a real bridge process into the model's sorted table of 250 nodes, which somebody
// looks at ten times a second. The nodes stand still: every new fix is kept by design, so fixes would measure
// the history's growth.

#include "app/mesh/NightjarModel.h"
#include "bench/FloodReport.h"
#include "bench/RadioBench.h"
#include "platform/linux/IcuTextServices.h"
#include "platform/linux/LinuxHostEnvironment.h"
#include "platform/simulated/FakeBluetoothCentral.h"
#include "platform/simulated/FakeLocationSource.h"
#include "platform/simulated/FakeMessageTransport.h"
#include "platform/simulated/FakeNotificationCenter.h"
#include "platform/simulated/FakePreferences.h"
#include "platform/simulated/FakeScheduler.h"
#include "platform/simulated/FakeServiceBrowser.h"
#include "platform/simulated/FakeSystemSound.h"
#include "platform/simulated/FakeWakeMonitor.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

using namespace nightjar;

namespace {

constexpr std::size_t nodeCount = 250;

struct ModelBench {
    bench::RadioBench rig;
    FakeScheduler scheduler;
    FakePreferences preferences;
    FakeNotificationCenter notifications;
    IcuTextServices text{IcuTextServices::systemLocale(LinuxHostEnvironment())};
    FakeBluetoothCentral bluetooth;
    FakeLocationSource location;
    FakeSystemSound sound;
    FakeWakeMonitor wake;
    FakeMessageTransport messages;
    FakeServiceBrowser network;
    NightjarModel model{{.host = rig.host,
                         .mainThread = rig.mainThread,
                         .scheduler = scheduler,
                         .preferences = preferences,
                         .notifications = notifications,
                         .text = text,
                         .bluetooth = bluetooth,
                         .location = location,
                         .sound = sound,
                         .wake = wake,
                         .messages = messages,
                         .services = network},
                        std::make_unique<MeshRadio>(rig.host, rig.mainThread, rig.clock)};
};

} // namespace

int main(int count, char** arguments) {
    const QCoreApplication application(count, arguments);
    const std::string lines = count > 1 ? arguments[1] : "1000000";
    ::setenv("NIGHTJAR_FLOOD_LINES", lines.c_str(), 1);
    ::setenv("NIGHTJAR_FLOOD_STANDING_NODES", std::to_string(nodeCount).c_str(), 1);

    ModelBench bench;
    bench::FloodReport report;
    std::size_t looks = 0;
    std::size_t seen = 0;
    auto nextLook = std::chrono::steady_clock::now();
    bench.model.connect(bench::RadioBench::port);
    bench.rig.mainThread.runUntil([&] {
        if (const auto now = std::chrono::steady_clock::now(); now >= nextLook) {
            nextLook = now + std::chrono::milliseconds(100);
            bench.rig.mainThread.post([&] { ++looks, seen = bench.model.nodes().size(); });
        }
        return bench.model.localNodeID().has_value();
    });

    std::printf("%zu looks at a table of %zu nodes\n", looks, seen);
    report.print(std::strtoull(lines.c_str(), nullptr, 10), bench.rig.mainThread.longestMilliseconds());
    return bench.model.nodes().size() == nodeCount ? 0 : 1;
}
