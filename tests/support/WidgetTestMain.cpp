// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/style/Colors.h"
#include "ui/style/NightjarStyle.h"

#include <QAccessible>
#include <QApplication>
#include <QStandardPaths>

#include <gmock/gmock.h>

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QStandardPaths::setTestModeEnabled(true);
    const QApplication application(argc, argv);
    QApplication::setStyle(new nightjar::NightjarStyle);
    QApplication::setPalette(nightjar::Colors::light().palette());
    QAccessible::setActive(true);
    ::testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
