// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/mesh/NightjarModel.h"
#include "platform/PlatformServices.h"

#include <QObject>
#include <QString>

#include <functional>

namespace nightjar {

class MapTiles;

/// What every view is given: the controllers, the computer they run on, and what the windows share. Main
/// thread; lives longer than the views.
class ViewContext : public QObject {
    Q_OBJECT
public:
    ViewContext(NightjarModel& model, const PlatformServices& platform, MapTiles& tiles)
        : m_model(model), m_platform(platform), m_tiles(tiles) {}

    [[nodiscard]] NightjarModel& model() const { return m_model; }
    [[nodiscard]] BluetoothTrackerManager& bluetoothTrackers() const { return m_model.bluetoothTrackers(); }
    [[nodiscard]] LocalNetworkBrowser& localNetwork() const { return m_model.localNetwork(); }
    [[nodiscard]] const PlatformServices& platform() const { return m_platform; }
    [[nodiscard]] MapTiles& tiles() const { return m_tiles; }

    [[nodiscard]] Date now() const { return m_platform.scheduler.now(); }
    /// "5 minutes ago".
    [[nodiscard]] QString relativeTime(Date date) const {
        return QString::fromStdString(m_platform.text.relativeTime(date, now()));
    }

Q_SIGNALS:
    /// A view wishes the settings window, which opens on the model's `selectedSettingsTab`.
    void settingsRequested();
    /// A map wishes street pictures from a server, which the user has not agreed to yet.
    void streetMapRequested();
    /// Relative times on screen are to be computed afresh. Only while a window can be seen.
    void timePassed();

private:
    NightjarModel& m_model;
    PlatformServices m_platform;
    MapTiles& m_tiles;
};

} // namespace nightjar
