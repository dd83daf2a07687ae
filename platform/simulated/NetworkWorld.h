// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/Scheduler.h"
#include "platform/simulated/FakeServiceBrowser.h"

#include <memory>
#include <string>
#include <vector>

namespace nightjar {

/// A machine of the simulated network: what it announces, where, and when it is there.
struct SimulatedHost {
    struct Stay {
        double from;  ///< seconds since the world began
        double until; ///< seconds
    };

    std::string name;
    std::vector<std::string> types;
    std::vector<std::string> interfaces;
    /// In order of time; none: it is always there.
    std::vector<Stay> stays{};
    double roundSeconds = 0; ///< when the stays begin anew; 0 = never
};

/// Machines that come to a simulated network and leave it. One thread.
class NetworkWorld {
public:
    NetworkWorld(FakeServiceBrowser& browser, Scheduler& scheduler, const std::vector<SimulatedHost>& hosts);
    ~NetworkWorld();
    NetworkWorld(const NetworkWorld&) = delete;
    NetworkWorld& operator=(const NetworkWorld&) = delete;

    /// The browsing works, and from now on the machines come and go.
    void begin();

private:
    struct Guest;

    void settle(Guest& guest);
    void announce(const SimulatedHost& host);
    void vanish(const SimulatedHost& host);

    FakeServiceBrowser& m_browser;
    Scheduler& m_scheduler;
    SteadyTime m_beginning;
    std::vector<std::unique_ptr<Guest>> m_guests;
    Timer m_answer;
};

} // namespace nightjar
