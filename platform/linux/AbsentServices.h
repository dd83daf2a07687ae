// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/BluetoothCentral.h"
#include "platform/LocationSource.h"
#include "platform/MessageTransport.h"
#include "platform/SystemSound.h"
#include "platform/WakeMonitor.h"

namespace nightjar {

class AbsentBluetooth final : public BluetoothCentral {
public:
    void setListener(Listener) override {}
    [[nodiscard]] BluetoothRadioState state() const override { return BluetoothRadioState::unknown; }
    void scan() override {}
    void stopScan() override {}
};

class AbsentLocation final : public LocationSource {
public:
    void setListener(Listener, const Wishes&) override {}
    [[nodiscard]] LocationAuthorization authorization() const override {
        return LocationAuthorization::denied;
    }
    void requestWhenInUseAuthorization() override {}
    void requestLocation() override {}
    void stopUpdatingLocation() override {}
};

class AbsentSound final : public SystemSound {
public:
    void play(std::string_view) override {}
};

class AbsentWake final : public WakeMonitor {
public:
    void setListener(std::function<void()>) override {}
    void check() override {}
};

class AbsentMessages final : public MessageTransport {
public:
    [[nodiscard]] std::expected<void, MessageTransportError> send(const OutgoingText&) override {
        return std::unexpected(MessageTransportError{});
    }
};

} // namespace nightjar
