// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Lifetime.h"
#include "app/mesh/BaseConnection.h"
#include "app/mesh/MeshStatus.h"
#include "platform/Scheduler.h"
#include "radio/RadioLink.h"

#include <cstdint>
#include <map>
#include <optional>

namespace nightjar {

/// Reads the LoRa settings of the connected radio, and writes them and reads them back. Main thread.
class RadioSettingsFlow {
public:
    /// The status while the settings are those that the radio has told.
    static constexpr const char* loadedState = "Loaded from radio";

    RadioSettingsFlow(RadioLink& radio, Scheduler& scheduler, const BaseConnection& connection,
                      MeshStatus& status, Announcer settings);

    /// As last read from the connected radio or written to it.
    [[nodiscard]] const std::optional<MeshtasticRadioSettings>& settings() const { return m_settings.get(); }

    /// Asks the radio; what it holds arrives as an event, see `receive`.
    void request();
    void apply(const MeshtasticRadioSettings& settings);
    /// The radio told its settings.
    void receive(const std::optional<MeshtasticRadioSettings>& settings);
    void forget() { m_settings.set({}); }
    /// Reads nothing back any more.
    void abandon() { m_waits.clear(); }

private:
    void applied(const MeshtasticRadioSettings& settings);
    void readBackAfterRestart();

    RadioLink& m_radio;
    Scheduler& m_scheduler;
    const BaseConnection& m_connection;
    MeshStatus& m_status;
    Published<std::optional<MeshtasticRadioSettings>> m_settings;
    std::uint64_t m_waitsBegun = 0;
    std::map<std::uint64_t, Timer> m_waits; ///< one for each apply whose radio restarts
    Lifetime m_lifetime;
};

} // namespace nightjar
