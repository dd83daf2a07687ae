// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/JsonLinesSession.h"
#include "tests/headless/StandIn.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

namespace nightjar::headless {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

MeshNode node(std::uint32_t number, std::string name) {
    MeshNode result;
    result.number = number;
    result.longName = std::move(name);
    result.shortName = "s";
    result.hardware = "h";
    return result;
}

MeshMessage message(std::uint8_t id, std::string text) {
    MeshMessage result;
    result.text = std::move(text);
    result.id.bytes[15] = id;
    return result;
}

class JsonLinesSessionTest : public testing::Test {
protected:
    void startQuietly() {
        session.start();
        output.lines.clear();
    }
    static void turn() { QCoreApplication::processEvents(); }
    std::vector<std::string> answersTo(std::string_view line) {
        session.handle(line);
        return output.take();
    }

    StandIn controller;
    KeptLines output;
    std::vector<ControllerTable> tables = [this] {
        std::vector<ControllerTable> all;
        all.push_back(standInTable(controller));
        return all;
    }();
    JsonLinesSession session{std::move(tables), output};
};

TEST_F(JsonLinesSessionTest, printsEveryPublishedFieldOnceAtTheStartAndRecordsOneByOne) {
    controller.setNodes({node(7, "Fox")});
    controller.receive(message(1, "hi"));

    session.start();

    EXPECT_THAT(
        output.lines,
        ElementsAre(
            R"({"type":"published","controller":"StandIn","field":"status","value":"idle"})",
            R"({"type":"published","controller":"StandIn","field":"radius","value":75})",
            R"({"type":"published","controller":"StandIn","field":"recipient","value":null})",
            R"({"type":"published","controller":"StandIn","field":"profile","value":"general"})",
            R"({"type":"element","controller":"StandIn","field":"nodes","id":7,"value":)"
            R"({"number":7,"longName":"Fox","shortName":"s","hardware":"h"}})",
            R"({"type":"element","controller":"StandIn","field":"messages","id":"00000000-0000-0000-0000-000000000001",)"
            R"("value":{"id":"00000000-0000-0000-0000-000000000001","packetID":0,"sender":0,"recipient":0,"channel":0,)"
            R"("text":"hi","timestamp":"2001-01-01T00:00:00Z","isOutgoing":false}})"));
}

TEST_F(JsonLinesSessionTest, aTurnPrintsTheLastValueOnceAndNothingForAValueThatCameBack) {
    startQuietly();
    controller.setStatus("one");
    controller.setRadius(100);
    controller.setStatus("two");
    controller.setRadius(75);
    EXPECT_THAT(output.lines, IsEmpty());

    turn();

    EXPECT_THAT(output.take(), ElementsAre(HasSubstr(R"("field":"status","value":"two")")));
}

TEST_F(JsonLinesSessionTest, listsTellWhatWasAddedChangedAndRemoved) {
    controller.setNodes({node(1, "a"), node(2, "b"), node(3, "c")});
    startQuietly();

    controller.setNodes({node(4, "new"), node(3, "changed"), node(1, "a")});
    turn();

    EXPECT_THAT(output.take(), ElementsAre(HasSubstr(R"("id":4,"value":{)"),
                                           HasSubstr(R"("id":3,"value":{"number":3,"longName":"changed")"),
                                           HasSubstr(R"("id":2,"value":null)")));
}

TEST_F(JsonLinesSessionTest, anAppendedListTellsOnlyItsNewRecordsAndAlsoItsReplacement) {
    controller.setMessages({message(1, "one"), message(2, "two")});
    startQuietly();

    controller.receive(message(3, "three"));
    turn();
    EXPECT_THAT(output.take(), ElementsAre(HasSubstr("three")));

    controller.setMessages({message(9, "nine"), message(2, "two")});
    turn();
    EXPECT_THAT(output.take(), ElementsAre(HasSubstr(R"(0001","value":null)"),
                                           HasSubstr(R"(0003","value":null)"), HasSubstr("nine")));
}

TEST_F(JsonLinesSessionTest, aSlowReaderGetsTheLatestValuesOfAllAndNoAnswerIsLost) {
    startQuietly();
    output.room = 0;
    for (std::uint32_t i = 1; i <= 50; ++i) {
        controller.setStatus("status " + std::to_string(i));
        controller.setNodes({node(1, "name " + std::to_string(i)), node(i + 1, "other")});
        controller.receive(message(static_cast<std::uint8_t>(i), "text"));
        turn();
    }
    session.handle(R"({"controller":"StandIn","operation":"refresh","id":1})");
    session.tell({.identifier = "a", .title = "t", .body = "b", .sound = NotificationSound::critical});
    EXPECT_THAT(
        output.take(),
        ElementsAre(R"({"type":"done","id":1})",
                    R"({"type":"notification","identifier":"a","title":"t","body":"b","sound":"critical"})"));

    // The reader takes three lines at a time.
    output.room = 3;
    std::vector<std::string> printed;
    for (int i = 0; i < 100; ++i) {
        session.flush();
        for (auto& line : output.take())
            printed.push_back(std::move(line));
    }

    ASSERT_THAT(printed, SizeIs(1 + 2 + 50));
    EXPECT_THAT(printed[0], HasSubstr("status 50"));
    EXPECT_THAT(printed[1], HasSubstr("name 50"));
    EXPECT_THAT(printed[2], HasSubstr(R"("id":51)"));
    EXPECT_THAT(printed.back(), HasSubstr("000000000032"));
}

TEST_F(JsonLinesSessionTest, aLongListDoesNotStarveTheOtherFields) {
    startQuietly();
    output.room = 2;
    for (std::uint8_t i = 1; i <= 100; ++i)
        controller.receive(message(i, "text"));
    controller.setStatus("late");
    turn();
    output.lines.clear();

    session.flush();

    EXPECT_THAT(output.lines[0], HasSubstr("late"));
}

TEST_F(JsonLinesSessionTest, operationsAreCalledWithTheirArguments) {
    startQuietly();
    EXPECT_THAT(answersTo(R"({"controller":"StandIn","operation":"refresh"})"),
                ElementsAre(R"({"type":"done"})"));
    EXPECT_EQ(controller.refreshes, 1);

    EXPECT_THAT(
        answersTo(R"({"controller":"StandIn","operation":"connect","arguments":["/dev/x"],"id":"a"})"),
        ElementsAre(R"({"type":"done","id":"a"})"));
    EXPECT_EQ(controller.connectedTo, "/dev/x");
    session.handle(R"({"controller":"StandIn","operation":"connect","arguments":[]})");
    EXPECT_EQ(controller.connectedTo, "the selected one");
    output.lines.clear();

    EXPECT_THAT(
        answersTo(R"({"controller":"StandIn","operation":"displayName","arguments":[4294967295],"id":5})"),
        ElementsAre(R"({"type":"value","id":5,"value":"node 4294967295"})"));
}

TEST_F(JsonLinesSessionTest, fieldsAreReadAndSet) {
    startQuietly();
    controller.setNodes({node(2, "b"), node(1, "a")});
    EXPECT_THAT(answersTo(R"({"controller":"StandIn","get":"channels","id":1})"),
                ElementsAre(R"({"type":"value","id":1,"value":{"0":"Primary"}})"));
    EXPECT_THAT(answersTo(R"({"controller":"StandIn","get":"nodes"})"),
                ElementsAre(HasSubstr(R"("value":[{"number":2,)")));

    EXPECT_THAT(answersTo(R"({"controller":"StandIn","set":"radius","value":100,"id":2})"),
                ElementsAre(R"({"type":"done","id":2})"));
    EXPECT_EQ(controller.radius(), 100);
    session.handle(R"({"controller":"StandIn","set":"recipient","value":7})");
    EXPECT_EQ(controller.recipient(), 7);
    session.handle(R"({"controller":"StandIn","set":"recipient","value":null})");
    EXPECT_EQ(controller.recipient(), std::nullopt);
    session.handle(R"({"controller":"StandIn","set":"profile","value":"bicycle"})");
    EXPECT_EQ(controller.profile(), GuardProfile::bicycle);
}

TEST_F(JsonLinesSessionTest, theIdComesBackAsItWasWritten) {
    startQuietly();
    const std::vector<std::string> ids{
        "null", "18446744073709551615", "1.0", R"("a\/b")", R"({"deep":[1,{"id":"]}"}]})", "[ ]", "false"};
    for (const auto& id : ids) {
        const auto line =
            R"({"arguments":[{"id":3}],"id" : )" + id + R"( ,"controller":"StandIn","get":"nothing"})";
        EXPECT_THAT(answersTo(line),
                    ElementsAre(HasSubstr(R"({"type":"refused","id":)" + id + R"(,"reason":)")));
    }
    EXPECT_THAT(answersTo(R"({"\u0069d":4,"controller":"StandIn","operation":"refresh"})"),
                ElementsAre(R"({"type":"done","id":4})"));
}

TEST_F(JsonLinesSessionTest, whateverMakesNoSenseIsRefusedWithItsReason) {
    startQuietly();
    const std::vector<std::pair<std::string, std::string>> cases{
        {"", "The line is not JSON."},
        {"hello", "The line is not JSON."},
        {R"({"id":1)", "The line is not JSON."},
        {"{\"id\":\"\xff\"}", "The line is not JSON."},
        {std::string(1000, '['), "The line is not JSON."},
        {"[1]", "The line is not a JSON object."},
        {"{}", R"(The line names no \"controller\".)"},
        {R"({"controller":1,"get":"status"})", R"(\"controller\" takes a text.)"},
        {R"({"controller":"Nobody","get":"status"})", R"(There is no controller \"Nobody\".)"},
        {R"({"controller":"StandIn"})", R"(The line holds none of \"operation\", \"set\" and \"get\".)"},
        {R"({"controller":"StandIn","get":"status","set":"radius"})",
         R"(The line must hold only one of \"operation\", \"set\" and \"get\".)"},
        {R"({"controller":"StandIn","get":["status"]})", R"(\"get\" takes a text.)"},
        {R"({"controller":"StandIn","get":"colour"})", R"(StandIn has no field \"colour\".)"},
        {R"({"controller":"StandIn","set":"radius"})", R"(\"set\" needs a \"value\".)"},
        {R"({"controller":"StandIn","set":"radius","value":"far"})", "radius takes a number."},
        {R"({"controller":"StandIn","set":"radius","value":1e999})", "The line is not JSON."},
        {R"({"controller":"StandIn","set":"status","value":"x"})", "status can only be read."},
        {R"({"controller":"StandIn","set":"recipient","value":-1})",
         "recipient takes a whole number from 0 to 4294967295 or null."},
        {R"({"controller":"StandIn","set":"recipient","value":7.0})",
         "recipient takes a whole number from 0 to 4294967295 or null."},
        {R"({"controller":"StandIn","set":"profile","value":"boat"})",
         R"(profile takes one of \"general\", \"bicycle\".)"},
        {R"({"controller":"StandIn","operation":"fly"})", R"(StandIn has no operation \"fly\".)"},
        {R"({"controller":"StandIn","operation":"refresh","arguments":{}})",
         R"(\"arguments\" takes a list.)"},
        {R"({"controller":"StandIn","operation":"refresh","arguments":[1]})",
         "refresh takes no arguments, not 1."},
        {R"({"controller":"StandIn","operation":"displayName"})", "displayName takes 1 argument, not 0."},
        {R"({"controller":"StandIn","operation":"connect","arguments":["a","b"]})",
         "connect takes 0 to 1 arguments, not 2."},
        {R"({"controller":"StandIn","operation":"displayName","arguments":[4294967296]})",
         "displayName takes a whole number from 0 to 4294967295 as argument 1."},
        {R"({"controller":"StandIn","operation":"guard","arguments":[8]})", "There is no such node."},
    };
    for (const auto& [line, reason] : cases) {
        EXPECT_THAT(answersTo(line), ElementsAre(R"({"type":"refused","reason":")" + reason + "\"}")) << line;
    }
    session.refuseTooLongLine();
    EXPECT_THAT(output.take(), ElementsAre(HasSubstr("longer than 1048576 bytes")));
    turn();
    EXPECT_THAT(output.lines, IsEmpty());
}

} // namespace
} // namespace nightjar::headless
