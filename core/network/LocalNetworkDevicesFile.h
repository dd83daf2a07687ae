// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/json/ListFile.h"
#include "core/network/LocalNetworkDevice.h"
#include "core/network/NetworkJson.h"

#include <expected>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// The file that keeps the known devices across restarts. One thread; both calls wait for the disk.
class LocalNetworkDevicesFile {
public:
    /// Without a path nothing is kept.
    explicit LocalNetworkDevicesFile(std::optional<std::filesystem::path> path) : m_file(std::move(path)) {}

    [[nodiscard]] const std::optional<std::filesystem::path>& path() const { return m_file.path(); }
    /// Empty when the file cannot be read or one of its records cannot. Of several records of one device the
    /// first counts, and no alert comes sooner than after `leastKeptDelay`.
    [[nodiscard]] std::vector<LocalNetworkDevice> load();
    /// Replaces the list in one step, with nobody online; a sentence where that fails. A file that could not
    /// be read is kept beside the new one, under its name and ".damaged".
    [[nodiscard]] std::expected<void, std::string> save(std::vector<LocalNetworkDevice> devices);

private:
    json::ListFile<LocalNetworkDevice> m_file;
};

} // namespace nightjar
