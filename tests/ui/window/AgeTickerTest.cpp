// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/AgeTicker.h"
#include "tests/support/ModelRig.h"
#include "tests/ui/Widgets.h"
#include "ui/map/MapTiles.h"

#include <gtest/gtest.h>

namespace nightjar {
namespace {

TEST(AgeTickerTest, wakesNobodyUpUnlessAWindowCanBeSeen) {
    testing::ModelRig rig;
    MapTiles tiles{MapTileSettings{}};
    ViewContext context(rig.start(), rig.services(), tiles);
    AgeTicker ages(context);
    QWidget window;
    ages.follow(window);
    int told = 0;
    QObject::connect(&context, &ViewContext::timePassed, [&told] { ++told; });
    rig.scheduler.advance(std::chrono::minutes(1));
    const auto armedBefore = rig.scheduler.armedTimers();

    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    told = 0;
    rig.scheduler.advance(std::chrono::seconds(30));
    EXPECT_EQ(told, 3);

    window.hide();
    ui::settle();
    EXPECT_EQ(rig.scheduler.armedTimers(), armedBefore);
    window.show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    EXPECT_EQ(told, 4) << "what is old by then is told at once";
    window.setWindowState(Qt::WindowMinimized);
    ui::settle();
    EXPECT_EQ(rig.scheduler.armedTimers(), armedBefore);
}

} // namespace
} // namespace nightjar
