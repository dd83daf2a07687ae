// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/bluetooth/FinderReading.h"

#include "ui/bluetooth/BluetoothRows.h"

#include <array>

namespace nightjar {

namespace {

QString fromText(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

Tint tintOf(BluetoothProximityBand band) {
    static constexpr std::array tints{Tint::green, Tint::mint, Tint::orange, Tint::secondary};
    return tints[static_cast<std::size_t>(band)];
}

} // namespace

FinderReading finderReading(const DiscoveredTracker* device, Date now) {
    if (!device || now - device->lastSeen > signalLostAfter)
        return {.isLost = true,
                .symbol = QStringLiteral("antenna.radiowaves.left.and.right.slash"),
                .tint = Tint::secondary,
                .proximity = QStringLiteral("Signal lost"),
                .strength = {},
                .trendSymbol = fromText(lostSignalSystemImage),
                .trend = fromText(lostSignalText)};
    return {.isLost = false,
            .symbol = QStringLiteral("dot.radiowaves.left.and.right"),
            .tint = tintOf(device->band),
            .proximity = fromText(title(device->band)),
            .strength = strengthText(device->smoothedRSSI),
            .trendSymbol = fromText(systemImage(device->trend)),
            .trend = fromText(text(device->trend, device->band))};
}

} // namespace nightjar
