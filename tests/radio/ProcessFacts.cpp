// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/radio/ProcessFacts.h"

#include <algorithm>
#include <charconv>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <unistd.h>

namespace nightjar {
namespace {

struct Status {
    char state = '?';
    pid_t parent = 0;
};

Status statusOf(const std::filesystem::path& process) {
    std::ifstream file(process / "stat");
    std::string text; // stays empty when the process goes while it is looked at
    std::getline(file, text);
    Status status;
    if (const auto end = text.rfind(')'); end != std::string::npos) {
        std::istringstream(text.substr(end + 1)) >> status.state >> status.parent;
    }
    return status;
}

} // namespace

std::set<pid_t> childProcesses() {
    std::set<pid_t> children;
    for (const auto& entry : std::filesystem::directory_iterator("/proc")) {
        const auto name = entry.path().filename().string();
        pid_t process = 0;
        const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), process);
        if (error != std::errc{} || end != name.data() + name.size())
            continue;
        if (statusOf(entry.path()).parent == ::getpid())
            children.insert(process);
    }
    return children;
}

std::size_t openDescriptors() {
    const std::filesystem::directory_iterator entries("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(entries), end(entries)));
}

bool isRunning(pid_t process) {
    const auto status = statusOf("/proc/" + std::to_string(process));
    return status.state != '?' && status.state != 'Z' && status.state != 'X';
}

} // namespace nightjar
