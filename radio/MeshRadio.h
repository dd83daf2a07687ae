// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/HostEnvironment.h"
#include "platform/MainThread.h"
#include "platform/PollClock.h"
#include "radio/MeshRadioOptions.h"
#include "radio/RadioLink.h"

#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace nightjar {

class RadioThread;

/// The one object that talks to the bridge program: starts it as a child process for each connection, pairs
/// answers with requests, keeps the time-outs, hands every other line to the listener and takes the child
/// down again.
///
/// Where calls overlap only the latest `connect` or `disconnect` counts: an earlier `connect` that has not
/// been completed is completed with `cancelled`, and `onLost` of an earlier connection is not told any more.
/// Events of the connection being ended go on until its bridge has been stopped; the answer that stops it, to
/// `disconnect` or of a failed `connect`, is no event.
class MeshRadio final : public RadioLink {
public:
    /// Everything given outlives the MeshRadio. Throws std::system_error when the process has no descriptor
    /// left.
    MeshRadio(const HostEnvironment& host, MainThread& mainThread, PollClock& clock,
              MeshRadioOptions options = {});
    /// Ends the bridge, by force where it does not go within the final grace, and waits for that. Completions
    /// and events that have not been delivered are destroyed uncalled; nothing runs afterwards. May be called
    /// from within a completion or an event.
    ~MeshRadio() override;

    void connect(std::optional<std::string> port, Listener listener, Completion<std::string> done) override;
    void sendText(std::string text, std::optional<std::uint32_t> recipient, std::uint32_t channel,
                  Completion<std::uint32_t> done) override;
    void requestRadioSettings(Completion<void> done) override;
    void applyRadioSettings(const MeshtasticRadioSettings& settings, Completion<void> done) override;
    void disconnect(std::move_only_function<void()> done) override;

    /// See BridgeLocator and SerialPorts.
    [[nodiscard]] static std::optional<std::filesystem::path> installedBridgeURL(const HostEnvironment& host);
    [[nodiscard]] static std::string bridgeStatus(const HostEnvironment& host);
    [[nodiscard]] static std::vector<std::string> availablePorts(const HostEnvironment& host);
    [[nodiscard]] static std::string displayName(std::string_view path);

private:
    std::uint64_t m_action = 0; ///< counts `connect` and `disconnect`
    std::unique_ptr<RadioThread> m_thread;
};

} // namespace nightjar
