// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/style/AppearanceFollower.h"

#include "platform/simulated/FakeDesktopAppearance.h"
#include "ui/common/TextLabel.h"
#include "ui/style/Colors.h"

#include <QApplication>

#include <gtest/gtest.h>

namespace nightjar {
namespace {

QColor textColor(const QWidget& widget) {
    return widget.palette().color(QPalette::WindowText);
}

TEST(AppearanceFollower, dressesOpenWindowsAnewWhenTheDesktopChanges) {
    FakeDesktopAppearance desktop;
    QWidget window;
    TextLabel label(QStringLiteral("Text"), TextSize::body, Tint::secondary, &window);
    window.show();
    {
        desktop.choose(ColorScheme::dark);
        const AppearanceFollower follower(desktop);
        QApplication::processEvents();
        EXPECT_TRUE(Colors::of(&window).isDark);
        EXPECT_EQ(textColor(label), Colors::dark().secondary);

        desktop.choose(ColorScheme::light);
        QApplication::processEvents();
        EXPECT_FALSE(Colors::of(&window).isDark);
        EXPECT_EQ(textColor(label), Colors::light().secondary);
    }
    desktop.choose(ColorScheme::dark);
    EXPECT_FALSE(Colors::of(&window).isDark) << "nobody follows any more";
}

} // namespace
} // namespace nightjar
