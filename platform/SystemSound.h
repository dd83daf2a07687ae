// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace nightjar {

/// Short sounds by name. Main thread; never waits, and where there is no sound nothing happens.
class SystemSound {
public:
    virtual ~SystemSound() = default;
    /// Plays a sound of the program, such as "Tink"; an unknown name plays nothing.
    virtual void play(std::string_view name) = 0;
};

} // namespace nightjar
