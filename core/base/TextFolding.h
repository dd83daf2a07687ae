// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace nightjar {

/// The text without regard to letter case and accents: texts that differ in nothing else become the same
/// ("Café" and "CAFE"; "Straße" and "STRASSE"), the same on every machine and in every language. About 1 us
/// for a name, less for ASCII.
[[nodiscard]] std::string foldedText(std::string_view text);

/// Every letter in lower case.
[[nodiscard]] std::string lowercasedText(std::string_view text);

/// The first letter of every word as at the beginning of a title, all others in lower case. Words end at
/// spaces and nowhere else.
[[nodiscard]] std::string capitalizedText(std::string_view text);

} // namespace nightjar
