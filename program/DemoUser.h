// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

namespace nightjar {

class NightjarModel;

/// Plays the user of the demo: guards the bicycle where it stands, as soon as it is heard. Main thread.
class DemoUser : public QObject {
    Q_OBJECT
public:
    explicit DemoUser(NightjarModel& model);

private:
    void guardBicycle();

    NightjarModel& m_model;
};

} // namespace nightjar
