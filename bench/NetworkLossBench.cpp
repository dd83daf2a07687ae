// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// Tracked devices on a network of the benchmark's own, watched in real time through a daemon of Avahi of its
// own. "loss MINUTES": three in ten packets are lost in each direction, and nobody should leave. "silence
// ROUNDS": how long until a device without power is noticed, and its return. Needs root.

#include "bench/RunningBus.h"
#include "tests/network/NetworkBed.h"
#include "tests/network/NetworkWatch.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <memory>
#include <string>
#include <vector>

using namespace nightjar;

namespace {

const std::vector<std::string> names{"printer", "lamp", "shelf", "television", "speaker"};

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

class World {
public:
    World() {
        m_network.connect(m_us, QStringLiteral("eth0"), 1);
        for (std::size_t i = 0; i < names.size(); ++i) {
            m_network.connect(m_computers.emplace_back(), QStringLiteral("eth0"), static_cast<int>(i) + 2);
            m_devices.emplace_back();
            powerOn(i);
        }
        m_daemon = std::make_unique<bed::Avahi>(m_us, QStringLiteral("us"), m_bus.address());
        m_watch = std::make_unique<testing::NetworkWatch>(
            [this] { return QDBusConnection::connectToBus(m_bus.address(), QStringLiteral("watch")); },
            [this] { return m_us.openLinkSocket(); }, AvahiSettings{}, 1);
        m_watch->browser.start();
        bench::runEventsUntil([&] { return online() == names.size(); });
        for (const auto& name : names)
            m_watch->trackWithAlert(name, 60);
    }

    void powerOn(std::size_t device) {
        m_devices[device] = std::make_unique<bed::Program>(m_computers[device].inside(
            {QStringLiteral("python3"), QStringLiteral(NIGHTJAR_MDNS_DEVICE),
             m_network.address(static_cast<int>(device) + 2), QStringLiteral("_ssh._tcp"),
             QStringLiteral("120"), QString::fromStdString(names[device])}));
    }
    void powerOff(std::size_t device) { m_devices[device]->kill(); }
    void losePackets() {
        lose(m_us);
        for (const auto& computer : m_computers)
            lose(computer);
    }
    [[nodiscard]] std::size_t online() const {
        std::size_t count = 0;
        for (const auto& name : names)
            count += m_watch->isOnline(name) ? 1 : 0;
        return count;
    }
    [[nodiscard]] testing::NetworkWatch& watch() { return *m_watch; }

private:
    static void lose(const bed::Computer& computer) {
        computer.run(
            {QStringLiteral("nft"),
             QStringLiteral("add table ip t; add chain ip t in { type filter hook input priority 0; }; "
                            "add rule ip t in udp dport 5353 numgen random mod 100 < 30 counter drop")});
    }

    bench::RunningBus m_bus;
    bed::Switch m_network{1};
    bed::Computer m_us;
    std::deque<bed::Computer> m_computers;
    std::vector<std::unique_ptr<bed::Program>> m_devices;
    std::unique_ptr<bed::Avahi> m_daemon;
    std::unique_ptr<testing::NetworkWatch> m_watch;
};

void measureLoss(double minutes) {
    World world;
    world.losePackets();
    const double start = now();
    std::size_t before = names.size();
    std::string state;
    int withdrawals = 0;
    bench::runEventsUntil([&] {
        const auto online = world.online();
        if (online < before)
            ++withdrawals;
        if (online != before || state != world.watch().browser.state())
            std::printf("%7.1f s: %zu online, \"%s\"\n", now() - start, online,
                        world.watch().browser.state().c_str());
        before = online;
        state = world.watch().browser.state();
        std::fflush(stdout);
        return now() - start >= minutes * 60;
    });
    std::printf(
        "%.0f minutes with 30 %% lost each way: %d times somebody was taken for offline, %zu notifications\n",
        minutes, withdrawals, world.watch().told().size());
}

void measureSilence(int rounds) {
    World world;
    for (int round = 0; round < rounds; ++round) {
        const auto device = static_cast<std::size_t>(round) % names.size();
        // Not always at the same moment of a period.
        const double pause = now() + 90 + round * 37 % 60;
        bench::runEventsUntil([&] { return now() >= pause; });
        world.powerOff(device);
        const double died = now();
        bench::runEventsUntil([&] { return !world.watch().isOnline(names[device]); });
        const double noticed = now() - died;
        const double wait = now() + 20 + round * 17 % 30;
        bench::runEventsUntil([&] { return now() >= wait; });
        world.powerOn(device);
        const double returned = now();
        bench::runEventsUntil([&] { return world.watch().isOnline(names[device]); });
        std::printf("%-12s gone noticed after %6.1f s, return after %5.1f s, %zu online\n",
                    names[device].c_str(), noticed, now() - returned, world.online());
        std::fflush(stdout);
    }
}

} // namespace

int main(int count, char** arguments) {
    const QCoreApplication application(count, arguments);
    if (const auto obstacle = bed::obstacle()) {
        std::printf("not measured: %s\n", obstacle->c_str());
        return 0;
    }
    const std::string what = count > 1 ? arguments[1] : "silence";
    const int amount = count > 2 ? std::atoi(arguments[2]) : 1;
    if (what == "loss")
        measureLoss(amount);
    else
        measureSilence(amount);
    return 0;
}
