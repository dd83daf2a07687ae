// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/SegmentedControl.h"

#include "ui/common/Spoken.h"
#include "ui/style/Colors.h"
#include "ui/style/NightjarStyle.h"

#include <QButtonGroup>
#include <QHBoxLayout>
#include <QPainter>
#include <QRadioButton>

namespace nightjar {

namespace {

class Segment final : public QRadioButton {
public:
    Segment(const QString& title, QWidget* parent) : QRadioButton(title, parent) {
        setAttribute(Qt::WA_Hover);
        setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        const auto& colors = Colors::of(this);
        QFont shown = font();
        shown.setWeight(isChecked() ? QFont::DemiBold : QFont::Medium);
        painter.setFont(shown);
        painter.setPen(isChecked() || underMouse() ? colors.text : colors.secondary);
        painter.drawText(rect(), Qt::AlignCenter, text());
        if (showsKeyboardFocus(this))
            paintFocusRing(painter, rect(), 6, colors);
    }
    [[nodiscard]] bool hitButton(const QPoint& at) const override { return rect().contains(at); }
    [[nodiscard]] QSize sizeHint() const override {
        return {fontMetrics().horizontalAdvance(text()) + 22, 26};
    }
};

} // namespace

SegmentedControl::SegmentedControl(const QString& accessibleName, const QStringList& titles, int width,
                                   QWidget* parent)
    : QWidget(parent) {
    setFixedSize(width, 30);
    speakAs(*this, Spoken::group);
    setAccessibleName(accessibleName);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(2, 2, 2, 2);
    layout->setSpacing(0);
    auto* group = new QButtonGroup(this);
    for (const QString& title : titles) {
        auto* segment = new Segment(title, this);
        const auto place = static_cast<int>(m_segments.size());
        connect(segment, &QRadioButton::toggled, this, [this, place](bool isChecked) {
            if (!isChecked || place == m_current)
                return;
            setCurrent(place);
            Q_EMIT chosen(place);
        });
        group->addButton(segment);
        layout->addWidget(segment, 1);
        m_segments << segment;
    }
    m_segments.first()->setChecked(true);
    keepOneTabStop();
    m_slide.setDuration(160);
    m_slide.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_slide, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_position = value.toReal();
        update();
    });
}

void SegmentedControl::setCurrent(int segment) {
    if (segment == m_current)
        return;
    const bool hadFocus = m_segments[m_current]->hasFocus();
    m_current = segment;
    m_segments[segment]->setChecked(true);
    keepOneTabStop();
    if (hadFocus)
        m_segments[segment]->setFocus(Qt::OtherFocusReason);
    m_slide.stop();
    m_slide.setStartValue(m_position);
    m_slide.setEndValue(static_cast<qreal>(segment));
    if (isVisible()) {
        m_slide.start();
    } else {
        m_position = segment;
        update();
    }
}

/// The chosen segment; the arrow keys reach the others.
void SegmentedControl::keepOneTabStop() {
    for (auto* segment : m_segments)
        segment->setFocusPolicy(segment->isChecked() ? Qt::StrongFocus : Qt::ClickFocus);
}

void SegmentedControl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    const auto& colors = Colors::of(this);
    painter.setBrush(colors.track);
    painter.drawRoundedRect(rect(), 8, 8);
    const qreal width = (this->width() - 4) / static_cast<qreal>(m_segments.size());
    const QRectF highlight(2 + m_position * width, 2, width, height() - 4);
    painter.setBrush(withAlpha(Qt::black, 26));
    painter.drawRoundedRect(highlight.translated(0, 1), 6, 6);
    painter.setBrush(colors.isDark ? colors.control : colors.card);
    painter.drawRoundedRect(highlight, 6, 6);
}

} // namespace nightjar
