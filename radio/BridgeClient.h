// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bridge/BridgeJson.h"
#include "platform/HostEnvironment.h"
#include "platform/PollClock.h"
#include "radio/BridgeInstance.h"
#include "radio/LeavingProcesses.h"
#include "radio/MainThreadInbox.h"
#include "radio/MeshRadioOptions.h"
#include "radio/PendingRequests.h"
#include "radio/RadioLink.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <poll.h>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace nightjar {

/// The bridge client's state and rules. Everything here runs on the radio thread, as a task or between two
/// waits, and never waits itself; what is told to the caller goes through the inbox. The operations are those
/// of RadioLink.
class BridgeClient {
public:
    template <class T>
    using Completion = RadioLink::Completion<T>;
    using ListenerPointer = std::shared_ptr<RadioLink::Listener>;

    BridgeClient(const HostEnvironment& host, const PollClock& clock, MainThreadInbox& inbox,
                 const MeshRadioOptions& options);

    void connect(std::optional<std::string> port, ListenerPointer listener, Completion<std::string> done);
    void sendText(std::string text, std::optional<std::uint32_t> recipient, std::uint32_t channel,
                  Completion<std::uint32_t> done);
    void requestRadioSettings(Completion<void> done);
    void applyRadioSettings(const MeshtasticRadioSettings& settings, Completion<void> done);
    void disconnect(std::move_only_function<void()> done);

    /// What to wait for, and what came of the wait: `polled` begins with the entries that were added.
    void addPollEntries(std::vector<pollfd>& entries) const;
    [[nodiscard]] std::optional<PollClock::TimePoint> nextDeadline() const;
    void afterPoll(std::span<const pollfd> polled);
    /// Hands over to the main thread what has come up since the last time.
    void deliver() { m_inbox.push(m_outgoing); }
    /// The thread ends: so does every bridge, within a bounded time. Nothing is completed any more.
    void shutDown();

private:
    /// A `connect` that has not been completed yet.
    struct Attempt {
        std::uint64_t number;
        std::optional<std::string> port;
        ListenerPointer listener;
        Completion<std::string> done;
    };
    enum PollEntry : std::size_t { exitEntry, outputEntry, errorsEntry, inputEntry, entryCount };

    // BridgeClient.cpp: the operations and their order.
    void supersedeAttempt();
    void endInstance();
    void proceed();
    void startAttempt();
    [[nodiscard]] std::expected<void, MeshRadioError> launch(const ListenerPointer& listener);
    void finishAttempt(std::uint64_t number, std::expected<MeshtasticBridgeResponse, MeshRadioError> answer);
    void request(const MeshtasticBridgeRequest& message, std::chrono::milliseconds timeout,
                 PendingRequests::Slot slot);
    void requestAcknowledgement(const MeshtasticBridgeRequest& message, Completion<void> done);
    void stopInstance(const MeshRadioError& error);
    template <class T>
    void complete(Completion<T> done, std::expected<T, MeshRadioError> result);
    void queue(std::move_only_function<void()> job, std::size_t bytes = 0);

    // BridgeClientTraffic.cpp: bytes in, bytes out, exits and time-outs.
    void readOutput(BridgeInstance& instance);
    void readErrors(BridgeInstance& instance);
    [[nodiscard]] bool handleLine(std::string_view line, const BridgeInstance& instance);
    void write(BridgeInstance& instance);
    void expireRequests(PollClock::TimePoint now);
    void notePause();
    [[nodiscard]] bool isCurrent(const BridgeInstance& instance) const {
        return m_instance.get() == &instance;
    }

    const HostEnvironment& m_host;
    const PollClock& m_clock;
    MainThreadInbox& m_inbox;
    MeshRadioOptions m_options;
    json::Decoder m_decoder = makeBridgeDecoder();
    std::vector<char> m_buffer;
    std::optional<PollClock::TimePoint> m_pausedSince; ///< while the inbox is full

    std::shared_ptr<BridgeInstance>
        m_instance; ///< shared only with the code at work on it, which it may outlive
    LeavingProcesses m_leaving;
    PendingRequests m_pending;
    std::optional<Attempt> m_attempt;
    std::uint64_t m_lastAttempt = 0;
    std::vector<std::move_only_function<void()>> m_disconnects; ///< to complete once no bridge runs
    std::vector<MainThreadInbox::Job> m_outgoing;
};

} // namespace nightjar
