// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>
#include <system_error>

namespace nightjar {

/// What went wrong on the way to the radio; knows its sentence for the user.
struct MeshRadioError {
    enum class Kind {
        noRadio,
        bridgeMissing,
        bridgeStopped,
        invalidBridgeReply,
        requestTimedOut,
        bridge,    ///< a text from the bridge itself
        system,    ///< the operating system's sentence
        cancelled, ///< a later action took the place of this one
    };
    Kind kind;
    std::string text{}; ///< of `bridge` and `system`

    [[nodiscard]] static MeshRadioError bridge(std::string text) { return {Kind::bridge, std::move(text)}; }
    [[nodiscard]] static MeshRadioError incompatibleVersion();
    /// The bridge could not be started, or reached: a sentence round the operating system's own words.
    [[nodiscard]] static MeshRadioError couldNot(std::string_view what, const std::error_code& error);
    /// A complete sentence for the user.
    [[nodiscard]] std::string description() const;

    bool operator==(const MeshRadioError&) const = default;
};

} // namespace nightjar
