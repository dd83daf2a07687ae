// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>
#include <QSocketNotifier>

namespace nightjar {

/// Turns SIGTERM, SIGINT and SIGHUP into a request to end in order, told once in the event loop. A SIGINT
/// after that ends the program at once. One object per process, on the main thread.
class EndSignals : public QObject {
    Q_OBJECT
public:
    EndSignals();

Q_SIGNALS:
    void endRequested();

private:
    QSocketNotifier m_asked{QSocketNotifier::Read};
};

} // namespace nightjar
