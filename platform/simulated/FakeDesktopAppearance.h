// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/DesktopAppearance.h"

#include <functional>
#include <utility>

namespace nightjar {

/// A desktop whose look the test changes.
class FakeDesktopAppearance final : public DesktopAppearance {
public:
    [[nodiscard]] ColorScheme colorScheme() const override { return m_scheme; }
    void setListener(std::function<void()> changed) override { m_changed = std::move(changed); }

    void choose(ColorScheme scheme) {
        m_scheme = scheme;
        if (m_changed)
            m_changed();
    }

private:
    ColorScheme m_scheme = ColorScheme::light;
    std::function<void()> m_changed;
};

} // namespace nightjar
