// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/BluezWorld.h"

#include <QDBusConnection>
#include <QDBusMessage>

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using ::testing::ElementsAre;

class BluezAdvertisementTest : public BluezWorld {
protected:
    std::vector<int> readings() {
        settle();
        std::vector<int> readings;
        for (const auto& advertisement : std::exchange(heard, {}))
            readings.push_back(advertisement.rssi);
        return readings;
    }
};

TEST_F(BluezAdvertisementTest, everyReadingIsHeardEqualOnesTooWhateverTheDaemonsRule) {
    scanOnOneAdapter();

    for (const auto* rule : {"rule old", "rule new"}) {
        tell(rule);
        for (const int rssi : {-60, -60, -60, -61, -40, 127})
            advertise(rssi);
        EXPECT_THAT(readings(), ElementsAre(-60, -60, -60, -61, -40, 127)) << rule;
    }
}

TEST_F(BluezAdvertisementTest, anAdvertisementTellsNamesServicesAndIdentifier) {
    scanOnOneAdapter();
    const auto name = RunningBluetoothd::encoded("Fox's\ntag 🦊");
    advertise(-60, "Name=s:" + name + " UUIDs=S:6ba1b218-15a8-461f-9fa8-5dcae273eafd,nonsense");
    tell(std::string("change hci0 ") + tag + " Alias=s:Keys");
    advertise(-61);
    settle();

    ASSERT_EQ(heard.size(), 2u);
    EXPECT_EQ(heard[1], (BluetoothAdvertisement{
                            .peripheral = *BluezDevice::identifier(QString::fromLatin1(tag)),
                            .peripheralName = "Keys",
                            .localName = "Fox's\ntag 🦊",
                            .serviceUUIDs = {*Uuid::fromText("6BA1B218-15A8-461F-9FA8-5DCAE273EAFD")},
                            .rssi = -61,
                        }));
}

TEST_F(BluezAdvertisementTest, whatTheDaemonOnlyRemembersIsNotHeard) {
    tell("up");
    tell("adapter hci0");
    tell("device hci0 AA:BB:CC:00:00:01 Name=s:Stale RSSI=n:-44");
    scansWhenPowered = true;
    makeCentral();
    ASSERT_TRUE(hears(-70));
    tell("device hci0 AA:BB:CC:00:00:02 Name=s:Paired");
    tell("change hci0 AA:BB:CC:00:00:01 Name=s:Other");
    tell("invalidate hci0 AA:BB:CC:00:00:01 RSSI");
    settle();

    for (const auto& advertisement : heard)
        EXPECT_EQ(advertisement.peripheral, BluezDevice::identifier(QString::fromLatin1(tag)));
    tell("adv hci0 AA:BB:CC:00:00:01 -50");
    heard.clear();
    settle();
    ASSERT_EQ(heard.size(), 1u);
    EXPECT_EQ(heard[0].localName, "Other");
}

TEST_F(BluezAdvertisementTest, propertiesOfAnotherTypeDoNoHarm) {
    scanOnOneAdapter();
    advertise(-60, "Name=s:Tag");
    const auto change = std::string("change hci0 ") + tag + ' ';

    tell(change + "RSSI=i:-60");
    tell(change + "RSSI=s:near");
    tell(change + "Name=u:7 RSSI=n:-62 Sonnet=S:a,b");
    tell(change + "Address=s:nonsense RSSI=n:-63");
    tell(std::string("change hci0 ") + tag + " Address=s:" + tag + " RSSI=n:-64");

    EXPECT_THAT(readings(), ElementsAre(-60, 127, 127, -62, -64));
}

TEST_F(BluezAdvertisementTest, aDeviceThatTheDaemonDroppedIsForgottenAndHeardAnew) {
    tell("lifetime 1");
    scanOnOneAdapter();
    ASSERT_TRUE(runEventsUntil([&] { return central->knownDevices() == 0; }));

    EXPECT_EQ(advertise(-60), "added");

    EXPECT_TRUE(runEventsUntil([&] { return heard.size() == 1; }));
}

TEST_F(BluezAdvertisementTest, nobodyElseCanSpeakForTheDaemon) {
    scanOnOneAdapter();
    auto stranger = bus->connect();
    auto signal = QDBusMessage::createSignal(QStringLiteral("/org/bluez/hci0/dev_C0_11_22_33_44_55"),
                                             QStringLiteral("org.freedesktop.DBus.Properties"),
                                             QStringLiteral("PropertiesChanged"));
    signal << QStringLiteral("org.bluez.Device1")
           << QVariantMap{{QStringLiteral("RSSI"), QVariant::fromValue<short>(-20)}} << QStringList();
    auto off = QDBusMessage::createSignal(QStringLiteral("/org/bluez/hci0"),
                                          QStringLiteral("org.freedesktop.DBus.Properties"),
                                          QStringLiteral("PropertiesChanged"));
    off << QStringLiteral("org.bluez.Adapter1") << QVariantMap{{QStringLiteral("Powered"), false}}
        << QStringList();
    stranger.send(signal);
    stranger.send(off);
    // Answered once the signals have been passed on.
    stranger.call(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                                                 QStringLiteral("org.freedesktop.DBus"),
                                                 QStringLiteral("GetId")));

    EXPECT_THAT(readings(), ElementsAre());
    EXPECT_TRUE(states.empty());
}

TEST_F(BluezAdvertisementTest, nothingIsHeardOnceTheScanHasBeenStopped) {
    scanOnOneAdapter();
    auto other = bus->connect();
    ASSERT_TRUE(callAdapter(other, "StartDiscovery"));
    central->stopScan();
    ASSERT_TRUE(runEventsUntil([&] { return sessions() == 1; })) << "only the other program's is left";

    EXPECT_EQ(advertise(-60), "changed");
    central->scan();
    ASSERT_TRUE(hears(-20));

    EXPECT_EQ(heard.front().rssi, -20);
}

TEST_F(BluezAdvertisementTest, theListenerMayStopReplaceAndRestartFromWithinItsCall) {
    scanOnOneAdapter();
    int calls = 0;
    central->setListener(
        {.onStateChanged = {},
         .onAdvertisement = [&, kept = std::string(1'000, 'x')](const BluetoothAdvertisement&) {
             central->stopScan();
             central->scan();
             central->setListener({});
             calls += kept.size() == 1'000 ? 1 : 1'000;
         }});

    EXPECT_TRUE(runEventsUntil([&] {
        advertise(-60);
        return calls > 0;
    }));
    EXPECT_EQ(calls, 1);
}

} // namespace
} // namespace nightjar
