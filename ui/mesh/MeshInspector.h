// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/mesh/MeshNode.h"
#include "ui/common/Coalesced.h"
#include "ui/common/ViewContext.h"
#include "ui/mesh/MovementTrail.h"

#include <QStackedWidget>

class QPushButton;

namespace nightjar {

class GuardControls;
class InspectorPage;
class MetricRow;
class UnavailableView;

/// All about the selected node.
class MeshInspector final : public QStackedWidget {
    Q_OBJECT
public:
    MeshInspector(ViewContext& context, MovementTrail& trail, QWidget* parent = nullptr);

Q_SIGNALS:
    /// The user wishes to write to the model's message recipient.
    void messageRequested();

private:
    void buildStatus();
    void buildPosition();
    void buildActions();
    void refresh();
    void refreshStatus(const MeshNode& node);
    void refreshPosition(const MeshNode& node);
    void toggleMovement();

    ViewContext& m_context;
    MovementTrail& m_trail;
    UnavailableView* m_nothing;
    InspectorPage* m_page;
    MetricRow *m_connection = nullptr, *m_hardware = nullptr, *m_power = nullptr, *m_signal = nullptr,
              *m_lastSeen = nullptr;
    MetricRow *m_latitude = nullptr, *m_longitude = nullptr, *m_received = nullptr, *m_points = nullptr;
    QPushButton* m_movement = nullptr;
    GuardControls* m_guard;
    QWidget* m_actions = nullptr;
    QPushButton* m_guardButton = nullptr;
    Coalesced m_refresh;
};

} // namespace nightjar
