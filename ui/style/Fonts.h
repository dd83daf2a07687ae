// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QFont>

namespace nightjar {

enum class TextSize { body, caption, headline, title, largeTitle };

/// The application's font in one of the sizes of the interface.
[[nodiscard]] QFont fontOf(TextSize size);

} // namespace nightjar
