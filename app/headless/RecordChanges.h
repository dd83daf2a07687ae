// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ControllerTable.h"
#include "app/headless/JsonForm.h"

#include <cstdint>
#include <span>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace nightjar::headless {

/// What names a record in its list.
template <class Record>
[[nodiscard]] auto recordId(const Record& record) {
    if constexpr (requires { record.id(); })
        return record.id();
    else
        return record.id;
}

/// The changes of a list whose records come, change and go. Keeps a copy of each record as it was last told.
/// When the sink fills up, what was told counts as told, and the next call goes on with the rest.
template <class Record>
class ChangingRecords {
public:
    bool tell(std::span<const Record> records, ElementSink& sink) {
        ++m_round;
        for (const Record& record : records) {
            if (sink.isFull())
                return false;
            const auto id = recordId(record);
            const auto [known, isNew] = m_told.try_emplace(id, record, m_round);
            known->second.round = m_round;
            if (!isNew && known->second.record == record)
                continue;
            known->second.record = record;
            sink.element(jsonText(id), jsonText(record));
        }
        for (auto known = m_told.begin(); known != m_told.end();) {
            if (sink.isFull())
                return false;
            if (known->second.round == m_round) {
                ++known;
                continue;
            }
            sink.element(jsonText(known->first), "null");
            known = m_told.erase(known);
        }
        return true;
    }

private:
    struct Told {
        Told(const Record& told, std::uint64_t seenIn) : record(told), round(seenIn) {}
        Record record;
        std::uint64_t round; ///< the last one in which the list held the record
    };
    std::unordered_map<decltype(recordId(std::declval<Record>())), Told> m_told;
    std::uint64_t m_round = 0;
};

/// The changes of a list that only grows at its end and whose records never change: the cost is that of the
/// new records. Should the list be replaced after all, the records that went and came are told.
template <class Record>
class AppendedRecords {
public:
    bool tell(std::span<const Record> records, ElementSink& sink) {
        if (!continuesFromTold(records))
            tellReplacement(records, sink);
        for (const Record& record : records.subspan(m_told.size())) {
            if (sink.isFull())
                return false;
            tellOne(record, sink);
        }
        return true;
    }

private:
    using Id = decltype(recordId(std::declval<Record>()));

    [[nodiscard]] bool continuesFromTold(std::span<const Record> records) const {
        if (m_told.empty())
            return true;
        return records.size() >= m_told.size() && recordId(records.front()) == m_told.front() &&
               recordId(records[m_told.size() - 1]) == m_told.back();
    }

    /// In one go, however full the sink is: it does not happen in the run of things.
    void tellReplacement(std::span<const Record> records, ElementSink& sink) {
        std::unordered_set<Id> kept;
        for (const Record& record : records)
            kept.insert(recordId(record));
        std::unordered_set<Id> known;
        for (const Id& id : std::exchange(m_told, {})) {
            if (kept.contains(id))
                known.insert(id);
            else
                sink.element(jsonText(id), "null");
        }
        for (const Record& record : records) {
            if (known.contains(recordId(record)))
                m_told.push_back(recordId(record));
            else
                tellOne(record, sink);
        }
    }

    void tellOne(const Record& record, ElementSink& sink) {
        sink.element(jsonText(recordId(record)), jsonText(record));
        m_told.push_back(recordId(record));
    }

    std::vector<Id> m_told; ///< in list order
};

} // namespace nightjar::headless
