// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/PendingRequests.h"

namespace nightjar {

void PendingRequests::add(const Uuid& request, TimePoint deadline, Slot slot) {
    const Due due{deadline, ++m_sequence, request};
    m_waiting.emplace(request, Waiting{due, std::move(slot)});
    m_deadlines.insert(due);
}

PendingRequests::Slot PendingRequests::take(const Uuid& request) {
    auto entry = m_waiting.extract(request);
    if (!entry)
        return {};
    m_deadlines.erase(entry.mapped().due);
    return std::move(entry.mapped().slot);
}

void PendingRequests::resolve(const MeshtasticBridgeResponse& response) {
    if (!response.requestID)
        return;
    auto slot = take(*response.requestID);
    if (!slot)
        return;
    if (response.event == MeshtasticBridgeEvent::error) {
        const auto text = response.error.value_or("Halvard Meshtastic Bridge reported an error.");
        slot(std::unexpected(MeshRadioError::bridge(text)));
    } else {
        slot(response);
    }
}

void PendingRequests::fail(const Uuid& request, const MeshRadioError& error) {
    if (auto slot = take(request))
        slot(std::unexpected(error));
}

void PendingRequests::failAll(const MeshRadioError& error) {
    auto waiting = std::exchange(m_waiting, {});
    const auto deadlines = std::exchange(m_deadlines, {});
    for (const auto& due : deadlines)
        waiting.at(due.request).slot(std::unexpected(error));
}

std::vector<std::pair<Uuid, PendingRequests::Slot>> PendingRequests::takeExpired(TimePoint now) {
    std::vector<std::pair<Uuid, Slot>> expired;
    while (!m_deadlines.empty() && m_deadlines.begin()->deadline <= now) {
        const Uuid request = m_deadlines.begin()->request;
        expired.emplace_back(request, take(request));
    }
    return expired;
}

void PendingRequests::postpone(TimePoint::duration time) {
    m_deadlines.clear();
    for (auto& [request, waiting] : m_waiting) {
        waiting.due.deadline += time;
        m_deadlines.insert(waiting.due);
    }
}

std::optional<PendingRequests::TimePoint> PendingRequests::nextDeadline() const {
    if (m_deadlines.empty())
        return std::nullopt;
    return m_deadlines.begin()->deadline;
}

} // namespace nightjar
