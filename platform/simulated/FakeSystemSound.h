// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/SystemSound.h"

#include <string>
#include <vector>

namespace nightjar {

/// A loudspeaker that only remembers what it was to play. One thread.
class FakeSystemSound final : public SystemSound {
public:
    void play(std::string_view name) override { m_played.emplace_back(name); }

    [[nodiscard]] const std::vector<std::string>& played() const { return m_played; }

private:
    std::vector<std::string> m_played;
};

} // namespace nightjar
