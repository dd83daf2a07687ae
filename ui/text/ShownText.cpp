// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/text/ShownText.h"

#include <QChar>

#include <algorithm>

namespace nightjar {

namespace {

constexpr qsizetype mostOfALine = 500;
constexpr qsizetype mostOfAText = 20'000;

enum class LineBreaks { kept, replaced };

/// Marks that change the direction of what follows: a name could make the rest of its line read backwards.
bool turnsDirection(QChar character) {
    const auto code = character.unicode();
    return (code >= 0x202a && code <= 0x202e) || (code >= 0x2066 && code <= 0x2069) || code == 0x200e ||
           code == 0x200f || code == 0x061c;
}

bool isLineBreak(QChar character) {
    return character == u'\n' || character == QChar::LineSeparator || character == QChar::ParagraphSeparator;
}

QString shown(std::string_view utf8, qsizetype most, LineBreaks lineBreaks) {
    // No character takes more than four bytes.
    const auto bytes = std::min(static_cast<qsizetype>(utf8.size()), 4 * most);
    const QString text = QString::fromUtf8(utf8.data(), bytes);
    QString shown;
    shown.reserve(std::min(text.size(), most));
    for (const QChar character : text) {
        if (shown.size() >= most - 1 && !character.isLowSurrogate()) {
            shown.append(u'…');
            break;
        }
        if (turnsDirection(character))
            continue;
        if (isLineBreak(character))
            shown.append(lineBreaks == LineBreaks::kept ? u'\n' : u' ');
        else if (character.category() == QChar::Other_Control)
            shown.append(u' ');
        else
            shown.append(character);
    }
    return shown;
}

} // namespace

QString shownLine(std::string_view utf8) {
    return shown(utf8, mostOfALine, LineBreaks::replaced);
}

QString shownText(std::string_view utf8) {
    return shown(utf8, mostOfAText, LineBreaks::kept);
}

QString breakable(const QString& text) {
    constexpr qsizetype longestWhole = 18;
    constexpr qsizetype piece = 6;
    constexpr QChar mayBreakHere(0x200b);
    QString broken;
    for (qsizetype start = 0; start < text.size();) {
        const auto isSpace = [](QChar character) { return character.isSpace(); };
        const auto end = std::find_if(text.begin() + start, text.end(), isSpace) - text.begin();
        const bool isLong = end - start > longestWhole;
        for (auto place = start; place < end; ++place) {
            const QChar character = text[place];
            if (isLong && place > start && (place - start) % piece == 0 && !character.isLowSurrogate() &&
                !character.isMark())
                broken.append(mayBreakHere);
            broken.append(character);
        }
        if (end < text.size())
            broken.append(text[end]);
        start = end + 1;
    }
    return broken;
}

QString plainToolTip(const QString& text) {
    return text.isEmpty() ? QString() : QStringLiteral("<span>%1</span>").arg(text.toHtmlEscaped());
}

} // namespace nightjar
