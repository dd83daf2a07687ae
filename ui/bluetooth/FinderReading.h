// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/bluetooth/DiscoveredTracker.h"
#include "ui/style/Colors.h"

#include <QString>

namespace nightjar {

/// What the finder shows of the device that the user is walking towards.
struct FinderReading {
    bool isLost = false;
    QString symbol;
    Tint tint = Tint::secondary;
    QString proximity;
    QString strength; ///< empty while the signal is lost
    QString trendSymbol;
    QString trend;
};

/// The signal is lost after this time without a reading.
inline constexpr Seconds signalLostAfter{5};

/// `device` is null when it is not heard.
[[nodiscard]] FinderReading finderReading(const DiscoveredTracker* device, Date now);

} // namespace nightjar
