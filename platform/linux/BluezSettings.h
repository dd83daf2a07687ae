// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>
#include <vector>

namespace nightjar {

/// The times that rule the talk with the Bluetooth daemon.
struct BluezSettings {
    using Milliseconds = std::chrono::milliseconds;

    /// A call without an answer has failed after this long.
    Milliseconds answerTimeout{5'000};
    /// A state other than `poweredOn` is told once it has lasted this long: a daemon that ends in order runs
    /// through three of them in a tenth of a second.
    Milliseconds stateDebounce{250};
    /// A daemon that has just come needs this long to find its adapters.
    Milliseconds adapterGrace{1'000};

    /// The waits between attempts to begin a discovery; the last one repeats.
    std::vector<Milliseconds> retryDelays{Milliseconds(250), Milliseconds(1'000), Milliseconds(2'000),
                                          Milliseconds(5'000), Milliseconds(10'000)};
    /// After so many failures in a row, or after so long without a discovery, the radio counts as blind.
    std::size_t attemptsUntilBlind = 3;
    Milliseconds blindAfter{5'000};
    /// Who was refused asks again after this long.
    Milliseconds deniedPause{60'000};

    /// While scanning, a daemon that has been silent for so long is asked whether it lives ...
    Milliseconds silenceUntilPing{5'000};
    /// ... hangs when it has not answered within this time ...
    Milliseconds pingTimeout{5'000};
    /// ... and is asked again this often until it answers.
    Milliseconds pingPause{10'000};

    /// While scanning, the radio is set going again when nobody's advertisement has come for so long.
    Milliseconds stallLimit{60'000};
};

} // namespace nightjar
