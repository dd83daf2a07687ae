// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "ui/common/AlertSheet.h"
#include "ui/common/Coalesced.h"
#include "ui/common/ViewContext.h"
#include "ui/settings/RadioSettingsDraft.h"

#include <QPointer>
#include <QWidget>

#include <cstddef>

class QPushButton;

namespace nightjar {

class Card;
class InspectorPage;
class LoRaForm;
class MetricRow;
class TextLabel;

/// "2 USB devices available".
[[nodiscard]] QString availablePortsText(std::size_t count);

/// The base tab: the bridge, the USB connection and the LoRa settings of the base radio. While it is on
/// screen the ports are looked for every two seconds; each time it comes on screen the radio is asked for its
/// settings.
class RadioSettingsView final : public QWidget {
    Q_OBJECT
public:
    explicit RadioSettingsView(ViewContext& context, QWidget* parent = nullptr);

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void buildConnection();
    void buildLoRa();
    void buildFoot();
    void listen();
    void lookForPorts();
    void followRadio();
    void dropConfirmation();
    void confirmApply();
    [[nodiscard]] bool canApply() const;
    void refresh();

    ViewContext& m_context;
    NightjarModel& m_model;
    RadioSettingsDraft m_draft;
    Timer m_portTimer;
    Coalesced m_refresh;
    QPointer<AlertSheet> m_confirmation;

    InspectorPage* m_page;
    MetricRow* m_bridge;
    MetricRow* m_status;
    TextLabel* m_ports;
    QList<QWidget*> m_whenConnected;
    QList<QWidget*> m_whenUnconnected;
    LoRaForm* m_form;
    Card* m_noForm;
    QPushButton* m_recommended;
    TextLabel* m_state;
    QPushButton* m_apply;
};

} // namespace nightjar
