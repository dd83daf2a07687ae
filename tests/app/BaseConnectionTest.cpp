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

constexpr const char* secondPort = "/dev/cu.usbserial-0002";

class BaseConnectionTest : public ::testing::Test, protected ModelRig {
protected:
    void plugInSecond() { host.plugIn("cu.usbserial-0002"); }
    void expectTexts(const std::string& connection, const std::string& settings) const {
        EXPECT_EQ(model->connectionState(), connection);
        EXPECT_EQ(model->radioSettingsState(), settings);
    }
    /// What a base tells of itself and its mesh.
    void tellEverything() {
        hear(node(base).named(" Base\n"));
        hear(node(42).named("Fox"));
        event({.event = Event::channel, .channel = 2, .channelName = "Hikers"});
        event({.event = Event::radioSettings, .settings = MeshtasticRadioSettings{.hopLimit = 3}});
    }
    void expectNothingOfTheBase() const {
        EXPECT_EQ(model->connectedPort(), std::nullopt);
        EXPECT_EQ(model->localNodeID(), std::nullopt);
        EXPECT_EQ(model->selectedNodeID(), std::nullopt);
        EXPECT_THAT(model->nodes(), IsEmpty());
        EXPECT_THAT(model->channels(), ElementsAre(::testing::Pair(0, "Primary")));
        EXPECT_EQ(model->loraConfig(), std::nullopt);
    }
};

TEST_F(BaseConnectionTest, saysWhenThereIsNothingToConnect) {
    host.unplug("cu.usbserial-0001");
    start();
    expectTexts("USB radio not connected", "Choose a USB radio in Settings.");
    model->connect();
    expectTexts("USB radio not connected", "No compatible USB radio found.");

    host.plugIn("cu.usbserial-0001");
    plugInSecond();
    model->connect();
    expectTexts("Choose a USB radio in Settings", "Choose a USB radio in Settings.");
    model->connect("/dev/cu.usbserial-0003");
    expectTexts("Choose a USB radio in Settings", "Choose a USB radio in Settings.");
    EXPECT_THAT(radio->connects, IsEmpty());
}

TEST_F(BaseConnectionTest, settlesWhichPortIsSelected) {
    plugInSecond();
    preferences.setString("serialPort", "/dev/cu.usbserial-0009");
    start();
    expectTexts("Choose a USB radio in Settings", "Choose a USB radio in Settings.");
    EXPECT_THAT(model->availablePorts(), ElementsAre(port, secondPort));
    EXPECT_EQ(model->selectedPort(), "") << "two to choose from";

    host.unplug("cu.usbserial-0002");
    model->refreshPorts();
    EXPECT_EQ(model->selectedPort(), port) << "the only one";

    host.unplug("cu.usbserial-0001");
    plugInSecond();
    model->refreshPorts();
    EXPECT_EQ(model->selectedPort(), "") << "the selected one went";
    model->refreshPorts();
    EXPECT_EQ(model->selectedPort(), secondPort) << "and the other is the only one now";

    host.plugIn("cu.usbserial-0001");
    model->setSelectedPort(port);
    model->refreshPorts();
    EXPECT_EQ(model->selectedPort(), port) << "a choice that is there stays";
    preferences.setString("serialPort", secondPort);
    model->refreshPorts();
    EXPECT_EQ(model->selectedPort(), secondPort) << "the last connected one comes first";
}

TEST_F(BaseConnectionTest, connectsTheSelectedPort) {
    start();
    model->setErrorMessage("old");
    model->connect();
    expectTexts("Connecting…", "Checking the selected radio…");
    EXPECT_EQ(model->errorMessage(), std::nullopt);
    EXPECT_EQ(radio->connects.back().port, port);

    radio->connects.back().done("/dev/cu.usbserial-answered");
    expectTexts("Connected", "Connected · waiting for radio settings");
    EXPECT_EQ(model->connectedPort(), "/dev/cu.usbserial-answered");
    EXPECT_EQ(model->selectedPort(), "/dev/cu.usbserial-answered");
    EXPECT_EQ(preferences.string("serialPort"), "/dev/cu.usbserial-answered");
}

TEST_F(BaseConnectionTest, aFailureHasItsTexts) {
    using Error = MeshRadioError;
    const std::string missing =
        "Halvard Meshtastic Bridge is not installed. Install the separate GPL bridge to use "
        "Meshtastic features.";
    const std::string stopped = "Halvard Meshtastic Bridge stopped unexpectedly.";
    const std::string unreadable = "Halvard Meshtastic Bridge returned an unreadable response.";
    const std::string silent = "The selected device did not answer as a Meshtastic radio.";
    const std::string gone = "The selected USB radio is no longer available.";
    const std::vector<std::tuple<Error, std::string, std::string>> cases{
        {{Error::Kind::noRadio}, "USB radio not connected", gone},
        {{Error::Kind::bridgeMissing}, "Meshtastic Bridge not installed", missing},
        {{Error::Kind::bridgeStopped}, "Meshtastic Bridge stopped", stopped},
        {{Error::Kind::requestTimedOut}, "Radio did not answer", silent},
        {{Error::Kind::invalidBridgeReply}, "USB connection failed", unreadable},
        {Error::bridge("The port is busy."), "USB connection failed", "The port is busy."},
        {{Error::Kind::system, "Permission denied"}, "USB connection failed", "Permission denied"},
    };
    start();
    for (const auto& [error, status, detail] : cases) {
        model->connect();
        model->setErrorMessage("old");
        radio->connects.back().done(std::unexpected(error));
        expectTexts(status, detail);
        EXPECT_EQ(model->errorMessage(), std::nullopt);
        EXPECT_EQ(model->connectedPort(), std::nullopt);
    }
    EXPECT_FALSE(preferences.contains("serialPort"));
}

TEST_F(BaseConnectionTest, onlyTheLatestActionCounts) {
    plugInSecond();
    start();
    model->connect(port);
    model->connect(secondPort);
    radio->connects[0].done(port);
    expectTexts("Connecting…", "Checking the selected radio…");
    EXPECT_EQ(model->connectedPort(), std::nullopt);

    radio->connects[1].done(secondPort);
    EXPECT_EQ(model->connectedPort(), secondPort);

    for (const bool succeeds : {true, false}) {
        model->connect(port);
        model->disconnect();
        auto answer = std::expected<std::string, MeshRadioError>(port);
        if (!succeeds)
            answer = std::unexpected(MeshRadioError{MeshRadioError::Kind::cancelled});
        radio->connects.back().done(answer);
        expectTexts("Disconnected", "Activate a base station in the Meshtastic sidebar.");
        EXPECT_EQ(model->connectedPort(), std::nullopt);
        EXPECT_FALSE(preferences.contains("serialPort"));
    }
}

TEST_F(BaseConnectionTest, aReplacedConnectionStillTellsOfTheMeshButNotOfItself) {
    plugInSecond();
    startConnected();
    auto former = radio->connects.back().listener;
    model->connect(secondPort);
    former.onEvent({.event = Event::status, .status = "Restarting"});
    former.onEvent({.event = Event::disconnected});
    former.onEvent({.event = Event::node, .node = node(42)});
    former.onEvent({.event = Event::message, .message = received("last words")});
    former.onLost({MeshRadioError::Kind::bridgeStopped});
    expectTexts("Connecting…", "Checking the selected radio…");
    EXPECT_EQ(model->nodes().size(), 1U);
    EXPECT_EQ(model->messages().size(), 1U);

    former = radio->connects.back().listener;
    radio->connects.back().done(secondPort);
    model->disconnect();
    former.onEvent({.event = Event::message, .message = received("late")});
    former.onEvent({.event = Event::node, .node = node(43)});
    former.onEvent({.event = Event::localNode, .localNodeID = 9});
    EXPECT_EQ(model->messages().size(), 1U);
    expectNothingOfTheBase();
}

TEST_F(BaseConnectionTest, anotherRadiosNameIsNotKeptUnderTheFormerPort) {
    plugInSecond();
    startConnected();
    tellEverything();
    model->connect(secondPort);
    event({.event = Event::localNode, .localNodeID = 43});
    hear(node(43).named("Other base"));
    EXPECT_EQ(model->knownBaseNames().at(port), "Base");

    radio->connects.back().done(secondPort);
    EXPECT_EQ(model->knownBaseNames().at(secondPort), "Other base");
}

TEST_F(BaseConnectionTest, theEndOfABridgeDoesNotHideWhyThereIsNoRadio) {
    startConnected();
    event({.event = Event::disconnected, .status = "The radio was unplugged"});
    lose({MeshRadioError::Kind::bridgeStopped});
    expectTexts("The radio was unplugged",
                "The base station is disconnected. Activate it again in the Meshtastic sidebar.");

    startConnected();
    event({.event = Event::disconnected});
    event({.event = Event::status, .status = "Connected"});
    lose({MeshRadioError::Kind::bridgeStopped});
    expectTexts("Meshtastic Bridge stopped", "Halvard Meshtastic Bridge stopped unexpectedly.");
}

TEST_F(BaseConnectionTest, disconnectingForgetsTheRadioAndAllThatCameFromIt) {
    startConnected();
    tellEverything();
    hear(received("hello"));
    hear(node(42).at(52, 5));

    model->disconnect();

    EXPECT_EQ(radio->disconnects, 1);
    expectNothingOfTheBase();
    expectTexts("Disconnected", "Activate a base station in the Meshtastic sidebar.");
    EXPECT_EQ(model->selectedPort(), "");
    EXPECT_FALSE(preferences.contains("serialPort"));
    EXPECT_EQ(model->messages().size(), 1U);
    EXPECT_EQ(model->history().size(), 1U);
    EXPECT_EQ(model->knownBaseNames().at(port), "Base");
}

TEST_F(BaseConnectionTest, aRadioThatGoesStaysTheOneToReconnect) {
    const std::string detail =
        "The base station is disconnected. Activate it again in the Meshtastic sidebar.";
    const std::vector<std::pair<std::optional<std::string>, std::string>> cases{{"Unplugged", "Unplugged"},
                                                                                {{}, "Disconnected"}};
    for (const auto& [status, shown] : cases) {
        startConnected();
        tellEverything();
        event({.event = Event::disconnected, .status = status});
        expectNothingOfTheBase();
        expectTexts(shown, detail);
        EXPECT_EQ(model->selectedPort(), port);
        EXPECT_EQ(preferences.string("serialPort"), port);
    }
    hear(node(42));
    EXPECT_EQ(model->nodes().size(), 1U) << "its bridge is still there";
}

TEST_F(BaseConnectionTest, aBridgeThatWasWithoutItsRadioAtFirstConnectsAllTheSame) {
    start();
    model->connect(port);
    event({.event = Event::disconnected});
    radio->connects.back().done(port);
    expectTexts("Connected", "Connected · waiting for radio settings");
    EXPECT_EQ(model->connectedPort(), port);
}

TEST_F(BaseConnectionTest, aLostBridgeNeverLooksConnected) {
    const std::vector<std::tuple<MeshRadioError, std::string, std::string>> cases{
        {{MeshRadioError::Kind::bridgeStopped},
         "Meshtastic Bridge stopped",
         "Halvard Meshtastic Bridge stopped unexpectedly."},
        {MeshRadioError::incompatibleVersion(), "USB connection failed",
         "Halvard Meshtastic Bridge uses an incompatible protocol version."}};
    for (const auto& [error, status, detail] : cases) {
        startConnected();
        tellEverything();
        model->setErrorMessage("A sentence to read.");
        model->requestRadioSettings();
        model->applyRadioSettings({});
        radio->applies.back().done({});

        lose(error);
        radio->reads.back()(std::unexpected(MeshRadioError{MeshRadioError::Kind::bridgeStopped}));
        scheduler.advance(std::chrono::seconds(5));
        event({.event = Event::node, .node = node(42)});

        expectNothingOfTheBase();
        expectTexts(status, detail);
        EXPECT_EQ(model->errorMessage(), "A sentence to read.");
        EXPECT_EQ(model->selectedPort(), port);
        EXPECT_EQ(preferences.string("serialPort"), port);
    }
}

TEST_F(BaseConnectionTest, aBridgeLostBeforeItsAnswerIsHeardStaysLost) {
    start();
    model->connect();
    lose({MeshRadioError::Kind::bridgeStopped});
    radio->connects.back().done(port);

    EXPECT_EQ(model->connectionState(), "Meshtastic Bridge stopped");
    EXPECT_EQ(model->connectedPort(), std::nullopt);
}

TEST_F(BaseConnectionTest, anAttemptWithoutAPortLeavesTheBridgeListening) {
    startConnected();
    host.unplug("cu.usbserial-0001");
    model->connect();
    expectTexts("USB radio not connected", "No compatible USB radio found.");
    EXPECT_EQ(model->connectedPort(), std::nullopt);

    hear(node(42).named("Fox").at(52, 5));
    EXPECT_EQ(model->nodes().size(), 1U);
}

TEST_F(BaseConnectionTest, remembersTheNameOfABaseByItsPort) {
    plugInSecond();
    startConnected();
    hear(node(base).named(" \t"));
    EXPECT_THAT(model->knownBaseNames(), IsEmpty());
    hear(node(42).named("Fox"));
    hear(node(base).named(" Base\n"));
    EXPECT_EQ(preferences.dictionary("meshtasticBaseNames")->at(port), "Base");

    const auto writes = preferences.writes();
    hear(node(base).named("Base").hops(0));
    EXPECT_EQ(preferences.writes(), writes) << "no news, no write";

    // The name of the former base is not the name of the next, of which nothing is known yet.
    model->connect(secondPort);
    radio->connects.back().done(secondPort);
    EXPECT_FALSE(model->knownBaseNames().contains(secondPort));
    hear(node(8).named("Second"));
    event({.event = Event::localNode, .localNodeID = 8});
    EXPECT_EQ(model->knownBaseNames().at(secondPort), "Second");

    start();
    EXPECT_EQ(model->knownBaseNames().size(), 2U);
}

TEST_F(BaseConnectionTest, aBaseThatTellsItsNumberBeforeTheAnswerIsNamedWithIt) {
    start();
    model->connect();
    event({.event = Event::localNode, .localNodeID = base});
    hear(node(base).named("Early"));
    EXPECT_THAT(model->knownBaseNames(), IsEmpty());
    radio->connects.back().done(port);
    EXPECT_EQ(model->knownBaseNames().at(port), "Early");
}

TEST_F(BaseConnectionTest, everyChangeIsAnnouncedBeforeAndToldAfter) {
    startConnected();
    tellEverything();
    std::vector<std::string> steps;
    const auto note = [&](const char* step) { steps.push_back(step + (": " + model->connectionState())); };
    QObject::connect(model.get(), &NightjarModel::aboutToChange, [&] { note("about"); });
    QObject::connect(model.get(), &NightjarModel::connectionStateChanged, [&] { note("changed"); });

    event({.event = Event::status, .status = "Busy"});
    event({.event = Event::status, .status = "Busy"});
    event({.event = Event::status});

    EXPECT_THAT(steps, ElementsAre("about: Connected", "changed: Busy"));
}

} // namespace
} // namespace nightjar
