// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/common/ViewContext.h"
#include "ui/map/MapView.h"
#include "ui/mesh/MapPreferences.h"
#include "ui/mesh/MovementTrail.h"

#include <QWidget>

#include <vector>

namespace nightjar {

class UnavailableView;

/// The nodes of the mesh on the map, with the marked position and the movement that is shown.
class MeshMap final : public QWidget {
    Q_OBJECT
public:
    MeshMap(ViewContext& context, MovementTrail& trail, QWidget* parent = nullptr);
    [[nodiscard]] MapView& map() const { return *m_map; }

    /// The latest positions of the nodes that have one on Earth.
    [[nodiscard]] static std::vector<MapCoordinate> positionedMeshtasticDevices(const NightjarModel& model);
    void fitDevices();

Q_SIGNALS:
    /// The user wishes to write to the model's message recipient.
    void messageRequested();

protected:
    void showEvent(QShowEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void refresh();
    void fitOnce();
    void placeOverlay();
    [[nodiscard]] std::vector<MapMarker> markers() const;

    ViewContext& m_context;
    MovementTrail& m_trail;
    MapPreferences m_preferences;
    MapView* m_map;
    UnavailableView* m_waiting;
    bool m_hasRestored = false;
    bool m_hasFittedMeshtasticDevices = false;
    Coalesced m_refresh;
};

} // namespace nightjar
