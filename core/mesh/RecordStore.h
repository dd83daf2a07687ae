// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/mesh/MeshMessage.h"
#include "core/mesh/MeshPosition.h"

#include <cstddef>
#include <expected>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// A capped list of records in one JSON file, oldest first, and nothing kept in memory between calls. An
/// actor: its operations run one at a time, in the order of the calls, on a thread of its own; completions
/// run on that thread. Any thread may call. Destroying the store finishes what was asked of it first.
template <class Record>
class RecordStore {
public:
    using Loaded = std::move_only_function<void(std::vector<Record>)>;
    using Appended = std::move_only_function<void(std::expected<void, std::string>)>;

    /// The file is not touched. Without a file the store holds nothing, and appending to it succeeds.
    explicit RecordStore(std::optional<std::filesystem::path> url);
    ~RecordStore();
    RecordStore(const RecordStore&) = delete;
    RecordStore& operator=(const RecordStore&) = delete;

    /// All records; none when the file is missing, unreadable or not a list of records.
    void load(Loaded done);

    /// Adds a record unless it is a duplicate, and drops the oldest beyond `maximumCount` (at least 1). Gives
    /// a sentence for the user when the file could not be written; the file is then unchanged. Appends that
    /// wait together share one reading and one writing of the file. While the disk hangs at most the newest 2
    /// * `maximumCount` wait (1,000 where that is less); the older ones fail.
    void append(Record record, std::size_t maximumCount, Appended done = {});

private:
    struct Actor;
    std::unique_ptr<Actor> m_actor;
};

/// Drops a message whose non-zero packet and sender any stored message has.
using MessageStore = RecordStore<MeshMessage>;
/// Drops a position equal in node, latitude and longitude to the last stored one.
using PositionStore = RecordStore<MeshPosition>;

extern template class RecordStore<MeshMessage>;
extern template class RecordStore<MeshPosition>;

} // namespace nightjar
