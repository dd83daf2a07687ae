// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/NetworkWorld.h"

#include <cmath>
#include <limits>

namespace nightjar {
namespace {

/// Machines need a moment to answer who is there.
constexpr std::chrono::milliseconds answerTime{400};

/// Calls `act` with each service of a machine on each of its interfaces.
template <class Act>
void forEachService(const SimulatedHost& host, Act act) {
    for (const auto& type : host.types) {
        for (const auto& interface : host.interfaces)
            act(ServiceInstance{
                .name = host.name, .type = type, .domain = "local.", .interfaceName = interface});
    }
}

} // namespace

struct NetworkWorld::Guest {
    explicit Guest(const SimulatedHost& simulated) : host(simulated) {}

    [[nodiscard]] double inRound(double seconds) const {
        return host.roundSeconds > 0 ? std::fmod(seconds, host.roundSeconds) : seconds;
    }
    [[nodiscard]] bool isThere(double seconds) const {
        const double now = inRound(seconds);
        for (const auto& stay : host.stays) {
            if (now >= stay.from && now < stay.until)
                return true;
        }
        return host.stays.empty();
    }
    /// Seconds until it comes or leaves next; infinite when it does not.
    [[nodiscard]] double untilNextChange(double seconds) const {
        const double now = inRound(seconds);
        for (const auto& stay : host.stays) {
            for (const double change : {stay.from, stay.until}) {
                if (change > now)
                    return change - now;
            }
        }
        const bool repeats = host.roundSeconds > 0 && !host.stays.empty();
        return repeats ? host.roundSeconds - now : std::numeric_limits<double>::infinity();
    }

    SimulatedHost host;
    bool isAnnounced = false;
    Timer timer{};
};

NetworkWorld::NetworkWorld(FakeServiceBrowser& browser, Scheduler& scheduler,
                           const std::vector<SimulatedHost>& hosts)
    : m_browser(browser), m_scheduler(scheduler), m_beginning(scheduler.steadyNow()) {
    for (const auto& host : hosts)
        m_guests.push_back(std::make_unique<Guest>(host));
    // Who begins to look finds those who are there, also when he looks a second time.
    m_browser.onBrowse([this] { m_answer = m_scheduler.after(answerTime, [this] { m_browser.tellAll(); }); });
}

NetworkWorld::~NetworkWorld() {
    m_browser.onBrowse({});
}

void NetworkWorld::begin() {
    m_beginning = m_scheduler.steadyNow();
    m_browser.tell({.kind = ServiceBrowserState::Kind::ready});
    for (const auto& guest : m_guests)
        settle(*guest);
}

void NetworkWorld::settle(Guest& guest) {
    const double seconds = Seconds(m_scheduler.steadyNow() - m_beginning).count();
    if (const bool isThere = guest.isThere(seconds); isThere != guest.isAnnounced) {
        guest.isAnnounced = isThere;
        if (isThere)
            announce(guest.host);
        else
            vanish(guest.host);
    }
    const double wait = guest.untilNextChange(seconds);
    if (std::isinf(wait))
        return;
    const auto milliseconds = std::chrono::milliseconds(static_cast<long>(std::ceil(wait * 1000)));
    guest.timer = m_scheduler.after(milliseconds, [this, &guest] { settle(guest); });
}

void NetworkWorld::announce(const SimulatedHost& host) {
    forEachService(host, [this](const ServiceInstance& instance) { m_browser.announce(instance); });
}

void NetworkWorld::vanish(const SimulatedHost& host) {
    forEachService(host, [this](const ServiceInstance& instance) { m_browser.vanish(instance); });
}

} // namespace nightjar
