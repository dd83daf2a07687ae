// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "program/DemoProfile.h"

#include "core/base/AtomicFile.h"

#include <cerrno>
#include <cstring>
#include <utility>

#include <stdlib.h>
#include <unistd.h>

namespace nightjar {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view deviceName = "cu.usbserial-DEMO";

} // namespace

std::expected<DemoProfile, std::string> DemoProfile::make(std::string_view scenario,
                                                          std::optional<fs::path> bridge) {
    std::error_code error;
    auto pattern = (fs::temp_directory_path(error) / "nightjar-demo-XXXXXX").string();
    if (error || !::mkdtemp(pattern.data())) {
        const std::string reason = error ? error.message() : std::strerror(errno);
        return std::unexpected("The demo could not make a temporary folder: " + reason + '.');
    }
    DemoProfile profile(pattern, std::move(bridge));
    if (auto written = replaceFile(profile.port(), scenario); !written)
        return std::unexpected(written.error());
    return profile;
}

DemoProfile::DemoProfile(DemoProfile&& other) noexcept
    : m_folder(std::exchange(other.m_folder, {})), m_bridge(std::move(other.m_bridge)) {}

DemoProfile::~DemoProfile() {
    if (m_folder.empty())
        return;
    std::error_code ignored;
    fs::remove_all(m_folder, ignored);
}

std::string DemoProfile::port() const {
    return (deviceFolder() / deviceName).string();
}

std::optional<std::string> DemoProfile::environmentVariable(const std::string& name) const {
    if (name != "HALVARD_MESHTASTIC_BRIDGE_PATH")
        return std::nullopt;
    return m_bridge.transform([](const fs::path& path) { return path.string(); });
}

std::optional<fs::path> DemoProfile::applicationSupportFolder() const {
    return m_folder / "data";
}

bool DemoProfile::isExecutableFile(const fs::path& path) const {
    std::error_code error;
    return fs::is_regular_file(path, error) && ::access(path.c_str(), X_OK) == 0;
}

bool DemoProfile::exists(const fs::path& path) const {
    std::error_code error;
    return fs::exists(path, error);
}

fs::path DemoProfile::deviceFolder() const {
    return m_folder / "dev";
}

std::vector<std::string> DemoProfile::deviceNames() const {
    return {std::string(deviceName)};
}

} // namespace nightjar
