// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/LeavingProcesses.h"

#include <algorithm>
#include <array>
#include <csignal>

namespace nightjar {
namespace {

void readAway(FileDescriptor& pipe) {
    std::array<char, 65536> scrap;
    if (pipe && ::read(pipe.get(), scrap.data(), scrap.size()) == 0)
        pipe.reset();
}

} // namespace

void LeavingProcesses::add(ChildProcess child, TimePoint forceAt) {
    child.input.reset();
    if (child.hasExited())
        return;
    child.signal(SIGTERM);
    m_leaving.push_back({std::move(child), forceAt});
}

std::optional<LeavingProcesses::TimePoint> LeavingProcesses::nextDeadline() const {
    std::optional<TimePoint> next;
    for (const auto& leaving : m_leaving) {
        if (leaving.forceAt && (!next || *leaving.forceAt < *next))
            next = leaving.forceAt;
    }
    return next;
}

void LeavingProcesses::addPollEntries(std::vector<pollfd>& entries) const {
    for (const auto& [child, forceAt] : m_leaving) {
        entries.push_back({child.exitDescriptor(), POLLIN, 0});
        entries.push_back({child.output.get(), POLLIN, 0});
        entries.push_back({child.errors.get(), POLLIN, 0});
    }
}

void LeavingProcesses::attend(TimePoint now) {
    for (auto& leaving : m_leaving) {
        readAway(leaving.child.output);
        readAway(leaving.child.errors);
        if (!leaving.forceAt || *leaving.forceAt > now)
            continue;
        leaving.child.signal(SIGKILL);
        leaving.forceAt.reset();
    }
    std::erase_if(m_leaving, [](auto& leaving) { return leaving.child.hasExited(); });
}

void LeavingProcesses::endAll(std::chrono::milliseconds grace) {
    waitForAll(grace);
    for (const auto& leaving : m_leaving)
        leaving.child.signal(SIGKILL);
    waitForAll(grace);
    m_leaving.clear();
}

void LeavingProcesses::waitForAll(std::chrono::milliseconds limit) {
    const auto end = std::chrono::steady_clock::now() + limit;
    std::vector<pollfd> entries;
    for (;;) {
        attend(TimePoint::min());
        if (m_leaving.empty())
            return;
        const auto left =
            std::chrono::ceil<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0)
            return;
        entries.clear();
        addPollEntries(entries);
        ::poll(entries.data(), entries.size(), static_cast<int>(left.count()));
    }
}

} // namespace nightjar
