// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bridge/MeshtasticBridge.h"
#include "radio/MeshRadioError.h"

#include <cstdint>
#include <expected>
#include <functional>
#include <optional>
#include <string>

namespace nightjar {

/// The link to the base radio as the model uses it. All calls are made on the main thread; completions and
/// callbacks run there too, later, each completion exactly once, events strictly in the order in which the
/// bridge wrote them.
class RadioLink {
public:
    template <class T>
    using Completion = std::move_only_function<void(std::expected<T, MeshRadioError>)>;

    struct Listener {
        /// Each line of the new bridge instance that is not just the answer to `connect` or `sendText`.
        std::function<void(const MeshtasticBridgeResponse&)> onEvent{};
        /// The bridge of a connection that had been established went away without being asked to: it stopped
        /// (`bridgeStopped`) or spoke an incompatible version (`bridge`). At most once, after it no more
        /// events.
        std::function<void(const MeshRadioError&)> onLost{};
    };

    virtual ~RadioLink() = default;
    /// Ends the present connection, starts a fresh bridge and has it connect `port`; gives the port that
    /// answered. A later `connect` or `disconnect` takes the place of this one, which then completes with
    /// `cancelled`.
    virtual void connect(std::optional<std::string> port, Listener listener,
                         Completion<std::string> done) = 0;
    /// Gives the packet identifier of the sent message.
    virtual void sendText(std::string text, std::optional<std::uint32_t> recipient, std::uint32_t channel,
                          Completion<std::uint32_t> done) = 0;
    /// The settings themselves arrive as an event.
    virtual void requestRadioSettings(Completion<void> done) = 0;
    virtual void applyRadioSettings(const MeshtasticRadioSettings& settings, Completion<void> done) = 0;
    virtual void disconnect(std::move_only_function<void()> done) = 0;
};

} // namespace nightjar
