// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QList>
#include <QPointer>
#include <QWidget>

namespace nightjar {

/// While it lives, a view shows and hides its controls. If the one with the keyboard goes, the first heir
/// that can be used takes over, and not whatever stands next: pressing the key once more must not do what
/// nobody meant.
class FocusHeirs {
public:
    FocusHeirs(const QWidget& view, QList<QWidget*> heirs);
    ~FocusHeirs();
    FocusHeirs(const FocusHeirs&) = delete;
    FocusHeirs& operator=(const FocusHeirs&) = delete;

private:
    QList<QWidget*> m_heirs;
    QPointer<QWidget> m_focus;
    bool m_hadFocus;
};

} // namespace nightjar
