// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/NightjarApp.h"

#include "ui/common/AlertSheet.h"
#include "ui/map/MapSource.h"
#include "ui/settings/SettingsWindow.h"
#include "ui/window/MainWindow.h"

#include <utility>

namespace nightjar {

NightjarApp::NightjarApp(const Environment& environment, std::unique_ptr<RadioLink> radio)
    : m_platform(environment.platform),
      m_version(environment.version),
      m_appearance(environment.appearance),
      m_model(environment.platform, std::move(radio)),
      m_tiles(MapSource::settings(m_platform.preferences, environment.cacheFolder, m_version)),
      m_context(m_model, m_platform, m_tiles),
      m_ages(m_context),
      m_window(std::make_unique<MainWindow>(m_context)),
      m_alerts(m_model, {m_window.get()}) {
    if (const auto file = MapSource::localFile(m_platform.preferences))
        m_tiles.setLocalFile(file);
    m_ages.follow(*m_window);
    connect(m_window.get(), &MainWindow::closed, this, [this] {
        if (m_settings)
            m_settings->close();
        Q_EMIT closed();
    });
    connect(&m_context, &ViewContext::settingsRequested, this, &NightjarApp::openSettings);
    connect(&m_context, &ViewContext::streetMapRequested, this, &NightjarApp::askForStreetMap);
}

NightjarApp::~NightjarApp() = default;

void NightjarApp::start() {
    m_window->show();
}

void NightjarApp::openSettings() {
    if (!m_settings) {
        m_settings = std::make_unique<SettingsWindow>(m_context, m_version);
        m_ages.follow(*m_settings);
        m_alerts.addWindow(*m_settings);
    }
    m_settings->open();
}

/// The pictures of a place tell the server where the guarded thing is: that is the user's to decide.
void NightjarApp::askForStreetMap() {
    if (std::exchange(m_isAsking, true))
        return;
    const QString server = MapSource::serverName(m_platform.preferences);
    auto* sheet = new AlertSheet(
        QStringLiteral("Load street map?"),
        QStringLiteral(
            "Street pictures are fetched from %1, which can then tell what area you look at. Nightjar "
            "remembers your choice; it can be changed in Settings.")
            .arg(server),
        {QStringLiteral("Load Street Map"), QStringLiteral("Cancel")}, m_window.get());
    connect(sheet, &QDialog::finished, this, [this](int result) {
        m_isAsking = false;
        if (result == QDialog::Accepted)
            MapSource::allowStreetMap(m_platform.preferences, m_tiles, true);
    });
    sheet->open();
}

} // namespace nightjar
