// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/ui/settings/SettingsRig.h"

#include <QScrollArea>
#include <QTabBar>

#include <limits>

namespace nightjar {
namespace {

using ::testing::AllOf;
using ::testing::HasSubstr;

class SettingsWindowTest : public ::testing::Test, public testing::SettingsRig {};

TEST_F(SettingsWindowTest, showsTheTabOfTheModelInBothDirections) {
    start();
    open(SettingsTab::base);
    auto& bar = *window->findChild<QTabBar*>();
    EXPECT_EQ(bar.currentIndex(), 1);
    EXPECT_EQ(window->size(), QSize(520, 650));

    QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.tabRect(2).center());
    EXPECT_EQ(model->selectedSettingsTab(), SettingsTab::about);
    model->setSelectedSettingsTab(SettingsTab::general);
    EXPECT_EQ(bar.currentIndex(), 0);
    QTest::keyClick(&bar, Qt::Key_Right);
    EXPECT_EQ(model->selectedSettingsTab(), SettingsTab::base);
}

TEST_F(SettingsWindowTest, closesByKeyAndOpensAgain) {
    start();
    for (const auto& [key, modifier] :
         {std::pair(Qt::Key_Escape, Qt::NoModifier), std::pair(Qt::Key_W, Qt::ControlModifier)}) {
        open(SettingsTab::general);
        QTest::keyClick(&*window, key, modifier);
        EXPECT_FALSE(window->isVisible());
        window->open();
        EXPECT_TRUE(window->isVisible());
        EXPECT_FALSE(window->isModal());
    }
}

TEST_F(SettingsWindowTest, tellsWhatEachTabIsAbout) {
    start();
    open(SettingsTab::general);
    EXPECT_THAT(
        texts(),
        AllOf(HasSubstr("Position alert\nMovement radius\n75 m\nA notification is shown after two new "
                        "positions place the guarded device outside this radius. The Mac and its "
                        "Meshtastic radio must be running and connected."),
              HasSubstr("Alert delivery\nMessages alert\niPhone number or Apple Account email\nSend "
                        "signal-loss alerts with Messages\nStatus\nNot configured\n"),
              HasSubstr("Messages must be signed in on this Mac. The first test may ask for permission "
                        "to control Messages. Local notifications remain enabled if message delivery "
                        "fails.")));

    model->setSelectedSettingsTab(SettingsTab::base);
    settle();
    EXPECT_THAT(
        texts(),
        AllOf(HasSubstr("Meshtastic Bridge\nStatus\nNot installed\nUSB connection\nStatus\nChoose a "
                        "USB radio in Settings\n1 USB device available\nAvailable USB devices are shown "
                        "under Meshtastic in the main window. Activate one there to use it as the base "
                        "station.\nLoRa\nRadio settings unavailable\nConnect a Meshtastic radio by USB, "
                        "then read its settings.\nRecommended Halvard Setup\nThe recommended setup uses "
                        "EU868, LongFast, automatic frequency selection, three hops and the legal "
                        "regional transmit-power default. Channel names and encryption keys are not "
                        "changed."),
              HasSubstr("Connect the USB radio first.")));

    model->setSelectedSettingsTab(SettingsTab::about);
    settle();
    EXPECT_THAT(
        texts(),
        AllOf(
            HasSubstr("Halvard Nightjar 1.2.3\nHalvard utility\n"), HasSubstr("halvard-meshtastic-bridge"),
            HasSubstr("not affiliated with the Meshtastic project"),
            HasSubstr("Network types\nMeshtastic\nLong-range positions and messages through a connected mesh "
                      "radio.\nBluetooth\nNearby signal and the Mac location where a chosen device was last "
                      "heard.\nLocal Network\nAvailability of Bonjour services on the same Wi-Fi or Ethernet "
                      "network.\nA missing Bluetooth or Bonjour signal can also be caused by sleep, radio "
                      "conditions or network changes; it is not proof that an item was moved.")));
}

/// How far down on the page a control stands, wherever the page is scrolled to.
int placeOf(const QWidget& control) {
    for (auto* parent = control.parentWidget(); parent; parent = parent->parentWidget()) {
        if (const auto* page = qobject_cast<QScrollArea*>(parent))
            return control.mapTo(page->widget(), QPoint(0, control.height() / 2)).y();
    }
    return std::numeric_limits<int>::max(); // below the page
}

TEST_F(SettingsWindowTest, theKeyboardReachesEachControlFromTopToBottomAndEachHasAName) {
    startConnected();
    model->bluetoothTrackers().setIMessageRecipient("fox@example.com");
    open(SettingsTab::general);
    radioTells(recommended());
    for (const auto& [tab, controls] :
         {std::pair(SettingsTab::general, 6), {SettingsTab::base, 10}, {SettingsTab::about, 0}}) {
        model->setSelectedSettingsTab(tab);
        radioTells(recommended());
        QWidget* const bar = window->findChild<QTabBar*>();
        bar->setFocus();
        int reached = 0;
        int place = 0;
        QTest::keyClick(bar, Qt::Key_Tab);
        for (; QApplication::focusWidget() != bar && reached < 50; ++reached) {
            QWidget& focus = *QApplication::focusWidget();
            const auto* accessible = QAccessible::queryAccessibleInterface(&focus);
            const auto name = accessible->text(QAccessible::Name).toStdString();
            EXPECT_FALSE(name.empty()) << focus.metaObject()->className();
            EXPECT_GE(placeOf(focus), place) << name;
            place = placeOf(focus);
            QTest::keyClick(&focus, Qt::Key_Tab);
        }
        EXPECT_EQ(reached, controls);
    }
}

} // namespace
} // namespace nightjar
