// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/program/LineReader.h"
#include "bridge/program/OutputQueue.h"
#include "bridge/protocol/ProtocolServer.h"
#include "bridge/simulated/Mischief.h"

namespace nightjar::bridge {

/// The running bridge: one thread that sleeps in poll(2) until the client, the radio or a signal has
/// something for it.
class BridgeProgram final : private Mischief {
public:
    BridgeProgram(int input, int output, int standardError);
    ~BridgeProgram() override;

    /// Returns the exit code: at the end of input, on SIGTERM or SIGINT, when the client no longer reads.
    [[nodiscard]] int run();

private:
    void writeRaw(std::string_view bytes) override { m_output.writeRaw(bytes); }
    void writeToStandardError(std::string_view bytes) override { m_errors.writeRaw(bytes); }
    void cutNextLine(Seconds wait) override { m_output.cutNextLine(wait); }
    void closeOutput() override { m_output.closeWhenDone(); }
    void exit(int code) override { m_exitCode = code; }
    void refuseToEnd(Seconds duration) override;

    void wait();
    void takeRequests();
    void work();
    void drain();
    [[nodiscard]] bool isEnding() const;
    [[nodiscard]] std::optional<Moment::TimePoint> nextDue() const;
    [[nodiscard]] static Moment now();

    int m_input;
    int m_signals = -1;
    LineReader m_reader;
    OutputQueue m_output;
    OutputQueue m_errors;
    ProtocolServer m_server;
    std::optional<int> m_exitCode;
    std::optional<Moment::TimePoint> m_stubbornUntil;
    short m_radioReady = 0;
    bool m_inputOpen = true;
    bool m_askedToEnd = false;
    bool m_clientGone = false;
};

} // namespace nightjar::bridge
