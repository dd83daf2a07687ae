// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// What the computer tells about itself. Every question is answered afresh. Any thread.
class HostEnvironment {
public:
    virtual ~HostEnvironment() = default;
    [[nodiscard]] virtual std::optional<std::string> environmentVariable(const std::string& name) const = 0;
    /// Where programs keep the user's data; absent when the user has no home.
    [[nodiscard]] virtual std::optional<std::filesystem::path> applicationSupportFolder() const = 0;
    /// The folder that holds the application's bundle; absent where applications are no bundles.
    [[nodiscard]] virtual std::optional<std::filesystem::path> bundleParentFolder() const = 0;
    /// Whether the path names an existing file that the user may execute.
    [[nodiscard]] virtual bool isExecutableFile(const std::filesystem::path& path) const = 0;
    [[nodiscard]] virtual bool exists(const std::filesystem::path& path) const = 0;
    /// The folder of the serial devices, normally /dev.
    [[nodiscard]] virtual std::filesystem::path deviceFolder() const = 0;
    /// The file names in `deviceFolder()`; empty when it cannot be listed.
    [[nodiscard]] virtual std::vector<std::string> deviceNames() const = 0;
};

} // namespace nightjar
