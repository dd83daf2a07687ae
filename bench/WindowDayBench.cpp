// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// What a day with the window open does to the memory: 24 hours on a simulated clock with a mesh of 40 nodes,
// 60 Bluetooth devices, network devices that come and go, and another section on screen every hour.

#include "bench/WindowRig.h"
#include "tests/support/Builders.h"
#include "ui/mesh/MeshSection.h"

#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace nightjar::bench {
namespace {

using testing::node;

constexpr int stepsPerHour = 360; ///< of ten seconds
constexpr int nodeCount = 40;
constexpr int bluetoothCount = 60;
constexpr int serviceCount = 12;

/// Of what the kernel counts for this process.
long kilobytes(const std::string& field) {
    std::ifstream lines("/proc/self/smaps_rollup");
    for (std::string word; lines >> word;) {
        long value = 0;
        if (word == field + ":" && lines >> value)
            return value;
    }
    return 0;
}

class Day {
public:
    Day() {
        m_rig.connect();
        m_rig.app->start();
        for (int device = 0; device < bluetoothCount; ++device)
            m_devices.push_back(Uuid::random());
    }

    void run() {
        for (int hour = 1; hour <= 24; ++hour) {
            for (int step = 0; step < stepsPerHour; ++step)
                live(hour, step);
            if (hour == 1 || hour % 6 == 0)
                std::printf("after hour %2d: PSS %ld kB, private %ld kB; %zu positions in the history\n",
                            hour, kilobytes("Pss"), kilobytes("Private_Dirty"),
                            m_rig.app->model().history().size());
            std::fflush(stdout);
            changeSection(hour);
        }
    }

private:
    void live(int hour, int step) {
        auto& computer = m_rig.computer;
        computer.scheduler.advance(std::chrono::seconds(10));
        hearNodes(hour * stepsPerHour + step);
        for (std::size_t device = 0; device < m_devices.size(); ++device)
            computer.bluetooth.hear({.peripheral = m_devices[device],
                                     .localName = "Tag " + std::to_string(device),
                                     .rssi = -45 - (step + static_cast<int>(device)) % 40});
        const ServiceInstance service{"Device " + std::to_string(step % serviceCount), "_ipp._tcp", "local."};
        if (step / serviceCount % 2 == 0)
            computer.network.announce(service);
        else
            computer.network.vanish(service);
        computer.mainThread.runPending();
        QApplication::processEvents();
    }

    /// Three a step, each with a fix. Every eighth time a node has moved.
    void hearNodes(int step) {
        const Date now = m_rig.computer.scheduler.now();
        for (int each = 0; each < 3; ++each) {
            const int turn = 3 * step + each;
            const auto number = static_cast<std::uint32_t>(turn % nodeCount + 1);
            const int place = turn / nodeCount / 8;
            MeshPosition position{.id = {},
                                  .nodeNumber = number,
                                  .latitude = 51 + number * 0.001 + place * 1e-5,
                                  .longitude = 5 + number * 0.001,
                                  .altitude = {},
                                  .timestamp = now};
            position.id.bytes[0] = static_cast<std::uint8_t>(place);
            position.id.bytes[1] = static_cast<std::uint8_t>(place >> 8);
            m_rig.hear(node(number).named("Node " + std::to_string(number)).seen(now).at(position));
        }
    }

    void changeSection(int hour) {
        auto& window = m_rig.app->mainWindow();
        window.setNetwork(static_cast<NetworkSection>(hour % 3));
        if (window.network() == NetworkSection::meshtastic)
            window.mesh().setMeshtasticSection(static_cast<MeshtasticSection>(hour / 3 % 2));
    }

    WindowRig m_rig;
    std::vector<Uuid> m_devices;
};

} // namespace
} // namespace nightjar::bench

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    nightjar::bench::Day().run();
}
