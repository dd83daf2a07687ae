// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/AlertSheet.h"

#include "ui/common/Buttons.h"
#include "ui/common/Spoken.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"
#include "ui/text/ShownText.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

namespace nightjar {

AlertSheet::AlertSheet(const QString& title, const QString& text, const QStringList& buttons, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint), m_label(new TextLabel({})) {
    setWindowTitle(title);
    speakAs(*this, Spoken::alertWindow);
    setAccessibleName(title);
    setAttribute(Qt::WA_DeleteOnClose);

    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(20, 20, 20, 18);
    layout->setSpacing(8);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    auto* heading = new QHBoxLayout;
    heading->setSpacing(10);
    heading->addWidget(new SymbolView(QStringLiteral("exclamationmark.triangle.fill"), 22, Tint::orange));
    heading->addWidget(new TextLabel(title, TextSize::title), 1);
    layout->addLayout(heading);
    m_label->setWordWrap(true);
    m_label->setFixedWidth(320);
    layout->addWidget(m_label);
    layout->addSpacing(6);

    auto* foot = new QHBoxLayout;
    foot->setSpacing(8);
    foot->addStretch();
    for (const QString& name : buttons) {
        const bool isFirst = m_buttons.isEmpty();
        auto* button = makeButton(name, isFirst ? ButtonLook::prominent : ButtonLook::plain);
        button->setMinimumWidth(90);
        button->setDefault(isFirst);
        const bool accepts = isFirst && buttons.size() > 1;
        connect(button, &QPushButton::clicked, this, accepts ? &QDialog::accept : &QDialog::reject);
        // As on other desktops the button that goes on stands at the end.
        foot->insertWidget(1, button);
        m_buttons << button;
    }
    layout->addLayout(foot);
    setText(text);
}

void AlertSheet::setText(const QString& text) {
    m_text = text;
    m_label->setText(breakable(text));
    m_label->setAccessibleName(text);
    setAccessibleDescription(text);
    if (isVisible()) {
        layout()->activate();
        moveOverWindow();
    }
}

void AlertSheet::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const auto& colors = Colors::of(this);
    painter.setBrush(colors.panel);
    painter.setPen(QPen(colors.controlBorder, 1));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 12, 12);
}

void AlertSheet::resizeEvent(QResizeEvent*) {
    // Round without a compositor too.
    QPainterPath outline;
    outline.addRoundedRect(rect(), 12, 12);
    setMask(QRegion(outline.toFillPolygon().toPolygon()));
}

void AlertSheet::showEvent(QShowEvent*) {
    moveOverWindow();
}

void AlertSheet::moveOverWindow() {
    const QRect window = parentWidget()->window()->geometry();
    move(window.center().x() - width() / 2, window.top() + window.height() * 2 / 5 - height() / 2);
}

} // namespace nightjar
