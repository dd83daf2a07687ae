// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

class QPixmap;
class QWidget;

namespace nightjar {

/// A picture of what `page` showed before fades away over it, in 120 ms. An empty picture does nothing.
void fadeAway(const QPixmap& former, QWidget& page);

} // namespace nightjar
