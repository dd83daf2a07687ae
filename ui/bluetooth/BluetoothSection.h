// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Uuid.h"
#include "ui/common/Coalesced.h"
#include "ui/common/ScanningSection.h"
#include "ui/common/Selection.h"
#include "ui/common/ViewContext.h"

#include <QPointer>
#include <QWidget>

#include <vector>

namespace nightjar {

class BluetoothContent;
class BluetoothSidebar;
class MapView;

/// Bluetooth in the main window. The scan runs while the section is on screen.
class BluetoothSection final : public ScanningSection {
    Q_OBJECT
public:
    explicit BluetoothSection(ViewContext& context);
    /// Its widgets go with it, those that are left.
    ~BluetoothSection() override;

    [[nodiscard]] QWidget* sidebar() override;
    [[nodiscard]] QWidget* content() override;
    [[nodiscard]] QWidget* inspector() override;
    void activate() override;
    void deactivate() override;
    void takeFocus() override;
    [[nodiscard]] QString scanTitle() const override;
    void scanOrStop() override;

    [[nodiscard]] Selection& selection() { return m_selection; }
    /// Where a tracked device was last heard.
    [[nodiscard]] MapView& map();

private:
    void trackedDevicesChanged();
    void selectIfNeeded();

    ViewContext& m_context;
    Selection m_selection;
    QPointer<BluetoothSidebar> m_sidebar;
    QPointer<BluetoothContent> m_content;
    QPointer<QWidget> m_inspector;
    Coalesced m_trackedDevicesChanged;
    std::vector<Uuid> m_trackedIDs;
    bool m_isActive = false;
};

} // namespace nightjar
