// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

class QWidget;

namespace nightjar {

/// What a screen reader takes a widget for. The first three are one thing to it: name and description of the
/// widget say all, and what it is made of is not found any more.
enum class Spoken { text, heading, banner, group, toolBar, window, alertWindow };

/// In the constructor of the widget: what was asked about earlier keeps its role.
void speakAs(QWidget& widget, Spoken role);

} // namespace nightjar
