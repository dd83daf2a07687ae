// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/TextFolding.h"

#include <unicode/locid.h>
#include <unicode/normalizer2.h>
#include <unicode/uchar.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <cstdint>

namespace nightjar {

namespace {

icu::UnicodeString decoded(std::string_view text) {
    return icu::UnicodeString::fromUTF8({text.data(), static_cast<std::int32_t>(text.size())});
}

std::string encoded(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char byte) { return static_cast<unsigned char>(byte) < 0x80; });
}

std::string asciiLowercased(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](char byte) {
        return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
    });
    return result;
}

icu::UnicodeString withoutMarks(const icu::UnicodeString& text) {
    icu::UnicodeString result;
    for (std::int32_t i = 0; i < text.length(); i = text.moveIndex32(i, 1)) {
        if (const auto character = text.char32At(i); u_charType(character) != U_NON_SPACING_MARK)
            result.append(character);
    }
    return result;
}

} // namespace

std::string foldedText(std::string_view text) {
    if (isAscii(text))
        return asciiLowercased(text);
    UErrorCode status = U_ZERO_ERROR;
    const auto* apart = icu::Normalizer2::getNFDInstance(status);
    const auto* together = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status))
        return asciiLowercased(text);
    auto folded = withoutMarks(apart->normalize(decoded(text), status));
    folded.foldCase().toLower(icu::Locale::getRoot());
    return encoded(together->normalize(folded, status));
}

std::string lowercasedText(std::string_view text) {
    return isAscii(text) ? asciiLowercased(text) : encoded(decoded(text).toLower(icu::Locale::getRoot()));
}

std::string capitalizedText(std::string_view text) {
    const auto lower = decoded(text).toLower(icu::Locale::getRoot());
    icu::UnicodeString result;
    bool awaitsLetter = true;
    for (std::int32_t i = 0; i < lower.length(); i = lower.moveIndex32(i, 1)) {
        const auto character = lower.char32At(i);
        const bool isFirst = awaitsLetter && u_isalpha(character);
        result.append(isFirst ? u_totitle(character) : character);
        awaitsLetter = character == U' ' || (awaitsLetter && !isFirst);
    }
    return encoded(result);
}

} // namespace nightjar
