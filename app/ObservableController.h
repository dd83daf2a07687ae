// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

namespace nightjar {

/// A controller whose published fields are Qt properties. Main thread.
/// `aboutToChange()` is emitted before each change of a published field takes effect; the property's own signal after.
class ObservableController : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

Q_SIGNALS:
    void aboutToChange();
};

} // namespace nightjar
