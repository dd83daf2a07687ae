// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <string>

namespace nightjar {

/// Whether a message bus takes part: it accepts a connection, knows who we are and greets us. Waits for that
/// up to `limit` once the socket is connected. Any thread.
///
/// All connections of QtDBus live on one thread, and one that is being opened holds up the others, for ever
/// where a bus accepts and says nothing: a bus is handed to it only once it has answered here.
[[nodiscard]] bool busAnswers(const std::string& address,
                              std::chrono::milliseconds limit = std::chrono::seconds(25));

} // namespace nightjar
