// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// What a change of the announced services costs the main thread: to take it, to put the list in order when
// somebody looks, and to write the file at the end of the turn of the event loop.

#include "app/network/LocalNetworkBrowser.h"
#include "core/base/AtomicFile.h"
#include "platform/simulated/SimulatedComputer.h"
#include "tests/support/TemporaryFolder.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <set>
#include <string>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

template <class Step>
double microsecondsOf(Step&& step) {
    const auto start = SteadyClock::now();
    step();
    return std::chrono::duration<double, std::micro>(SteadyClock::now() - start).count();
}

/// The names of a network, every fourth not in ASCII.
ServiceInstance instanceOf(std::size_t number, const std::string& type) {
    return {.name = (number % 4 == 0 ? "Gerät " : "Device ") + std::to_string(number),
            .type = type,
            .domain = "local.",
            .interfaceName = "wlan0"};
}

/// The least of the rounds of each step: other programs can only make one longer.
struct Costs {
    double take = 1e300;
    double sort = 1e300;
    double write = 1e300;
    double rawWrite = 1e300;
};

/// Each device announces three services; one of them flaps, which makes it leave and come.
Costs costsAmong(std::size_t devices) {
    constexpr int rounds = 15;
    testing::TemporaryFolder home;
    SimulatedComputer computer;
    computer.host.setApplicationSupportFolder(home.path());
    LocalNetworkBrowser browser(computer.services());
    browser.start();
    for (const char* type : {"_smb._tcp", "_http._tcp", "_ssh._tcp"}) {
        std::set<ServiceInstance> instances;
        for (std::size_t i = 0; i < devices; ++i)
            instances.insert(instanceOf(i, type));
        // The last device has one service only.
        if (std::string(type) != "_ssh._tcp")
            instances.erase(instanceOf(devices - 1, type));
        computer.network.setInstances(type, instances);
    }
    computer.scheduler.advance(0ms);

    Costs costs;
    const auto flapping = instanceOf(devices - 1, "_ssh._tcp");
    const auto bytes = readWholeFile(*browser.storageURL()).value_or("");
    for (int i = 0; i < rounds; ++i) {
        costs.take =
            std::min(costs.take, microsecondsOf([&] {
                         i % 2 == 0 ? computer.network.vanish(flapping) : computer.network.announce(flapping);
                     }));
        costs.sort = std::min(costs.sort, microsecondsOf([&] { static_cast<void>(browser.devices()); }));
        costs.write = std::min(costs.write, microsecondsOf([&] { computer.scheduler.advance(5s); }));
        costs.rawWrite = std::min(costs.rawWrite, microsecondsOf([&] {
                                      static_cast<void>(replaceFile(home.path() / "raw.json", bytes));
                                  }));
    }
    return costs;
}

} // namespace
} // namespace nightjar

int main() {
    std::printf("%-10s %14s %14s %14s %22s\n", "devices", "take, us", "sort, us", "write, us",
                "same bytes only, us");
    for (const std::size_t devices : {50U, 500U, 5000U}) {
        const auto costs = nightjar::costsAmong(devices);
        std::printf("%-10zu %14.1f %14.1f %14.1f %22.1f\n", devices, costs.take, costs.sort, costs.write,
                    costs.rawWrite);
    }
}
