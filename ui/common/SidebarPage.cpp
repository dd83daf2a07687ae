// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/common/SidebarPage.h"

#include "ui/common/StatusLine.h"
#include "ui/common/UnavailableView.h"
#include "ui/rows/SidebarList.h"

#include <QVBoxLayout>

#include <utility>

namespace nightjar {

SidebarPage::SidebarPage(const QString& listName, RowListModel::MakeRow makeRow, const QString& symbol,
                         QWidget* parent)
    : QWidget(parent),
      m_symbol(symbol),
      m_list(new SidebarList(listName, std::move(makeRow))),
      m_unavailable(new UnavailableView),
      m_status(new StatusLine(symbol)),
      m_pages(new QStackedWidget) {
    m_pages->addWidget(m_unavailable);
    m_pages->addWidget(m_list);
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    layout->addWidget(m_pages, 1);
    layout->addWidget(m_status);
}

bool SidebarPage::showsList() const {
    return m_pages->currentWidget() == m_list;
}

void SidebarPage::showList() {
    m_pages->setCurrentWidget(m_list);
}

void SidebarPage::showUnavailable(const QString& title, const QString& description) {
    m_unavailable->show(m_symbol, title, description);
    m_pages->setCurrentWidget(m_unavailable);
}

void SidebarPage::takeFocus() {
    // What there is to say while there is no list can be heard; when the list comes it takes over.
    m_pages->currentWidget()->setFocus(Qt::OtherFocusReason);
}

} // namespace nightjar
