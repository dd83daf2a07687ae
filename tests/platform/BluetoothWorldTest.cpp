// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/BluetoothWorld.h"
#include "platform/simulated/FakeScheduler.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <set>

namespace nightjar {
namespace {

using namespace std::chrono_literals;

struct Heard {
    double seconds = 0;
    BluetoothAdvertisement advertisement;
    bool operator==(const Heard&) const = default;
};

/// What a radio that scans from the start hears of one device.
std::vector<Heard> heardFrom(const SimulatedPeripheral& peripheral, std::chrono::seconds time,
                             std::uint64_t seed = 7) {
    FakeScheduler scheduler;
    FakeBluetoothCentral central;
    std::vector<Heard> heard;
    central.setListener({.onAdvertisement = [&](const BluetoothAdvertisement& advertisement) {
        heard.push_back({Seconds(scheduler.steadyNow().time_since_epoch()).count(), advertisement});
    }});
    BluetoothWorld world(central, scheduler, {peripheral}, seed);
    world.begin();
    central.scan();
    scheduler.advance(time);
    return heard;
}

double meanStrength(const std::vector<Heard>& heard) {
    const auto sum = std::accumulate(heard.begin(), heard.end(), 0.0, [](double total, const Heard& item) {
        return total + item.advertisement.rssi;
    });
    return sum / static_cast<double>(heard.size());
}

TEST(BluetoothWorldTest, theSignalFallsWithTheDistanceAndIsNeverQuiet) {
    const auto near = heardFrom({.way = {{0, 1}}}, 600s);
    const auto far = heardFrom({.way = {{0, 10}}}, 600s);

    ASSERT_GT(near.size(), 400U);
    EXPECT_NEAR(meanStrength(near), -59, 1.5);
    EXPECT_NEAR(meanStrength(far), -59 - 24, 1.5);
    std::set<int> strengths;
    for (const auto& item : near)
        strengths.insert(item.advertisement.rssi);
    EXPECT_GT(strengths.size(), 6U);
}

TEST(BluetoothWorldTest, whatIsCarriedAwayFallsSilentAndReturnsEachRound) {
    const SimulatedPeripheral keys{
        .name = "Keys", .way = {{8, 2}, {14, 90}, {44, 90}, {50, 2}}, .waySeconds = 300, .interval = 500ms};

    const auto heard = heardFrom(keys, 900s);

    std::set<int> roundsHeard;
    for (const auto& item : heard) {
        const double second = std::fmod(item.seconds, 300);
        roundsHeard.insert(static_cast<int>(item.seconds / 300));
        EXPECT_FALSE(second > 14 && second < 44) << item.seconds;
    }
    EXPECT_EQ(roundsHeard.size(), 3U);
}

TEST(BluetoothWorldTest, aRotatingAddressLooksLikeOneDeviceAfterAnother) {
    const auto heard = heardFrom({.newAddressEvery = 90s}, 900s);

    std::vector<Uuid> order;
    for (const auto& item : heard) {
        if (order.empty() || order.back() != item.advertisement.peripheral)
            order.push_back(item.advertisement.peripheral);
    }
    EXPECT_GE(order.size(), 9U);
    EXPECT_EQ(std::set<Uuid>(order.begin(), order.end()).size(), order.size());
}

TEST(BluetoothWorldTest, theSameSeedGivesTheSameWorld) {
    const SimulatedPeripheral peripheral{.name = "Lamp", .way = {{0, 3}}};
    EXPECT_EQ(heardFrom(peripheral, 60s, 1), heardFrom(peripheral, 60s, 1));
    EXPECT_NE(heardFrom(peripheral, 60s, 1), heardFrom(peripheral, 60s, 2));
}

} // namespace
} // namespace nightjar
