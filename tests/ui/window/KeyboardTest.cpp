// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/FakeDesktopAppearance.h"
#include "tests/app/network/NetworkRig.h"
#include "tests/support/ModelRig.h"
#include "tests/ui/Widgets.h"
#include "ui/common/AlertSheet.h"
#include "ui/rows/SidebarList.h"
#include "ui/window/MainWindow.h"
#include "ui/window/NightjarApp.h"

#include <QMenu>

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace nightjar {
namespace {

using testing::node;

/// The main window on a computer of fakes, its radio connected, and nobody has a mouse.
class KeyboardTest : public ::testing::Test {
protected:
    KeyboardTest() {
        rig.bluetooth.setState(BluetoothRadioState::poweredOn);
        rig.preferences.setString("serialPort", testing::ModelRig::port);
        auto link = std::make_unique<testing::FakeRadioLink>();
        radio = link.get();
        app = std::make_unique<NightjarApp>(
            NightjarApp::Environment{
                .platform = rig.services(), .appearance = appearance, .version = {}, .cacheFolder = {}},
            std::move(link));
        app->start();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window()));
        EXPECT_TRUE(rig.mainThread.runUntil([this] { return !radio->connects.empty(); }));
        radio->connects.back().done(testing::ModelRig::port);
        hear(node(42).named("Bicycle").hops(0).seen(rig.scheduler.now()).at(testing::positionAt(52, 5)));
        settle();
    }

    void settle() {
        for (int turn = 0; turn < 3; ++turn) {
            rig.mainThread.runPending();
            ui::settle();
        }
    }
    void hear(const MeshNode& node) {
        radio->connects.back().listener.onEvent({.event = MeshtasticBridgeEvent::node, .node = node});
        settle();
    }
    void press(int key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(window().windowHandle(), static_cast<Qt::Key>(key), modifiers);
        settle();
    }
    /// Where the keyboard is, as a screen reader says it.
    QString focus() {
        auto* widget = QApplication::focusWidget();
        auto* spoken = widget ? QAccessible::queryAccessibleInterface(widget) : nullptr;
        return spoken ? spoken->text(QAccessible::Name) : QStringLiteral("nowhere");
    }
    /// Until the keyboard is there; false when it never comes.
    bool tabTo(const char* name) {
        for (int step = 0; step < 40 && focus() != QLatin1String(name); ++step)
            press(Qt::Key_Tab);
        return focus() == QLatin1String(name);
    }
    MainWindow& window() { return app->mainWindow(); }
    NightjarModel& model() { return app->model(); }

    testing::ModelRig rig;
    testing::FakeRadioLink* radio = nullptr;
    FakeDesktopAppearance appearance;
    std::unique_ptr<NightjarApp> app;
};

TEST_F(KeyboardTest, guardsMarksAndNeverPressesWhatComesNext) {
    press(Qt::Key_3, Qt::ControlModifier);
    EXPECT_EQ(focus(), QStringLiteral("Mesh nodes"));
    press(Qt::Key_Down);
    EXPECT_EQ(model().selectedNodeID(), 42U);
    ASSERT_TRUE(tabTo("Guard This Device"));
    press(Qt::Key_Space);
    EXPECT_EQ(model().guardedNodeID(), 42U);
    EXPECT_EQ(QApplication::focusWidget()->accessibleName(), QStringLiteral("Profile"));

    ASSERT_TRUE(tabTo("Mark Current Position"));
    press(Qt::Key_Space);
    EXPECT_EQ(focus(), QStringLiteral("Update Marked Position"));
    ASSERT_TRUE(tabTo("Clear"));
    press(Qt::Key_Space);
    EXPECT_FALSE(model().parkedPosition());
    EXPECT_EQ(focus(), QStringLiteral("Mark Current Position"));
    ASSERT_TRUE(tabTo("Stop Guarding"));
    press(Qt::Key_Space);
    EXPECT_FALSE(model().guardedNodeID());
    EXPECT_EQ(focus(), QStringLiteral("Guard This Device"));
}

TEST_F(KeyboardTest, goesFromColumnToColumnWhateverWasMadeFirst) {
    press(Qt::Key_1, Qt::ControlModifier);
    press(Qt::Key_3, Qt::ControlModifier);
    press(Qt::Key_Down);
    ASSERT_TRUE(tabTo("Message"));
    press(Qt::Key_Space);
    EXPECT_TRUE(qobject_cast<QLineEdit*>(QApplication::focusWidget()));
    press(Qt::Key_3, Qt::ControlModifier);
    QStringList order;
    for (int step = 0; step < 40; ++step) {
        if (!order.isEmpty() && order.first() == focus())
            break;
        order << focus();
        press(Qt::Key_Tab);
    }
    EXPECT_EQ(order.join(QStringLiteral(", ")).toStdString(),
              "Mesh nodes, Bicycle, Primary, Message, Send message, Message, Guard This Device, Meshtastic, "
              "Messages, Reconnect Meshtastic USB base, Settings, Scan, Disconnect");
}

/// What a screen reader finds on screen, depth first: "role name".
void collect(QAccessibleInterface& node, QStringList& found) {
    if (node.state().invisible)
        return;
    const QString name = node.text(QAccessible::Name);
    if (!name.isEmpty())
        found << QStringLiteral("%1 %2").arg(QString::number(node.role(), 16), name);
    EXPECT_FALSE(node.text(QAccessible::Description).contains(u'<')) << name.toStdString();
    for (int child = 0; child < node.childCount(); ++child)
        collect(*node.child(child), found);
}

TEST_F(KeyboardTest, tellsEverythingOnceAndInReadingOrder) {
    model().setSelectedNodeID(42);
    settle();
    QStringList found;
    collect(*QAccessible::queryAccessibleInterface(&window()), found);
    const auto placeOf = [&found](QAccessible::Role role, const char* name) {
        return found.indexOf(QStringLiteral("%1 %2").arg(QString::number(role, 16), QLatin1String(name)));
    };

    const auto group = placeOf(QAccessible::Grouping, "Network");
    const auto list = placeOf(QAccessible::List, "Mesh nodes");
    const auto map = placeOf(QAccessible::List, "Map");
    const auto header = placeOf(QAccessible::Heading, "Bicycle");
    const auto row = placeOf(QAccessible::StaticText, "Connection: Directly heard");
    const std::vector places{group, list, map, header, row};
    EXPECT_GE(group, 0);
    EXPECT_TRUE(std::ranges::is_sorted(places)) << found.join(u'\n').toStdString();
    EXPECT_EQ(found.filter(QStringLiteral("Power")).size(), 1) << found.join(u'\n').toStdString();
}

TEST_F(KeyboardTest, forgetsOneDeviceAtATime) {
    auto& browser = model().localNetwork();
    press(Qt::Key_2, Qt::ControlModifier);
    for (const char* name : {"Printer", "Speaker"})
        rig.network.announce(testing::service(name, "_ipp._tcp"));
    settle();
    for (const auto& device : std::vector(browser.devices()))
        browser.track(device.id);
    settle();
    press(Qt::Key_Down);
    ASSERT_TRUE(tabTo("Forget Device"));
    press(Qt::Key_Space);
    press(Qt::Key_Space);
    EXPECT_EQ(browser.devices().size(), 1U);
}

TEST_F(KeyboardTest, opensTheMenuOfARowWithoutAMenuKey) {
    press(Qt::Key_3, Qt::ControlModifier);
    press(Qt::Key_Down);
    press(Qt::Key_F10, Qt::ShiftModifier);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    menu->close();
}

TEST_F(KeyboardTest, showsNoErrorUnderTypingHands) {
    model().setMessageRecipient(42);
    ASSERT_TRUE(tabTo("Message"));
    press(Qt::Key_Space);
    auto* field = QApplication::focusWidget();
    ASSERT_EQ(focus(), QStringLiteral("Message"));
    press(Qt::Key_A);
    model().setErrorMessage("The radio has gone.");
    press(Qt::Key_Space);
    press(Qt::Key_B);
    EXPECT_FALSE(QApplication::activeModalWidget());

    ui::waitUntil([] { return QApplication::activeModalWidget() != nullptr; });
    QTest::keyClick(QApplication::activeModalWidget(), Qt::Key_Return);
    settle();
    EXPECT_FALSE(model().errorMessage());
    window().activateWindow();
    ui::waitUntil([field] { return QApplication::focusWidget() == field; });
    EXPECT_EQ(qobject_cast<QLineEdit*>(field)->text(), QStringLiteral("a b"));
}

} // namespace
} // namespace nightjar
