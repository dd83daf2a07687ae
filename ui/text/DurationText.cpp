// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/text/DurationText.h"

#include <QStringList>

#include <array>
#include <cmath>

namespace nightjar {

QString durationText(double seconds) {
    struct Unit {
        qint64 seconds;
        const char* name;
    };
    static constexpr std::array<Unit, 4> units{
        {{86'400, "day"}, {3'600, "hour"}, {60, "minute"}, {1, "second"}}};
    constexpr double most = 1e15; // whole seconds beyond are no longer exact
    if (!std::isfinite(seconds) || seconds >= most)
        return QStringLiteral("Never");

    auto left = seconds > 0 ? std::llround(seconds) : 0LL;
    QStringList parts;
    for (const auto& unit : units) {
        const auto count = left / unit.seconds;
        left %= unit.seconds;
        if (count > 0)
            parts << QStringLiteral("%1 %2%3").arg(count).arg(QLatin1StringView(unit.name),
                                                              count == 1 ? QString() : QStringLiteral("s"));
    }
    return parts.isEmpty() ? QStringLiteral("0 seconds") : parts.mid(0, 2).join(u' ');
}

} // namespace nightjar
