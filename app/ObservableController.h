// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"

#include <QObject>

namespace nightjar {

/// A controller whose published fields are Qt properties. Main thread.
/// `aboutToChange()` is emitted before each change of a published field takes effect; the property's own
/// signal after.
class ObservableController : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

Q_SIGNALS:
    void aboutToChange();
};

/// The announcer of the published field whose signal `Changed` is:
/// `announcerOf<&NightjarModel::nodesChanged>(*this)`.
template <auto Changed, class Controller>
[[nodiscard]] Announcer announcerOf(Controller& controller) {
    return {.controller = &controller,
            .aboutToChange = [](void* self) { Q_EMIT static_cast<Controller*>(self)->aboutToChange(); },
            .changed =
                [](void* self) {
                    Q_EMIT(static_cast<Controller*>(self)->*Changed)
                    ();
                }};
}

} // namespace nightjar
