// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/bridge/PlayedWorld.h"

#include <gmock/gmock.h>

namespace nightjar::bridge {
namespace {

TEST(ScenarioParser, readsEveryShippedFile) {
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(scenarioFolder)) {
        const auto text = readWholeFile(entry.path());
        ASSERT_TRUE(text);
        const auto scenario = parseScenario(*text);
        EXPECT_TRUE(scenario) << entry.path() << ": " << (scenario ? "" : scenario.error());
        ++count;
    }
    EXPECT_GE(count, 25);
}

TEST(ScenarioParser, takesFieldsAndDefaults) {
    const auto scenario = parseScenario(R"({
        "scenario": 1, "seed": 9, "speed": 2.5,
        "radio": {"node": {"number": 1}, "channels": [{"index": 3, "name": "Three"}], "handshake": 0.5},
        "nodes": [{"number": 2, "longName": "🦊", "hops": 0, "position": {"latitude": 50, "longitude": 4},
                   "movement": {"kind": "parked", "outliers": [{"at": 3, "meters": 300}]}, "every": 60}],
        "chatter": {"script": [{"at": 1, "from": 2, "channel": 3, "text": "Hi"}]},
        "faults": [{"command": "sendText", "count": 2, "do": "late", "seconds": 6}, {"at": 4, "do": "restart"}]})");

    ASSERT_TRUE(scenario) << scenario.error();
    EXPECT_EQ(scenario->speed, 2.5);
    EXPECT_TRUE(scenario->radio.settings.usePreset); // the recommended setup
    ASSERT_EQ(scenario->nodes.size(), 1U);
    const NodePlan& fox = scenario->nodes.front();
    EXPECT_EQ(fox.longName, "🦊");
    EXPECT_EQ(fox.heardSecondsAgo, std::nullopt);
    EXPECT_EQ(std::get<ParkedPlan>(fox.movement).outliers.front().meters, 300);
    EXPECT_EQ(std::get<CommandTrigger>(scenario->faults[0].trigger).count, 2U);
    EXPECT_EQ(std::get<double>(scenario->faults[1].trigger), 4);
}

struct BadPart {
    const char* name;
    const char* replaced;
    const char* by;
    const char* complaint;
};

class ScenarioParserRefuses : public testing::TestWithParam<BadPart> {};

TEST_P(ScenarioParserRefuses, withThePlaceOfTheMistake) {
    std::string text =
        R"({"scenario": 1, "speed": 10, "radio": {"node": {"number": 1}, "channels": [{"index": 0}]},)"
        R"( "nodes": [{"number": 2, "hops": 1, "position": {"latitude": 50, "longitude": 4},)"
        R"( "movement": {"kind": "path", "speed": 2, "way": [[50.1, 4.1]]}, "every": 60}],)"
        R"( "chatter": {"script": [{"at": 1, "from": 2, "text": "Hi"}]},)"
        R"( "replies": [{"text": "Yes", "from": 2}], "faults": [{"command": "connect", "do": "late", "seconds": 1}]})";
    ASSERT_TRUE(parseScenario(text)) << parseScenario(text).error();
    const auto at = text.find(GetParam().replaced);
    ASSERT_NE(at, std::string::npos);
    text.replace(at, std::string_view(GetParam().replaced).size(), GetParam().by);

    const auto scenario = parseScenario(text);

    ASSERT_FALSE(scenario) << text;
    EXPECT_THAT(scenario.error(), testing::HasSubstr(GetParam().complaint));
}

INSTANTIATE_TEST_SUITE_P(
    Parts, ScenarioParserRefuses,
    testing::Values(
        BadPart{"notJson", "1}]}", "1}]", "does not hold valid JSON"},
        BadPart{"noVersion", R"("scenario": 1, )", "", "not valid: scenario is missing."},
        BadPart{"laterVersion", R"("scenario": 1)", R"("scenario": 2)",
                "scenario must be a whole number from 1 to 1."},
        BadPart{"typingError", R"("speed": 10)", R"("sped": 10)", "sped is not a known key here."},
        BadPart{"typingErrorDeep", R"("speed": 2,)", R"("speed": 2, "jitter": 3,)",
                "nodes[0].movement.jitter is not a known key here."},
        BadPart{"wrongType", R"("every": 60)", R"("every": "60")",
                "nodes[0].every must be a number from 0.1 to 604800."},
        BadPart{"outOfRange", R"("hops": 1)", R"("hops": 8)",
                "nodes[0].hops must be a whole number from 0 to 7."},
        BadPart{"realForWhole", R"("hops": 1)", R"("hops": 1.0)", "nodes[0].hops must be a whole number"},
        BadPart{"broadcastNumber", R"("number": 2)", R"("number": 4294967295)", "nodes[0].number must be"},
        BadPart{"sameNumber", R"("number": 2)", R"("number": 1)", "nodes[0].number is used twice."},
        BadPart{"badPlace", "[50.1, 4.1]", "[50.1, 4.1, 2]", "nodes[0].movement.way[0] must be a pair"},
        BadPart{"noWay", "[[50.1, 4.1]]", "[]", "nodes[0].movement.way must name at least one place."},
        BadPart{"unknownKind", R"("path")", R"("teleport")",
                "nodes[0].movement.kind must be one of: parked, path, wander."},
        BadPart{"moveFromNowhere", R"("position": {"latitude": 50, "longitude": 4},)", "",
                "nodes[0].movement needs a position to start from."},
        BadPart{"stranger", R"("from": 2)", R"("from": 77)",
                "chatter.script[0].from is not a node of this file."},
        BadPart{"strangeReplier", R"("Yes", "from": 2)", R"("Yes", "from": 77)",
                "replies[0].from is not a node"},
        BadPart{"noChannel", R"("text": "Hi")", R"("text": "Hi", "channel": 4)",
                "is not a channel of the radio."},
        BadPart{"unknownFault", R"("late")", R"("lat")", "faults[0].do must be one of: error, silence"},
        BadPart{"lateAtTime", R"("command": "connect")", R"("at": 3)",
                "faults[0].do needs a command, not a time."},
        BadPart{"twoTriggers", R"("command": "connect")", R"("at": 3, "command": "connect")",
                "needs either at or command."},
        BadPart{"foreignKey", R"("seconds": 1)", R"("seconds": 1, "code": 3)",
                "faults[0].code is not a known key here."},
        BadPart{"halfSettings", R"("channels")", R"("settings": {"usePreset": true}, "channels")",
                "radio.settings must be a complete settings object"}),
    [](const auto& part) { return part.param.name; });

} // namespace
} // namespace nightjar::bridge
