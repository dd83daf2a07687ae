// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>

namespace nightjar {

/// The bounds of a MeshRadio. The defaults suit the program; tests shorten them.
struct MeshRadioOptions {
    /// How long a bridge that was asked to end may take before it is ended by force.
    std::chrono::milliseconds endingGrace{2000};
    /// The same when the MeshRadio itself goes, in real time, since the main thread waits for it.
    std::chrono::milliseconds finalGrace{1000};
    /// A longer line is passed over; the line protocol sets no limit, this one protects the machine.
    std::size_t longestLine = std::size_t{256} << 20;
    /// Request lines that may wait for a bridge which does not read.
    std::size_t unwrittenBytes = std::size_t{1} << 20;
    /// Reading pauses while more than the first waits for the main thread, until less than the second does.
    std::size_t inboxHighBytes = std::size_t{4} << 20;
    std::size_t inboxLowBytes = std::size_t{1} << 20;
    /// How long the main thread works on what was read before it turns to other things.
    std::chrono::microseconds mainThreadSlice{4000};
};

} // namespace nightjar
