// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/IcuTextServices.h"

#include <QDateTime>
#include <QLocale>
#include <QString>

#include <unicode/ucol.h>

#include <array>
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
