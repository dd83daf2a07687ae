// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bluetooth/BluetoothJson.h"
#include "core/bluetooth/TrackedBluetoothDevice.h"
#include "core/json/ListFile.h"

#include <expected>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace nightjar {

/// The file that keeps the tracked devices across restarts. One thread; both calls wait for the disk.
class TrackedDevicesFile {
public:
    /// Without a path nothing is kept.
    explicit TrackedDevicesFile(std::optional<std::filesystem::path> path) : m_file(std::move(path)) {}

    [[nodiscard]] const std::optional<std::filesystem::path>& path() const { return m_file.path(); }
    /// Empty when the file cannot be read or one of its records cannot. Of several records of one device the
    /// first counts.
    [[nodiscard]] std::vector<TrackedBluetoothDevice> load();
    /// Replaces the list in one step; a sentence where that fails. A file that could not be read is kept
    /// beside the new one, under its name and ".damaged".
    [[nodiscard]] std::expected<void, std::string> save(std::span<const TrackedBluetoothDevice> devices) {
        return m_file.save(devices);
    }

private:
    json::ListFile<TrackedBluetoothDevice> m_file;
};

} // namespace nightjar
