// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/ViewContext.h"
#include "ui/map/MapView.h"

#include <QWidget>

namespace nightjar {

class SymbolLabel;
class TextLabel;

/// Where this computer was when it last heard a tracked device.
class BluetoothLastSeenMap final : public QWidget {
    Q_OBJECT
public:
    explicit BluetoothLastSeenMap(ViewContext& context, QWidget* parent = nullptr);
    /// For a device with a location. The map moves there when the device or its location is another one.
    void show(const TrackedBluetoothDevice& device);
    using QWidget::show;
    [[nodiscard]] MapView& map() const { return *m_map; }

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void moveTo(const Uuid& id, const MapCoordinate& place);
    void placeCaption();

    ViewContext& m_context;
    MapView* m_map;
    QWidget* m_caption;
    SymbolLabel* m_title;
    TextLabel* m_lastSeen;
    std::optional<Uuid> m_shownID;
    MapCoordinate m_shownPlace;
};

} // namespace nightjar
