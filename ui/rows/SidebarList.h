// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/rows/RowListModel.h"

#include <QListView>

#include <string>
#include <vector>

namespace nightjar {

/// The list of a sidebar. What is selected is told to it: a row that goes never hands its selection to a
/// neighbour.
class SidebarList final : public QListView {
    Q_OBJECT
public:
    SidebarList(const QString& accessibleName, RowListModel::MakeRow makeRow, QWidget* parent = nullptr);

    void setSections(const std::vector<RowSection>& sections);
    void refreshRows() { m_rows.refresh(); }
    void refreshRow(const std::string& id) { m_rows.refresh(id); }
    /// Empty selects nothing. An identity that is not there is selected as soon as it is.
    void select(const std::string& id);
    [[nodiscard]] const std::string& selectedID() const { return m_selectedID; }
    [[nodiscard]] const RowListModel& rows() const { return m_rows; }

Q_SIGNALS:
    /// The user chose a row.
    void selected(const std::string& id);
    /// By the right button or the menu key.
    void menuRequested(const std::string& id, QPoint globalPosition);

protected:
    void dataChanged(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) override;
    void focusInEvent(QFocusEvent* event) override;
    void currentChanged(const QModelIndex& current, const QModelIndex& previous) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void showSelection();

    RowListModel m_rows;
    std::string m_selectedID;
    bool m_isUpdating = false;
};

} // namespace nightjar
