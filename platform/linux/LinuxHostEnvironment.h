// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/HostEnvironment.h"

namespace nightjar {

/// The process environment, the XDG base folders and the devices. Any thread, as long as nobody changes the
/// environment meanwhile.
class LinuxHostEnvironment final : public HostEnvironment {
public:
    /// Names another folder than /dev, for development and tests; an absolute path.
    static constexpr const char* deviceFolderVariable = "NIGHTJAR_DEVICE_FOLDER";

    [[nodiscard]] std::optional<std::string> environmentVariable(const std::string& name) const override;
    /// $XDG_DATA_HOME, normally ~/.local/share.
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportFolder() const override;
    /// $XDG_CONFIG_HOME, normally ~/.config; absent when the user has no home.
    [[nodiscard]] std::optional<std::filesystem::path> configurationFolder() const;
    [[nodiscard]] std::optional<std::filesystem::path> bundleParentFolder() const override {
        return std::nullopt;
    }
    [[nodiscard]] bool isExecutableFile(const std::filesystem::path& path) const override;
    [[nodiscard]] bool exists(const std::filesystem::path& path) const override;
    [[nodiscard]] std::filesystem::path deviceFolder() const override;
    [[nodiscard]] std::vector<std::string> deviceNames() const override;

private:
    [[nodiscard]] std::optional<std::filesystem::path> absolutePath(const std::string& variable) const;
    [[nodiscard]] std::optional<std::filesystem::path>
    baseFolder(const std::string& variable, const std::filesystem::path& belowHome) const;
};

} // namespace nightjar
