// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/DesktopAppearance.h"

namespace nightjar {

/// Keeps the application in the colours that the desktop wishes, at once and after each change. GUI thread.
class AppearanceFollower {
public:
    explicit AppearanceFollower(DesktopAppearance& appearance);
    ~AppearanceFollower();
    AppearanceFollower(const AppearanceFollower&) = delete;
    AppearanceFollower& operator=(const AppearanceFollower&) = delete;

private:
    void follow() const;
    DesktopAppearance& m_appearance;
};

} // namespace nightjar
