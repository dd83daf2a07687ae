// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/NotificationBanners.h"

#include "ui/common/Spoken.h"
#include "ui/common/FloatingPanel.h"
#include "ui/common/SymbolView.h"
#include "ui/common/TextLabel.h"
#include "ui/text/ShownText.h"

#include <QAccessible>
#include <QEvent>
#include <QHBoxLayout>
#include <QVBoxLayout>

#include <chrono>

namespace nightjar {

namespace {

constexpr std::chrono::seconds stay{12};
constexpr int bannerWidth = 360;
constexpr int mostBanners = 3;
constexpr int belowToolbar = 62;

class Banner final : public FloatingPanel {
public:
    Banner(const Notification& notification, Scheduler& scheduler)
        : m_isAlarm(notification.sound == NotificationSound::critical) {
        speakAs(*this, Spoken::banner);
        auto* layout = new QHBoxLayout(this);
        layout->setContentsMargins(14, 12, 14, 12);
        layout->setSpacing(12);
        const auto tint = m_isAlarm ? Tint::red : Tint::orange;
        layout->addWidget(new SymbolView(QStringLiteral("bell.badge.fill"), 24, tint), 0, Qt::AlignTop);
        auto* texts = new QVBoxLayout;
        texts->setSpacing(2);
        auto* title = new TextLabel(shownLine(notification.title), TextSize::headline);
        auto* body = new TextLabel(shownText(notification.body), TextSize::body, Tint::secondary);
        for (auto* text : {title, body}) {
            text->setWordWrap(true);
            texts->addWidget(text);
        }
        layout->addLayout(texts, 1);
        setAccessibleName(title->text());
        setAccessibleDescription(body->text());
        m_end = scheduler.after(stay, [this] { leave(); });
    }

    [[nodiscard]] bool isAlarm() const { return m_isAlarm; }
    void leave() {
        m_end.cancel();
        hide();
        deleteLater();
    }

protected:
    void mouseReleaseEvent(QMouseEvent*) override { leave(); }

private:
    bool m_isAlarm;
    Timer m_end;
};

} // namespace

NotificationBanners::NotificationBanners(QWidget& window, Scheduler& scheduler)
    : QWidget(&window), m_scheduler(scheduler) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(8);
    window.installEventFilter(this);
    hide();
}

void NotificationBanners::show(const Notification& notification) {
    makeRoom();
    auto* banner = new Banner(notification, m_scheduler);
    banner->installEventFilter(this);
    static_cast<QVBoxLayout*>(layout())->insertWidget(0, banner);
    show();
    raise();
    place();
    QAccessibleEvent alert(banner, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
}

/// The oldest goes, but an alarm only when there are alarms alone.
void NotificationBanners::makeRoom() {
    Banner* leaving = nullptr;
    int count = 0;
    for (int place = 0; place < layout()->count(); ++place) {
        auto* banner = static_cast<Banner*>(layout()->itemAt(place)->widget());
        if (banner->isHidden())
            continue;
        ++count;
        if (!leaving || !banner->isAlarm() || leaving->isAlarm())
            leaving = banner;
    }
    if (count >= mostBanners)
        leaving->leave();
}

/// How high a banner is is known once it has its fonts.
bool NotificationBanners::event(QEvent* event) {
    const bool isHandled = QWidget::event(event);
    if (event->type() == QEvent::LayoutRequest)
        place();
    return isHandled;
}

bool NotificationBanners::eventFilter(QObject* watched, QEvent* event) {
    const bool isWindow = watched == parentWidget();
    if ((isWindow && event->type() == QEvent::Resize) || (!isWindow && event->type() == QEvent::Hide))
        place();
    return QWidget::eventFilter(watched, event);
}

void NotificationBanners::place() {
    int height = 0;
    for (int place = 0; place < layout()->count(); ++place) {
        const auto* banner = layout()->itemAt(place)->widget();
        if (!banner->isHidden())
            height += banner->layout()->heightForWidth(bannerWidth) + layout()->spacing();
    }
    setVisible(height > 0);
    setGeometry((parentWidget()->width() - bannerWidth) / 2, belowToolbar, bannerWidth, height);
}

} // namespace nightjar
