// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ModelRig.h"

#include <gmock/gmock.h>

#include <fstream>

namespace nightjar {
namespace {

using namespace nightjar::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Event = MeshtasticBridgeEvent;

class MessagesTest : public ::testing::Test, protected ModelRig {
protected:
    [[nodiscard]] std::vector<std::string> texts() const {
        std::vector<std::string> texts;
        for (const auto& message : model->messages())
            texts.push_back(message.text);
        return texts;
    }
};

TEST_F(MessagesTest, aRepeatedPacketIsShownAndToldOnce) {
    startConnected();
    hear(received("first", 5, 42));
    hear(received("repeated", 5, 42));
    hear(received("other sender", 5, 43));
    hear(received("other packet", 6, 42));
    hear(received("without packet", 0, 42));
    hear(received("without packet", 0, 42));

    EXPECT_THAT(texts(),
                ElementsAre("first", "other sender", "other packet", "without packet", "without packet"));
    EXPECT_EQ(notifications.posted().size(), 5U);
}

TEST_F(MessagesTest, aReceivedMessageIsToldWithItsSender) {
    startConnected();
    hear(node(42).named("Fox"));
    auto message = received("Where are you?", 5, 42);
    hear(message);
    auto own = received("echo", 6, base);
    own.isOutgoing = true;
    hear(own);

    const std::vector<Notification> expected{{.identifier = "message-" + message.id.text(),
                                              .title = "Fox",
                                              .body = "Where are you?",
                                              .sound = NotificationSound::standard}};
    EXPECT_EQ(notifications.posted(), expected);
    EXPECT_THAT(texts(), ElementsAre("Where are you?", "echo"));
}

TEST_F(MessagesTest, whatWasKnownBeforeARestartIsNoNews) {
    startConnected();
    hear(received("first", 5, 42));
    startConnected();
    hear(received("again", 5, 42));

    EXPECT_THAT(texts(), ElementsAre("first"));
    EXPECT_EQ(notifications.posted().size(), 1U);
}

TEST_F(MessagesTest, channelsHaveNames) {
    startConnected();
    event({.event = Event::channel, .channelName = "nowhere"});
    event({.event = Event::channel, .channel = 0, .channelName = "Home"});
    event({.event = Event::channel, .channel = 2});
    event({.event = Event::channel, .channel = 3, .channelName = ""});
    EXPECT_THAT(model->channels(), ElementsAre(::testing::Pair(0, "Home"), ::testing::Pair(2, "Channel 2"),
                                               ::testing::Pair(3, "")));
    event({.event = Event::channel, .channel = 0});
    EXPECT_EQ(model->channels().at(0), "Primary");
}

TEST_F(MessagesTest, sendsTheTrimmedTextAndAddsItOnceItIsTaken) {
    startConnected();
    model->sendMessage(" \n\t ");
    EXPECT_THAT(radio->texts, IsEmpty());

    model->sendMessage("  hello \n");
    ASSERT_EQ(radio->texts.size(), 1U);
    auto& sent = radio->texts.back();
    EXPECT_EQ(sent.text, "hello");
    EXPECT_EQ(sent.recipient, std::nullopt);
    EXPECT_EQ(sent.channel, 0U);
    EXPECT_THAT(texts(), IsEmpty());

    scheduler.advance(std::chrono::seconds(2));
    sent.done(77);
    const auto& message = model->messages().back();
    EXPECT_EQ(message.packetID, 77U);
    EXPECT_EQ(message.sender, base);
    EXPECT_EQ(message.recipient, broadcastNodeNumber);
    EXPECT_EQ(message.timestamp, startDate + Seconds(2));
    EXPECT_TRUE(message.isOutgoing);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_THAT(notifications.posted(), IsEmpty());
}

TEST_F(MessagesTest, theRecordHoldsRecipientAndChannelAsTheyAreWhenTheRadioAnswers) {
    start();
    model->setMessageRecipient(42);
    model->setMessageChannel(2);
    model->sendMessage("hello");
    EXPECT_EQ(radio->texts.back().recipient, 42U);
    EXPECT_EQ(radio->texts.back().channel, 2U);

    model->setMessageRecipient(43);
    model->setMessageChannel(1);
    radio->texts.back().done(77);
    const auto& message = model->messages().back();
    EXPECT_EQ(message.recipient, 43U);
    EXPECT_EQ(message.channel, 1U);
    EXPECT_EQ(message.sender, 0U) << "no base has told its number";
}

TEST_F(MessagesTest, aTextThatWasNotSentIsTold) {
    startConnected();
    model->sendMessage("one");
    model->sendMessage("two");
    radio->texts[1].done(std::unexpected(MeshRadioError{MeshRadioError::Kind::requestTimedOut}));
    EXPECT_EQ(model->errorMessage(), "Halvard Meshtastic Bridge did not answer in time.");
    radio->texts[0].done(1);
    EXPECT_THAT(texts(), ElementsAre("one"));

    model->sendMessage("three");
    model->disconnect();
    radio->texts[2].done(std::unexpected(MeshRadioError{MeshRadioError::Kind::cancelled}));
    EXPECT_EQ(model->errorMessage(), "The operation was cancelled.");
    EXPECT_THAT(texts(), ElementsAre("one"));
}

TEST_F(MessagesTest, onlyASentMessageThatCannotBeKeptIsAnError) {
    std::ofstream(folder.path() / "Halvard Nightjar") << "a file stands where the folder belongs";
    startConnected();
    hear(received("received", 5));
    hear(node(42).at(52, 5));

    model->sendMessage("sent");
    radio->texts.back().done(77);
    EXPECT_TRUE(mainThread.runUntil([this] { return model->errorMessage().has_value(); }));
    EXPECT_THAT(texts(), ElementsAre("received", "sent"));

    model->setErrorMessage({});
    hear(received("another", 6));
    model.reset();
    mainThread.runPending();
}

TEST_F(MessagesTest, theBridgesErrorIsShownAndTakenBack) {
    startConnected();
    event({.event = Event::error, .error = "The channel is busy."});
    EXPECT_EQ(model->errorMessage(), "The channel is busy.");
    EXPECT_EQ(model->connectionState(), "Connected");
    event({.event = Event::error});
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

} // namespace
} // namespace nightjar
