// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// Five hundred services of five types on a network of the benchmark's own, through a daemon of Avahi of its
// own: how long until the sets are complete, and what watching them costs. Needs root.

#include "bench/RunningBus.h"
#include "platform/linux/AvahiServiceBrowser.h"
#include "platform/linux/BusConnector.h"
#include "platform/linux/QtMainThread.h"
#include "platform/linux/QtScheduler.h"
#include "tests/network/NetworkBed.h"

#include <QCoreApplication>

#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <sys/resource.h>
#include <vector>

using namespace nightjar;

namespace {

constexpr std::size_t servicesPerType = 100;
const std::vector<std::string> types{"_ssh._tcp", "_http._tcp", "_ipp._tcp", "_smb._tcp", "_raop._tcp"};

double processorSeconds() {
    rusage usage{};
    ::getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) * 1e-6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

double now() {
    return std::chrono::duration<double>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void row(const char* what, double value, const char* unit, double limit) {
    std::printf("%-47s %8.3f %-4s %-6s (wanted: below %g)\n", what, value, unit,
                value < limit ? "ok" : "MISSED", limit);
}

/// A browser as the program has it.
class Watch {
public:
    explicit Watch(const bench::RunningBus& bus, const AvahiSettings& settings = {})
        : m_connector(m_mainThread, m_scheduler,
                      [&bus] {
                          static int opened = 0;
                          return QDBusConnection::connectToBus(bus.address(), QString::number(++opened));
                      }),
          m_browser(m_connector, m_scheduler, m_links, settings) {
        m_browser.setListener({.onResults = [this](const std::string& type, const auto& instances) {
            m_sizes[type] = instances.size();
            m_lastChange = now();
        }});
    }

    /// Seconds until all sets are complete.
    double browse() {
        const double start = now();
        for (const auto& type : types)
            m_browser.browse(type);
        bench::runEventsUntil([&] { return count() == types.size() * servicesPerType; });
        return m_lastChange - start;
    }
    [[nodiscard]] std::size_t count() const {
        std::size_t sum = 0;
        for (const auto& [type, size] : m_sizes)
            sum += size;
        return sum;
    }

private:
    QtMainThread m_mainThread;
    QtScheduler m_scheduler;
    BusConnector m_connector;
    NetworkLinks m_links{[] { return -1; }};
    AvahiServiceBrowser m_browser;
    std::map<std::string, std::size_t> m_sizes;
    double m_lastChange = 0;
};

void runEventsFor(double seconds) {
    const double end = now() + seconds;
    bench::runEventsUntil([&] { return now() >= end; });
}

/// Percent of a core that we and the daemon need for watching.
double cost(const bed::Avahi& daemon, const Watch& watch) {
    constexpr double time = 120;
    const double before = processorSeconds();
    const double daemonBefore = daemon.program().processorSeconds();
    runEventsFor(time);
    const double ours = (processorSeconds() - before) / time * 100;
    const double daemons = (daemon.program().processorSeconds() - daemonBefore) / time * 100;
    std::printf("  %.2f %% ours, %.2f %% the daemon's; %zu of %zu services are there\n", ours, daemons,
                watch.count(), types.size() * servicesPerType);
    return ours + daemons;
}

void run() {
    const bench::RunningBus bus;
    const bed::Computer us;
    const bed::Computer others;
    bed::Switch network(1);
    network.connect(us, QStringLiteral("eth0"), 1);
    network.connect(others, QStringLiteral("eth0"), 2);
    std::vector<std::unique_ptr<bed::Program>> devices;
    for (const auto& type : types)
        devices.push_back(std::make_unique<bed::Program>(others.inside(
            {QStringLiteral("python3"), QStringLiteral(NIGHTJAR_MDNS_DEVICE), network.address(2),
             QString::fromStdString(type), QStringLiteral("120"),
             QStringLiteral("%1 *%2").arg(QString::fromStdString(type)).arg(servicesPerType)})));
    runEventsFor(3);
    bed::Avahi daemon(us, QStringLiteral("us"), bus.address());
    runEventsFor(3);

    {
        Watch cold(bus);
        const double before = processorSeconds();
        row("complete sets, cold", cold.browse(), "s", 1.5);
        row("our processor time for them", processorSeconds() - before, "s", 0.1);
    }
    {
        AvahiSettings everyMinute;
        everyMinute.prober.usualPeriod = std::chrono::minutes(1);
        Watch restless(bus, everyMinute);
        restless.browse();
        runEventsFor(20);
        row("watching, each asked every minute, of one core", cost(daemon, restless), "%", 1.5);
    }
    Watch warm(bus);
    row("complete sets, warm", warm.browse(), "s", 0.3);

    // Until the first questions are over, which all come at once.
    runEventsFor(20);
    row("watching, of one core", cost(daemon, warm), "%", 0.5);
}

} // namespace

int main(int count, char** arguments) {
    const QCoreApplication application(count, arguments);
    if (const auto obstacle = bed::obstacle()) {
        std::printf("not measured: %s\n", obstacle->c_str());
        return 0;
    }
    run();
    return 0;
}
