// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/MeshRadio.h"

#include "radio/BridgeLocator.h"
#include "radio/RadioThread.h"
#include "radio/SerialPorts.h"

#include <utility>

namespace nightjar {

MeshRadio::MeshRadio(const HostEnvironment& host, MainThread& mainThread, PollClock& clock,
                     MeshRadioOptions options)
    : m_thread(std::make_unique<RadioThread>(host, mainThread, clock, options)) {}

MeshRadio::~MeshRadio() = default;

void MeshRadio::connect(std::optional<std::string> port, Listener listener, Completion<std::string> done) {
    // What the radio thread decided may meet a newer action on its way here; the newer one counts.
    const auto action = ++m_action;
    listener.onLost = [this, action, lost = std::move(listener.onLost)](const MeshRadioError& error) {
        if (m_action == action && lost)
            lost(error);
    };
    auto decide = [this, action,
                   done = std::move(done)](std::expected<std::string, MeshRadioError> result) mutable {
        if (m_action != action)
            result = std::unexpected(MeshRadioError{MeshRadioError::Kind::cancelled});
        done(std::move(result));
    };
    m_thread->post([port = std::move(port), listener = std::make_shared<Listener>(std::move(listener)),
                    decide = std::move(decide)](BridgeClient& client) mutable {
        client.connect(std::move(port), std::move(listener), std::move(decide));
    });
}

void MeshRadio::sendText(std::string text, std::optional<std::uint32_t> recipient, std::uint32_t channel,
                         Completion<std::uint32_t> done) {
    m_thread->post(
        [text = std::move(text), recipient, channel, done = std::move(done)](BridgeClient& client) mutable {
            client.sendText(std::move(text), recipient, channel, std::move(done));
        });
}

void MeshRadio::requestRadioSettings(Completion<void> done) {
    m_thread->post([done = std::move(done)](BridgeClient& client) mutable {
        client.requestRadioSettings(std::move(done));
    });
}

void MeshRadio::applyRadioSettings(const MeshtasticRadioSettings& settings, Completion<void> done) {
    m_thread->post([settings, done = std::move(done)](BridgeClient& client) mutable {
        client.applyRadioSettings(settings, std::move(done));
    });
}

void MeshRadio::disconnect(std::move_only_function<void()> done) {
    ++m_action;
    m_thread->post(
        [done = std::move(done)](BridgeClient& client) mutable { client.disconnect(std::move(done)); });
}

std::optional<std::filesystem::path> MeshRadio::installedBridgeURL(const HostEnvironment& host) {
    return BridgeLocator::installedBridgeURL(host);
}

std::string MeshRadio::bridgeStatus(const HostEnvironment& host) {
    return BridgeLocator::bridgeStatus(host);
}

std::vector<std::string> MeshRadio::availablePorts(const HostEnvironment& host) {
    return SerialPorts::availablePorts(host);
}

std::string MeshRadio::displayName(std::string_view path) {
    return SerialPorts::displayName(path);
}

} // namespace nightjar
