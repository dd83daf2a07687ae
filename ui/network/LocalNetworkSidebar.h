// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/common/Coalesced.h"
#include "ui/common/Selection.h"
#include "ui/common/ViewContext.h"
#include "ui/rows/Row.h"

#include <QWidget>

namespace nightjar {

class SidebarPage;

/// Every device of the local network that is known.
class LocalNetworkSidebar final : public QWidget {
    Q_OBJECT
public:
    LocalNetworkSidebar(ViewContext& context, Selection& selection, QWidget* parent = nullptr);
    [[nodiscard]] SidebarPage& page() const { return *m_page; }

private:
    [[nodiscard]] Row rowOf(const std::string& id) const;
    void refresh();
    void openMenu(const std::string& id, QPoint at);

    ViewContext& m_context;
    Selection& m_selection;
    SidebarPage* m_page;
    Coalesced m_refresh;
};

} // namespace nightjar
