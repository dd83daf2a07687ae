// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/bluetooth/BluetoothRows.h"
#include "tests/app/bluetooth/BluetoothRig.h"
#include "tests/support/Builders.h"
#include "ui/bluetooth/FinderReading.h"

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using testing::BluetoothRig;
using testing::deviceID;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using testing::startDate;

class BluetoothRowsTest : public ::testing::Test, public BluetoothRig {
protected:
    static inline const Uuid keys = deviceID(1);
    static inline const Uuid lamp = deviceID(2);

    [[nodiscard]] ShownBluetoothDevice shown(const Uuid& id) {
        return *shownBluetoothDevice(*manager, id.text(), scheduler.now());
    }
    [[nodiscard]] std::string status() {
        return lossAlertStatus(manager->lossAlertState(*shown(keys).tracked)).toStdString();
    }
};

TEST_F(BluetoothRowsTest, tellWhatADeviceIs) {
    TrackedBluetoothDevice tracked{.id = keys, .name = "Keys", .discoveredName = "Tag"};
    DiscoveredTracker live{.id = keys, .name = "Tag", .smoothedRSSI = -60.5, .rssi = -40};

    auto row = trackedBluetoothDeviceRow(tracked, nullptr, QStringLiteral("yesterday"));
    EXPECT_EQ(row.title, QStringLiteral("Keys"));
    EXPECT_EQ(row.caption, QStringLiteral("Last seen yesterday"));
    EXPECT_EQ(row.tint, Tint::secondary);
    EXPECT_THAT(row.badges, IsEmpty());

    tracked.latitude = 52;
    tracked.longitude = 5;
    tracked.lossAlertEnabled = true;
    row = trackedBluetoothDeviceRow(tracked, &live, {});
    EXPECT_EQ(row.caption, QStringLiteral("Nearby · -61 dBm"));
    EXPECT_EQ(row.tint, Tint::green);
    EXPECT_THAT(row.badges, ElementsAre(RowBadge{QStringLiteral("location.fill"), Tint::blue,
                                                 QStringLiteral("Last-seen location recorded")},
                                        RowBadge{QStringLiteral("bell.badge.fill"), Tint::orange,
                                                 QStringLiteral("Signal-loss alert enabled")}));

    row = bluetoothDeviceRow(live, false);
    EXPECT_EQ(row.symbol, QStringLiteral("dot.radiowaves.left.and.right"));
    EXPECT_EQ(row.caption, QStringLiteral("Bluetooth LE · -61 dBm"));
    EXPECT_EQ(row.tint, Tint::blue);
    live.isMeshtastic = true;
    row = bluetoothDeviceRow(live, true);
    EXPECT_EQ(row.caption, QStringLiteral("Meshtastic · -61 dBm"));
    EXPECT_EQ(row.tint, Tint::green);
    EXPECT_THAT(row.badges, ElementsAre(RowBadge{QStringLiteral("scope"), Tint::green,
                                                 QStringLiteral("Currently finding")}));
}

TEST_F(BluetoothRowsTest, listATrackedDeviceOnce) {
    scan();
    trackHeard(keys);
    hear(lamp);

    auto sections = bluetoothSections(*manager);
    EXPECT_THAT(sections[0].ids, ElementsAre(keys.text()));
    EXPECT_THAT(sections[1].ids, ElementsAre(lamp.text()));

    for (std::uint32_t number = 0; number < 5100; ++number)
        hear(deviceID(1000 + number));
    sections = bluetoothSections(*manager);
    ASSERT_EQ(sections[1].ids.size(), 5000U);
    EXPECT_EQ(sections[1].ids.front(), deviceID(1100).text());
    EXPECT_EQ(sections[1].ids.back(), deviceID(6099).text());
}

TEST_F(BluetoothRowsTest, keepTheSelectionWhileItsDeviceIsKnown) {
    scan();
    const auto rule = [this](const std::string& selected) {
        return selectFirstTrackedBluetoothDeviceIfNeeded(selected, *manager);
    };
    EXPECT_THAT(rule("no identifier"), IsEmpty());
    hear(lamp);
    EXPECT_EQ(rule(lamp.text()), lamp.text());
    trackHeard(keys);
    EXPECT_EQ(rule(deviceID(3).text()), keys.text());
    manager->startScanning();
    EXPECT_EQ(rule(lamp.text()), keys.text()) << "not heard in this scan";
}

TEST_F(BluetoothRowsTest, aSilentDeviceDoesNotLookAsIfItWereHere) {
    scan();
    trackHeard(keys);
    EXPECT_TRUE(shown(keys).isHeard);
    pass(30s);
    EXPECT_TRUE(shown(keys).isHeard);
    pass(1s);
    EXPECT_FALSE(shown(keys).isHeard);
    hear(keys);
    EXPECT_TRUE(shown(keys).isHeard);
    manager->stopScanning();
    EXPECT_FALSE(shown(keys).isHeard) << "nobody listens";

    manager->startScanning();
    pass(2s);
    hear(keys);
    manager->setLossAlert(true, keys);
    manager->setLossAlertDelay(15, keys);
    pass(20s);
    EXPECT_EQ(notifications.posted().size(), 1U);
    EXPECT_FALSE(shown(keys).isHeard) << "its loss was told";
    EXPECT_FALSE(shownBluetoothDevice(*manager, deviceID(9).text(), scheduler.now()));
}

TEST_F(BluetoothRowsTest, theStatusPromisesNoAlarmThatCannotCome) {
    scan();
    trackHeard(keys);
    EXPECT_EQ(status(), "Alert off");
    pass(10s);
    manager->setLossAlert(true, keys);
    EXPECT_EQ(status(), "Waiting to hear this device");
    hear(keys);
    EXPECT_EQ(status(), "Alarm armed");
    manager->stopScanning();
    EXPECT_EQ(status(), "Not scanning · alarm off");
    manager->startFinding(keys);
    hear(keys);
    EXPECT_EQ(status(), "Not scanning · alarm off") << "the finder alone looks for no loss";
    manager->stopFinding();
    manager->startScanning();
    EXPECT_EQ(status(), "Waiting to hear this device");
    pass(5s);
    hear(keys);
    EXPECT_EQ(status(), "Alarm armed");
    wake.wake();
    EXPECT_EQ(status(), "Waiting to hear this device");
    hear(keys);
    pass(5s);
    hear(keys);
    bluetooth.setState(BluetoothRadioState::poweredOff);
    EXPECT_EQ(status(), "Not scanning · alarm off");
    bluetooth.setState(BluetoothRadioState::poweredOn);
    pass(2s);
    hear(keys);
    pass(36s);
    EXPECT_EQ(status(), "Signal lost · alert sent");
    manager->stopScanning();
    EXPECT_EQ(status(), "Signal lost · alert sent");
}

TEST(FinderReadingTest, tellsTheWay) {
    DiscoveredTracker device{.id = deviceID(1), .lastSeen = startDate, .smoothedRSSI = -49.6};
    const auto tell = [&device](Seconds later = 0s) {
        const auto reading = finderReading(&device, startDate + later);
        return (reading.proximity + u'|' + reading.strength + u'|' + reading.trendSymbol + u'|' +
                reading.trend)
            .toStdString();
    };
    const auto set = [&device](BluetoothProximityBand band, BluetoothProximityTrend trend) {
        device.band = band;
        device.trend = trend;
    };
    using enum BluetoothProximityBand;
    using enum BluetoothProximityTrend;

    set(veryClose, acquiring);
    EXPECT_EQ(tell(), "Very close|-50 dBm|waveform.path.ecg|Measuring signal…");
    EXPECT_EQ(finderReading(&device, startDate).tint, Tint::green);
    set(nearby, warmer);
    EXPECT_EQ(tell(), "Nearby|-50 dBm|arrow.up.right|Warmer · getting closer");
    EXPECT_EQ(finderReading(&device, startDate).tint, Tint::mint);
    set(fartherAway, colder);
    EXPECT_EQ(tell(), "Farther away|-50 dBm|arrow.down.right|Colder · moving away");
    EXPECT_EQ(finderReading(&device, startDate).tint, Tint::orange);
    set(weak, steady);
    EXPECT_EQ(tell(5s), "Weak signal|-50 dBm|equal|Weak signal");

    const std::string lost = "Signal lost||questionmark.circle|Move around to find the signal again";
    EXPECT_EQ(tell(5.1s), lost);
    const auto unheard = finderReading(nullptr, startDate);
    EXPECT_TRUE(unheard.isLost);
    EXPECT_EQ(unheard.symbol, QStringLiteral("antenna.radiowaves.left.and.right.slash"));
}

} // namespace
} // namespace nightjar
