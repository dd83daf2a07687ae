// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/NotificationText.h"

namespace nightjar {
namespace {

// Bytes of UTF-8. A text message of a mesh has at most 237.
constexpr std::size_t longestTitle = 256;
constexpr std::size_t longestBody = 4096;

QString bounded(std::string_view text, std::size_t limit) {
    if (text.size() <= limit)
        return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    std::size_t end = limit;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(end)) + QChar(0x2026);
}

bool isLineBreak(QChar c) {
    return c == u'\n' || c == u'\r' || c == QChar::LineSeparator || c == QChar::ParagraphSeparator;
}

/// A name with one of these would make the rest of its line read backwards.
bool turnsDirection(QChar c) {
    return (c >= QChar(0x202A) && c <= QChar(0x202E)) || (c >= QChar(0x2066) && c <= QChar(0x2069));
}

/// Markup readers refuse a text with a control character as a whole, and the bus refuses NUL.
bool isUnprintable(QChar c) {
    return turnsDirection(c) || (c.category() == QChar::Other_Control && c != u'\t' && !isLineBreak(c));
}

} // namespace

QString notificationTitle(std::string_view text) {
    QString title = bounded(text, longestTitle);
    title.replace(QLatin1String("\r\n"), QLatin1String(" "));
    for (QChar& c : title) {
        if (isLineBreak(c) || c == u'\t')
            c = u' ';
        else if (isUnprintable(c))
            c = QChar::ReplacementCharacter;
    }
    return title;
}

QString notificationBody(std::string_view text) {
    QString body = bounded(text, longestBody);
    body.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    for (QChar& c : body) {
        if (isLineBreak(c))
            c = u'\n';
        else if (isUnprintable(c))
            c = QChar::ReplacementCharacter;
    }
    return body;
}

QString escapedAsMarkup(const QString& text) {
    QString markup = text;
    markup.replace(u'&', QLatin1String("&amp;"));
    markup.replace(u'<', QLatin1String("&lt;"));
    markup.replace(u'>', QLatin1String("&gt;"));
    return markup;
}

} // namespace nightjar
