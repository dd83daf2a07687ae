// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "tests/support/ModelRig.h"
#include "ui/map/MapTiles.h"
#include "ui/settings/SettingsWindow.h"

#include <QAccessible>
#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

#include <optional>
#include <stdexcept>

namespace nightjar::testing {

/// The settings window of a model whose radio the test plays.
class SettingsRig : public ModelRig {
public:
    [[nodiscard]] static MeshtasticRadioSettings recommended() {
        MeshtasticRadioSettings settings;
        applyRecommendedSetup(settings);
        return settings;
    }

    void open(SettingsTab tab) {
        context.emplace(*model, services(), tiles);
        window.emplace(*context, QStringLiteral("1.2.3"));
        model->setSelectedSettingsTab(tab);
        window->open();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&*window));
        settle();
    }
    void radioTells(const MeshtasticRadioSettings& settings) {
        event({.event = MeshtasticBridgeEvent::radioSettings, .settings = settings});
        settle();
    }

    static void settle() {
        QApplication::processEvents();
        QApplication::processEvents();
    }
    /// The control on screen that is called so.
    template <class Control>
    [[nodiscard]] Control& control(const char* name) const {
        for (auto* found : window->findChildren<Control*>()) {
            if (found->isVisible() && found->accessibleName() == QString::fromUtf8(name))
                return *found;
        }
        throw std::runtime_error(std::string("nothing on screen is called ") + name);
    }
    void click(const char* button) const {
        auto& found = control<QPushButton>(button);
        EXPECT_TRUE(found.isEnabled()) << button;
        QTest::mouseClick(&found, Qt::LeftButton);
        settle();
    }
    [[nodiscard]] bool isEnabled(const char* button) const {
        return control<QPushButton>(button).isEnabled();
    }
    /// What can be read on the tab that is shown, a line for each label.
    [[nodiscard]] std::string texts() const {
        QStringList lines;
        for (const auto* label : window->findChildren<QLabel*>()) {
            if (label->isVisible())
                lines << (label->text().isEmpty() ? label->accessibleName() : label->text());
        }
        return lines.join(u'\n').remove(QChar(0x200B)).toStdString();
    }

    MapTiles tiles{MapTileSettings{}};
    std::optional<ViewContext> context;
    std::optional<SettingsWindow> window;
};

} // namespace nightjar::testing
