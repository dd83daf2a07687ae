// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/rows/RowListModel.h"

#include <QStackedWidget>
#include <QWidget>

namespace nightjar {

class SidebarList;
class StatusLine;
class UnavailableView;

/// The sidebar of a section: its list, or what it says while there is nothing to list, over a line on how the
/// watch is doing.
class SidebarPage final : public QWidget {
    Q_OBJECT
public:
    SidebarPage(const QString& listName, RowListModel::MakeRow makeRow, const QString& symbol,
                QWidget* parent = nullptr);

    [[nodiscard]] SidebarList& list() const { return *m_list; }
    [[nodiscard]] const UnavailableView& unavailable() const { return *m_unavailable; }
    [[nodiscard]] StatusLine& status() const { return *m_status; }
    [[nodiscard]] bool showsList() const;

    void showList();
    void showUnavailable(const QString& title, const QString& description);
    /// The keyboard goes to the list.
    void takeFocus();

private:
    QString m_symbol;
    SidebarList* m_list;
    UnavailableView* m_unavailable;
    StatusLine* m_status;
    QStackedWidget* m_pages;
};

} // namespace nightjar
