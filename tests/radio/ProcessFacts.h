// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <set>
#include <sys/types.h>

namespace nightjar {

/// The children of this process, those included that have exited and wait to be reaped.
[[nodiscard]] std::set<pid_t> childProcesses();
[[nodiscard]] std::size_t openDescriptors();
[[nodiscard]] bool isRunning(pid_t process);

} // namespace nightjar
