// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

class QWidget;

namespace nightjar {

/// What a screen reader takes a widget for. The first three are one thing to it: name and description of the
/// widget say all, and what it is made of is not found any more.
enum class Spoken { text, heading, banner, group, toolBar, window, alertWindow };

/// First thing in the constructor, before the widget is given a name: what was asked about keeps its role.
void speakAs(QWidget& widget, Spoken role);

} // namespace nightjar
