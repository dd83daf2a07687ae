// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <functional>

namespace nightjar {

/// What the desktop wishes of the look of windows.
enum class ColorScheme { light, dark };

/// The look that the user chose for the whole desktop. Main thread; no call waits.
class DesktopAppearance {
public:
    virtual ~DesktopAppearance() = default;
    /// Light where the desktop has no opinion.
    [[nodiscard]] virtual ColorScheme colorScheme() const = 0;
    /// Called after each change; replaces the former one.
    virtual void setListener(std::function<void()> changed) = 0;
};

} // namespace nightjar
