// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstddef>

namespace nightjar {

/// The times that rule the proving of services; see ServiceProber.
struct ProberSettings {
    using Milliseconds = std::chrono::milliseconds;

    /// An important service that is there is asked again after this long or up to a tenth more. What an
    /// answer says lives for 120 s in the daemon's memory: sooner, that would answer instead of the device.
    Milliseconds period{122'000};
    /// At most so long after an answer out of memory, which others on the network may have refreshed; every
    /// other time only, since the question itself refreshes it too.
    Milliseconds memoryPause{65'000};
    /// For one that is not important, a tenth more or less: a household has few that matter and many that
    /// cost.
    Milliseconds usualPeriod{240'000};
    /// One that was asked longer ago than this has to answer by itself.
    Milliseconds memory{121'000};
    /// After a time-out or an error. Sooner, the daemon would send no question.
    Milliseconds suspectPause{10'000};
    /// While it is gone: with the 5 s that a question takes, a return is noticed within 30 s ...
    Milliseconds gonePause{25'000};
    /// ... and within two minutes when it is not important.
    Milliseconds usualGonePause{115'000};
    /// So many time-outs in a row mean that it is gone.
    int timeoutsUntilGone = 4;
    std::size_t mostInFlight = 16;
    /// When one falls silent and nobody has been heard since, so many others are asked at once: those that
    /// cannot be answered for.
    std::size_t witnesses = 3;
    /// The daemon waits 5 s for an answer. A time-out that comes sooner is not one: its clock was moved, or
    /// the computer slept.
    Milliseconds shortestTimeout{3'000};
    /// After the computer slept, or had no link, no time-out counts for so long: the network has to come back
    /// first.
    Milliseconds wakeGrace{30'000};
    /// When the date moves so much against steady time, the computer slept, or its clock was set.
    Milliseconds sleepJump{5'000};
    /// For so long it is our own link that is doubted when several devices fall silent together. With the period
    /// and the time-outs before it, a death is told within four minutes.
    Milliseconds doubtLimit{50'000};
};

/// The times that rule the talk with the daemon of Avahi.
struct AvahiSettings {
    using Milliseconds = std::chrono::milliseconds;

    /// A call without an answer has failed after this long.
    Milliseconds answerTimeout{5'000};
    /// The daemon itself gives up after 5 s.
    Milliseconds resolveTimeout{15'000};
    /// Starting the daemon may take this long, and is tried again after this long.
    Milliseconds startTimeout{30'000};
    Milliseconds startPause{60'000};

    /// Changes of a set that come so close together are told at once.
    Milliseconds coalescing{200};
    /// A set counts as complete after this long when the daemon never says so.
    Milliseconds completeAfter{5'000};
    /// What was there before the daemon went is kept for so long after it came back and had its say; so is
    /// what was there before an interface of ours went.
    Milliseconds holding{12'000};
    /// For so long it is kept while that interface is away and another one can hear.
    Milliseconds linkPatience{120'000};
    /// A type that was refused is asked for again after this long.
    Milliseconds refusedPause{60'000};

    /// While browsing, the daemon is asked this often whether it lives ...
    Milliseconds pingPeriod{30'000};
    /// ... hangs when it has not answered within this time ...
    Milliseconds pingTimeout{10'000};
    /// ... and is asked again this often until it answers.
    Milliseconds pingPause{10'000};

    ProberSettings prober{};
};

} // namespace nightjar
