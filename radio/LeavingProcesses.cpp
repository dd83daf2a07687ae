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

void LeavingProcesses::add(ChildProcess child, TimePoint now) {
    child.input.reset();
    if (child.hasExited())
        return;
    child.signal(SIGTERM);
    m_leaving.push_back({std::move(child), Stage::asked, now + m_grace});
}

bool LeavingProcesses::areGone() const {
    return std::ranges::all_of(m_leaving, [](const auto& leaving) { return leaving.stage == Stage::stuck; });
}

std::optional<LeavingProcesses::TimePoint> LeavingProcesses::nextDeadline() const {
    std::optional<TimePoint> next;
    for (const auto& leaving : m_leaving) {
        if (leaving.stage != Stage::stuck && (!next || leaving.deadline < *next))
            next = leaving.deadline;
    }
    return next;
}

void LeavingProcesses::addPollEntries(std::vector<pollfd>& entries) const {
    for (const auto& leaving : m_leaving) {
        entries.push_back({leaving.child.exitDescriptor(), POLLIN, 0});
        entries.push_back({leaving.child.output.get(), POLLIN, 0});
        entries.push_back({leaving.child.errors.get(), POLLIN, 0});
    }
}

void LeavingProcesses::attend(TimePoint now) {
    for (auto& leaving : m_leaving) {
        readAway(leaving.child.output);
        readAway(leaving.child.errors);
        if (leaving.stage == Stage::stuck || leaving.deadline > now)
            continue;
        leaving.stage = leaving.stage == Stage::asked ? Stage::forced : Stage::stuck;
        leaving.deadline = now + m_grace;
        leaving.child.signal(SIGKILL);
    }
    std::erase_if(m_leaving, [](auto& leaving) { return leaving.child.hasExited(); });
}

void LeavingProcesses::endAll(std::chrono::milliseconds limit) {
    waitForAll(limit);
    for (const auto& leaving : m_leaving)
        leaving.child.signal(SIGKILL);
    waitForAll(limit);
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
