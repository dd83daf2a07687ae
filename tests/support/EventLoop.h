// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QEventLoop>
#include <QTimer>

#include <chrono>

namespace nightjar {

/// Lets Qt's event loop run until the condition holds; false when it does not within the limit.
template <class Condition>
[[nodiscard]] bool runEventsUntil(Condition condition,
                                  std::chrono::milliseconds limit = std::chrono::seconds(20)) {
    QEventLoop loop;
    QTimer look;
    QTimer end;
    QObject::connect(&look, &QTimer::timeout, &loop, [&] {
        if (condition())
            loop.exit(0);
    });
    QObject::connect(&end, &QTimer::timeout, &loop, [&] { loop.exit(1); });
    look.start(1);
    end.start(limit);
    return condition() || loop.exec() == 0;
}

} // namespace nightjar
