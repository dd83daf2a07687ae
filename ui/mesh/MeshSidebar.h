// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/common/ViewContext.h"

#include <QWidget>

namespace nightjar {

class BaseStationPanel;
class SidebarList;
class StatusLine;
class UnavailableView;

/// The radios on USB above the nodes of the mesh.
class MeshSidebar final : public QWidget {
    Q_OBJECT
public:
    explicit MeshSidebar(ViewContext& context, QWidget* parent = nullptr);
    [[nodiscard]] SidebarList& list() const { return *m_list; }

Q_SIGNALS:
    /// The user wishes to write to the model's message recipient.
    void messageRequested();

private:
    void refresh();
    void openMenu(const std::string& id, QPoint at);

    ViewContext& m_context;
    BaseStationPanel* m_bases;
    SidebarList* m_list;
    UnavailableView* m_nobody;
    StatusLine* m_state;
    Coalesced m_refresh;
};

} // namespace nightjar
