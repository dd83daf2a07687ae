// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/BridgeClient.h"

#include "core/bridge/MeshtasticBridge.h"
#include "radio/BridgeLocator.h"

#include <utility>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using Error = MeshRadioError;
using enum MeshRadioError::Kind;

constexpr auto connectTimeout = std::chrono::duration_cast<std::chrono::milliseconds>(
    std::chrono::duration<double>(MeshtasticConnectionTiming::clientResponseSeconds));
constexpr auto requestTimeout = 5000ms;
constexpr auto disconnectTimeout = 2000ms;

MeshtasticBridgeRequest newRequest(MeshtasticBridgeCommand command) {
    MeshtasticBridgeRequest request;
    request.requestID = Uuid::random();
    request.command = command;
    return request;
}

} // namespace

BridgeClient::BridgeClient(const HostEnvironment& host, const PollClock& clock, MainThreadInbox& inbox,
                           const MeshRadioOptions& options)
    : m_host(host),
      m_clock(clock),
      m_inbox(inbox),
      m_options(options),
      m_buffer(65536),
      m_leaving(options.endingGrace) {}

void BridgeClient::connect(std::optional<std::string> port, ListenerPointer listener,
                           Completion<std::string> done) {
    supersedeAttempt();
    m_attempt = Attempt{++m_lastAttempt, std::move(port), std::move(listener), std::move(done)};
    endInstance();
}

void BridgeClient::disconnect(std::move_only_function<void()> done) {
    supersedeAttempt();
    m_disconnects.push_back(std::move(done));
    endInstance();
}

void BridgeClient::sendText(std::string text, std::optional<std::uint32_t> recipient, std::uint32_t channel,
                            Completion<std::uint32_t> done) {
    auto message = newRequest(MeshtasticBridgeCommand::sendText);
    message.text = std::move(text);
    message.recipient = recipient;
    message.channel = channel;
    request(message, requestTimeout, [this, done = std::move(done)](auto answer) mutable {
        std::expected<std::uint32_t, Error> result = std::unexpected(Error{invalidBridgeReply});
        if (!answer) {
            result = std::unexpected(std::move(answer.error()));
        } else if (answer->event == MeshtasticBridgeEvent::sent && answer->packetID) {
            result = *answer->packetID;
        }
        complete(std::move(done), std::move(result));
    });
}

void BridgeClient::requestRadioSettings(Completion<void> done) {
    requestAcknowledgement(newRequest(MeshtasticBridgeCommand::readRadioSettings), std::move(done));
}

void BridgeClient::applyRadioSettings(const MeshtasticRadioSettings& settings, Completion<void> done) {
    auto message = newRequest(MeshtasticBridgeCommand::applyRadioSettings);
    message.settings = settings;
    requestAcknowledgement(message, std::move(done));
}

void BridgeClient::requestAcknowledgement(const MeshtasticBridgeRequest& message, Completion<void> done) {
    request(message, requestTimeout, [this, done = std::move(done)](auto answer) mutable {
        std::expected<void, Error> result;
        if (!answer)
            result = std::unexpected(std::move(answer.error()));
        complete(std::move(done), std::move(result));
    });
}

void BridgeClient::supersedeAttempt() {
    auto attempt = std::exchange(m_attempt, std::nullopt);
    if (!attempt)
        return;
    complete<std::string>(std::move(attempt->done), std::unexpected(Error{cancelled}));
    queue([kept = std::move(attempt->listener)] {});
}

/// Asks the running bridge to let its radio go, and stops it once it has answered or two seconds are over.
/// Callers that come while this goes on wait for the same end.
void BridgeClient::endInstance() {
    if (!m_instance) {
        proceed();
        return;
    }
    if (m_instance->endBy)
        return;
    m_instance->endBy = m_clock.now() + disconnectTimeout;
    if (m_instance->unreadAfterExit) {
        stopInstance({cancelled});
        return;
    }
    request(newRequest(MeshtasticBridgeCommand::disconnect), disconnectTimeout,
            [this](const auto&) { stopInstance({cancelled}); });
}

/// No bridge is in use: whoever waited for that goes on. A new bridge waits until the old one's process is
/// gone too.
void BridgeClient::proceed() {
    if (m_instance)
        return;
    for (auto& done : std::exchange(m_disconnects, {}))
        queue(std::move(done));
    if (m_attempt && m_leaving.areGone())
        startAttempt();
}

void BridgeClient::startAttempt() {
    const auto number = m_attempt->number;
    const auto port = m_attempt->port;
    if (!port || port->empty() || !m_host.exists(*port)) {
        finishAttempt(number, std::unexpected(Error{noRadio}));
        return;
    }
    if (auto launched = launch(m_attempt->listener); !launched) {
        finishAttempt(number, std::unexpected(std::move(launched.error())));
        return;
    }
    auto message = newRequest(MeshtasticBridgeCommand::connect);
    message.port = port;
    request(message, connectTimeout,
            [this, number](auto answer) { finishAttempt(number, std::move(answer)); });
}

std::expected<void, MeshRadioError> BridgeClient::launch(const ListenerPointer& listener) {
    const auto program = BridgeLocator::installedBridgeURL(m_host);
    if (!program)
        return std::unexpected(Error{bridgeMissing});
    auto child = ChildProcess::spawn(*program);
    if (!child) {
        return std::unexpected(Error::couldNot("started", child.error()));
    }
    m_instance =
        std::make_shared<BridgeInstance>(std::move(*child), listener, LineSplitter(m_options.longestLine),
                                         WriteQueue(m_options.unwrittenBytes));
    return {};
}

/// A superseded attempt has been completed already, and its bridge is none of its business any more.
void BridgeClient::finishAttempt(std::uint64_t number,
                                 std::expected<MeshtasticBridgeResponse, MeshRadioError> answer) {
    if (!m_attempt || m_attempt->number != number)
        return;
    auto attempt = *std::exchange(m_attempt, std::nullopt);
    if (answer && (answer->event != MeshtasticBridgeEvent::connected || !answer->port)) {
        answer = std::unexpected(Error{invalidBridgeReply});
    }
    if (answer) {
        m_instance->established = true;
        complete<std::string>(std::move(attempt.done), std::move(*answer->port));
    } else {
        stopInstance(answer.error());
        complete<std::string>(std::move(attempt.done), std::unexpected(std::move(answer.error())));
    }
    queue([kept = std::move(attempt.listener)] {});
}

void BridgeClient::request(const MeshtasticBridgeRequest& message, std::chrono::milliseconds timeout,
                           PendingRequests::Slot slot) {
    const auto instance = m_instance;
    if (!instance || instance->unreadAfterExit) {
        slot(std::unexpected(Error{bridgeStopped}));
        return;
    }
    auto line = encodeLine(message);
    if (!line) {
        slot(std::unexpected(Error{Error::Kind::system, std::move(line.error())}));
        return;
    }
    if (!instance->writes.add(message.requestID, std::move(*line))) {
        slot(std::unexpected(Error::couldNot("reached", std::make_error_code(std::errc::no_buffer_space))));
        return;
    }
    // Of a pause that has begun already nothing counts, also not what lies before the request.
    m_pending.add(message.requestID, m_pausedSince.value_or(m_clock.now()) + timeout, std::move(slot));
    write(*instance);
}

void BridgeClient::stopInstance(const MeshRadioError& error) {
    const auto instance = std::exchange(m_instance, nullptr);
    if (!instance)
        return;
    m_leaving.add(std::move(instance->child), m_clock.now());
    m_pending.failAll(instance->endBy ? Error{cancelled} : error);
    const bool askedFor = instance->endBy.has_value() || !instance->established;
    // The listener's last owner is this job, so that it dies on the main thread too.
    queue([listener = std::move(instance->listener), error, askedFor] {
        if (!askedFor && listener->onLost)
            listener->onLost(error);
    });
    proceed();
}

template <class T>
void BridgeClient::complete(Completion<T> done, std::expected<T, MeshRadioError> result) {
    queue([done = std::move(done), result = std::move(result)]() mutable { done(std::move(result)); });
}

void BridgeClient::queue(std::move_only_function<void()> job, std::size_t bytes) {
    m_outgoing.push_back({std::move(job), bytes});
}

void BridgeClient::shutDown() {
    if (m_instance)
        m_leaving.add(std::move(m_instance->child), m_clock.now());
    m_leaving.endAll(m_options.finalGrace);
}

} // namespace nightjar
