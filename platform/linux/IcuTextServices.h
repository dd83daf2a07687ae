// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/HostEnvironment.h"
#include "platform/TextServices.h"

#include <memory>

struct UCollator;
struct URelativeDateTimeFormatter;

namespace nightjar {

/// Names by the rules of the International Components for Unicode, times of day by those of the system's
/// locale.
class IcuTextServices final : public TextServices {
public:
    /// `locale` is an ICU locale name such as "de_DE"; empty = the order that suits all languages. The rules
    /// are loaded at the first use (2 to 9 ms).
    explicit IcuTextServices(std::string locale);
    ~IcuTextServices() override;

    /// Texts that differ have different keys; those that the language ranks as equal go by their code points.
    /// About 1 us.
    [[nodiscard]] std::string collationKey(std::string_view text) const override;
    [[nodiscard]] std::string shortTimeOfDay(Date date) const override;
    /// In English, as the sentences are in which it stands.
    [[nodiscard]] std::string relativeTime(Date date, Date now) const override;

    /// The locale that the user's environment sets for sorting; empty for "C" and "POSIX".
    [[nodiscard]] static std::string systemLocale(const HostEnvironment& host);

private:
    [[nodiscard]] const UCollator* collator() const;

    struct Close {
        void operator()(UCollator* collator) const;
        void operator()(URelativeDateTimeFormatter* formatter) const;
    };
    std::string m_locale;
    mutable std::unique_ptr<UCollator, Close> m_collator;
    mutable std::unique_ptr<URelativeDateTimeFormatter, Close> m_relative;
};

} // namespace nightjar
