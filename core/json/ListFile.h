// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/KeptFile.h"
#include "core/json/Decoder.h"
#include "core/json/Encoder.h"

#include <expected>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <unordered_set>
#include <utility>
#include <vector>

namespace nightjar::json {

/// A file that keeps a list of records, at most one of each `id`, across restarts; dates are seconds since
/// 2001. One thread; both calls wait for the disk.
template <class Record>
class ListFile {
public:
    /// Without a path nothing is kept.
    explicit ListFile(std::optional<std::filesystem::path> path) : m_file(std::move(path)) {}

    [[nodiscard]] const std::optional<std::filesystem::path>& path() const { return m_file.path(); }
    /// Empty when the file cannot be read or one of its records cannot. Of several records of one `id` the
    /// first counts.
    [[nodiscard]] std::vector<Record> load() {
        const auto text = m_file.read();
        auto records = text ? Decoder(DateForm::secondsSince2001).decodeList<Record>(*text) : std::nullopt;
        if (!records) {
            m_file.noteDamaged();
            return {};
        }
        std::unordered_set<decltype(Record::id)> seen;
        std::erase_if(*records, [&seen](const Record& record) { return !seen.insert(record.id).second; });
        return *std::move(records);
    }
    /// Replaces the list in one step; a sentence where that fails. A file that could not be read is kept
    /// beside the new one, under its name and ".damaged".
    [[nodiscard]] std::expected<void, std::string> save(std::span<const Record> records) {
        const auto text = Encoder(DateForm::secondsSince2001).encodeList(records);
        if (!text)
            return std::unexpected(text.error());
        return m_file.replace(*text);
    }

private:
    KeptFile m_file;
};

} // namespace nightjar::json
