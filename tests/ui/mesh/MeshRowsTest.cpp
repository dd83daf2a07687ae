// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MeshRows.h"

#include "tests/support/ModelRig.h"
#include "ui/map/MapTiles.h"
#include "ui/mesh/GuardWarning.h"

#include <gtest/gtest.h>

namespace nightjar {
namespace {

using testing::node;

class MeshRowsTest : public ::testing::Test {
protected:
    QStringList helpsOf(const Row& row) {
        QStringList helps;
        for (const auto& badge : row.badges)
            helps << badge.help;
        return helps;
    }
    testing::ModelRig rig;
    MapTiles tiles{MapTileSettings{}};
    ViewContext context{rig.startConnected(), rig.services(), tiles};
};

TEST_F(MeshRowsTest, namesANodeByTheBestItHas) {
    const auto now = rig.scheduler.now();
    const Row plain = MeshRows::nodeRow(node(42), false, false, context);
    EXPECT_EQ(plain.title, QStringLiteral("!0000002a"));
    EXPECT_EQ(plain.caption, QStringLiteral("Not seen"));
    EXPECT_TRUE(plain.badges.empty());
    EXPECT_EQ(plain.symbol, QStringLiteral("sensor.tag.radiowaves.forward.fill"));

    const Row heard = MeshRows::nodeRow(node(42).shortNamed("Fx").seen(now - Seconds{60}).hops(0).at(52, 5),
                                        true, true, context);
    EXPECT_EQ(heard.title, QStringLiteral("Fx"));
    EXPECT_EQ(heard.caption, QStringLiteral("60 s ago"));
    EXPECT_EQ(heard.symbol, QStringLiteral("bicycle"));
    EXPECT_EQ(heard.tint, Tint::orange);
    EXPECT_EQ(helpsOf(heard),
              (QStringList{QStringLiteral("Directly heard by the base"), QStringLiteral("Has a position")}));
    EXPECT_EQ(MeshRows::title(node(7).named(" ").shortNamed("\u2003")), QStringLiteral("!00000007"));
    EXPECT_EQ(MeshRows::nodeRow(node(7), false, true, context).symbol, QStringLiteral("cable.connector"));
}

TEST_F(MeshRowsTest, tellsHowANodeIsReached) {
    const auto now = rig.scheduler.now();
    const struct {
        MeshNode node;
        const char* text;
    } cases[] = {{node(7).seen(now).hops(0), "USB base"},
                 {node(1).seen(now).hops(0), "Directly heard"},
                 {node(1).seen(now).hops(3), "3 hops"},
                 {node(1).seen(now - Seconds{3601}).hops(0), "Not heard recently"},
                 {node(1).hops(0), "Not heard recently"}};
    for (const auto& [heard, text] : cases)
        EXPECT_EQ(MeshRows::connectionDescription(heard, 7, now).toStdString(), text);
}

TEST_F(MeshRowsTest, tellsPowerAndSignalOnlyWhereReported) {
    MeshNode heard = node(1);
    EXPECT_EQ(MeshRows::power(heard), QStringLiteral("Not reported"));
    EXPECT_EQ(MeshRows::signal(heard), QStringLiteral("Not reported"));
    heard.batteryLevel = 87;
    heard.signalToNoise = -7.25F;
    EXPECT_EQ(MeshRows::power(heard), QStringLiteral("87 %"));
    EXPECT_EQ(MeshRows::signal(heard), QStringLiteral("-7.2 dB"));
    heard.batteryLevel = 101;
    EXPECT_EQ(MeshRows::power(heard), QStringLiteral("External power"));
}

TEST_F(MeshRowsTest, groupsTheGuardedNodeFirst) {
    const auto now = rig.scheduler.now();
    rig.hear(node(rig.base).named("Attic").seen(now).hops(0));
    rig.hear(node(1).named("Near").seen(now).hops(0));
    rig.hear(node(2).named("Far").seen(now).hops(2));
    rig.hear(node(3).named("Bicycle").seen(now).hops(0));
    rig.model->setGuarded(MeshNode(node(3)));
    const auto sections = MeshRows::sections(*rig.model);
    ASSERT_EQ(sections.size(), 3U);
    EXPECT_EQ(sections[0].ids, (std::vector<std::string>{"3"}));
    EXPECT_EQ(sections[1].ids, (std::vector<std::string>{"7", "1"}));
    EXPECT_EQ(sections[2].ids, (std::vector<std::string>{"2"}));
}

TEST_F(MeshRowsTest, warnsWhereTheGuardWouldNotSeeAMovement) {
    auto& model = *rig.model;
    const auto brief = [&] {
        const auto warning = GuardWarning::of(model, rig.scheduler.now());
        return warning ? warning->brief.toStdString() : std::string();
    };
    const auto hear = [&](Seconds fixedAfter) {
        auto position = testing::positionAt(52, 5);
        position.timestamp = rig.scheduler.now() + fixedAfter;
        rig.hear(node(3).seen(rig.scheduler.now()).hops(0).at(position));
    };
    hear(Seconds{0});
    EXPECT_EQ(brief(), "");
    model.setGuarded(MeshNode(node(3)));
    EXPECT_EQ(brief(), "Guard without a marked position");
    model.markGuardedPosition();
    EXPECT_EQ(brief(), "");

    rig.scheduler.advance(std::chrono::minutes(61));
    EXPECT_EQ(brief(), "Guarded device not heard recently");
    rig.hear(node(3).seen(rig.scheduler.now()).hops(0).at(52, 5));
    EXPECT_EQ(brief(), "Position of guarded device is old");
    rig.hear(node(3).seen(rig.scheduler.now()).hops(0));
    EXPECT_EQ(brief(), "Guarded device tells no position");

    hear(std::chrono::hours(9));
    model.markGuardedPosition();
    hear(Seconds{0});
    EXPECT_EQ(brief(), "Guard blind · marked position is newer");

    rig.event({.event = MeshtasticBridgeEvent::disconnected});
    EXPECT_EQ(brief(), "Guard blind · no base radio");
    model.connect(testing::ModelRig::port);
    rig.radio->connects.back().done(testing::ModelRig::port);
    EXPECT_EQ(brief(), "Guarded device not heard yet");
}

} // namespace
} // namespace nightjar
