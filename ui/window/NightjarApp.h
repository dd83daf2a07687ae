// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/mesh/NightjarModel.h"
#include "platform/DesktopAppearance.h"
#include "platform/PlatformServices.h"
#include "radio/RadioLink.h"
#include "ui/common/ViewContext.h"
#include "ui/map/MapTiles.h"
#include "ui/style/AppearanceFollower.h"
#include "ui/window/AgeTicker.h"
#include "ui/window/ErrorAlerts.h"

#include <QObject>
#include <QString>

#include <memory>

namespace nightjar {

class MainWindow;
class SettingsWindow;

/// The program with its windows: one model for its lifetime, the main window and the settings window. Main
/// thread.
class NightjarApp final : public QObject {
    Q_OBJECT
public:
    struct Environment {
        const PlatformServices& platform;
        DesktopAppearance& appearance;
        QString version;
        QString cacheFolder; ///< for map tiles; empty keeps them in memory
    };
    NightjarApp(const Environment& environment, std::unique_ptr<RadioLink> radio);
    ~NightjarApp() override;

    /// Opens the main window.
    void start();
    void openSettings();

    [[nodiscard]] NightjarModel& model() { return m_model; }
    [[nodiscard]] MainWindow& mainWindow() { return *m_window; }

Q_SIGNALS:
    /// The main window is closed, and with it the settings: the program is to end.
    void closed();

private:
    void askForStreetMap();

    PlatformServices m_platform;
    QString m_version;
    AppearanceFollower m_appearance;
    NightjarModel m_model;
    MapTiles m_tiles;
    ViewContext m_context;
    AgeTicker m_ages;
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<SettingsWindow> m_settings; ///< once it was opened
    ErrorAlerts m_alerts;
    bool m_isAsking = false;
};

} // namespace nightjar
