// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/bridge/PlayedWorld.h"

#include "core/bridge/BridgeJson.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>

namespace nightjar::bridge {
namespace {

using testing::IsEmpty;
using testing::SizeIs;
using Event = MeshtasticBridgeEvent;

TEST(ScriptedFaults, lateAnswersComeLateAndOnlyOnce) {
    PlayedWorld world(scenarioNamed("late-answer"));
    world.connect();
    const Uuid first = world.sendText("one");
    const Uuid second = world.sendText("two");
    EXPECT_THAT(answersTo(second, world.take()), SizeIs(1));
    world.advance(Seconds{5.9});
    EXPECT_THAT(world.take(), IsEmpty());
    world.advance(Seconds{0.1});
    EXPECT_THAT(answersTo(first, world.take()), SizeIs(1));
}

TEST(ScriptedFaults, silenceOnConnectStartsNoWorld) {
    PlayedWorld world(scenarioNamed("silent-connect"));
    world.connect();
    world.advance(Seconds{100});
    EXPECT_THAT(world.take(), IsEmpty());
    EXPECT_FALSE(world.waits().due);
}

TEST(ScriptedFaults, silenceLaterMeansNoLineAnyMore) {
    PlayedWorld world(scenarioNamed("silent-later"));
    world.connect();
    world.advance(Seconds{2});
    EXPECT_FALSE(world.take().empty());
    world.sendText("hello?");
    world.advance(Seconds{100});
    EXPECT_THAT(world.take(), IsEmpty());
}

TEST(ScriptedFaults, answersTwiceButDoesTheThingOnce) {
    PlayedWorld world(scenarioNamed("double-answer"));
    const Uuid request = world.connect();
    const auto lines = world.take();
    EXPECT_THAT(answersTo(request, lines), SizeIs(2));
    EXPECT_THAT(nodesIn(lines), SizeIs(2));
    const Uuid applied = world.applySettings({});
    world.advance(Seconds{10});
    const auto after = world.take();
    EXPECT_THAT(answersTo(applied, after), SizeIs(2));
    EXPECT_EQ(std::ranges::count(after, Event::status, &MeshtasticBridgeResponse::event), 2) << "one restart";
}

TEST(ScriptedFaults, refusedSettingsAreNotTaken) {
    PlayedWorld world(scenarioNamed("refuses-settings"));
    world.connect();
    const auto before = world.take().back().settings;
    const Uuid applied = world.applySettings({});
    const Uuid read = world.readSettings();
    world.advance(Seconds{10});
    const auto lines = world.take();
    EXPECT_EQ(answersTo(applied, lines).at(0).error, "The radio is in managed mode and takes no settings.");
    EXPECT_EQ(answersTo(read, lines).at(0).settings, before);
    EXPECT_THAT(lines, SizeIs(2)) << "and it does not restart";
}

TEST(ScriptedFaults, answersWithoutTheFieldsThatMatter) {
    PlayedWorld world(scenarioNamed("incomplete-answer"));
    world.connect();
    const Uuid text = world.sendText("hello");
    const Uuid settings = world.readSettings();
    const auto lines = world.take();
    EXPECT_EQ(answersTo(text, lines).at(0).event, Event::sent);
    EXPECT_FALSE(answersTo(text, lines).at(0).packetID);
    EXPECT_EQ(answersTo(settings, lines).at(0).event, Event::radioSettings);
    EXPECT_FALSE(answersTo(settings, lines).at(0).settings);

    PlayedWorld portless(scenarioNamed("incomplete-connect"));
    const Uuid request = portless.connect();
    EXPECT_FALSE(answersTo(request, portless.take()).at(0).port);
}

TEST(ScriptedFaults, aRadioThatWasPulledOutStaysQuiet) {
    PlayedWorld world(scenarioNamed("disconnects"));
    world.connect();
    std::ignore = world.take();
    world.advance(Seconds{50});
    const auto lines = world.take();
    ASSERT_THAT(lines, SizeIs(1));
    EXPECT_EQ(lines[0].event, Event::disconnected);
    EXPECT_EQ(lines[0].status, "The radio was unplugged");
}

TEST(ScriptedFaults, nothingComesAfterAnExit) {
    PlayedWorld without(scenarioNamed("exit-on-send"));
    without.connect();
    std::ignore = without.take();
    without.sendText("hello");
    EXPECT_THAT(without.take(), IsEmpty());
    EXPECT_EQ(without.mischief.exitCode, 3);

    PlayedWorld with(scenarioNamed("exit-after-send"));
    with.connect();
    std::ignore = with.take();
    with.sendText("hello");
    EXPECT_THAT(with.take(), SizeIs(1));
    EXPECT_EQ(with.mischief.exitCode, 0);
}

TEST(ScriptedFaults, noGarbageLineIsAResponse) {
    auto decoder = makeBridgeDecoder();
    std::string_view rest = garbageLines();
    int count = 0;
    while (!rest.empty()) {
        const auto end = rest.find('\n');
        EXPECT_FALSE(decoder.decode<MeshtasticBridgeResponse>(rest.substr(0, end))) << rest.substr(0, end);
        rest.remove_prefix(end + 1);
        ++count;
    }
    EXPECT_GE(count, 12);
}

TEST(ScriptedFaults, floodGivesEachNodeItsTurnWithNewFixesInOrder) {
    PlayedWorld world(scenarioNamed("flood-positions"));
    world.connect();
    world.advance(Seconds{0});

    auto decoder = makeBridgeDecoder();
    std::map<std::uint32_t, std::vector<MeshPosition>> fixes;
    std::string_view rest = world.mischief.raw;
    for (std::size_t end = 0; (end = rest.find('\n')) != std::string_view::npos;
         rest.remove_prefix(end + 1)) {
        const auto line = decoder.decode<MeshtasticBridgeResponse>(rest.substr(0, end));
        ASSERT_TRUE(line && line->node && line->node->position) << rest.substr(0, end);
        EXPECT_EQ(line->node->lastSeen, line->node->position->timestamp);
        fixes[line->node->number].push_back(*line->node->position);
    }
    EXPECT_TRUE(rest.empty());
    ASSERT_EQ(fixes.size(), 250U);
    for (const auto& [number, list] : fixes) {
        ASSERT_EQ(list.size(), 80U);
        for (std::size_t i = 1; i < list.size(); ++i) {
            EXPECT_LT(list[i - 1].timestamp, list[i].timestamp);
            EXPECT_NE(list[i - 1].id, list[i].id);
        }
        EXPECT_LE(list.back().timestamp, world.date());
    }
    EXPECT_EQ(world.take().back().status, "The flood is over");
}

} // namespace
} // namespace nightjar::bridge
