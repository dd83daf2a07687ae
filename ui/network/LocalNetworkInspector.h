// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

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
class SwitchControl;
class TextLabel;
class UnavailableView;

/// What is known of the chosen device of the local network, and its departure alert.
class LocalNetworkInspector final : public QStackedWidget {
    Q_OBJECT
public:
    LocalNetworkInspector(ViewContext& context, Selection& selection, QWidget* parent = nullptr);

private:
    void addStatus();
    void addTracking();
    void connectControls();
    void refresh();
    void show(const LocalNetworkDevice& device);
    using QStackedWidget::show;
    void showServices(const std::vector<std::string>& types);
    [[nodiscard]] const std::string& id() const { return m_selection.id(); }

    ViewContext& m_context;
    Selection& m_selection;
    UnavailableView* m_nothing;
    InspectorPage* m_page;
    MetricRow* m_state;
    MetricRow* m_lastSeen;
    MetricRow* m_domain;
    MetricRow* m_interface;
    Card* m_tracking;
    SwitchControl* m_alert;
    DelayPicker* m_delay;
    MetricRow* m_monitor;
    TextLabel* m_unwatched;
    QPushButton* m_stopTracking;
    QPushButton* m_track;
    Card* m_services;
    QPushButton* m_forget;
    std::vector<std::string> m_shownTypes;
    std::vector<QWidget*> m_serviceRows;
    Coalesced m_refresh;
};

} // namespace nightjar
