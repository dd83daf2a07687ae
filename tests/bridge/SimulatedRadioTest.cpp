// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/bridge/PlayedWorld.h"

#include "core/bridge/BridgeJson.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <ranges>
#include <set>

namespace nightjar::bridge {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Event = MeshtasticBridgeEvent;
using Lines = std::vector<MeshtasticBridgeResponse>;

constexpr std::uint32_t fox = 2684354562;

std::vector<Event> eventsOf(const Lines& lines) {
    std::vector<Event> events;
    for (const auto& line : lines)
        events.push_back(line.event);
    return events;
}

TEST(SimulatedRadio, tellsItselfInAnOrderThatAClientCanUse) {
    PlayedWorld world(scenarioNamed("quiet"));
    const Uuid request = world.connect();
    const Lines lines = world.take();

    EXPECT_THAT(eventsOf(lines), ElementsAre(Event::connected, Event::localNode, Event::channel, Event::node,
                                             Event::node, Event::radioSettings));
    EXPECT_EQ(lines[0].requestID, request);
    EXPECT_EQ(lines[0].port, "/ports/radio");
    EXPECT_EQ(lines[3].node->number, lines[1].localNodeID);
    for (const auto& line : lines | std::views::drop(1))
        EXPECT_FALSE(line.requestID);
    EXPECT_FALSE(world.waits().due) << "nothing more is going to happen";
}

TEST(SimulatedRadio, handshakeAndAnswersTakeTheirTime) {
    auto scenario = scenarioNamed("quiet");
    scenario.radio.handshakeSeconds = 2;
    scenario.radio.answerSeconds = 0.5;
    PlayedWorld world(scenario);
    world.connect();
    world.advance(Seconds{1.9});
    EXPECT_THAT(world.take(), IsEmpty());
    world.advance(Seconds{0.1});
    EXPECT_FALSE(world.take().empty());

    const Uuid request = world.readSettings();
    EXPECT_THAT(world.take(), IsEmpty());
    world.advance(Seconds{0.5});
    const auto answers = answersTo(request, world.take());
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers[0].settings, scenario.radio.settings);
}

TEST(SimulatedRadio, sendsTextsAndLetsTheMeshReply) {
    PlayedWorld world(scenarioNamed("echo"));
    world.connect();
    std::ignore = world.take();

    const Uuid everyone = world.sendText("anybody?");
    const Lines lines = world.take();
    const auto answers = answersTo(everyone, lines);
    ASSERT_EQ(answers.size(), 1U);
    EXPECT_EQ(answers[0].event, Event::sent);
    EXPECT_NE(answers[0].packetID.value_or(0), 0U);
    const auto reply = std::ranges::find(lines, Event::message, &MeshtasticBridgeResponse::event);
    ASSERT_NE(reply, lines.end());
    EXPECT_EQ(reply->message->text, "Echo: anybody?");
    EXPECT_EQ(reply->message->recipient, broadcastNodeNumber);
    EXPECT_FALSE(reply->message->isOutgoing);

    world.sendText("psst", fox);
    const Lines direct = world.take();
    const auto answer = std::ranges::find(direct, Event::message, &MeshtasticBridgeResponse::event);
    ASSERT_NE(answer, direct.end());
    EXPECT_EQ(answer->message->sender, fox);
    EXPECT_NE(answer->message->recipient, broadcastNodeNumber);

    world.sendText("nobody lives there", 4711);
    EXPECT_THAT(eventsOf(world.take()), ElementsAre(Event::sent));
}

TEST(SimulatedRadio, refusesTextsThatTheMeshCannotCarry) {
    PlayedWorld world(scenarioNamed("echo"));
    world.connect();
    std::ignore = world.take();

    world.sendText(std::string(231, 'x'));
    const Lines tooLong = world.take();
    ASSERT_THAT(eventsOf(tooLong), ElementsAre(Event::error));
    EXPECT_EQ(tooLong[0].error, "The text is too long for the mesh: 231 of at most 230 bytes.");
    world.sendText("hello", {}, 5);
    EXPECT_EQ(world.take().at(0).error, "The radio has no channel 5.");
}

TEST(SimulatedRadio, keepsWhatItWasToldAndCorrectsThePower) {
    PlayedWorld world(scenarioNamed("restart-after-apply"));
    world.connect();
    std::ignore = world.take();
    MeshtasticRadioSettings wanted;
    applyRecommendedSetup(wanted);
    wanted.hopLimit = 6;
    wanted.txPower = 30;

    const Uuid applied = world.applySettings(wanted);
    EXPECT_EQ(answersTo(applied, world.take()).at(0).event, Event::sent);
    world.advance(Seconds{3});
    const Uuid request = world.readSettings();

    wanted.txPower = 27;
    EXPECT_EQ(answersTo(request, world.take()).at(0).settings, wanted);
}

TEST(SimulatedRadio, tellsTheSamePositionsAgainAfterARestart) {
    PlayedWorld world(scenarioNamed("restart-after-apply"));
    world.connect();
    const auto before = nodesIn(world.take(), fox).at(0);

    world.applySettings({});
    std::ignore = world.take();
    world.advance(Seconds{0.3}); // restarting
    EXPECT_EQ(world.take().at(0).status, "Radio is restarting…");
    const Uuid during = world.readSettings();
    EXPECT_THAT(world.take(), IsEmpty());
    world.advance(Seconds{0.3});

    const Lines after = world.take();
    EXPECT_EQ(after.at(0).status, "Connected");
    EXPECT_THAT(nodesIn(after, fox), ElementsAre(before));
    EXPECT_EQ(answersTo(during, after).size(), 1U);
}

TEST(SimulatedRadio, hearsNothingOfTheMeshWhileItRestarts) {
    auto scenario = scenarioNamed("echo");
    scenario.nodes[0].reportWorldSeconds = 1;
    scenario.radio.restart = {.afterSeconds = 0, .lastsSeconds = 30};
    PlayedWorld world(scenario);
    world.connect();
    world.advance(Seconds{5});
    EXPECT_GE(nodesIn(world.take(), fox).size(), 4U);
    world.applySettings({});
    std::ignore = world.take();
    world.advance(Seconds{29});
    EXPECT_THAT(nodesIn(world.take(), fox), IsEmpty());
    world.advance(Seconds{5});
    EXPECT_GE(nodesIn(world.take(), fox).size(), 3U);
}

TEST(SimulatedRadio, isStillAfterDisconnect) {
    PlayedWorld world(scenarioNamed("demo"));
    world.connect();
    world.advance(Seconds{5});
    std::ignore = world.take();

    const Uuid request = world.disconnect();
    world.advance(Seconds{60});

    const Lines lines = world.take();
    ASSERT_THAT(eventsOf(lines), ElementsAre(Event::ready));
    EXPECT_EQ(lines[0].requestID, request);
    EXPECT_FALSE(world.waits().due);
}

/// Everything but the dates.
std::string blurred(Lines lines) {
    std::string text;
    for (auto& line : lines) {
        line.requestID.reset();
        if (line.node && line.node->lastSeen)
            line.node->lastSeen = Date{};
        if (line.node && line.node->position)
            line.node->position->timestamp = Date{};
        if (line.message)
            line.message->timestamp = Date{};
        text += encodeLine(line).value_or("?\n");
    }
    return text;
}

std::string played(std::uint64_t seed, Seconds step, Date start) {
    auto scenario = scenarioNamed("demo");
    scenario.seed = seed;
    PlayedWorld world(scenario, start);
    world.connect();
    for (Seconds passed{0}; passed < Seconds{120}; passed += step)
        world.advance(step);
    return blurred(world.take());
}

TEST(SimulatedRadio, sameSeedGivesTheSameWorldHoweverOftenItIsLookedAt) {
    const Date one = dateFromUnixSeconds(1'790'000'000.125);
    const Date other = dateFromUnixSeconds(1'555'555'555.875);

    const auto first = played(7, Seconds{0.125}, one);
    EXPECT_EQ(first, played(7, Seconds{60}, other));
    EXPECT_NE(first, played(8, Seconds{60}, one));
}

TEST(SimulatedRadio, withoutASeedAnotherConnectionHasOtherIdentities) {
    PlayedWorld first(scenarioNamed("quiet"));
    PlayedWorld second(scenarioNamed("quiet"));
    first.connect();
    second.connect();
    EXPECT_NE(nodesIn(first.take(), fox).at(0).position->id, nodesIn(second.take(), fox).at(0).position->id);
}

TEST(SimulatedRadio, newFixesAlwaysHaveLaterWholeSecondDatesThatAreNotAheadOfTheClock) {
    PlayedWorld world(scenarioNamed("demo"));
    world.connect();
    world.advance(Seconds{300});

    std::map<std::uint32_t, MeshPosition> last;
    std::set<Uuid> seen;
    for (const auto& node : nodesIn(world.take())) {
        if (!node.position)
            continue;
        const MeshPosition& fix = *node.position;
        const double seconds = fix.timestamp.time_since_epoch().count();
        EXPECT_EQ(seconds, std::floor(seconds));
        EXPECT_LE(fix.timestamp, world.date());
        const auto before = last.find(node.number);
        if (before != last.end() && before->second.id == fix.id) {
            EXPECT_EQ(before->second, fix);
        } else {
            EXPECT_TRUE(seen.insert(fix.id).second);
            EXPECT_TRUE(before == last.end() || before->second.timestamp < fix.timestamp);
        }
        last[node.number] = fix;
    }
    EXPECT_GE(last.size(), 19U);
}

TEST(SimulatedRadio, standsStillWithoutRoomAndLosesNothing) {
    PlayedWorld stalled(scenarioNamed("demo"));
    PlayedWorld fluent(scenarioNamed("demo"));
    stalled.connect();
    fluent.connect();

    stalled.room = false;
    stalled.advance(Seconds{100});
    EXPECT_THAT(stalled.take(), IsEmpty());
    stalled.room = true;
    stalled.advance(Seconds{0});
    fluent.advance(Seconds{100});
    // Dates included: a fix that waited in the pipe was nevertheless made when it was made.
    auto expected = fluent.take();
    auto actual = stalled.take();
    std::erase_if(expected, [](const auto& line) { return line.requestID.has_value(); });
    std::erase_if(actual, [](const auto& line) { return line.requestID.has_value(); });
    EXPECT_GT(actual.size(), 200U);
    EXPECT_EQ(actual, expected);
}

} // namespace
} // namespace nightjar::bridge
