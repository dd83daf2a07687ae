// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/bluetooth/BluetoothRig.h"
#include "tests/support/ViewRig.h"
#include "ui/bluetooth/BluetoothSection.h"
#include "ui/common/DelayPicker.h"
#include "ui/common/NameField.h"
#include "ui/common/SwitchControl.h"

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using testing::advertisement;
using ::testing::AllOf;
using testing::deviceID;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

class BluetoothInspectorTest : public ::testing::Test, public testing::ViewRig<BluetoothSection> {
protected:
    static inline const Uuid keys = deviceID(1);
    static inline const Uuid lamp = deviceID(2);

    BluetoothInspectorTest() {
        open();
        hear(lamp, "Lamp");
        hear(keys, "Keys");
        clickRow(keys.text());
    }
    BluetoothTrackerManager& manager() { return model->bluetoothTrackers(); }
    [[nodiscard]] const TrackedBluetoothDevice& tracked() { return *manager().trackedDeviceWith(keys); }
    void hear(const Uuid& id, const std::string& name, int rssi = -60) {
        bluetooth.hear(advertisement(id, rssi, name));
        pass(250ms);
    }
    void track() {
        click(section->inspector(), "Track This Device");
        pass(250ms);
    }
    [[nodiscard]] std::string shown() { return texts(section->inspector()); }
    NameField& name() { return *control<NameField>(section->inspector(), "Device name"); }
    void type(const char* typed) {
        name().setFocus();
        name().selectAll();
        QTest::keyClicks(&name(), QString::fromUtf8(typed));
    }
};

TEST_F(BluetoothInspectorTest, showsTheSignal) {
    EXPECT_THAT(shown(),
                AllOf(HasSubstr("Keys\nBluetooth LE\nSignal\nProximity\nNearby\nStrength\n-60 dBm\n"
                                "Measurements\n1\nLast seen\n0 s ago"),
                      HasSubstr("Nightjar records the Mac's location when it hears a tracked device. "
                                "Bluetooth signal can show proximity while the device is nearby."),
                      Not(HasSubstr("Tracking")), Not(HasSubstr("Not currently heard"))));
    pass(60s);
    EXPECT_THAT(shown(), AllOf(HasSubstr("Signal\nNot currently heard\nLast seen\n60 s ago"),
                               Not(HasSubstr("Proximity"))));
}

TEST_F(BluetoothInspectorTest, showsWhatIsKeptOfATrackedDevice) {
    location.setAuthorization(LocationAuthorization::authorizedAlways);
    location.locate({{52.0907, 5.1214, 20, scheduler.now()}});
    track();
    EXPECT_THAT(
        shown(),
        AllOf(HasSubstr("Tracking\nDevice name\nAlert when signal is lost\nAlert after\nThe alarm is "
                        "armed only after this Mac hears the device during the current scan. Bluetooth "
                        "range and radio conditions can cause signal loss.\nLast heard\n0 s ago\nLast "
                        "signal\n-60 dBm\nStatus\nAlert off"),
              HasSubstr("Last seen location\nLatitude\n52.09070\nLongitude\n5.12140\nRecorded\n")));
    manager().startScanning();
    settle();
    EXPECT_THAT(shown(), HasSubstr("Signal\nNot currently heard\nTracking"));
}

TEST_F(BluetoothInspectorTest, itsControlsDoWhatTheySay) {
    track();
    click(section->inspector(), "Alert when signal is lost");
    EXPECT_TRUE(tracked().lossAlertEnabled);
    EXPECT_THAT(shown(), HasSubstr("Status\nAlarm armed"));

    auto* picker = control<DelayPicker>(section->inspector(), "Alert after");
    EXPECT_EQ(picker->currentText(), QStringLiteral("30 seconds"));
    picker->setFocus();
    for (const double seconds : {60.0, 120.0, 900.0}) {
        QTest::keyClick(picker, Qt::Key_Down);
        EXPECT_EQ(tracked().lossAlertDelay, seconds);
    }
    manager().setLossAlertDelay(45, keys);
    settle();
    EXPECT_EQ(picker->currentText(), QStringLiteral("45 seconds"));

    click(section->inspector(), "Find Nearby");
    EXPECT_EQ(manager().trackedID(), keys);
    click(section->inspector(), "Stop Finding");
    EXPECT_FALSE(manager().isFinding());
    click(section->inspector(), "Stop Tracking");
    EXPECT_FALSE(manager().trackedDeviceWith(keys));
    EXPECT_TRUE(control<QAbstractButton>(section->inspector(), "Track This Device"));
}

TEST_F(BluetoothInspectorTest, renamesOnEnterAndOnLeaving) {
    track();
    type("Bunch");
    hear(keys, "Keys", -70);
    pass(2s);
    hear(keys, "Keys", -70);
    EXPECT_EQ(name().text(), QStringLiteral("Bunch")) << "what is being typed stays";
    EXPECT_EQ(tracked().name, "Keys");
    QTest::keyClick(&name(), Qt::Key_Return);
    EXPECT_EQ(tracked().name, "Bunch");

    type("House keys");
    list().setFocus();
    EXPECT_EQ(tracked().name, "House keys");

    type("Never mind");
    QTest::keyClick(&name(), Qt::Key_Escape);
    EXPECT_EQ(name().text(), QStringLiteral("House keys"));
    type("  ");
    QTest::keyClick(&name(), Qt::Key_Return);
    EXPECT_EQ(name().text(), QStringLiteral("House keys"));
    EXPECT_EQ(tracked().name, "House keys");

    manager().track(*manager().deviceWith(lamp));
    pass(250ms);
    type("Wrong");
    clickRow(lamp.text());
    EXPECT_EQ(manager().trackedDeviceWith(lamp)->name, "Lamp");
    EXPECT_EQ(tracked().name, "Wrong") << "it was typed for the device that was left";
}

TEST_F(BluetoothInspectorTest, theKeyboardGoesThroughItInReadingOrder) {
    track();
    name().setFocus();
    std::vector<std::string> reached;
    for (int step = 0; step < 5; ++step) {
        reached.push_back(QApplication::focusWidget()->accessibleName().toStdString());
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
    }
    EXPECT_THAT(reached, ElementsAre("Device name", "Alert when signal is lost", "Alert after", "Find Nearby",
                                     "Stop Tracking"));
}

TEST_F(BluetoothInspectorTest, nothingIsSentByShowing) {
    track();
    manager().setLossAlert(true, keys);
    manager().setLossAlertDelay(20, keys);
    const auto before = tracked();
    section->selection().set(lamp.text());
    settle();
    section->selection().set(keys.text());
    settle();
    EXPECT_EQ(tracked(), before);
}

} // namespace
} // namespace nightjar
