// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/mesh/RadioSettingsFlow.h"

#include <expected>

namespace nightjar {

namespace {
/// A radio restarts with its new settings; by then it answers again.
constexpr std::chrono::seconds restartTime{3};
} // namespace

using Done = std::expected<void, MeshRadioError>;

RadioSettingsFlow::RadioSettingsFlow(RadioLink& radio, Scheduler& scheduler, const BaseConnection& connection,
                                     MeshStatus& status, Announcer settings)
    : m_radio(radio),
      m_scheduler(scheduler),
      m_connection(connection),
      m_status(status),
      m_settings(settings) {}

void RadioSettingsFlow::request() {
    if (!m_connection.isEstablished()) {
        m_status.radioSettingsState.set("Connect the USB radio first.");
        return;
    }
    m_status.radioSettingsState.set("Reading from radio…");
    m_radio.requestRadioSettings(m_lifetime.guarded([this, link = m_connection.link()](const Done& done) {
        if (done || link != m_connection.link())
            return;
        m_status.errorMessage.set(done.error().description());
        m_status.radioSettingsState.set("Could not read settings");
    }));
}

void RadioSettingsFlow::apply(const MeshtasticRadioSettings& settings) {
    if (!m_connection.isEstablished()) {
        m_status.radioSettingsState.set(
            "The base station is disconnected. Activate it again in the Meshtastic sidebar.");
        return;
    }
    m_status.radioSettingsState.set("Applying to radio…");
    m_radio.applyRadioSettings(
        settings, m_lifetime.guarded([this, settings, link = m_connection.link()](const Done& done) {
            if (link != m_connection.link())
                return;
            if (done) {
                applied(settings);
            } else {
                m_status.errorMessage.set(done.error().description());
                m_status.radioSettingsState.set("Could not apply settings");
            }
        }));
}

void RadioSettingsFlow::applied(const MeshtasticRadioSettings& settings) {
    // A radio that has gone since holds no settings, though it took these.
    if (m_connection.isEstablished())
        m_settings.set(settings);
    m_status.radioSettingsState.set("Applied · verifying after restart…");
    readBackAfterRestart();
}

void RadioSettingsFlow::readBackAfterRestart() {
    const auto wait = ++m_waitsBegun;
    const auto attempt = m_connection.latestAttempt();
    m_waits[wait] = m_scheduler.after(restartTime, [this, wait, attempt] {
        const auto finished = m_waits.extract(wait);
        // Who connects a radio meanwhile reads about that one, not about the one that was left.
        if (attempt == m_connection.latestAttempt())
            request();
    });
}

void RadioSettingsFlow::receive(const std::optional<MeshtasticRadioSettings>& settings) {
    m_settings.set(settings);
    m_status.radioSettingsState.set(loadedState);
}

} // namespace nightjar
