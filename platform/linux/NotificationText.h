// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <string_view>

namespace nightjar {

/// One line for the title of a notification. Titles and bodies hold names and messages from radios and the
/// network: ill-formed UTF-8 and control characters become U+FFFD, and what is longer than a screen takes is
/// cut with "…".
[[nodiscard]] QString notificationTitle(std::string_view text);

/// The body of a notification, with its line breaks.
[[nodiscard]] QString notificationBody(std::string_view text);

/// The text as markup that shows it as it is.
[[nodiscard]] QString escapedAsMarkup(const QString& text);

} // namespace nightjar
