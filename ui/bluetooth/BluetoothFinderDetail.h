// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/ViewContext.h"

#include <QWidget>

class QPushButton;

namespace nightjar {

class ElidedLabel;
class MetricRow;
class SwitchControl;
class SymbolLabel;
class SymbolView;
class TextLabel;

/// The finder: whether the device that is being found comes closer.
class BluetoothFinderDetail final : public QWidget {
    Q_OBJECT
public:
    explicit BluetoothFinderDetail(ViewContext& context, QWidget* parent = nullptr);
    /// Of the device that the manager is finding; it need not be heard. `name` is fit to be shown.
    void refresh(const QString& name);

private:
    void layOut();

    ViewContext& m_context;
    ElidedLabel* m_name;
    SymbolView* m_symbol;
    TextLabel* m_proximity;
    TextLabel* m_strength;
    SymbolLabel* m_trend;
    SwitchControl* m_sound;
    MetricRow* m_lastSeen = nullptr;
    QPushButton* m_stop;
    QPushButton* m_settings;
};

} // namespace nightjar
