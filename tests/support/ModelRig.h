// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/mesh/NightjarModel.h"
#include "platform/simulated/SimulatedComputer.h"
#include "tests/support/Builders.h"
#include "tests/support/FakeRadioLink.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <utility>

namespace nightjar::testing {

/// The model of the mesh on a simulated computer, with a radio that the test plays.
class ModelRig : public SimulatedComputer {
public:
    static constexpr const char* port = "/dev/cu.usbserial-0001";
    static constexpr std::uint32_t base = 7;

    ModelRig() {
        host.setApplicationSupportFolder(folder.path());
        host.plugIn("cu.usbserial-0001");
    }

    /// Makes the model; its start is under way.
    NightjarModel& create() {
        model.reset();
        auto link = std::make_unique<FakeRadioLink>();
        radio = link.get();
        model = std::make_unique<NightjarModel>(services(), std::move(link));
        return *model;
    }

    /// Makes the model and waits until its start is over.
    NightjarModel& start() {
        create();
        EXPECT_TRUE(mainThread.runUntil(
            [this] { return model->connectionState() != "Connecting…" || !radio->connects.empty(); }));
        return *model;
    }

    /// Starts on the radio at `port`, connected and known by its own number.
    NightjarModel& startConnected() {
        preferences.setString("serialPort", port);
        start();
        radio->connects.back().done(port);
        event({.event = MeshtasticBridgeEvent::localNode, .localNodeID = base});
        return *model;
    }

    /// What the bridge of the latest connection says.
    void event(const MeshtasticBridgeResponse& response) {
        radio->connects.back().listener.onEvent(response);
    }
    void hear(const MeshNode& node) { event({.event = MeshtasticBridgeEvent::node, .node = node}); }
    void hear(const MeshMessage& message) {
        event({.event = MeshtasticBridgeEvent::message, .message = message});
    }
    void lose(const MeshRadioError& error) { radio->connects.back().listener.onLost(error); }

    TemporaryFolder folder;
    FakeRadioLink* radio = nullptr; ///< the model's own
    std::unique_ptr<NightjarModel> model;
};

} // namespace nightjar::testing
