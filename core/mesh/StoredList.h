// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/mesh/DuplicateCheck.h"

#include <cstddef>
#include <expected>
#include <string>
#include <vector>

namespace nightjar {

/// The content of a store's file while records are added to it. The bytes of the records that stay are kept
/// as they are when they stand in our own layout, as they nearly always do; any other list is first brought
/// into it. So the file says the same as if every record had been decoded and encoded again.
template <class Record>
class StoredList {
public:
    /// A text that is no list of records is an empty list.
    explicit StoredList(std::string text);

    [[nodiscard]] bool holdsDuplicateOf(const Record& record) const { return m_check.isDuplicate(record); }
    /// The same for the list as it was before anything was added.
    [[nodiscard]] bool heldDuplicateOf(const Record& record) const { return m_check.wasDuplicate(record); }

    /// Adds a record and drops the oldest beyond `maximumCount`; a sentence where the record cannot be
    /// written.
    [[nodiscard]] std::expected<void, std::string> add(const Record& record, std::size_t maximumCount);
    [[nodiscard]] bool hasChanged() const { return !m_added.empty(); }
    /// The new content of the file. Nothing can be added any more.
    [[nodiscard]] std::string takeText();

private:
    bool scan();

    std::string m_stored;
    std::vector<std::size_t> m_begins; ///< of the stored records
    std::size_t m_end = 0;             ///< of the last of them
    std::vector<std::string> m_added;  ///< the texts of the others
    std::size_t m_dropped = 0;         ///< records dropped from the front, stored or added
    DuplicateCheck<Record> m_check;
};

extern template class StoredList<MeshMessage>;
extern template class StoredList<MeshPosition>;

} // namespace nightjar
