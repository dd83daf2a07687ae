// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/BluezWorld.h"

#include "platform/linux/BluezNames.h"

#include <QDBusMessage>

#include <algorithm>

namespace nightjar {

using namespace std::chrono_literals;

BluezWorld::BluezWorld() {
    settings.stateDebounce = 50ms;
    settings.adapterGrace = 200ms;
    settings.retryDelays = {30ms, 50ms, 100ms};
    connector.open();
}

BluezWorld::~BluezWorld() {
    central.reset();
}

void BluezWorld::makeCentral() {
    central = std::make_unique<BluezCentral>(connector, scheduler, settings);
    central->setListener(
        {.onStateChanged =
             [this] {
                 states.push_back(central->state());
                 if (central->state() != BluetoothRadioState::poweredOn)
                     central->stopScan();
                 else if (scansWhenPowered)
                     central->scan();
             },
         .onAdvertisement =
             [this](const BluetoothAdvertisement& advertisement) { heard.push_back(advertisement); }});
}

void BluezWorld::scanOnOneAdapter() {
    tell("up");
    tell("adapter hci0");
    scansWhenPowered = true;
    makeCentral();
    ASSERT_TRUE(comesTo(BluetoothRadioState::poweredOn));
    ASSERT_TRUE(runEventsUntil([&] { return sessions() == 1; }));
    ASSERT_TRUE(hears(-44));
    settle();
    heard.clear();
    states.clear();
}

std::string BluezWorld::advertise(int rssi, const std::string& properties) {
    return tell(std::string("adv hci0 ") + tag + ' ' + std::to_string(rssi) + ' ' + properties);
}

int BluezWorld::sessions(const std::string& adapter) {
    return std::stoi(tell("sessions " + adapter));
}

bool BluezWorld::callAdapter(QDBusConnection& program, const char* method, const char* adapter) {
    const auto call =
        QDBusMessage::createMethodCall(bluez::service, QStringLiteral("/org/bluez/") + QLatin1String(adapter),
                                       bluez::adapterInterface, QString::fromLatin1(method));
    return program.call(call).type() == QDBusMessage::ReplyMessage;
}

bool BluezWorld::comesTo(BluetoothRadioState state) {
    return runEventsUntil([&] { return central->state() == state; });
}

bool BluezWorld::hears(int rssi) {
    const auto isHeard = [&] {
        return std::ranges::find(heard, rssi, &BluetoothAdvertisement::rssi) != heard.end();
    };
    return runEventsUntil([&] {
        if (!isHeard())
            advertise(rssi);
        return isHeard();
    });
}

void BluezWorld::settle(const std::string& adapter) {
    // The bus keeps the order of what one sender sends, so a reading at the end comes after everything else.
    const auto mark = std::string("F0:F0:F0:F0:F0:F0");
    const auto identifier = BluezDevice::identifier(QString::fromStdString(mark));
    tell("adv " + adapter + ' ' + mark + " -1");
    EXPECT_TRUE(runEventsUntil([&] {
        return std::erase_if(heard, [&](const auto& one) { return one.peripheral == identifier; }) > 0;
    }));
}

} // namespace nightjar
