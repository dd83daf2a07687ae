// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QMetaObject>
#include <QObject>

#include <functional>
#include <utility>

namespace nightjar {

/// Runs a view's refresh once at the end of a turn of the event loop, however often it was asked for.
class Coalesced final : public QObject {
    Q_OBJECT
public:
    explicit Coalesced(std::function<void()> run, QObject* parent = nullptr)
        : QObject(parent), m_run(std::move(run)) {}

public Q_SLOTS:
    void request() {
        if (std::exchange(m_isRequested, true))
            return;
        QMetaObject::invokeMethod(this, &Coalesced::runNow, Qt::QueuedConnection);
    }

private:
    void runNow() {
        m_isRequested = false;
        m_run();
    }

    std::function<void()> m_run;
    bool m_isRequested = false;
};

} // namespace nightjar
