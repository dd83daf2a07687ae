// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/bluetooth/BluetoothRows.h"
#include "ui/common/Coalesced.h"
#include "ui/common/Selection.h"
#include "ui/common/ViewContext.h"

#include <QStackedWidget>

class QPushButton;

namespace nightjar {

class Card;
class DelayPicker;
class InspectorPage;
class MetricRow;
class NameField;
class SwitchControl;
class TextLabel;
class UnavailableView;

/// The signal of the chosen Bluetooth device, and what is kept of it when it is tracked.
class BluetoothInspector final : public QStackedWidget {
    Q_OBJECT
public:
    BluetoothInspector(ViewContext& context, Selection& selection, QWidget* parent = nullptr);

private:
    void addSignal();
    void addTracking();
    void addLocation();
    void addActions();
    void connectControls();
    void connectManager();
    void refresh();
    void showSignal(const ShownBluetoothDevice& device);
    void showTracking(const TrackedBluetoothDevice& device);
    void showActions(const ShownBluetoothDevice& device);
    void findOrStop();
    void track();

    ViewContext& m_context;
    Selection& m_selection;
    UnavailableView* m_nothing;
    InspectorPage* m_page;
    MetricRow* m_proximity = nullptr;
    MetricRow* m_strength = nullptr;
    MetricRow* m_measurements = nullptr;
    MetricRow* m_lastSeen = nullptr;
    TextLabel* m_notHeard = nullptr;
    Card* m_tracking = nullptr;
    NameField* m_name = nullptr;
    SwitchControl* m_alert = nullptr;
    DelayPicker* m_delay = nullptr;
    MetricRow* m_lastHeard = nullptr;
    MetricRow* m_lastSignal = nullptr;
    MetricRow* m_status = nullptr;
    Card* m_location = nullptr;
    MetricRow* m_latitude = nullptr;
    MetricRow* m_longitude = nullptr;
    MetricRow* m_recorded = nullptr;
    QPushButton* m_find = nullptr;
    QPushButton* m_track = nullptr;
    QPushButton* m_stopTracking = nullptr;
    Coalesced m_refresh;
};

} // namespace nightjar
