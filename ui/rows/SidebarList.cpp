// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/rows/SidebarList.h"

#include "ui/rows/RowDelegate.h"
#include "ui/style/Colors.h"
#include "ui/style/NightjarStyle.h"

#include <QContextMenuEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScrollBar>

#include <utility>

namespace nightjar {

SidebarList::SidebarList(const QString& accessibleName, RowListModel::MakeRow makeRow, QWidget* parent)
    : QListView(parent), m_rows(std::move(makeRow)) {
    setAccessibleName(accessibleName);
    setModel(&m_rows);
    setItemDelegate(new RowDelegate(this));
    setFrameShape(QFrame::NoFrame);
    setMouseTracking(true);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    verticalScrollBar()->setSingleStep(16);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setResizeMode(QListView::Adjust);
    viewport()->setAutoFillBackground(false);
}

void SidebarList::setSections(const std::vector<RowSection>& sections) {
    const QScopedValueRollback updating(m_isUpdating, true);
    m_rows.setSections(sections);
    showSelection();
}

void SidebarList::select(const std::string& id) {
    const QScopedValueRollback updating(m_isUpdating, true);
    m_selectedID = id;
    showSelection();
}

void SidebarList::showSelection() {
    const auto place = m_selectedID.empty() ? std::nullopt : m_rows.placeOf(m_selectedID);
    const QModelIndex wanted = place ? m_rows.index(*place) : QModelIndex();
    if (currentIndex() == wanted && selectionModel()->isSelected(wanted) == wanted.isValid())
        return;
    if (wanted.isValid())
        selectionModel()->setCurrentIndex(wanted, QItemSelectionModel::ClearAndSelect);
    else
        selectionModel()->clear();
}

void SidebarList::dataChanged(const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
    // The height of a row does not depend on what it shows: nothing has to be laid out anew, as a list view
    // would.
    QAbstractItemView::dataChanged(first, last, roles); // NOLINT(bugprone-parent-virtual-call)
}

/// A list view would choose its first row.
void SidebarList::focusInEvent(QFocusEvent* event) {
    const QScopedValueRollback updating(m_isUpdating, true);
    QListView::focusInEvent(event);
    if (!selectionModel()->hasSelection())
        selectionModel()->clearCurrentIndex();
}

void SidebarList::currentChanged(const QModelIndex& current, const QModelIndex& previous) {
    QListView::currentChanged(current, previous);
    if (m_isUpdating || !current.isValid())
        return;
    const std::string id = m_rows.idAt(current.row());
    if (id.empty() || id == m_selectedID)
        return;
    m_selectedID = id;
    Q_EMIT selected(id);
}

/// The keyboard is seen on the selected row, or where there is none on the list.
void SidebarList::paintEvent(QPaintEvent* event) {
    QListView::paintEvent(event);
    if (currentIndex().isValid() || !showsKeyboardFocus(this))
        return;
    QPainter painter(viewport());
    paintFocusRing(painter, viewport()->rect(), 7, Colors::of(this));
}

void SidebarList::contextMenuEvent(QContextMenuEvent* event) {
    const bool byKey = event->reason() == QContextMenuEvent::Keyboard;
    const QModelIndex index = byKey ? currentIndex() : indexAt(event->pos());
    if (!index.isValid() || m_rows.isTitle(index.row()))
        return;
    const QPoint at = byKey ? viewport()->mapToGlobal(visualRect(index).center()) : event->globalPos();
    Q_EMIT menuRequested(m_rows.idAt(index.row()), at);
}

} // namespace nightjar
