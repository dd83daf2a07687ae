// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bridge/MeshtasticBridge.h"
#include "platform/PollClock.h"
#include "radio/MeshRadioError.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <set>
#include <unordered_map>
#include <utility>
#include <vector>

namespace nightjar {

/// The requests that wait for their answer. Each slot is called exactly once, after its entry is gone, so a
/// slot may add and fail others.
class PendingRequests {
public:
    using Slot = std::move_only_function<void(std::expected<MeshtasticBridgeResponse, MeshRadioError>)>;
    using TimePoint = PollClock::TimePoint;

    void add(const Uuid& request, TimePoint deadline, Slot slot);
    /// Completes the request that the line answers, if one waits for it: with the line, or with its error
    /// text.
    void resolve(const MeshtasticBridgeResponse& response);
    void fail(const Uuid& request, const MeshRadioError& error);
    void failAll(const MeshRadioError& error);
    /// Takes out what is due; the caller calls the slots.
    [[nodiscard]] std::vector<std::pair<Uuid, Slot>> takeExpired(TimePoint now);
    /// Gives every request that much more time.
    void postpone(TimePoint::duration time);
    [[nodiscard]] std::optional<TimePoint> nextDeadline() const;

private:
    struct Due {
        TimePoint deadline;
        std::uint64_t sequence; ///< of two that fall due together the one asked first comes first
        Uuid request;
        auto operator<=>(const Due&) const = default;
    };
    struct Waiting {
        Due due;
        Slot slot;
    };
    [[nodiscard]] Slot take(const Uuid& request);

    std::unordered_map<Uuid, Waiting> m_waiting;
    std::set<Due> m_deadlines;
    std::uint64_t m_sequence = 0;
};

} // namespace nightjar
