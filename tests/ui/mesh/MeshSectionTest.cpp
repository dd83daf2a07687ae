// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MeshSection.h"

#include "tests/support/ModelRig.h"
#include "tests/ui/Widgets.h"
#include "ui/mesh/MeshMap.h"
#include "ui/mesh/MeshRows.h"
#include "ui/mesh/MessageList.h"
#include "ui/rows/SidebarList.h"

#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using testing::node;
using testing::positionAt;

/// The three columns of the mesh side by side, on a radio that is connected.
class MeshSectionTest : public ::testing::Test {
protected:
    MeshSectionTest() {
        rig.hear(node(rig.base).named("Attic").hops(0).seen(rig.scheduler.now()));
        auto* layout = new QHBoxLayout(&window);
        for (QWidget* column : {section.sidebar(), section.content(), section.inspector()})
            layout->addWidget(column);
        window.resize(1200, 900);
        window.show();
        settle();
    }

    void hearBicycle(double latitude = 52, Seconds after = Seconds{0}) {
        rig.hear(
            node(42).named("Bicycle").hops(0).seen(rig.scheduler.now()).at(positionAt(latitude, 5, after)));
        settle();
    }
    NightjarModel& model() { return *rig.model; }
    QPushButton* button(const char* name) { return ui::named<QPushButton>(window, name); }
    void click(const char* name) { ui::click(window, name); }
    void settle() { ui::settle(); }

    testing::ModelRig rig;
    MapTiles tiles{MapTileSettings{}};
    ViewContext context{rig.startConnected(), rig.services(), tiles};
    QWidget window;
    MeshSection section{context};
};

TEST_F(MeshSectionTest, guardsMarksAndStopsFromTheInspector) {
    hearBicycle();
    model().setSelectedNodeID(42);
    settle();
    EXPECT_TRUE(ui::shows(window, "Directly heard"));

    click("Guard This Device");
    EXPECT_EQ(model().guardedNodeID(), 42U);
    ui::choose(*ui::named<QComboBox>(window, "Profile"), "Bicycle");
    EXPECT_EQ(model().guardProfile(), GuardProfile::bicycle);
    click("Mark Current Position");
    ASSERT_TRUE(model().parkedPosition());
    EXPECT_TRUE(ui::shows(window, "Inside marked area"));
    EXPECT_TRUE(section.map().map().circle());

    hearBicycle(52.01, Seconds{10});
    EXPECT_TRUE(ui::shows(window, "Outside marked area"));
    EXPECT_TRUE(ui::shows(window, "Confirming movement · 1 of 2 readings · 1111 m"));
    rig.scheduler.advance(std::chrono::hours(2));
    Q_EMIT context.timePassed();
    settle();
    EXPECT_TRUE(ui::shows(
        window, "The guarded device has not been heard for more than an hour. It may have moved since."));

    click("Clear");
    EXPECT_FALSE(model().parkedPosition());
    EXPECT_FALSE(button("Clear")->isEnabled());
    click("Stop Guarding");
    EXPECT_FALSE(model().guardedNodeID());
    EXPECT_FALSE(ui::shows(window, "Alert radius"));
}

TEST_F(MeshSectionTest, showsMovementOnlyOfTheSelectedNode) {
    hearBicycle();
    model().setSelectedNodeID(42);
    settle();
    EXPECT_FALSE(button("Show Movement")->isEnabled());
    EXPECT_EQ(button("Show Movement")->accessibleDescription(),
              QStringLiteral("At least two positions from the last 24 hours are needed."));
    rig.scheduler.advance(std::chrono::seconds(1));
    hearBicycle(52.001, Seconds{1});
    click("Show Movement");
    ASSERT_TRUE(button("Hide Movement"));

    model().setSelectedNodeID(rig.base);
    model().setSelectedNodeID(42);
    settle();
    EXPECT_TRUE(button("Show Movement"));
}

TEST_F(MeshSectionTest, offersRadiosAndTheConnectedOne) {
    rig.host.plugIn("cu.usbmodem9");
    click("Scan");
    settle();
    click("Verify & Connect");
    EXPECT_EQ(rig.radio->connects.back().port, "/dev/cu.usbmodem9");
    settle();

    rig.radio->connects.back().done("/dev/cu.usbmodem9");
    settle();
    click("Disconnect");
    EXPECT_FALSE(model().connectedPort());
    rig.host.unplug("cu.usbmodem9");
    rig.host.unplug("cu.usbserial-0001");
    model().refreshPorts();
    settle();
    EXPECT_TRUE(ui::shows(window, "No USB radios found"));
    EXPECT_TRUE(ui::shows(window, "No remote nodes heard"));
    EXPECT_TRUE(ui::shows(window, "Select a device"));
    click("Scan Again");
}

TEST_F(MeshSectionTest, writesToWhomTheMenuNames) {
    hearBicycle();
    auto& list = *ui::named<SidebarList>(window, "Mesh nodes");
    Q_EMIT list.menuRequested(MeshRows::idOf(42), {});
    auto* menu = window.findChild<QMenu*>();
    ASSERT_TRUE(menu);
    menu->actions().first()->trigger();
    settle();
    EXPECT_EQ(section.meshtasticSection(), MeshtasticSection::messages);
    EXPECT_EQ(ui::named<QComboBox>(window, "Recipient")->currentText(), QStringLiteral("Bicycle"));

    auto& field = *ui::named<QLineEdit>(window, "Message");
    QTest::keyClicks(&field, QStringLiteral("   "));
    QTest::keyClick(&field, Qt::Key_Return);
    EXPECT_TRUE(rig.radio->texts.empty());
    QTest::keyClicks(&field, QStringLiteral("hello"));
    QTest::keyClick(&field, Qt::Key_Return);
    ASSERT_EQ(rig.radio->texts.size(), 1U);
    EXPECT_EQ(rig.radio->texts.front().text, "hello");
    EXPECT_EQ(rig.radio->texts.front().recipient, 42U);
    EXPECT_TRUE(field.text().isEmpty());

    ui::choose(*ui::named<QComboBox>(window, "Recipient"), "Everyone");
    EXPECT_FALSE(model().messageRecipient());
}

TEST_F(MeshSectionTest, selectsByMouseAndKeepsTheSelectionWhileRowsMove) {
    for (std::uint32_t number = 1; number <= 5; ++number)
        rig.hear(node(number).named("Node " + std::to_string(number)).seen(rig.scheduler.now()).hops(2));
    settle();
    auto& list = *ui::named<SidebarList>(window, "Mesh nodes");
    const auto place = list.rows().placeOf(MeshRows::idOf(3));
    ASSERT_TRUE(place);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {},
                      list.visualRect(list.rows().index(*place)).center());
    EXPECT_EQ(model().selectedNodeID(), 3U);

    rig.hear(node(3).named("A name before all others").seen(rig.scheduler.now()).hops(0));
    settle();
    EXPECT_EQ(list.selectedID(), MeshRows::idOf(3));
    EXPECT_EQ(list.currentIndex().data().toString(), QStringLiteral("A name before all others"));
}

TEST_F(MeshSectionTest, fitsOnceAndSaysWhenThereIsNothingToSee) {
    EXPECT_TRUE(ui::shows(window, "Waiting for a position"));
    rig.hear(node(5).at(200, 400).seen(rig.scheduler.now()));
    settle();
    EXPECT_TRUE(ui::shows(window, "Waiting for a position"));

    hearBicycle();
    EXPECT_FALSE(ui::shows(window, "Waiting for a position"));
    ui::waitUntil([this] { return std::abs(section.map().map().region().center.latitude - 52) < 0.001; });
    hearBicycle(60, Seconds{10});
    EXPECT_NEAR(section.map().map().region().center.latitude, 52, 0.1);
    ui::waitUntil([this] { return rig.preferences.boolean("map.hasSavedRegion").value_or(false); });
    EXPECT_NEAR(rig.preferences.number("map.centerLatitude").value_or(0), 52, 0.1);
}

TEST_F(MeshSectionTest, namesEverythingForAScreenReaderAndTakesHostileNames) {
    const std::string hostile = "<b>x</b>\n\u202e" + std::string(10'000, 'a') + '\0';
    rig.hear(node(9).named(hostile).at(89.9, 180).seen(rig.scheduler.now()).hops(0));
    model().setSelectedNodeID(9);
    rig.hear(testing::received(hostile, 1, 9));
    section.setMeshtasticSection(MeshtasticSection::messages);
    settle();
    EXPECT_TRUE(ui::shows(window, QStringLiteral("<b>x</b> ") + QString(490, u'a') + QStringLiteral("…")));
    EXPECT_THAT(ui::unnamedControls(window), ::testing::IsEmpty());
}

} // namespace
} // namespace nightjar
