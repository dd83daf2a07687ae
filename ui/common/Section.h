// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QObject>

class QWidget;

namespace nightjar {

/// One of the three watches as the main window shows it: what stands in each of its columns, and what happens
/// when the user enters and leaves it. The widgets are made when they are first asked for, and the window
/// takes them over.
class Section : public QObject {
    Q_OBJECT
public:
    using QObject::QObject;

    [[nodiscard]] virtual QWidget* sidebar() = 0;
    [[nodiscard]] virtual QWidget* content() = 0;
    [[nodiscard]] virtual QWidget* inspector() = 0;

    /// The section comes on screen: its watch starts, unless it runs.
    virtual void activate() = 0;
    /// Another section comes on screen: its watch ends.
    virtual void deactivate() = 0;
    /// Where the keyboard begins.
    virtual void takeFocus() = 0;
};

} // namespace nightjar
