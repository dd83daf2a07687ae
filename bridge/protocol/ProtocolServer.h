// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/protocol/LineSink.h"
#include "bridge/protocol/Radio.h"
#include "core/bridge/BridgeJson.h"
#include "core/json/Decoder.h"

namespace nightjar::bridge {

/// Speaks the line protocol: reads requests, hands them to the radio, writes answers and events. It does not
/// know what kind of radio it has. One thread.
class ProtocolServer final : private RadioListener {
public:
    ProtocolServer(LineSink& sink, RadioOpener openRadio);

    /// The first line.
    void greet();
    /// One line without its line feed. A line that is no request is answered when its request ID can be read.
    void handleLine(std::string_view line, Moment now);

    [[nodiscard]] RadioWait waits() const { return m_radio ? m_radio->waits() : RadioWait{}; }
    void advance(Moment now, short ready);

private:
    void emit(const MeshtasticBridgeResponse& response) override;
    [[nodiscard]] bool hasRoom() const override { return m_sink.hasRoom(); }

    void refuse(std::string_view line);
    void handle(const MeshtasticBridgeRequest& request, Moment now);
    void connect(const MeshtasticBridgeRequest& request, Moment now);
    void sendText(const MeshtasticBridgeRequest& request, Moment now);
    void applySettings(const MeshtasticBridgeRequest& request, Moment now);
    void disconnect(const MeshtasticBridgeRequest& request, Moment now);

    LineSink& m_sink;
    RadioOpener m_openRadio;
    json::Decoder m_decoder;
    std::unique_ptr<Radio> m_radio;
    std::optional<Uuid> m_connecting; ///< the connect request that waits for its answer
    bool m_connected = false;
};

} // namespace nightjar::bridge
