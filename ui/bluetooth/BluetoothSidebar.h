// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/common/Selection.h"
#include "ui/common/Throttled.h"
#include "ui/common/ViewContext.h"
#include "ui/rows/Row.h"

#include <QWidget>

#include <unordered_set>

namespace nightjar {

class SidebarPage;

/// The tracked Bluetooth devices and those nearby. Made for a crowded place: hearing a device again paints
/// its row, new devices are listed a few times a second.
class BluetoothSidebar final : public QWidget {
    Q_OBJECT
public:
    BluetoothSidebar(ViewContext& context, Selection& selection, QWidget* parent = nullptr);
    [[nodiscard]] SidebarPage& page() const { return *m_page; }

private:
    [[nodiscard]] Row rowOf(const std::string& id) const;
    void deviceChanged(std::size_t place);
    void requestList();
    void refreshDevices();
    void refreshState();
    void openMenu(const std::string& id, QPoint at);

    ViewContext& m_context;
    Selection& m_selection;
    SidebarPage* m_page;
    Throttled m_devices;
    Coalesced m_state;
    bool m_listIsDue = true;
    std::size_t m_listed = 0; ///< of the devices heard, so many have been looked at for the list
    std::unordered_set<Uuid> m_changed;
};

} // namespace nightjar
