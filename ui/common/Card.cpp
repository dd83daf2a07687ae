// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/Card.h"

#include "ui/common/Spoken.h"
#include "ui/common/TextLabel.h"
#include "ui/text/ShownText.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>

namespace nightjar {

namespace {

constexpr char joinedProperty[] = "joinedToRowAbove";

class Ground final : public QWidget {
public:
    using QWidget::QWidget;

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const auto& colors = Colors::of(this);
        painter.setBrush(colors.card);
        painter.setPen(QPen(colors.cardBorder, 1));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 9, 9);
        paintLines(painter, colors.hairline);
    }

private:
    void paintLines(QPainter& painter, const QColor& color) const {
        bool isFirst = true;
        for (int place = 0; place < layout()->count(); ++place) {
            const QWidget* row = layout()->itemAt(place)->widget();
            if (!row || row->isHidden())
                continue;
            if (!isFirst && !row->property(joinedProperty).toBool())
                painter.fillRect(QRect(12, row->y(), width() - 24, 1), color);
            isFirst = false;
        }
    }
};

QHBoxLayout* makeRowLayout(QWidget* row) {
    auto* layout = new QHBoxLayout(row);
    layout->setContentsMargins(12, 7, 12, 7);
    layout->setSpacing(12);
    return layout;
}

} // namespace

MetricRow::MetricRow(const QString& label, const QString& value, QWidget* parent)
    : QWidget(parent), m_label(label), m_value(value), m_text(new TextLabel(breakable(value))) {
    speakAs(*this, Spoken::text);
    auto* layout = makeRowLayout(this);
    layout->addWidget(new TextLabel(label, TextSize::body, Tint::secondary), 0, Qt::AlignTop);
    m_text->setAlignment(Qt::AlignRight | Qt::AlignTop);
    m_text->setWordWrap(true);
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_text, 1);
    setAccessibleName(m_label + QStringLiteral(": ") + value);
}

void MetricRow::setValue(const QString& value) {
    if (value == m_value)
        return;
    m_value = value;
    m_text->setText(breakable(value));
    setAccessibleName(m_label + QStringLiteral(": ") + value);
}

Card::Card(const QString& title, QWidget* parent)
    : QWidget(parent), m_body(new Ground), m_rows(new QVBoxLayout(m_body)) {
    if (!title.isEmpty())
        speakAs(*this, Spoken::group);
    setAccessibleName(title);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);
    if (!title.isEmpty()) {
        auto* heading = new TextLabel(title, TextSize::headline);
        heading->setContentsMargins(4, 0, 0, 0);
        heading->setBuddy(this); // the same title, and not one more
        layout->addWidget(heading);
    }
    m_rows->setContentsMargins(0, 3, 0, 3);
    m_rows->setSpacing(0);
    layout->addWidget(m_body); // after its title for those who listen, too
}

void Card::addRow(QWidget* row) {
    m_rows->addWidget(row);
}

MetricRow* Card::addMetric(const QString& label, const QString& value) {
    auto* row = new MetricRow(label, value);
    addRow(row);
    return row;
}

QWidget* Card::addControl(const QString& label, QWidget* control) {
    auto* row = new QWidget;
    auto* layout = makeRowLayout(row);
    auto* text = new TextLabel(label);
    text->setWordWrap(true);
    text->setBuddy(control->focusProxy() ? control->focusProxy() : control);
    layout->addWidget(text, 1);
    layout->addWidget(control);
    addRow(row);
    return row;
}

void Card::addButton(QPushButton* button) {
    auto* row = new QWidget;
    makeRowLayout(row)->addWidget(button);
    addRow(row);
}

TextLabel* Card::addNote(const QString& text) {
    auto* note = new TextLabel(text, TextSize::caption, Tint::secondary);
    note->setWordWrap(true);
    note->setContentsMargins(12, 2, 12, 8);
    note->setProperty(joinedProperty, true);
    addRow(note);
    return note;
}

} // namespace nightjar
