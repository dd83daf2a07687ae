// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/support/ModelRig.h"

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using namespace nightjar::testing;
using std::chrono::milliseconds;
using std::chrono::seconds;
using ::testing::IsEmpty;
using Event = MeshtasticBridgeEvent;

const MeshRadioError timedOut{MeshRadioError::Kind::requestTimedOut};

class RadioSettingsFlowTest : public ::testing::Test, protected ModelRig {
protected:
    [[nodiscard]] const std::string& state() const { return model->radioSettingsState(); }
    void tellSettings(const MeshtasticRadioSettings& settings) {
        event({.event = Event::radioSettings, .settings = settings});
    }

    const MeshtasticRadioSettings wanted{.region = MeshtasticRegion::eu868, .hopLimit = 4};
    const MeshtasticRadioSettings held{.region = MeshtasticRegion::eu868, .hopLimit = 3};
};

TEST_F(RadioSettingsFlowTest, needsABaseThatHasToldItsNumber) {
    start();
    const auto refuses = [this] {
        model->requestRadioSettings();
        const bool read = state() == "Connect the USB radio first.";
        model->applyRadioSettings(wanted);
        return read &&
               state() == "The base station is disconnected. Activate it again in the Meshtastic sidebar." &&
               radio->reads.empty() && radio->applies.empty();
    };
    EXPECT_TRUE(refuses());
    model->connect();
    radio->connects.back().done(port);
    EXPECT_TRUE(refuses());
    event({.event = Event::localNode, .localNodeID = base});
    model->requestRadioSettings();
    EXPECT_EQ(radio->reads.size(), 1U);
}

TEST_F(RadioSettingsFlowTest, reads) {
    startConnected();
    model->requestRadioSettings();
    EXPECT_EQ(state(), "Reading from radio…");
    radio->reads.back()({});
    EXPECT_EQ(state(), "Reading from radio…");
    tellSettings(held);
    EXPECT_EQ(state(), "Loaded from radio");
    EXPECT_EQ(model->loraConfig(), held);

    model->requestRadioSettings();
    radio->reads.back()(std::unexpected(timedOut));
    EXPECT_EQ(state(), "Could not read settings");
    EXPECT_EQ(model->errorMessage(), timedOut.description());
    EXPECT_EQ(model->loraConfig(), held);

    event({.event = Event::radioSettings});
    EXPECT_EQ(model->loraConfig(), std::nullopt);
}

TEST_F(RadioSettingsFlowTest, appliesAndReadsBackAfterTheRestart) {
    startConnected();
    tellSettings(wanted);
    model->applyRadioSettings(wanted);
    EXPECT_EQ(state(), "Applying to radio…");
    EXPECT_EQ(radio->applies.back().settings, wanted) << "equal settings are sent too";
    radio->applies.back().done({});
    EXPECT_EQ(state(), "Applied · verifying after restart…");
    EXPECT_EQ(model->loraConfig(), wanted);

    scheduler.advance(milliseconds(2999));
    EXPECT_THAT(radio->reads, IsEmpty());
    scheduler.advance(milliseconds(1));
    EXPECT_EQ(radio->reads.size(), 1U);
    EXPECT_EQ(state(), "Reading from radio…");
    radio->reads.back()(std::unexpected(timedOut));
    EXPECT_EQ(state(), "Could not read settings");
    EXPECT_EQ(model->loraConfig(), wanted);
}

TEST_F(RadioSettingsFlowTest, whatCouldNotBeAppliedIsNotReadBack) {
    startConnected();
    tellSettings(held);
    model->applyRadioSettings(wanted);
    radio->applies.back().done(std::unexpected(timedOut));
    EXPECT_EQ(state(), "Could not apply settings");
    EXPECT_EQ(model->errorMessage(), timedOut.description());
    EXPECT_EQ(model->loraConfig(), held);
    scheduler.advance(seconds(10));
    EXPECT_THAT(radio->reads, IsEmpty());
}

TEST_F(RadioSettingsFlowTest, eachApplyIsReadBack) {
    startConnected();
    model->applyRadioSettings(wanted);
    radio->applies.back().done({});
    scheduler.advance(seconds(2));
    model->applyRadioSettings(held);
    scheduler.advance(seconds(1));
    EXPECT_EQ(radio->reads.size(), 1U);
    radio->applies.back().done({});
    EXPECT_EQ(model->loraConfig(), held);
    scheduler.advance(seconds(3));
    EXPECT_EQ(radio->reads.size(), 2U);
}

TEST_F(RadioSettingsFlowTest, aRadioThatIsGoneAfterTheRestartIsAskedFor) {
    const auto leave = {+[](ModelRig& rig) { rig.model->disconnect(); },
                        +[](ModelRig& rig) { rig.event({.event = Event::disconnected}); }};
    for (const auto& leaves : leave) {
        startConnected();
        model->applyRadioSettings(wanted);
        radio->applies.back().done({});
        leaves(*this);
        EXPECT_EQ(model->loraConfig(), std::nullopt);
        scheduler.advance(seconds(3));
        EXPECT_EQ(state(), "Connect the USB radio first.");
        EXPECT_THAT(radio->reads, IsEmpty());
    }
}

TEST_F(RadioSettingsFlowTest, anotherRadioIsNotToldOfByTheFormer) {
    host.plugIn("cu.usbserial-0002");
    startConnected();
    model->applyRadioSettings(wanted);
    radio->applies.back().done({});
    model->applyRadioSettings(held);
    model->requestRadioSettings();

    model->connect("/dev/cu.usbserial-0002");
    radio->applies.back().done({});
    radio->reads.back()(std::unexpected(MeshRadioError{MeshRadioError::Kind::cancelled}));
    scheduler.advance(seconds(3));
    EXPECT_EQ(state(), "Checking the selected radio…");
    EXPECT_EQ(model->errorMessage(), std::nullopt);

    radio->connects.back().done(std::unexpected(timedOut));
    scheduler.advance(seconds(3));
    EXPECT_EQ(state(), "The selected device did not answer as a Meshtastic radio.");
    EXPECT_EQ(radio->reads.size(), 1U);
}

} // namespace
} // namespace nightjar
