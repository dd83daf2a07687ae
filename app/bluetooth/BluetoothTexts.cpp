// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/bluetooth/BluetoothTexts.h"

#include <algorithm>
#include <cmath>

namespace nightjar::BluetoothTexts {

std::string_view radioState(BluetoothRadioState state) {
    switch (state) {
    case BluetoothRadioState::poweredOn:
        return "Bluetooth is ready";
    case BluetoothRadioState::poweredOff:
        return "Turn on Bluetooth to configure a tracker";
    case BluetoothRadioState::unauthorised:
        return "Allow Bluetooth access in System Settings";
    case BluetoothRadioState::unsupported:
        return "Bluetooth Low Energy is not supported on this Mac";
    case BluetoothRadioState::unknown:
    case BluetoothRadioState::resetting:
        break;
    }
    return "Bluetooth is unavailable";
}

std::string found(std::size_t count) {
    return "Found " + std::to_string(count) + " Bluetooth device" + (count == 1 ? "" : "s");
}

std::string_view stopped(bool hasDevices) {
    return hasDevices ? "Choose a Bluetooth device" : "No Bluetooth devices found";
}

std::string finding(const std::string* name) {
    return "Finding " + (name ? *name : std::string("device")) + "…";
}

std::string liveSignal(int rssi) {
    return "Live signal · " + std::to_string(rssi) + " dBm";
}

MadeUpName madeUpName(const Uuid& id) {
    constexpr std::string_view kind = "Bluetooth device ";
    std::array<char, Uuid::textLength> digits{};
    id.write(digits);
    MadeUpName name{};
    std::ranges::copy(kind, name.begin());
    std::copy_n(digits.begin(), name.size() - kind.size(), name.begin() + kind.size());
    return name;
}

std::string lossDelayDescription(double seconds) {
    constexpr long long minute = 60;
    constexpr long long hour = 60 * minute;
    constexpr long long day = 24 * hour;
    // Whatever a file says: a number that fits.
    const long long whole = std::llround(std::clamp(seconds, -1e15, 1e15));
    const auto inUnits = [whole](long long unit, const char* name) {
        const auto count = whole / unit;
        return std::to_string(count) + ' ' + name + (whole == unit ? "" : "s");
    };
    if (whole < minute)
        return std::to_string(whole) + " seconds";
    if (whole < hour)
        return inUnits(minute, "minute");
    return whole < day ? inUnits(hour, "hour") : inUnits(day, "day");
}

} // namespace nightjar::BluetoothTexts
