// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "ui/common/ViewContext.h"

#include <QObject>
#include <QPointer>
#include <QWidget>

namespace nightjar {

/// Has the ages on screen computed afresh, while one of the windows can be seen. Main thread.
class AgeTicker final : public QObject {
    Q_OBJECT
public:
    explicit AgeTicker(ViewContext& context) : m_context(context) {}
    void follow(QWidget& window);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void update();

    ViewContext& m_context;
    QList<QPointer<QWidget>> m_windows;
    Timer m_tick;
    bool m_isTicking = false;
};

} // namespace nightjar
