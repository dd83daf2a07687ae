// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/bluetooth/BluetoothRows.h"
#include "ui/common/Coalesced.h"
#include "ui/common/Selection.h"
#include "ui/common/ViewContext.h"

#include <QStackedWidget>

namespace nightjar {

class BluetoothFinderDetail;
class BluetoothLastSeenMap;
class DetailView;
class UnavailableView;

/// Where the chosen Bluetooth device is, as far as can be told: the finder, the map, or what to do next.
class BluetoothContent final : public QStackedWidget {
    Q_OBJECT
public:
    BluetoothContent(ViewContext& context, Selection& selection, QWidget* parent = nullptr);
    [[nodiscard]] BluetoothLastSeenMap& map() const { return *m_map; }

private:
    [[nodiscard]] DetailView* makeUnlocated();
    [[nodiscard]] DetailView* makeNearby();
    void connectManager();
    void refresh();
    void showNothing();
    void show(const ShownBluetoothDevice& device);
    using QStackedWidget::show;

    ViewContext& m_context;
    Selection& m_selection;
    UnavailableView* m_nothing;
    BluetoothFinderDetail* m_finder;
    BluetoothLastSeenMap* m_map;
    DetailView* m_unlocated;
    DetailView* m_nearby;
    Coalesced m_refresh;
};

} // namespace nightjar
