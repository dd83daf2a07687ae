// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/BaseConnection.h"

#include "app/mesh/ConnectionTexts.h"
#include "radio/SerialPorts.h"

#include <algorithm>

namespace nightjar {

namespace {
constexpr std::string_view serialPortKey = "serialPort";
}

BaseConnection::BaseConnection(const HostEnvironment& host, Preferences& preferences, MeshStatus& status,
                               const Announcers& announcers)
    : m_host(host),
      m_preferences(preferences),
      m_status(status),
      m_connectedPort(announcers.connectedPort),
      m_availablePorts(announcers.availablePorts),
      m_selectedPort(announcers.selectedPort),
      m_localNodeID(announcers.localNodeID) {}

std::optional<BaseConnection::Base> BaseConnection::base() const {
    // While another radio is being connected the number of the former one still stands; its name belongs to
    // its own port.
    if (m_connecting || !isEstablished() || m_localNodeLink != m_link)
        return std::nullopt;
    return Base{*connectedPort(), *localNodeID()};
}

void BaseConnection::refreshPorts() {
    m_availablePorts.set(SerialPorts::availablePorts(m_host));
    const auto saved = savedPort();
    if (isAvailable(saved)) {
        m_selectedPort.set(saved);
    } else if (availablePorts().size() == 1 && selectedPort().empty()) {
        m_selectedPort.set(availablePorts().front());
    } else if (!isAvailable(selectedPort())) {
        m_selectedPort.set({});
    }
}

std::optional<std::string> BaseConnection::lastPort() const {
    auto saved = savedPort();
    if (!isAvailable(saved))
        return std::nullopt;
    return saved;
}

void BaseConnection::showNothingToReconnect() {
    showNoUsablePort();
    m_status.radioSettingsState.set("Choose a USB radio in Settings.");
}

std::optional<BaseConnection::Attempt> BaseConnection::begin(const std::optional<std::string>& port) {
    m_latestAttempt = ++m_generation;
    m_connecting = false;
    refreshPorts();
    const auto chosen = port.value_or(selectedPort());
    if (!isAvailable(chosen)) {
        m_connectedPort.set({});
        showNoUsablePort();
        m_status.radioSettingsState.set(availablePorts().empty() ? "No compatible USB radio found."
                                                                 : "Choose a USB radio in Settings.");
        return std::nullopt;
    }
    m_connecting = true;
    m_link = m_generation;
    m_status.connectionState.set("Connecting…");
    m_status.radioSettingsState.set("Checking the selected radio…");
    m_status.errorMessage.set({});
    return Attempt{m_generation, chosen};
}

void BaseConnection::accept(const std::string& port) {
    m_connecting = false;
    m_connectedPort.set(port);
    m_selectedPort.set(port);
    m_preferences.setString(serialPortKey, port);
}

void BaseConnection::showConnected() {
    m_status.connectionState.set("Connected");
    m_status.radioSettingsState.set("Connected · waiting for radio settings");
}

void BaseConnection::reject(const MeshRadioError& error) {
    m_connecting = false;
    m_connectedPort.set({});
    m_status.connectionState.set(ConnectionTexts::connectionStatus(error));
    m_status.radioSettingsState.set(ConnectionTexts::connectionDetail(error));
    m_status.errorMessage.set({});
}

void BaseConnection::release() {
    m_link = ++m_generation;
    m_lastRelease = m_link;
    drop();
    m_selectedPort.set({});
    m_preferences.remove(serialPortKey);
}

void BaseConnection::drop() {
    m_connectedPort.set({});
    m_localNodeID.set({});
}

void BaseConnection::lose() {
    m_link = 0;
    m_connecting = false;
    drop();
}

void BaseConnection::setLocalNode(std::optional<std::uint32_t> number) {
    m_localNodeLink = m_link;
    m_localNodeID.set(number);
}

std::string BaseConnection::savedPort() const {
    return m_preferences.string(serialPortKey).value_or("");
}

bool BaseConnection::isAvailable(const std::string& port) const {
    return std::ranges::find(availablePorts(), port) != availablePorts().end();
}

void BaseConnection::showNoUsablePort() {
    m_status.connectionState.set(availablePorts().empty() ? "USB radio not connected"
                                                          : "Choose a USB radio in Settings");
}

} // namespace nightjar
