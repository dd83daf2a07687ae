// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/HostEnvironment.h"

#include <map>
#include <mutex>

namespace nightjar {

/// A computer made of what it is told: variables, files, folders and serial devices. Any thread.
class SimulatedHostEnvironment final : public HostEnvironment {
public:
    enum class FileKind { plain, executable };

    [[nodiscard]] std::optional<std::string> environmentVariable(const std::string& name) const override;
    [[nodiscard]] std::optional<std::filesystem::path> applicationSupportFolder() const override;
    [[nodiscard]] std::optional<std::filesystem::path> bundleParentFolder() const override;
    [[nodiscard]] bool isExecutableFile(const std::filesystem::path& path) const override;
    [[nodiscard]] bool exists(const std::filesystem::path& path) const override;
    [[nodiscard]] std::filesystem::path deviceFolder() const override;
    [[nodiscard]] std::vector<std::string> deviceNames() const override;

    void setEnvironmentVariable(const std::string& name, std::optional<std::string> value);
    void setApplicationSupportFolder(std::optional<std::filesystem::path> folder);
    void setBundleParentFolder(std::optional<std::filesystem::path> folder);
    void addFile(const std::filesystem::path& path, FileKind kind = FileKind::plain);
    void removeFile(const std::filesystem::path& path);
    void setDeviceFolder(std::filesystem::path folder);
    /// A device that is plugged in also exists as a file of the device folder.
    void plugIn(const std::string& deviceName);
    void unplug(const std::string& deviceName);

private:
    mutable std::mutex m_mutex;
    std::map<std::string, std::string> m_variables;
    std::optional<std::filesystem::path> m_applicationSupportFolder;
    std::optional<std::filesystem::path> m_bundleParentFolder;
    std::map<std::filesystem::path, FileKind> m_files;
    std::filesystem::path m_deviceFolder = "/dev";
    std::vector<std::string> m_deviceNames; ///< in no particular order, as a folder lists them
};

} // namespace nightjar
