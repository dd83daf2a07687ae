// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/network/NetworkDay.h"

#include "app/network/LocalNetworkBrowser.h"
#include "platform/simulated/SimulatedComputer.h"

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <utility>

namespace nightjar::testing {

namespace {

using std::chrono::milliseconds;

constexpr std::array<const char*, NetworkDay::types> typeNames{"_ssh._tcp", "_ipp._tcp", "_http._tcp"};
constexpr std::array<const char*, NetworkDay::interfaces> interfaceNames{"eth0", "wlan0"};
constexpr std::array<int, 6> delays{0, 10, 30, 60, 90, 600};

class World {
public:
    explicit World(std::uint32_t seed) : m_random(seed) {}

    NetworkDay live() {
        begin();
        const int actions = pick(30, 80);
        for (int i = 0; i < actions; ++i) {
            act(static_cast<std::size_t>(pick(0, NetworkDay::devices - 1)));
            dwell(pick(0, 3) == 0 ? pick(20'000, 120'000) : pick(0, 9'000));
        }
        for (std::size_t device = 0; device < NetworkDay::devices; ++device) {
            if (const auto* known = m_browser.deviceWith(idOf(device)))
                m_day.atTheEnd[device] = m_browser.monitoringStatus(*known);
        }
        m_day.end = m_now;
        return std::move(m_day);
    }

private:
    int pick(int from, int to) { return std::uniform_int_distribution(from, to)(m_random); }
    static std::string idOf(std::size_t device) { return "device " + std::to_string(device) + "|local."; }
    void log(Happening what, std::size_t device = 0, int value = 0, Announced set = 0) {
        m_day.events.push_back({m_now, what, device, value, set});
    }
    void dwell(int time) {
        m_computer.scheduler.advance(milliseconds(time));
        m_now += time;
    }

    void begin() {
        m_computer.notifications.onPost([this](const Notification& posted) { note(posted); });
        start();
        for (std::size_t device = 0; device < NetworkDay::devices; ++device) {
            if (pick(0, 4) != 0)
                comeAll(device);
            setDelay(device, delays[static_cast<std::size_t>(pick(0, 3))]);
            if (pick(0, 4) != 0)
                setAlert(device, true);
        }
    }

    void note(const Notification& posted) {
        const bool isReturn = posted.identifier.starts_with("local-network-returned-");
        const auto at =
            std::chrono::duration_cast<milliseconds>(m_computer.scheduler.steadyNow().time_since_epoch());
        const auto digit = posted.identifier.find("device ") + 7;
        m_day.alerts.push_back(
            {at.count(), static_cast<std::size_t>(posted.identifier.at(digit) - '0'), isReturn});
    }

    /// The log comes first: alerts are posted within the call.
    void announce(std::size_t device, std::size_t type, std::size_t interface, bool isThere) {
        const auto bit = NetworkDay::bit(device, interface);
        const auto set = isThere ? m_sets[type] | bit : m_sets[type] & ~bit;
        if (std::exchange(m_sets[type], set) == set)
            return;
        if (m_browser.isScanning())
            log(Happening::told, device, static_cast<int>(type), set);
        const ServiceInstance instance{.name =
                                           (pick(0, 1) == 0 ? "Device " : "DEVICE ") + std::to_string(device),
                                       .type = typeNames[type],
                                       .domain = "local.",
                                       .interfaceName = interfaceNames[interface]};
        // One name per service: the set holds what was announced.
        auto& held = m_instances[type * 100 + device * 10 + interface];
        if (isThere)
            held = instance;
        isThere ? m_computer.network.announce(held) : m_computer.network.vanish(held);
    }
    void comeAll(std::size_t device) {
        for (std::size_t type = 0; type < NetworkDay::types; ++type) {
            if (pick(0, 2) != 0)
                announce(device, type, static_cast<std::size_t>(pick(0, 1)), true);
        }
    }
    void leaveAll(std::size_t device) {
        for (std::size_t type = 0; type < NetworkDay::types; ++type) {
            for (std::size_t interface = 0; interface < NetworkDay::interfaces; ++interface)
                announce(device, type, interface, false);
        }
    }
    void flap(std::size_t device) {
        const auto type = static_cast<std::size_t>(pick(0, NetworkDay::types - 1));
        const auto interface = static_cast<std::size_t>(pick(0, 1));
        announce(device, type, interface, pick(0, 1) == 0);
    }

    void start() {
        if (!m_browser.isScanning())
            log(Happening::start);
        m_browser.start();
        if (pick(0, 3) == 0)
            return;
        dwell(pick(0, 3000));
        // In the order in which the fake tells them; types that nobody ever had are told too.
        for (const auto& type : std::set<std::string>(m_computer.network.browsed())) {
            const auto place = std::ranges::find(typeNames, type);
            const auto index = static_cast<std::size_t>(place - typeNames.begin());
            log(Happening::told, 0, static_cast<int>(index), index < NetworkDay::types ? m_sets[index] : 0);
        }
        m_computer.network.tellAll();
    }
    void stop() {
        log(Happening::stop);
        m_browser.stop();
    }
    void setAlert(std::size_t device, bool enabled) {
        log(enabled ? Happening::alertOn : Happening::alertOff, device);
        m_browser.setLossAlert(enabled, idOf(device));
    }
    void setDelay(std::size_t device, int delay) {
        log(Happening::delay, device, delay);
        m_browser.setLossAlertDelay(delay, idOf(device));
    }
    void moveDate(int seconds) {
        log(Happening::clockSet, 0, seconds);
        m_computer.scheduler.setDate(m_computer.scheduler.now() + std::chrono::seconds(seconds));
    }
    void tell(ServiceBrowserState::Kind kind) {
        log(kind == ServiceBrowserState::Kind::waiting ? Happening::waiting : Happening::ready);
        m_computer.network.tell({.kind = kind});
    }

    void act(std::size_t device) {
        switch (pick(0, 23)) {
        case 0:
            stop();
            dwell(pick(0, 20'000));
            return pick(0, 9) != 0 ? start() : void();
        case 1:
            return start();
        case 2:
            log(Happening::track, device);
            return m_browser.track(idOf(device));
        case 3:
            log(Happening::stopTracking, device);
            return m_browser.stopTracking(idOf(device));
        case 4:
            log(Happening::forget, device);
            return m_browser.forget(idOf(device));
        case 5:
        case 6:
            return setAlert(device, false);
        case 7:
        case 8:
        case 9:
            return setAlert(device, true);
        case 10:
        case 11:
            return setDelay(device, delays[static_cast<std::size_t>(pick(0, 5))]);
        case 12:
            tell(ServiceBrowserState::Kind::waiting);
            dwell(pick(0, 60'000));
            return pick(0, 9) != 0 ? tell(ServiceBrowserState::Kind::ready) : void();
        case 13:
            return moveDate(pick(-9'000, 9'000) * 10);
        case 14:
        case 15:
        case 16:
            return flap(device);
        case 17:
        case 18:
        case 19:
            return comeAll(device);
        default:
            leaveAll(device);
            if (pick(0, 1) == 0)
                return;
            dwell(pick(5'000, 120'000));
            comeAll(device);
        }
    }

    std::mt19937 m_random;
    SimulatedComputer m_computer; // without a home: nothing is written
    LocalNetworkBrowser m_browser{m_computer.services()};
    std::array<Announced, NetworkDay::types> m_sets{};
    std::map<std::size_t, ServiceInstance> m_instances;
    Moment m_now = 0;
    NetworkDay m_day;
};

} // namespace

NetworkDay liveThroughNetworkDay(std::uint32_t seed) {
    return World(seed).live();
}

} // namespace nightjar::testing
