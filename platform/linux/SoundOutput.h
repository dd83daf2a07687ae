// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <filesystem>
#include <string>
#include <variant>

namespace nightjar {

/// A sound of the user's sound theme.
struct ThemeSound {
    std::string name;
    bool operator==(const ThemeSound&) const = default;
};

using Sound = std::variant<ThemeSound, std::filesystem::path>;

/// What makes the sounds audible. One thread; every call may wait for others.
class SoundOutput {
public:
    enum class Way { soundServer, hardware };
    enum class Opened { yes, no, wayIsMissing };
    enum class Played { yes, no, soundIsMissing };

    virtual ~SoundOutput() = default;
    [[nodiscard]] virtual Opened open(Way way) = 0;
    /// Begins to play; for an open output.
    [[nodiscard]] virtual Played play(const Sound& sound) = 0;
    virtual void close() = 0;
};

} // namespace nightjar
