// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/FocusHeirs.h"

#include <algorithm>
#include <utility>

namespace nightjar {

namespace {

bool canTakeKeys(const QWidget* widget) {
    return widget && widget->isVisible() && widget->isEnabled();
}

} // namespace

FocusHeirs::FocusHeirs(const QWidget& view, QList<QWidget*> heirs)
    : m_heirs(std::move(heirs)), m_focus(view.window()->focusWidget()) {
    m_hadFocus = m_focus && view.isAncestorOf(m_focus) && canTakeKeys(m_focus);
}

FocusHeirs::~FocusHeirs() {
    if (!m_hadFocus || canTakeKeys(m_focus))
        return;
    if (const auto heir = std::ranges::find_if(m_heirs, canTakeKeys); heir != m_heirs.end())
        (*heir)->setFocus(Qt::OtherFocusReason);
}

} // namespace nightjar
