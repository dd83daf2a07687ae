// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"
#include "core/mesh/MeshNode.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace nightjar::headless {

/// One line that is safe on a terminal: line breaks and tabs become spaces, every other control character,
/// and the characters that turn the writing direction round, become U+FFFD; the end of a very long text is
/// cut off.
[[nodiscard]] std::string terminalSafe(std::string_view text, std::size_t mostCharacters = 1000);

/// "17:04:09" in the computer's time zone.
[[nodiscard]] std::string localTime(Date date);

/// "node Fox (!0000abcd) heard directly, battery 84 %, SNR 6.2 dB"; the name is the node's name for the user.
[[nodiscard]] std::string nodeSentence(const MeshNode& node, std::string_view name, Date now);

} // namespace nightjar::headless
