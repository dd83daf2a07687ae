// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace nightjar {

/// A text message as a modem sends it.
struct SentMessage {
    std::string number; ///< with a plus sign when it is an international one
    std::string text;
    int part = 1;
    int parts = 1;

    /// Reads the SMS-SUBMIT of 3GPP TS 23.040 with the service centre before it, as 3GPP TS 27.005 has it;
    /// throws std::runtime_error when it is no text in UCS-2 or the 7-bit alphabet, of which only what is
    /// the same in ASCII is known here.
    [[nodiscard]] static SentMessage read(std::string_view hexadecimal);
};

} // namespace nightjar
