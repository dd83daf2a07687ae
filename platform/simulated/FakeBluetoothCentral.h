// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/BluetoothCentral.h"

namespace nightjar {

/// A Bluetooth radio in a world that the test moves. What happens is told at once. One thread.
class FakeBluetoothCentral final : public BluetoothCentral {
public:
    explicit FakeBluetoothCentral(BluetoothRadioState state = BluetoothRadioState::unknown)
        : m_state(state) {}

    void setListener(Listener listener) override { m_listener = std::move(listener); }
    [[nodiscard]] BluetoothRadioState state() const override { return m_state; }
    void scan() override;
    void stopScan() override;
    [[nodiscard]] bool isResponsive() override { return m_isResponsive; }

    /// Switched on or off, plugged in, reset. A scan ends when the radio is no longer powered on.
    void setState(BluetoothRadioState state);
    /// The radio's service hangs, which nobody has noticed yet, or answers again.
    void setResponsive(bool isResponsive) { m_isResponsive = isResponsive; }
    /// A device sends; the radio receives it only while it scans. Whether it did.
    bool hear(const BluetoothAdvertisement& advertisement);

    [[nodiscard]] bool isScanning() const { return m_isScanning; }
    /// How often a scan was asked for in the state `poweredOn`.
    [[nodiscard]] int scansBegun() const { return m_scansBegun; }

private:
    BluetoothRadioState m_state;
    Listener m_listener;
    bool m_isScanning = false;
    int m_scansBegun = 0;
    bool m_isResponsive = true;
};

} // namespace nightjar
