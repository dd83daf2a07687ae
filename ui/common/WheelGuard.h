// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

class QWidget;

namespace nightjar {

/// The mouse wheel scrolls the page that the control stands on and never changes the control's value: whoever
/// scrolls past a radius or a delay must not loosen a watch.
void guardFromWheel(QWidget* control);

} // namespace nightjar
