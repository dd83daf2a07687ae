// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/SimulatedHostEnvironment.h"

#include <algorithm>

namespace nightjar {

std::optional<std::string> SimulatedHostEnvironment::environmentVariable(const std::string& name) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_variables.find(name);
    if (found == m_variables.end())
        return std::nullopt;
    return found->second;
}

std::optional<std::filesystem::path> SimulatedHostEnvironment::applicationSupportFolder() const {
    const std::lock_guard lock(m_mutex);
    return m_applicationSupportFolder;
}

std::optional<std::filesystem::path> SimulatedHostEnvironment::bundleParentFolder() const {
    const std::lock_guard lock(m_mutex);
    return m_bundleParentFolder;
}

bool SimulatedHostEnvironment::isExecutableFile(const std::filesystem::path& path) const {
    const std::lock_guard lock(m_mutex);
    const auto found = m_files.find(path);
    return found != m_files.end() && found->second == FileKind::executable;
}

bool SimulatedHostEnvironment::exists(const std::filesystem::path& path) const {
    const std::lock_guard lock(m_mutex);
    if (m_files.contains(path))
        return true;
    return path.parent_path() == m_deviceFolder &&
           std::ranges::find(m_deviceNames, path.filename().string()) != m_deviceNames.end();
}

std::filesystem::path SimulatedHostEnvironment::deviceFolder() const {
    const std::lock_guard lock(m_mutex);
    return m_deviceFolder;
}

std::vector<std::string> SimulatedHostEnvironment::deviceNames() const {
    const std::lock_guard lock(m_mutex);
    return m_deviceNames;
}

void SimulatedHostEnvironment::setEnvironmentVariable(const std::string& name,
                                                      std::optional<std::string> value) {
    const std::lock_guard lock(m_mutex);
    if (value) {
        m_variables[name] = std::move(*value);
    } else {
        m_variables.erase(name);
    }
}

void SimulatedHostEnvironment::setApplicationSupportFolder(std::optional<std::filesystem::path> folder) {
    const std::lock_guard lock(m_mutex);
    m_applicationSupportFolder = std::move(folder);
}

void SimulatedHostEnvironment::setBundleParentFolder(std::optional<std::filesystem::path> folder) {
    const std::lock_guard lock(m_mutex);
    m_bundleParentFolder = std::move(folder);
}

void SimulatedHostEnvironment::addFile(const std::filesystem::path& path, FileKind kind) {
    const std::lock_guard lock(m_mutex);
    m_files[path] = kind;
}

void SimulatedHostEnvironment::removeFile(const std::filesystem::path& path) {
    const std::lock_guard lock(m_mutex);
    m_files.erase(path);
}

void SimulatedHostEnvironment::setDeviceFolder(std::filesystem::path folder) {
    const std::lock_guard lock(m_mutex);
    m_deviceFolder = std::move(folder);
}

void SimulatedHostEnvironment::plugIn(const std::string& deviceName) {
    const std::lock_guard lock(m_mutex);
    m_deviceNames.push_back(deviceName);
}

void SimulatedHostEnvironment::unplug(const std::string& deviceName) {
    const std::lock_guard lock(m_mutex);
    std::erase(m_deviceNames, deviceName);
}

} // namespace nightjar
