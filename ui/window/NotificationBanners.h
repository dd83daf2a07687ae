// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NotificationCenter.h"
#include "platform/Scheduler.h"

#include <QWidget>

namespace nightjar {

/// Notifications at the upper end of a window, where the desktop is not to show them: the latest few, each
/// for a while or until it is clicked. An alarm is not pushed away by a chat.
class NotificationBanners final : public QWidget {
    Q_OBJECT
public:
    NotificationBanners(QWidget& window, Scheduler& scheduler);
    void show(const Notification& notification);
    using QWidget::show;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void makeRoom();
    void place();
    Scheduler& m_scheduler;
};

} // namespace nightjar
