// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/LinuxHostEnvironment.h"

#include <array>
#include <cstdlib>
#include <fcntl.h>
#include <pwd.h>
#include <unistd.h>

namespace nightjar {
namespace {

namespace fs = std::filesystem;

std::optional<fs::path> homeInAccount() {
    std::array<char, 16384> buffer;
    passwd entry{};
    passwd* found = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &found) != 0 || !found)
        return std::nullopt;
    const fs::path home = entry.pw_dir ? entry.pw_dir : "";
    return home.is_absolute() ? std::optional(home) : std::nullopt;
}

} // namespace

std::optional<std::string> LinuxHostEnvironment::environmentVariable(const std::string& name) const {
    const char* value = std::getenv(name.c_str());
    return value ? std::optional<std::string>(value) : std::nullopt;
}

/// Relative paths count as unset: the base folder rules want absolute ones, and ours must not depend on where
/// the program was started.
std::optional<fs::path> LinuxHostEnvironment::absolutePath(const std::string& variable) const {
    const fs::path path = environmentVariable(variable).value_or("");
    return path.is_absolute() ? std::optional(path) : std::nullopt;
}

std::optional<fs::path> LinuxHostEnvironment::baseFolder(const std::string& variable,
                                                         const fs::path& belowHome) const {
    if (auto folder = absolutePath(variable))
        return folder;
    auto home = absolutePath("HOME");
    if (!home)
        home = homeInAccount();
    return home.transform([&](const fs::path& path) { return path / belowHome; });
}

std::optional<fs::path> LinuxHostEnvironment::applicationSupportFolder() const {
    return baseFolder("XDG_DATA_HOME", ".local/share");
}

std::optional<fs::path> LinuxHostEnvironment::configurationFolder() const {
    return baseFolder("XDG_CONFIG_HOME", ".config");
}

bool LinuxHostEnvironment::isExecutableFile(const fs::path& path) const {
    std::error_code error;
    return fs::is_regular_file(path, error) && ::faccessat(AT_FDCWD, path.c_str(), X_OK, AT_EACCESS) == 0;
}

bool LinuxHostEnvironment::exists(const fs::path& path) const {
    std::error_code error;
    return fs::exists(path, error);
}

fs::path LinuxHostEnvironment::deviceFolder() const {
    return absolutePath(deviceFolderVariable).value_or("/dev");
}

std::vector<std::string> LinuxHostEnvironment::deviceNames() const {
    std::vector<std::string> names;
    std::error_code error;
    for (fs::directory_iterator entry(deviceFolder(), error), end; !error && entry != end;
         entry.increment(error)) {
        names.push_back(entry->path().filename().string());
    }
    if (error)
        names.clear();
    return names;
}

} // namespace nightjar
