// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

namespace nightjar {

class NightjarModel;

/// Plays the user of the demo: guards the bicycle where it stands and has the keys watched, each as soon as
/// it is heard. Main thread.
class DemoUser : public QObject {
    Q_OBJECT
public:
    explicit DemoUser(NightjarModel& model);
    /// Has the Bluetooth devices looked for.
    void begin();

private:
    void guardBicycle();
    void watchKeys();

    NightjarModel& m_model;
    bool m_hasSeenKeys = false;
};

} // namespace nightjar
