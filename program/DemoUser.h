// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

#include <functional>
#include <set>
#include <string>
#include <string_view>

namespace nightjar {

class NightjarModel;

/// Plays the user of the demo: guards the bicycle where it stands and has the keys, the printer and a
/// loudspeaker watched, each as soon as it is there. Main thread.
class DemoUser : public QObject {
    Q_OBJECT
public:
    explicit DemoUser(NightjarModel& model);
    /// Has the Bluetooth devices and the network looked at.
    void begin();

private:
    void guardBicycle();
    void watchKeys();
    void watchMachine(std::string_view name);

    NightjarModel& m_model;
    bool m_hasSeenKeys = false;
    std::set<std::string, std::less<>> m_seenMachines;
};

} // namespace nightjar
