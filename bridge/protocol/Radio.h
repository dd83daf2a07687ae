// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/protocol/Moment.h"
#include "core/bridge/MeshtasticBridge.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace nightjar::bridge {

/// Where a radio's lines go.
class RadioListener {
public:
    virtual ~RadioListener() = default;
    /// An answer (with the request's ID) or an event of the radio's own.
    virtual void emit(const MeshtasticBridgeResponse& response) = 0;
    /// False while the client reads more slowly than lines come; a radio then keeps what it has.
    [[nodiscard]] virtual bool hasRoom() const = 0;
};

struct TextOrder {
    std::string text;
    std::optional<std::uint32_t> recipient; ///< absent = the whole channel
    std::uint32_t channel = 0;
};

/// What a radio waits for in poll(2).
struct RadioWait {
    int descriptor = -1; ///< -1 = none
    short events = 0;
    std::optional<Moment::TimePoint> due;
};

/// One base radio, from the connect request on. Each request is answered later through the listener, with
/// exactly one line of `protocol/Answers.h`. One thread; a radio is never destroyed inside its own call of
/// the listener.
class Radio {
public:
    virtual ~Radio() = default;

    /// Called once, first. The radio counts as connected when it emits the `connected` answer; then it tells
    /// its own number, its channels, the nodes it knows and its settings.
    virtual void connect(const Uuid& request, Moment now) = 0;
    virtual void sendText(const Uuid& request, const TextOrder& order, Moment now) = 0;
    virtual void readSettings(const Uuid& request, Moment now) = 0;
    virtual void applySettings(const Uuid& request, const MeshtasticRadioSettings& settings, Moment now) = 0;
    /// From now on the radio only answers what it still owes.
    virtual void disconnect(const Uuid& request, Moment now) = 0;

    [[nodiscard]] virtual RadioWait waits() const = 0;
    /// Does what is due and takes what `ready` says of the descriptor. Called when that happens and there is
    /// room.
    virtual void advance(Moment now, short ready) = 0;
};

/// Makes the radio behind a port, or says in one sentence why there is none.
using RadioOpener = std::function<std::expected<std::unique_ptr<Radio>, std::string>(
    const std::string& port, RadioListener& listener)>;

} // namespace nightjar::bridge
