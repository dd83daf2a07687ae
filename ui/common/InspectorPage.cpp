// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/InspectorPage.h"

#include "ui/common/Card.h"
#include "ui/common/Spoken.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"

#include <QApplication>
#include <QHBoxLayout>
#include <QScrollBar>
#include <QVBoxLayout>

#include <utility>

namespace nightjar {

InspectorHeader::InspectorHeader(QWidget* parent)
    : QWidget(parent),
      m_symbol(new SymbolView({}, 34, Tint::secondary)),
      m_name(new ElidedLabel(TextSize::title)),
      m_caption(new ElidedLabel(TextSize::caption, Tint::secondary)) {
    speakAs(*this, Spoken::heading);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(12);
    layout->addWidget(m_symbol);
    auto* texts = new QVBoxLayout;
    texts->setSpacing(1);
    texts->addWidget(m_name);
    texts->addWidget(m_caption);
    layout->addLayout(texts, 1);
}

void InspectorHeader::show(const QString& symbol, Tint tint, const QString& name, const QString& caption) {
    m_symbol->show(symbol, tint);
    m_name->setFullText(name);
    m_caption->setFullText(caption);
    setAccessibleName(name);
    setAccessibleDescription(caption);
}

InspectorPage::InspectorPage(QWidget* parent) : QScrollArea(parent), m_header(new InspectorHeader) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setFocusPolicy(Qt::NoFocus);
    verticalScrollBar()->setSingleStep(16);
    auto* body = new QWidget;
    m_column = new QVBoxLayout(body);
    m_column->setContentsMargins(16, 16, 16, 16);
    m_column->setSpacing(16);
    m_column->addWidget(m_header);
    m_column->addStretch();
    setWidget(body);
    connect(qApp, &QApplication::focusChanged, this, &InspectorPage::showFocus);
    for (QWidget* ground : {static_cast<QWidget*>(this), viewport(), body})
        ground->setAutoFillBackground(false);
}

/// The keys may come from another column. A click is left alone: what it hits must not move away under it.
void InspectorPage::showFocus(const QWidget*, QWidget* now) {
    if (now && isAncestorOf(now) && QApplication::mouseButtons() == Qt::NoButton)
        ensureWidgetVisible(now, 0, 16);
}

void InspectorPage::follow(const std::string& id) {
    if (std::exchange(m_id, id) == id)
        return;
    if (const QWidget* focus = window()->focusWidget(); focus && isAncestorOf(focus))
        m_header->setFocus(Qt::OtherFocusReason);
}

InspectorPage::~InspectorPage() {
    // What has the keyboard gives it up when it goes, and it goes later.
    qApp->disconnect(this);
}

Card* InspectorPage::addCard(const QString& title) {
    auto* card = new Card(title);
    addWidget(card);
    return card;
}

void InspectorPage::addWidget(QWidget* widget) {
    m_column->insertWidget(m_column->count() - 1, widget);
}

QWidget* InspectorPage::addButtons(const QList<QWidget*>& buttons) {
    auto* row = new QWidget;
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    for (QWidget* button : buttons)
        layout->addWidget(button, 1);
    addWidget(row);
    return row;
}

} // namespace nightjar
