// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bridge/BridgeJson.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

namespace nightjar::bridge {

/// The real program as a child, with its three pipes. Ended by force where a test leaves it running.
class RunningBridge {
public:
    explicit RunningBridge(std::vector<std::string> arguments = {"serve", "--jsonl"});
    ~RunningBridge();
    RunningBridge(const RunningBridge&) = delete;
    RunningBridge& operator=(const RunningBridge&) = delete;

    void write(std::string_view bytes);
    /// Writes the line again and again until the program takes no more; gives how often.
    std::size_t writeUntilFull(std::string_view line);
    /// Writes the request and gives its ID.
    Uuid send(MeshtasticBridgeRequest request);
    Uuid connect(const std::string& scenario);

    /// The next raw line, with a limit of ten seconds; absent at the end of output.
    [[nodiscard]] std::optional<std::string> line();
    /// The next line that is a response; lines that are none are passed over.
    [[nodiscard]] std::optional<MeshtasticBridgeResponse> response();
    /// Reads up to the answer; absent when the output ends before.
    [[nodiscard]] std::optional<MeshtasticBridgeResponse> answer(const Uuid& request);
    /// Reads up to a line of that event.
    [[nodiscard]] std::optional<MeshtasticBridgeResponse> event(MeshtasticBridgeEvent event);

    void closeInput();
    void closeOutput();
    void closeErrors();
    void signal(int number) const;
    /// The exit code, or 128 and the signal; absent when it still runs after ten seconds.
    [[nodiscard]] std::optional<int> wait();
    [[nodiscard]] std::string standardError();

    /// A number from the process's status file, such as VmRSS (in KiB) or voluntary_ctxt_switches.
    [[nodiscard]] long status(const std::string& key) const;
    /// The one-letter state of its one thread: S = sleeps.
    [[nodiscard]] char state() const;

private:
    pid_t m_process = -1;
    int m_input = -1;
    int m_output = -1;
    int m_errors = -1;
    std::string m_buffer;
    std::size_t m_start = 0;
    json::Decoder m_decoder = makeBridgeDecoder();
};

/// Looks at the condition now and again for up to ten seconds.
[[nodiscard]] bool eventually(const std::function<bool()>& condition);

} // namespace nightjar::bridge
