// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/SwitchControl.h"

#include "ui/style/Colors.h"
#include "ui/style/NightjarStyle.h"

#include <QPainter>
#include <QSignalBlocker>

namespace nightjar {

namespace {

QColor mixed(const QColor& from, const QColor& to, qreal share) {
    const auto part = [share](int first, int second) { return qRound(first + (second - first) * share); };
    return {part(from.red(), to.red()), part(from.green(), to.green()), part(from.blue(), to.blue())};
}

} // namespace

SwitchControl::SwitchControl(const QString& accessibleName, QWidget* parent) : QCheckBox(parent) {
    setAccessibleName(accessibleName);
    setFixedSize(36, 21);
    m_slide.setDuration(140);
    m_slide.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_slide, &QVariantAnimation::valueChanged, this, [this](const QVariant& value) {
        m_position = value.toReal();
        update();
    });
    connect(this, &QCheckBox::toggled, this, &SwitchControl::slideTo);
}

void SwitchControl::show(bool isOn) {
    if (isOn == isChecked())
        return;
    const QSignalBlocker silence(this);
    setChecked(isOn);
    slideTo(isOn);
}

void SwitchControl::slideTo(bool isOn) {
    m_slide.stop();
    const qreal end = isOn ? 1 : 0;
    if (!isVisible()) {
        m_position = end;
        update();
        return;
    }
    m_slide.setStartValue(m_position);
    m_slide.setEndValue(end);
    m_slide.start();
}

void SwitchControl::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (!isEnabled())
        painter.setOpacity(0.5);
    const auto& colors = Colors::of(this);
    painter.setBrush(mixed(colors.switchOff, colors.accent, m_position));
    painter.drawRoundedRect(QRectF(0, 0, 36, 21), 10.5, 10.5);
    const QRectF knob(2 + 15 * m_position, 2, 17, 17);
    painter.setBrush(withAlpha(Qt::black, 40));
    painter.drawEllipse(knob.translated(0, 0.8));
    painter.setBrush(Qt::white);
    painter.drawEllipse(knob);
    if (showsKeyboardFocus(this))
        paintFocusRing(painter, rect(), 9.5, colors);
}

} // namespace nightjar
