// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// What an advertisement costs the main thread, in a quiet place and in a crowd, and what a day in a crowd
// costs.

#include "app/bluetooth/BluetoothTrackerManager.h"
#include "platform/simulated/SimulatedComputer.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <random>
#include <string>
#include <vector>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using SteadyClock = std::chrono::steady_clock;

double nanoseconds(SteadyClock::duration time) {
    return std::chrono::duration<double, std::nano>(time).count();
}

/// Megabytes that the process holds.
double residentMegabytes() {
    std::ifstream status("/proc/self/statm");
    double total = 0;
    double resident = 0;
    status >> total >> resident;
    return resident * 4096 / 1e6;
}

struct Computer : SimulatedComputer {
    Computer() { bluetooth.setState(BluetoothRadioState::poweredOn); }

    BluetoothTrackerManager manager{services()};
};

/// Every second one has a name, as in a busy street.
BluetoothAdvertisement advertisementOf(std::mt19937_64& random) {
    BluetoothAdvertisement advertisement{.peripheral = {}, .rssi = -70};
    for (auto& byte : advertisement.peripheral.bytes)
        byte = static_cast<std::uint8_t>(random());
    if (random() % 2 == 0)
        advertisement.localName = "Headphones " + std::to_string(random() % 1000);
    return advertisement;
}

struct Costs {
    double throttled = 0;
    double processed = 0;
    double inFinder = 0;
};

/// Nanoseconds for each advertisement, of known devices in random order.
Costs costsAmong(std::size_t devices) {
    constexpr std::size_t rounds = 7;
    constexpr std::size_t advertisements = 200'000;
    Computer computer;
    std::mt19937_64 random(1);
    std::vector<BluetoothAdvertisement> known;
    computer.manager.startScanning();
    for (std::size_t i = 0; i < devices; ++i)
        computer.bluetooth.hear(known.emplace_back(advertisementOf(random)));

    // What waits to be sent is prepared, as a radio would hand it over: the list itself is not what is
    // measured.
    std::vector<BluetoothAdvertisement> sent;
    for (std::size_t i = 0; i < advertisements; ++i) {
        sent.push_back(known[random() % known.size()]);
        sent.back().rssi = -40 - static_cast<int>(random() % 50);
    }
    // The least of the rounds: other programs can only make one longer.
    const auto least = [&](std::size_t step) {
        std::vector<double> costs;
        for (std::size_t round = 0; round < rounds; ++round) {
            SteadyClock::duration time{};
            for (std::size_t i = 0; i < advertisements; i += step) {
                if (step < advertisements)
                    computer.scheduler.advance(2s);
                const auto end = std::min(i + step, advertisements);
                const auto start = SteadyClock::now();
                for (auto j = i; j < end; ++j)
                    computer.bluetooth.hear(sent[j]);
                time += SteadyClock::now() - start;
            }
            costs.push_back(nanoseconds(time) / advertisements);
        }
        return std::ranges::min(costs);
    };

    Costs costs;
    costs.throttled = least(advertisements);
    costs.processed = least(std::max<std::size_t>(devices / 20, 5));
    computer.manager.startFinding(known.front().peripheral);
    costs.inFinder = least(advertisements);
    return costs;
}

void measureHandler() {
    const Costs few = costsAmong(100);
    const Costs many = costsAmong(100'000);
    std::printf("%-34s %12s %14s %7s\n", "ns for each advertisement", "100 devices", "100000 devices",
                "ratio");
    const auto row = [](const char* name, double a, double b) {
        std::printf("%-34s %12.0f %14.0f %7.2f\n", name, a, b, b / a);
    };
    row("ignored (heard within 2 s)", few.throttled, many.throttled);
    row("processed", few.processed, many.processed);
    row("in the finder (all processed)", few.inFinder, many.inFinder);
}

/// A day in a station hall: 40 addresses a second that were never heard before.
void measureDay() {
    constexpr int newASecond = 40;
    constexpr int seconds = 24 * 3600;
    Computer computer;
    std::mt19937_64 random(2);
    computer.manager.startScanning();
    const double before = residentMegabytes();
    SteadyClock::duration total{};
    SteadyClock::duration longest{};
    const auto timed = [&](auto&& call) {
        const auto start = SteadyClock::now();
        call();
        const auto time = SteadyClock::now() - start;
        longest = std::max(longest, time);
        return time;
    };
    for (int second = 0; second < seconds; ++second) {
        computer.scheduler.advance(1s);
        for (int i = 0; i < newASecond; ++i) {
            const auto advertisement = advertisementOf(random);
            total += timed([&] { computer.bluetooth.hear(advertisement); });
        }
    }
    const auto heard = static_cast<double>(computer.manager.devices().size());
    const double held = residentMegabytes() - before;
    std::printf("\na day with %d new addresses a second: %.0f devices\n", newASecond, heard);
    std::printf("%-34s %12.0f\n", "ns for each new address", nanoseconds(total) / heard);
    std::printf("%-34s %12.2f\n", "longest single call, ms", nanoseconds(longest) / 1e6);
    std::printf("%-34s %12.0f\n", "bytes for each device", held * 1e6 / heard);
    std::printf("%-34s %12.0f\n", "megabytes", held);

    longest = {};
    const auto clearing = timed([&] { computer.manager.startScanning(); });
    std::printf("%-34s %12.2f\n", "a new scan clears the list, ms", nanoseconds(clearing) / 1e6);
    longest = {};
    for (int i = 0; i < 90 * 50; ++i)
        timed([&] { computer.scheduler.advance(20ms); });
    std::printf("%-34s %12.2f\n", "longest step of letting go, ms", nanoseconds(longest) / 1e6);
}

} // namespace
} // namespace nightjar

int main() {
    nightjar::measureHandler();
    nightjar::measureDay();
}
