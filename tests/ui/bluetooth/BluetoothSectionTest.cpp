// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/bluetooth/BluetoothSection.h"
#include "tests/app/bluetooth/BluetoothRig.h"
#include "tests/support/ViewRig.h"
#include "ui/common/SwitchControl.h"
#include "ui/map/MapView.h"

#include <QSignalSpy>

#include <filesystem>
#include <fstream>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using testing::advertisement;
using ::testing::AllOf;
using ::testing::Contains;
using testing::deviceID;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class BluetoothSectionTest : public ::testing::Test, public testing::ViewRig<BluetoothSection> {
protected:
    static inline const Uuid keys = deviceID(1);
    static inline const Uuid lamp = deviceID(2);

    BluetoothTrackerManager& manager() { return model->bluetoothTrackers(); }
    void hear(const Uuid& id, const std::string& name, int rssi = -60) {
        bluetooth.hear(advertisement(id, rssi, name));
        pass(250ms);
    }
    /// "Keys" are nearby and chosen.
    void chooseKeys() {
        open();
        hear(keys, "Keys");
        clickRow(keys.text());
    }
};

TEST_F(BluetoothSectionTest, scansWhileItIsOnScreen) {
    open();
    QSignalSpy title(&*section, &ScanningSection::scanTitleChanged);
    EXPECT_EQ(section->scanTitle(), QStringLiteral("Stop"));
    EXPECT_THAT(texts(section->sidebar()),
                HasSubstr("Looking for devices\nDevices appear as the Mac hears them during this scan.\n"
                          "Looking for Bluetooth devices…"));
    EXPECT_THAT(texts(section->content()),
                HasSubstr("Looking for Bluetooth devices\nListening for Bluetooth devices nearby."));
    EXPECT_THAT(texts(section->inspector()),
                HasSubstr("Select a Bluetooth device\nChoose a nearby device to see its signal and available "
                          "actions."));

    section->scanOrStop();
    settle();
    EXPECT_FALSE(manager().isScanning());
    EXPECT_EQ(section->scanTitle(), QStringLiteral("Scan"));
    EXPECT_EQ(title.size(), 1);
    EXPECT_THAT(texts(section->sidebar()),
                HasSubstr("No Bluetooth devices found\nDevices appear as the Mac hears them"));
    EXPECT_THAT(texts(section->content()),
                HasSubstr("Choose a Bluetooth device\nSelect a nearby device in the sidebar."));

    section->scanOrStop();
    manager().startFinding(keys);
    section->scanOrStop();
    EXPECT_FALSE(manager().isFinding());
    section->activate();
    manager().startFinding(keys);
    manager().setFinderSoundEnabled(true);
    section->deactivate();
    EXPECT_FALSE(manager().isFinding());
    EXPECT_FALSE(manager().isScanning());
    EXPECT_FALSE(manager().finderSoundEnabled());
}

TEST_F(BluetoothSectionTest, leadsFromADeviceNearbyToTheMapOfATrackedOne) {
    chooseKeys();
    EXPECT_THAT(rows(), ElementsAre("Nearby:", "Keys | Bluetooth LE · -60 dBm"));
    EXPECT_THAT(texts(section->content()),
                HasSubstr("Keys\nUse the live Bluetooth signal to locate this device nearby."));

    click(section->content(), "Track This Device");
    pass(250ms);
    EXPECT_THAT(rows(), ElementsAre("Tracked:", "Keys | Nearby · -60 dBm"));
    EXPECT_THAT(
        texts(section->content()),
        HasSubstr("Nightjar is tracking this device. Its last-seen location will appear after the Mac "
                  "has a location fix and hears the device again."));

    location.setAuthorization(LocationAuthorization::authorizedAlways);
    location.locate({{52.09, 5.12, 20, scheduler.now()}});
    pass(2s);
    hear(keys, "Keys", -64);
    EXPECT_THAT(texts(section->content()), HasSubstr("Last seen with this Mac\n0 s ago · -64 dBm"));
    ASSERT_EQ(section->map().markers().size(), 1U);
    EXPECT_EQ(section->map().markers()[0].title, QStringLiteral("Keys"));
    EXPECT_NEAR(section->map().region().center.latitude, 52.09, 1e-4);
}

TEST_F(BluetoothSectionTest, findsTheChosenDevice) {
    chooseKeys();
    QSignalSpy settings(&*context, &ViewContext::settingsRequested);
    click(section->content(), "Find Nearby");
    EXPECT_TRUE(manager().isFinding());
    hear(keys, "Keys", -45);
    EXPECT_THAT(
        texts(section->content()),
        AllOf(HasSubstr("Keys\nVery close\n-45 dBm\nMeasuring signal…\nSound guidance\nLast seen\n0 s ago"),
              HasSubstr("Bluetooth signal indicates proximity, not an exact distance. Walls, people and "
                        "nearby objects can change the reading.")));
    EXPECT_THAT(rows(), Contains("Keys | Bluetooth LE · -45 dBm | Currently finding"));

    click(section->content(), "Sound guidance");
    EXPECT_TRUE(manager().finderSoundEnabled());
    model->setSelectedSettingsTab(SettingsTab::about);
    click(section->content(), "Open Tracker Settings");
    EXPECT_EQ(settings.size(), 1);
    EXPECT_EQ(model->selectedSettingsTab(), SettingsTab::general);

    pass(6s);
    EXPECT_THAT(texts(section->content()), HasSubstr("Signal lost\n"));
    click(section->content(), "Stop Finding");
    EXPECT_FALSE(manager().isFinding());
    EXPECT_TRUE(control<QAbstractButton>(section->content(), "Find Nearby"));
}

TEST_F(BluetoothSectionTest, offersTheSameInTheMenuOfARow) {
    chooseKeys();
    hear(lamp, "Lamp");
    chooseInMenu(lamp.text(), "Track This Device");
    EXPECT_TRUE(manager().trackedDeviceWith(lamp));
    pass(250ms);
    chooseInMenu(lamp.text(), "Find Nearby");
    EXPECT_EQ(manager().trackedID(), lamp);
    EXPECT_EQ(section->selection().id(), lamp.text()) << "so that the finder is on screen";
    chooseInMenu(lamp.text(), "Stop Finding");
    EXPECT_FALSE(manager().isFinding());
    chooseInMenu(lamp.text(), "Stop Tracking");
    EXPECT_FALSE(manager().trackedDeviceWith(lamp));
}

TEST_F(BluetoothSectionTest, selectsTheFirstTrackedDeviceWhenNoneIsChosen) {
    open();
    hear(keys, "Keys");
    hear(lamp, "Lamp");
    EXPECT_THAT(section->selection().id(), IsEmpty());
    manager().track(*manager().deviceWith(lamp));
    settle();
    EXPECT_EQ(section->selection().id(), lamp.text());

    clickRow(keys.text());
    manager().startScanning();
    pass(250ms);
    EXPECT_THAT(texts(section->content()), HasSubstr("Looking for Bluetooth devices"));
    pass(2s);
    hear(keys, "Keys");
    EXPECT_THAT(texts(section->content()), HasSubstr("Use the live Bluetooth signal")) << "heard again";
    EXPECT_EQ(list().selectedID(), keys.text());
}

TEST_F(BluetoothSectionTest, listsNewDevicesAFewTimesASecondAndPaintsOneRowForAReading) {
    open();
    hear(keys, "Keys");
    QSignalSpy inserted(list().model(), &QAbstractItemModel::rowsInserted);
    QSignalSpy changed(list().model(), &QAbstractItemModel::dataChanged);
    for (std::uint32_t number = 10; number < 70; ++number) {
        bluetooth.hear(advertisement(deviceID(number)));
        settle();
    }
    EXPECT_LE(inserted.size(), 1);
    pass(250ms);
    EXPECT_LE(inserted.size(), 2);
    EXPECT_EQ(list().rows().rowCount(), 1 + 61);

    pass(2s);
    changed.clear();
    hear(deviceID(30), "Keys", -70);
    ASSERT_EQ(changed.size(), 1);
    EXPECT_EQ(changed[0][0].toModelIndex(), changed[0][1].toModelIndex());
    EXPECT_EQ(list().rows().idAt(changed[0][0].toModelIndex().row()), deviceID(30).text());
}

TEST_F(BluetoothSectionTest, survivesWhatTheAirSays) {
    std::filesystem::create_directories(folder.path() / "Nightjar");
    std::ofstream(folder.path() / "Nightjar" / "tracked-bluetooth-devices.json")
        << R"([{"id":")" << keys.text() << R"(","name":"","discoveredName":"","addedAt":0,"lastSeen":-1e300,)"
        << R"("lastRSSI":-2147483648,"latitude":1e300,"longitude":500,"lossAlertDelay":-1}])";
    open();
    EXPECT_EQ(section->selection().id(), keys.text());
    EXPECT_THAT(texts(section->content()), HasSubstr("Nightjar is tracking this device."));
    std::uint32_t number = 10;
    for (const auto& name : {std::string("<b>bold</b>"), std::string(10'000, 'W'),
                             std::string("\u202eleft\u202c\nline"), std::string("a\0b", 3), std::string(" ")})
        hear(deviceID(++number), name);
    for (std::uint32_t id = 11; id <= number; ++id) {
        section->selection().set(deviceID(id).text());
        manager().startFinding(deviceID(id));
        settle();
        EXPECT_LE(widthNeeded(section->content()), 480);
        manager().track(*manager().deviceWith(deviceID(id)));
        settle();
        EXPECT_LE(widthNeeded(section->inspector()), 280);
        EXPECT_THAT(texts(section->content()) + texts(section->inspector()), Not(HasSubstr("\u202e")));
    }
    EXPECT_THAT(rows(), Contains("left line | Nearby · -60 dBm"));
    window->grab();
    EXPECT_THAT(nameless(), IsEmpty());

    for (std::uint32_t id = 11; id <= number; ++id)
        manager().stopTracking(deviceID(id));
    manager().stopFinding();
    manager().startScanning();
    pass(1s);
    EXPECT_EQ(rows().size(), 2U) << "only what came from the file";
}

TEST_F(BluetoothSectionTest, mayGoBeforeOrAfterItsWidgets) {
    open();
    hear(keys, "Keys");
    section.reset();
    hear(lamp, "Lamp");
    EXPECT_THAT(window->findChildren<QWidget*>(), IsEmpty());
    section.emplace(*context);
    delete section->sidebar();
    delete section->inspector();
    section->takeFocus();
    hear(keys, "Keys");
    delete section->content();
}

} // namespace
} // namespace nightjar
