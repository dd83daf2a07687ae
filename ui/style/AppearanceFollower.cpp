// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/style/AppearanceFollower.h"

#include "ui/style/Colors.h"

#include <QApplication>

namespace nightjar {

AppearanceFollower::AppearanceFollower(DesktopAppearance& appearance) : m_appearance(appearance) {
    m_appearance.setListener([this] { follow(); });
    follow();
}

AppearanceFollower::~AppearanceFollower() {
    m_appearance.setListener({});
}

void AppearanceFollower::follow() const {
    const bool isDark = m_appearance.colorScheme() == ColorScheme::dark;
    QApplication::setPalette((isDark ? Colors::dark() : Colors::light()).palette());
}

} // namespace nightjar
