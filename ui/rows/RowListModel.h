// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "ui/rows/Row.h"

#include <QAbstractListModel>

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// Titled rows as one flat list. Rows are made when they are looked at. A new list is taken over by moves,
/// insertions and removals, so that views keep their place and their selection.
class RowListModel final : public QAbstractListModel {
    Q_OBJECT
public:
    using MakeRow = std::function<Row(const std::string& id)>;
    explicit RowListModel(MakeRow makeRow, QObject* parent = nullptr);

    /// An identity that occurs twice is shown once, where it comes first.
    void setSections(const std::vector<RowSection>& sections);
    /// The records behind the rows have changed.
    void refresh();
    void refresh(const std::string& id);

    [[nodiscard]] bool isTitle(int place) const { return m_entries[static_cast<std::size_t>(place)].isTitle; }
    /// Empty for the title of a section.
    [[nodiscard]] std::string idAt(int place) const;
    [[nodiscard]] std::optional<int> placeOf(const std::string& id) const;
    /// The row at a place that is no title.
    [[nodiscard]] Row rowAt(int place) const;

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    struct Entry {
        bool isTitle = false;
        std::string id; ///< of a section its title

        bool operator==(const Entry&) const = default;
    };

    [[nodiscard]] static std::vector<Entry> entriesOf(const std::vector<RowSection>& sections);
    void removeAllBut(const std::vector<Entry>& wanted);
    [[nodiscard]] std::optional<int> placeFrom(int from, const Entry& entry) const;
    void insertMissing(int place, const std::vector<Entry>& wanted);

    MakeRow m_makeRow;
    std::vector<Entry> m_entries;
};

} // namespace nightjar
