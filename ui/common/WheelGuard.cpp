// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/WheelGuard.h"

#include <QEvent>
#include <QWidget>

namespace nightjar {

namespace {

class WheelGuard final : public QObject {
public:
    using QObject::QObject;

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() != QEvent::Wheel)
            return false;
        event->ignore(); // so that it goes on to the page
        return true;
    }
};

} // namespace

void guardFromWheel(QWidget* control) {
    control->installEventFilter(new WheelGuard(control));
}

} // namespace nightjar
