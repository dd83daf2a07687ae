// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/rows/RowListModel.h"

#include <algorithm>
#include <set>
#include <utility>

namespace nightjar {

namespace {

struct ById {
    template <class Entry>
    bool operator()(const Entry* left, const Entry* right) const {
        return left->isTitle != right->isTitle ? left->isTitle : left->id < right->id;
    }
};

} // namespace

RowListModel::RowListModel(MakeRow makeRow, QObject* parent)
    : QAbstractListModel(parent), m_makeRow(std::move(makeRow)) {}

std::vector<RowListModel::Entry> RowListModel::entriesOf(const std::vector<RowSection>& sections) {
    std::vector<Entry> entries;
    std::set<std::string_view> seen;
    for (const auto& section : sections) {
        bool isTitled = false;
        for (const auto& id : section.ids) {
            if (!seen.insert(id).second)
                continue;
            if (!std::exchange(isTitled, true))
                entries.push_back({true, section.title.toStdString()});
            entries.push_back({false, id});
        }
    }
    return entries;
}

void RowListModel::setSections(const std::vector<RowSection>& sections) {
    const auto wanted = entriesOf(sections);
    if (wanted != m_entries) {
        removeAllBut(wanted);
        for (int place = 0; place < static_cast<int>(wanted.size()); ++place) {
            const auto& entry = wanted[static_cast<std::size_t>(place)];
            if (place < rowCount() && m_entries[static_cast<std::size_t>(place)] == entry)
                continue;
            if (const auto from = placeFrom(place, entry)) {
                beginMoveRows({}, *from, *from, {}, place);
                std::rotate(m_entries.begin() + place, m_entries.begin() + *from,
                            m_entries.begin() + *from + 1);
                endMoveRows();
            } else {
                insertMissing(place, wanted);
            }
        }
    }
    refresh();
}

void RowListModel::removeAllBut(const std::vector<Entry>& wanted) {
    std::set<const Entry*, ById> kept;
    for (const auto& entry : wanted)
        kept.insert(&entry);
    for (int last = rowCount() - 1; last >= 0; --last) {
        if (kept.contains(&m_entries[static_cast<std::size_t>(last)]))
            continue;
        int first = last;
        while (first > 0 && !kept.contains(&m_entries[static_cast<std::size_t>(first - 1)]))
            --first;
        beginRemoveRows({}, first, last);
        m_entries.erase(m_entries.begin() + first, m_entries.begin() + last + 1);
        endRemoveRows();
        last = first;
    }
}

std::optional<int> RowListModel::placeFrom(int from, const Entry& entry) const {
    const auto found = std::find(m_entries.begin() + from, m_entries.end(), entry);
    return found == m_entries.end() ? std::nullopt
                                    : std::optional(static_cast<int>(found - m_entries.begin()));
}

/// All that follow each other and are not in the list yet, so that a new list of thousands is one insertion.
void RowListModel::insertMissing(int place, const std::vector<Entry>& wanted) {
    std::set<const Entry*, ById> present;
    for (auto entry = m_entries.begin() + place; entry != m_entries.end(); ++entry)
        present.insert(&*entry);
    const auto first = wanted.begin() + place;
    const auto last =
        std::find_if(first, wanted.end(), [&](const Entry& entry) { return present.contains(&entry); });
    beginInsertRows({}, place, place + static_cast<int>(last - first) - 1);
    m_entries.insert(m_entries.begin() + place, first, last);
    endInsertRows();
}

void RowListModel::refresh() {
    if (!m_entries.empty())
        Q_EMIT dataChanged(index(0), index(rowCount() - 1));
}

void RowListModel::refresh(const std::string& id) {
    if (const auto place = placeOf(id))
        Q_EMIT dataChanged(index(*place), index(*place));
}

std::string RowListModel::idAt(int place) const {
    return place < 0 || place >= rowCount() || isTitle(place) ? std::string()
                                                              : m_entries[static_cast<std::size_t>(place)].id;
}

std::optional<int> RowListModel::placeOf(const std::string& id) const {
    return placeFrom(0, {false, id});
}

Row RowListModel::rowAt(int place) const {
    return m_makeRow(m_entries[static_cast<std::size_t>(place)].id);
}

int RowListModel::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(m_entries.size());
}

QVariant RowListModel::data(const QModelIndex& index, int role) const {
    if (!checkIndex(index, CheckIndexOption::IndexIsValid))
        return {};
    if (role != Qt::DisplayRole && role != Qt::AccessibleTextRole)
        return {};
    if (isTitle(index.row()))
        return QString::fromStdString(m_entries[static_cast<std::size_t>(index.row())].id);
    const Row row = rowAt(index.row());
    if (role == Qt::DisplayRole)
        return row.title;
    QStringList texts{row.title, row.caption};
    for (const auto& badge : row.badges)
        texts << badge.help;
    texts.removeAll(QString());
    return texts.join(QStringLiteral(", "));
}

Qt::ItemFlags RowListModel::flags(const QModelIndex& index) const {
    if (!index.isValid() || isTitle(index.row()))
        return Qt::NoItemFlags;
    return Qt::ItemIsSelectable | Qt::ItemIsEnabled | Qt::ItemNeverHasChildren;
}

} // namespace nightjar
