// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// Advertisements of sixty devices from a stand-in for the Bluetooth daemon, through a message bus of their
// own: into the binding alone, then into the manager with the finder on, which takes every one of them. What
// counts is the time of all threads of this process on the processor; the senders have their own.

#include "app/bluetooth/BluetoothTrackerManager.h"
#include "bench/RunningDaemon.h"
#include "platform/linux/BluezCentral.h"
#include "platform/linux/BusConnector.h"
#include "platform/linux/QtMainThread.h"
#include "platform/linux/QtScheduler.h"
#include "platform/simulated/FakeLocationSource.h"
#include "platform/simulated/FakeMessageTransport.h"
#include "platform/simulated/FakeNotificationCenter.h"
#include "platform/simulated/FakePreferences.h"
#include "platform/simulated/FakeServiceBrowser.h"
#include "platform/simulated/FakeSystemSound.h"
#include "platform/simulated/FakeTextServices.h"
#include "platform/simulated/FakeWakeMonitor.h"
#include "platform/simulated/SimulatedHostEnvironment.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdio>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <utility>

using namespace nightjar;

namespace {

constexpr int devices = 60;
constexpr int realisticRate = 200; ///< a second, in a busy room

struct Flood {
    const char* name;
    int rate; ///< a second, 0 = as fast as they go
    int count;
};

double processorSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

void row(const std::string& what, double value, const char* unit, bool asWanted, const char* wanted) {
    std::printf("%-44s %12.1f %-4s %-6s (wanted: %s)\n", what.c_str(), value, unit,
                asWanted ? "ok" : "MISSED", wanted);
}

class BluezFloodBench {
public:
    BluezFloodBench() {
        m_daemon.tell("up");
        m_daemon.tell("adapter hci0");
        m_connector.open();
    }

    /// Counts what the central alone tells.
    void listen() {
        m_central.setListener({.onStateChanged =
                                   [this] {
                                       if (m_central.state() == BluetoothRadioState::poweredOn)
                                           m_central.scan();
                                   },
                               .onAdvertisement = [this](const BluetoothAdvertisement&) { ++m_delivered; }});
        awaitFirst();
    }

    /// Counts what the manager has taken over.
    void useManager() {
        m_central.stopScan();
        m_manager.emplace(PlatformServices{.host = m_host,
                                           .mainThread = m_mainThread,
                                           .scheduler = m_scheduler,
                                           .preferences = m_preferences,
                                           .notifications = m_notifications,
                                           .text = m_text,
                                           .bluetooth = m_central,
                                           .location = m_location,
                                           .sound = m_sound,
                                           .wake = m_wake,
                                           .messages = m_messages,
                                           .services = m_network});
        QObject::connect(&*m_manager, &BluetoothTrackerManager::deviceChanged, &*m_manager,
                         [this] { ++m_delivered; });
        m_manager->startScanning();
        awaitFirst();
        m_manager->startFinding(m_manager->devices().front().id);
    }

    void run(const std::string& receiver, const Flood& flood) {
        awaitQuiet();
        m_delivered = 0;
        const auto start = std::chrono::steady_clock::now();
        const double before = processorSeconds();
        m_daemon.ask("flood hci0 " + std::to_string(devices) + ' ' + std::to_string(flood.rate) + ' ' +
                     std::to_string(flood.count));
        bench::runEventsUntil([&] { return m_daemon.hasAnswered(); });
        awaitQuiet();
        const double busy = processorSeconds() - before;
        const std::chrono::duration<double> wall = m_lastNews - start;

        // One reading of each device comes before the flood.
        const int sent = flood.count + devices;
        const std::string what = receiver + ", " + flood.name + ": ";
        const double rate = m_delivered / wall.count();
        row(what + "lost", sent - m_delivered, "", sent == m_delivered, "none");
        if (flood.rate == realisticRate) {
            row(what + "of one core", busy / wall.count() * 100, "%", busy / wall.count() < 0.03, "below 3");
            return;
        }
        row(what + "per update", busy / m_delivered * 1e6, "us", busy / m_delivered < 30e-6, "below 30");
        row(what + "delivered", rate, "1/s", rate > 0.95 * flood.rate, "as many as are sent");
    }

private:
    void awaitFirst() {
        m_delivered = 0;
        bench::runEventsUntil([&] {
            if (m_delivered == 0)
                m_daemon.tell("adv hci0 F0:00:00:00:00:00 -60");
            return m_delivered > 0;
        });
    }

    /// Until nothing has come for a while.
    void awaitQuiet() {
        int seen = m_delivered;
        m_lastNews = std::chrono::steady_clock::now();
        bench::runEventsUntil([&] {
            const auto now = std::chrono::steady_clock::now();
            if (std::exchange(seen, m_delivered) != m_delivered)
                m_lastNews = now;
            return now - m_lastNews > std::chrono::milliseconds(300);
        });
    }

    bench::RunningBus m_bus;
    bench::RunningDaemon m_daemon{m_bus.address()};
    QtMainThread m_mainThread;
    QtScheduler m_scheduler;
    BusConnector m_connector{m_mainThread, m_scheduler, [this] { return m_bus.connect(); }};
    BluezCentral m_central{m_connector, m_scheduler};
    SimulatedHostEnvironment m_host;
    FakePreferences m_preferences;
    FakeNotificationCenter m_notifications;
    FakeTextServices m_text;
    FakeLocationSource m_location;
    FakeSystemSound m_sound;
    FakeWakeMonitor m_wake;
    FakeMessageTransport m_messages;
    FakeServiceBrowser m_network;
    std::optional<BluetoothTrackerManager> m_manager;
    int m_delivered = 0;
    std::chrono::steady_clock::time_point m_lastNews;
};

} // namespace

int main(int count, char** arguments) {
    const QCoreApplication application(count, arguments);
    const Flood floods[] = {
        {"200 a second", realisticRate, 1'000},
        {"20,000 a second", 20'000, 100'000},
        {"as fast as they go", 0, 200'000},
    };
    BluezFloodBench bench;
    bench.listen();
    for (const auto& flood : floods)
        bench.run("binding", flood);
    bench.useManager();
    for (const auto& flood : floods)
        bench.run("manager", flood);
    return 0;
}
