// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QString>

#include <string_view>

/// Text that comes from a radio, the network or a file, made fit to be shown. It stays plain text: labels
/// show it with Qt::PlainText, tool tips through `plainToolTip`.
namespace nightjar {

/// One line: line breaks and other control characters become spaces, what turns the direction of writing is
/// left out, and at most 500 characters stay.
[[nodiscard]] QString shownLine(std::string_view utf8);
/// The same with its line breaks; at most 20,000 characters.
[[nodiscard]] QString shownText(std::string_view utf8);
/// The same words, but those that are too long for a column may be broken over lines.
[[nodiscard]] QString breakable(const QString& text);
/// A tool tip that Qt never takes for rich text.
[[nodiscard]] QString plainToolTip(const QString& text);

} // namespace nightjar
