// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace nightjar {

/// A file that is read once and replaced whenever what it keeps changes. One that could not be understood is
/// not lost: it stays beside the first new one, under its name and ".damaged". One thread; reading and
/// replacing wait for the disk.
class KeptFile {
public:
    /// Without a path nothing is kept.
    explicit KeptFile(std::optional<std::filesystem::path> path) : m_path(std::move(path)) {}

    [[nodiscard]] const std::optional<std::filesystem::path>& path() const { return m_path; }
    /// The whole file; absent when it cannot be read.
    [[nodiscard]] std::optional<std::string> read() const;
    /// What stands at the path, if anything does, could not be understood.
    void noteDamaged();
    /// In one step, with the missing folders; a sentence where that fails.
    [[nodiscard]] std::expected<void, std::string> replace(std::string_view bytes);

private:
    std::optional<std::filesystem::path> m_path;
    bool m_isDamaged = false;
};

} // namespace nightjar
