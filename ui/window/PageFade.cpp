// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/PageFade.h"

#include <QPainter>
#include <QPixmap>
#include <QVariantAnimation>
#include <QWidget>

namespace nightjar {

namespace {

constexpr int milliseconds = 120;

class FadingPicture final : public QWidget {
public:
    FadingPicture(const QPixmap& picture, QWidget& page) : QWidget(&page), m_picture(picture) {
        setAttribute(Qt::WA_TransparentForMouseEvents);
        setGeometry(page.rect());
        m_fade.setStartValue(1.0);
        m_fade.setEndValue(0.0);
        m_fade.setDuration(milliseconds);
        connect(&m_fade, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));
        connect(&m_fade, &QVariantAnimation::finished, this, &QObject::deleteLater);
        m_fade.start();
    }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setOpacity(m_fade.currentValue().toReal());
        painter.drawPixmap(0, 0, m_picture);
    }

private:
    QPixmap m_picture;
    QVariantAnimation m_fade;
};

} // namespace

void fadeAway(const QPixmap& former, QWidget& page) {
    if (former.isNull() || !page.isVisible())
        return;
    auto* picture = new FadingPicture(former, page);
    picture->show();
    picture->raise();
}

} // namespace nightjar
