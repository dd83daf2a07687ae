// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ControllerTable.h"
#include "app/headless/JsonForm.h"
#include "app/headless/RecordChanges.h"

#include <cstddef>
#include <deque>
#include <utility>
#include <vector>

namespace nightjar::headless {

/// The changes of a list that grows at its end until it is cleared, and that says which of its records
/// changed: the cost is that of the changes, however long the list is. When the sink fills up, what was told
/// counts as told, and the next call goes on with the rest.
template <class Record>
class IndexedRecords {
public:
    /// The record at this place was added or has changed.
    void noteChanged(std::size_t index) {
        if (index >= m_isWaiting.size())
            m_isWaiting.resize(index + 1);
        if (m_isWaiting[index])
            return;
        m_isWaiting[index] = true;
        m_waiting.push_back(index);
    }

    void noteCleared() {
        m_gone.insert(m_gone.end(), m_told.begin(), m_told.end());
        m_told.clear();
        m_waiting.clear();
        m_isWaiting.clear();
    }

    template <class List>
    bool tell(const List& records, ElementSink& sink) {
        for (; !m_gone.empty(); m_gone.pop_front()) {
            if (sink.isFull())
                return false;
            sink.element(jsonText(m_gone.front()), "null");
        }
        for (; !m_waiting.empty(); m_waiting.pop_front()) {
            const auto index = m_waiting.front();
            if (sink.isFull())
                return false;
            m_isWaiting[index] = false;
            if (index < records.size())
                tellOne(records[index], index, sink);
        }
        return true;
    }

private:
    using Id = decltype(recordId(std::declval<Record>()));

    void tellOne(const Record& record, std::size_t index, ElementSink& sink) {
        const auto id = recordId(record);
        sink.element(jsonText(id), jsonText(record));
        if (index >= m_told.size())
            m_told.resize(index + 1);
        m_told[index] = id;
    }

    std::deque<std::size_t> m_waiting; ///< to be told, in the order of the changes
    std::vector<bool> m_isWaiting;     ///< by place
    std::vector<Id> m_told;            ///< by place
    std::deque<Id> m_gone;             ///< told once, and no longer in the list
};

} // namespace nightjar::headless
