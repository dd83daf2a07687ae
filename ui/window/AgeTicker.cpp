// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/AgeTicker.h"

#include <QEvent>
#include <QWindow>

#include <algorithm>
#include <chrono>

namespace nightjar {

namespace {

/// Most ages are told in minutes.
constexpr std::chrono::seconds interval{10};

/// Not on another desktop either.
bool canBeSeen(const QPointer<QWidget>& window) {
    return window && window->isVisible() && !window->isMinimized() && window->windowHandle() &&
           window->windowHandle()->isExposed();
}

} // namespace

void AgeTicker::follow(QWidget& window) {
    m_windows << &window;
    window.installEventFilter(this);
    update();
}

bool AgeTicker::eventFilter(QObject* watched, QEvent* event) {
    switch (event->type()) {
    case QEvent::Show:
        if (auto* window = qobject_cast<QWidget*>(watched); window && window->windowHandle())
            window->windowHandle()->installEventFilter(this);
        update();
        break;
    case QEvent::Hide:
    case QEvent::Expose:
    case QEvent::WindowStateChange:
        update();
        break;
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

void AgeTicker::update() {
    const bool ticks = std::ranges::any_of(m_windows, canBeSeen);
    if (ticks == m_isTicking)
        return;
    m_isTicking = ticks;
    m_tick.cancel();
    if (!ticks)
        return;
    m_tick = m_context.platform().scheduler.every(interval, [this] { Q_EMIT m_context.timePassed(); });
    Q_EMIT m_context.timePassed();
}

} // namespace nightjar
