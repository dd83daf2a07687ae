// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/IcuTextServices.h"

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <unicode/ucol.h>
#include <unicode/ureldatefmt.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace nightjar {
namespace {

UCollator* openCollator(const char* locale) {
    UErrorCode status = U_ZERO_ERROR;
    UCollator* collator = ucol_open(locale, &status);
    if (U_FAILURE(status))
        return nullptr;
    // "Node 2" before "Node 10".
    ucol_setAttribute(collator, UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    return collator;
}

std::string sortKey(const UCollator* collator, const QString& text) {
    const auto* characters = reinterpret_cast<const UChar*>(text.utf16());
    const auto length = static_cast<std::int32_t>(text.size());
    std::array<std::uint8_t, 256> buffer;
    const auto needed = ucol_getSortKey(collator, characters, length, buffer.data(), buffer.size());
    if (needed <= static_cast<std::int32_t>(buffer.size()))
        return {buffer.data(), buffer.data() + needed};

    std::vector<std::uint8_t> large(static_cast<std::size_t>(needed));
    ucol_getSortKey(collator, characters, length, large.data(), needed);
    return {large.begin(), large.end()};
}

/// A date so far away that no unit is of use, or none at all.
constexpr double aThousandYears = 1000 * 365.25 * 86'400;

struct Unit {
    URelativeDateTimeUnit unit;
    double seconds;
};
/// The largest first. A month and a year have their mean length.
constexpr std::array units{Unit{UDAT_REL_UNIT_YEAR, 365.25 * 86'400},
                           Unit{UDAT_REL_UNIT_MONTH, 30.4375 * 86'400},
                           Unit{UDAT_REL_UNIT_WEEK, 7 * 86'400},
                           Unit{UDAT_REL_UNIT_DAY, 86'400},
                           Unit{UDAT_REL_UNIT_HOUR, 3'600},
                           Unit{UDAT_REL_UNIT_MINUTE, 60},
                           Unit{UDAT_REL_UNIT_SECOND, 1}};

} // namespace

IcuTextServices::IcuTextServices(std::string locale) : m_locale(std::move(locale)) {}
IcuTextServices::~IcuTextServices() = default;

void IcuTextServices::Close::operator()(UCollator* collator) const {
    ucol_close(collator);
}

const UCollator* IcuTextServices::collator() const {
    if (!m_collator)
        m_collator.reset(openCollator(m_locale.c_str()));
    // An unknown language is no error to ICU; without its data files nothing can be opened at all.
    return m_collator.get();
}

std::string IcuTextServices::collationKey(std::string_view text) const {
    const auto* rules = collator();
    // A sort key ends with its only zero byte, so that the text itself can follow to break ties.
    std::string key =
        rules ? sortKey(rules, QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()))) : "";
    return key.append(text);
}

std::string IcuTextServices::shortTimeOfDay(Date date) const {
    const auto time = QDateTime::fromMSecsSinceEpoch(static_cast<qint64>(unixSeconds(date) * 1000)).time();
    const auto locale = QLocale::system();
    // The short form of the C locale has seconds.
    const auto text = locale.language() == QLocale::C ? time.toString(QStringLiteral("HH:mm"))
                                                      : locale.toString(time, QLocale::ShortFormat);
    return text.toStdString();
}

void IcuTextServices::Close::operator()(URelativeDateTimeFormatter* formatter) const {
    ureldatefmt_close(formatter);
}

std::string IcuTextServices::relativeTime(Date date, Date now) const {
    const double seconds = std::trunc((date - now).count());
    if (!(std::abs(seconds) <= aThousandYears))
        return "long ago";
    UErrorCode status = U_ZERO_ERROR;
    if (!m_relative)
        m_relative.reset(
            ureldatefmt_open("en", nullptr, UDAT_STYLE_LONG, UDISPCTX_CAPITALIZATION_NONE, &status));
    if (U_FAILURE(status))
        return "";
    const auto fits = [seconds](const Unit& unit) { return std::abs(seconds) >= unit.seconds; };
    const auto* found = std::find_if(units.begin(), units.end(), fits);
    const auto& unit = found == units.end() ? units.back() : *found;
    std::array<UChar, 64> text;
    const auto length = ureldatefmt_format(m_relative.get(), std::trunc(seconds / unit.seconds), unit.unit,
                                           text.data(), static_cast<std::int32_t>(text.size()), &status);
    return U_FAILURE(status) ? "" : QString::fromUtf16(text.data(), length).toStdString();
}

std::string IcuTextServices::systemLocale(const HostEnvironment& host) {
    for (const char* variable : {"LC_ALL", "LC_COLLATE", "LANG"}) {
        const auto value = host.environmentVariable(variable).value_or("");
        if (value.empty())
            continue;
        auto name = value.substr(0, value.find_first_of(".@"));
        return name == "C" || name == "POSIX" ? "" : name;
    }
    return "";
}

} // namespace nightjar
