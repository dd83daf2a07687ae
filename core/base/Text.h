// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace nightjar {

/// Without the Unicode white space and line breaks at both ends (the characters of general category Z, tab,
/// and U+000A to U+000D and U+0085). Bytes that are not UTF-8 are kept as they are.
[[nodiscard]] std::string_view trimmed(std::string_view text);

/// Whether the bytes are well-formed UTF-8 (no overlong forms, no surrogates).
[[nodiscard]] bool isValidUtf8(std::string_view text);

/// The text with every ill-formed byte sequence replaced by U+FFFD.
[[nodiscard]] std::string withReplacedInvalidUtf8(std::string_view text);

/// The shortest decimal text that reads back as the same double, always with a fractional part or an
/// exponent: "83.0", "0.1", "1e+16", "5e-324".
[[nodiscard]] std::string shortestText(double value);

} // namespace nightjar
