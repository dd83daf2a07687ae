// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ModelRig.h"

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using namespace nightjar::testing;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Event = MeshtasticBridgeEvent;

class ModelStartTest : public ::testing::Test, protected ModelRig {
protected:
    /// Keeps a message and a position, as an earlier run did.
    void keepRecords() {
        startConnected();
        hear(received("kept", 5, 42));
        hear(node(42).at(metresNorth(1)));
        model.reset();
    }
    [[nodiscard]] std::vector<std::string> texts() const {
        std::vector<std::string> texts;
        for (const auto& message : model->messages())
            texts.push_back(message.text);
        return texts;
    }
};

TEST_F(ModelStartTest, showsThatItIsStarting) {
    create();
    EXPECT_EQ(model->connectionState(), "Connecting…");
    EXPECT_EQ(model->radioSettingsState(), "Waiting for radio…");
    EXPECT_THAT(model->channels(), ElementsAre(::testing::Pair(0, "Primary")));
    EXPECT_EQ(model->parkingStatus(), "No position marked");
    EXPECT_EQ(model->selectedSettingsTab(), SettingsTab::general);
    EXPECT_EQ(model->bridgeStatus(), "Not installed");
}

TEST_F(ModelStartTest, loadsWhatWasKeptBeforeItReconnects) {
    keepRecords();
    create();
    EXPECT_TRUE(mainThread.runUntil([this] { return !radio->connects.empty(); }));

    EXPECT_EQ(radio->connects.back().port, port);
    EXPECT_THAT(texts(), ElementsAre("kept"));
    EXPECT_EQ(model->history().size(), 1U);
    EXPECT_EQ(model->errorMessage(), std::nullopt);
}

TEST_F(ModelStartTest, whatArrivesDuringTheLoadingComesAfterWhatWasKept) {
    keepRecords();
    create();
    model->connect(port);
    radio->connects.back().done(port);
    hear(received("arrived", 6, 42));
    hear(received("kept already", 5, 42));
    hear(node(42).at(metresNorth(2)));
    model->sendMessage("sent");
    radio->texts.back().done(7);
    EXPECT_TRUE(
        mainThread.runUntil([this] { return model->history().size() == 2 && texts().front() == "kept"; }));

    EXPECT_THAT(texts(), ElementsAre("kept", "arrived", "sent"));
    ASSERT_EQ(model->history().size(), 2U);
    EXPECT_LT(model->history()[0].latitude, model->history()[1].latitude);
    EXPECT_EQ(radio->connects.size(), 1U) << "no second connection";

    startConnected();
    EXPECT_THAT(texts(), ElementsAre("kept", "arrived", "sent")) << "and so they were kept";
}

TEST_F(ModelStartTest, aDisconnectionDuringTheLoadingStands) {
    keepRecords();
    create();
    model->disconnect();
    EXPECT_TRUE(mainThread.runUntil([this] { return !model->availablePorts().empty(); }));

    EXPECT_THAT(radio->connects, IsEmpty());
    EXPECT_EQ(model->connectionState(), "Disconnected");
    EXPECT_EQ(model->radioSettingsState(), "Activate a base station in the Meshtastic sidebar.");
}

TEST_F(ModelStartTest, aFailedConnectionDuringTheLoadingStands) {
    keepRecords();
    create();
    model->connect("/dev/cu.usbserial-0009");
    EXPECT_EQ(model->connectionState(), "Choose a USB radio in Settings");
    EXPECT_TRUE(mainThread.runUntil([this] { return !model->history().empty() && !texts().empty(); }));

    EXPECT_THAT(radio->connects, IsEmpty());
    EXPECT_EQ(model->connectionState(), "Choose a USB radio in Settings");
}

TEST_F(ModelStartTest, withoutAHomeItSaysSoOnceAndCarriesOn) {
    host.setApplicationSupportFolder({});
    startConnected();
    EXPECT_EQ(model->errorMessage(),
              "Nightjar found no home folder. Messages, positions and settings will not be kept.");

    model->setErrorMessage({});
    hear(received("hello"));
    model->sendMessage("sent");
    radio->texts.back().done(7);
    model->connect();
    radio->connects.back().done(port);
    mainThread.runPending();
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_THAT(texts(), ElementsAre("hello", "sent"));
}

TEST_F(ModelStartTest, nothingHappensOnceTheModelIsGone) {
    keepRecords();
    startConnected();
    model->sendMessage("sent");
    model->requestRadioSettings();
    model->applyRadioSettings({});
    radio->applies.back().done({});
    model->applyRadioSettings({});
    auto listener = radio->connects.back().listener;
    auto connected = std::move(radio->connects.back().done);
    auto sent = std::move(radio->texts.back().done);
    auto read = std::move(radio->reads.back());
    auto applied = std::move(radio->applies.back().done);
    model.reset();

    listener.onEvent({.event = Event::message, .message = received("late")});
    listener.onLost({MeshRadioError::Kind::bridgeStopped});
    connected(port);
    sent(7);
    read(std::unexpected(MeshRadioError{MeshRadioError::Kind::cancelled}));
    applied({});
    scheduler.advance(std::chrono::seconds(10));
    mainThread.runPending();
    EXPECT_THAT(notifications.posted(), ::testing::SizeIs(1)) << "the one of the earlier run";
}

TEST_F(ModelStartTest, mayGoAtAnyMomentOfItsStart) {
    keepRecords();
    for (int round = 0; round < 50; ++round) {
        create();
        if (round % 2 == 0)
            mainThread.runPending();
        model.reset();
    }
    mainThread.runPending();

    start();
    EXPECT_THAT(texts(), ElementsAre("kept"));
    EXPECT_EQ(model->history().size(), 1U);
}

TEST_F(ModelStartTest, selectsTheGuardedNodeFirst) {
    startConnected();
    hear(node(41));
    EXPECT_EQ(model->selectedNodeID(), 41U);
    hear(node(42));
    EXPECT_EQ(model->selectedNodeID(), 41U);

    model->setGuarded(node(42));
    model->setSelectedNodeID({});
    hear(node(41));
    EXPECT_EQ(model->selectedNodeID(), 42U) << "also when the node brings no news";
}

TEST_F(ModelStartTest, listsRemoteNodesByHowTheyAreHeard) {
    startConnected();
    const auto numbers = [](const std::vector<MeshNode>& nodes) {
        std::vector<std::uint32_t> found;
        for (const auto& shown : nodes)
            found.push_back(shown.number);
        return found;
    };
    hear(node(base).named("Base").seen(startDate).hops(0));
    hear(node(1).named("z near").seen(startDate).hops(0));
    hear(node(2).named("far").seen(startDate).hops(2));
    hear(node(3).named("never").hops(0));
    hear(node(4).named("a near").seen(startDate).hops(0));
    hear(node(5).named("guarded").seen(startDate).hops(0));
    model->setGuarded(model->nodes()[3]);
    EXPECT_EQ(model->guardedNodeID(), 5U);

    EXPECT_THAT(numbers(model->nodes()), ElementsAre(5, 4, base, 2, 3, 1));
    EXPECT_THAT(numbers(model->directlyHeardNodes()), ElementsAre(4, 1));
    EXPECT_THAT(numbers(model->otherMeshNodes()), ElementsAre(2, 3));
    scheduler.advance(std::chrono::seconds(3600));
    EXPECT_THAT(numbers(model->directlyHeardNodes()), ElementsAre(4, 1));
    scheduler.advance(std::chrono::seconds(1));
    EXPECT_THAT(numbers(model->directlyHeardNodes()), IsEmpty());
    model->clearGuardedDevice();
    EXPECT_THAT(numbers(model->nodes()), ElementsAre(4, base, 2, 5, 3, 1));
}

TEST_F(ModelStartTest, historyHoldsEachPositionOnce) {
    startConnected();
    const auto first = positionAt(52, 5);
    auto sameElsewhere = first;
    sameElsewhere.id = Uuid::random();
    hear(node(42).at(first));
    hear(node(42).at(first));
    hear(node(42));
    EXPECT_EQ(model->history().size(), 1U);
    hear(node(42).at(sameElsewhere));
    hear(node(42).named("Fox").at(sameElsewhere));
    EXPECT_THAT(model->history(), ElementsAre(first, sameElsewhere));
}

} // namespace
} // namespace nightjar
