// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/bridge/PlayedWorld.h"

#include "core/mesh/BicycleMovementDetector.h"

#include <algorithm>
#include <set>

namespace nightjar::bridge {
namespace {

constexpr std::uint32_t bicycle = 2684354564;
constexpr double radius = 75;

TEST(DemoWorld, showsEveryKindOfNode) {
    PlayedWorld world(scenarioNamed("demo"));
    world.connect();
    world.advance(Seconds{0.5});
    const auto nodes = nodesIn(world.take());
    const auto count = [&](auto property) { return std::ranges::count_if(nodes, property); };
    const auto now = world.date();
    using Kind = MeshNodeReachability::Kind;

    EXPECT_EQ(nodes.size(), 24U);
    EXPECT_EQ(count([](const MeshNode& node) { return node.longName.empty(); }), 2);
    EXPECT_GE(count([](const MeshNode& node) { return node.longName.find("\xF0\x9F") != std::string::npos; }),
              3);
    EXPECT_EQ(count([](const MeshNode& node) { return !node.lastSeen; }), 1);
    EXPECT_EQ(count([&](const MeshNode& node) { return node.reachability(now).kind == Kind::stale; }), 3);
    EXPECT_EQ(count([&](const MeshNode& node) {
                  return node.reachability(now) == MeshNodeReachability::mesh(std::nullopt);
              }),
              1);
    EXPECT_GE(count([](const MeshNode& node) { return !node.position; }), 3);
}

TEST(DemoWorld, talksAndItsBatteriesFall) {
    PlayedWorld world(scenarioNamed("demo"));
    world.connect();
    world.advance(Seconds{60});
    const auto lines = world.take();

    std::set<std::uint32_t> channels;
    bool direct = false;
    for (const auto& line : lines) {
        if (!line.message)
            continue;
        channels.insert(line.message->channel);
        direct |= line.message->recipient != broadcastNodeNumber;
    }
    EXPECT_EQ(channels.size(), 3U);
    EXPECT_TRUE(direct);
    const auto runner = nodesIn(lines, 2684354575);
    ASSERT_GE(runner.size(), 5U);
    EXPECT_LT(runner.back().batteryLevel, runner.front().batteryLevel);
}

/// What a guard sees that was armed at the bicycle's first fix.
struct Watched {
    Seconds after;
    BicycleMovementResult result;
};

std::vector<Watched> watchBicycle(Scenario scenario) {
    PlayedWorld world(std::move(scenario));
    BicycleMovementDetector detector;
    std::optional<MeshPosition> marked;
    std::optional<Uuid> last;
    std::vector<Watched> watched;
    world.connect();
    for (Seconds passed{0}; passed < Seconds{60}; passed += Seconds{0.25}) {
        for (const auto& node : nodesIn(world.take(), bicycle)) {
            if (std::exchange(last, node.position->id) == node.position->id)
                continue;
            if (marked)
                watched.push_back({passed, detector.evaluate(*node.position, *marked, radius)});
            else
                marked = node.position;
        }
        world.advance(Seconds{0.25});
    }
    return watched;
}

TEST(DemoWorld, bicycleGivesOneFalseStartAndThenReallyMoves) {
    auto scenario = scenarioNamed("demo");
    const auto plan = std::ranges::find(scenario.nodes, bicycle, &NodePlan::number);
    ASSERT_NE(plan, scenario.nodes.end());
    const Seconds ride{std::get<ParkedPlan>(plan->movement).rides.at(0).worldSeconds / scenario.speed};

    for (std::uint64_t seed = 1; seed <= 200; ++seed) {
        SCOPED_TRACE(seed);
        scenario.seed = seed;
        int confirming = 0;
        std::size_t beforeRide = 0;
        std::optional<Seconds> moved;
        const auto watched = watchBicycle(scenario);
        for (const auto& [after, result] : watched) {
            EXPECT_FALSE(std::holds_alternative<BicycleMovement::Ignored>(result));
            if (std::holds_alternative<BicycleMovement::Moved>(result) && !moved)
                moved = after;
            if (after >= ride)
                continue;
            ++beforeRide;
            confirming += std::holds_alternative<BicycleMovement::Confirming>(result);
        }
        EXPECT_GE(beforeRide, 6U);
        EXPECT_EQ(confirming, 1);
        ASSERT_TRUE(moved);
        EXPECT_GT(*moved, ride);
        EXPECT_LT(*moved, Seconds{45});
    }
}

} // namespace
} // namespace nightjar::bridge
