// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/TextLabel.h"

#include "ui/text/ShownText.h"

#include <QEvent>
#include <QPainter>

#include <algorithm>

namespace nightjar {

TextLabel::TextLabel(const QString& text, TextSize size, Tint tint, QWidget* parent)
    : QLabel(parent), m_tint(tint) {
    setTextFormat(Qt::PlainText);
    setText(text);
    setFont(fontOf(size));
    applyTint();
}

void TextLabel::setTint(Tint tint) {
    if (tint == m_tint)
        return;
    m_tint = tint;
    applyTint();
}

/// Layouts ask again and again; a label would wrap its text anew each time.
int TextLabel::heightForWidth(int width) const {
    auto& [text, font, margins, byWidth] = m_heights;
    if (text != this->text() || font != this->font() || margins != contentsMargins())
        m_heights = {this->text(), this->font(), contentsMargins(), {}};
    const auto known = byWidth.constFind(width);
    return known != byWidth.cend() ? *known : *byWidth.insert(width, QLabel::heightForWidth(width));
}

void TextLabel::applyTint() {
    const QColor color = Colors::of(this).tint(m_tint);
    if (palette().color(QPalette::Active, QPalette::WindowText) == color)
        return;
    QPalette tinted;
    tinted.setColor(QPalette::WindowText, color);
    setPalette(tinted);
}

void TextLabel::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange)
        applyTint();
    QLabel::changeEvent(event);
}

ElidedLabel::ElidedLabel(TextSize size, Tint tint, QWidget* parent) : QLabel(parent), m_tint(tint) {
    setTextFormat(Qt::PlainText);
    setFont(fontOf(size));
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::setFullText(const QString& text) {
    if (text == m_text)
        return;
    m_text = text;
    setAccessibleName(text);
    updateGeometry();
    updateToolTip();
    update();
}

QSize ElidedLabel::sizeHint() const {
    return {fontMetrics().horizontalAdvance(m_text) + 2, fontMetrics().height()};
}

QSize ElidedLabel::minimumSizeHint() const {
    return {std::min(40, sizeHint().width()), fontMetrics().height()};
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setPen(Colors::of(this).tint(m_tint));
    painter.drawText(rect(), static_cast<int>(alignment()) | Qt::TextSingleLine,
                     fontMetrics().elidedText(m_text, Qt::ElideRight, width()));
}

void ElidedLabel::resizeEvent(QResizeEvent*) {
    updateToolTip();
}

void ElidedLabel::updateToolTip() {
    const bool isCut = fontMetrics().horizontalAdvance(m_text) > width();
    setToolTip(isCut ? plainToolTip(m_text) : QString());
}

} // namespace nightjar
