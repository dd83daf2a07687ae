// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "radio/FileDescriptor.h"

#include <expected>
#include <filesystem>
#include <sys/types.h>
#include <system_error>

namespace nightjar {

/// A started bridge program with its three pipes. Our ends do not block, and none of them reaches any other
/// program. Destroying it closes the pipes and neither ends nor reaps the child: see LeavingProcesses.
class ChildProcess {
public:
    /// Starts the program with the arguments "serve" and "--jsonl", our environment and our working folder.
    /// The child has the default signal handling and a process group of its own, so that a ctrl-C in our
    /// terminal is ours alone.
    [[nodiscard]] static std::expected<ChildProcess, std::error_code>
    spawn(const std::filesystem::path& program);

    [[nodiscard]] pid_t id() const { return m_id; }
    /// Readable for poll(2) once the child has exited.
    [[nodiscard]] int exitDescriptor() const { return m_exit.get(); }
    /// Whether the child has exited; reaps it when it has.
    [[nodiscard]] bool hasExited();
    /// Whether the child has exited or has closed its output, which is the first that is seen of an exit.
    [[nodiscard]] bool isGoing();
    void signal(int number) const;

    FileDescriptor input;  ///< we write here
    FileDescriptor output; ///< we read here
    FileDescriptor errors; ///< we read here and throw it away

private:
    ChildProcess() = default;

    pid_t m_id = -1;
    FileDescriptor m_exit;
    bool m_reaped = false;
};

} // namespace nightjar
