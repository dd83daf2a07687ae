// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/bluetooth/LossScenario.h"

#include "tests/app/bluetooth/BluetoothRig.h"

#include <algorithm>
#include <random>

namespace nightjar::testing {

namespace {

using std::chrono::milliseconds;

constexpr std::array<const char*, 17> happeningNames{
    "sent",     "startScanning", "stopScanning",  "startFinding", "stopFinding",  "radioOn",
    "radioOff", "wake",          "wakeUnnoticed", "track",        "stopTracking", "alertOn",
    "alertOff", "delay",         "rename",        "clockSet",     "transport"};

class World {
public:
    explicit World(std::uint32_t seed) : m_random(seed) {}

    Day live() {
        begin();
        const bool isCalm = pick(0, 1) == 0;
        const int actions = pick(8, 24);
        for (int i = 0; i < actions; ++i) {
            if (isCalm && pick(0, 3) != 0) {
                beAwayForAWhile(anyDevice());
            } else {
                act(anyDevice());
            }
            dwell(pick(0, 4) == 0 ? pick(20'000, 90'000) : pick(1, 12'000));
        }
        m_day.end = m_now;
        m_day.textsSent = static_cast<int>(m_rig.messages.sent().size());
        return std::move(m_day);
    }

private:
    struct Beacon {
        bool isPresent = true;
        int period = 1000;
        Moment next = 0;
        std::optional<DiscoveredTracker> seen{}; ///< as a view may still show it
    };

    int pick(int from, int to) { return std::uniform_int_distribution(from, to)(m_random); }
    BluetoothTrackerManager& manager() { return *m_rig.manager; }

    void begin() {
        for (Beacon& beacon : m_beacons)
            beacon = {.isPresent = pick(0, 4) != 0, .period = pick(700, 4000), .next = pick(0, 4000)};
        m_rig.preferences.setString("bluetoothLossIMessageRecipient", "someone@example.org");
        m_rig.preferences.setBoolean("bluetoothLossIMessageEnabled", pick(0, 1) == 1);
        m_rig.create();
        m_rig.notifications.onPost([this](const Notification& posted) { note(posted); });
        if (pick(0, 9) != 0)
            startScanning();
        dwell(pick(0, 9000));
        for (std::size_t device = 0; device < Day::devices; ++device) {
            track(device);
            if (pick(0, 4) != 0)
                setAlert(device, true);
            dwell(pick(0, 1500));
        }
    }

    void note(const Notification& posted) {
        for (std::size_t device = 0; device < Day::devices; ++device) {
            if (posted.identifier.contains(deviceID(static_cast<std::uint32_t>(device)).text()))
                m_day.alerts.push_back({exactTime(), device, posted.title});
        }
        if (manager().iMessageAlertsEnabled() && !m_isRefusing)
            ++m_day.textsExpected;
    }

    /// Lets time pass, in which those that are there send.
    void dwell(int time) {
        const Moment end = m_now + time;
        for (;;) {
            const auto next = std::ranges::min_element(m_beacons, {}, &Beacon::next);
            if (next->next > end)
                break;
            passTo(next->next);
            next->next += next->period + pick(0, 300);
            if (next->isPresent)
                send(static_cast<std::size_t>(next - m_beacons.begin()));
        }
        passTo(end);
    }

    void passTo(Moment time) {
        if (time > m_now)
            m_rig.pass(milliseconds(time - m_now));
        m_now = std::max(m_now, time);
    }
    [[nodiscard]] Moment exactTime() const {
        return std::chrono::duration_cast<milliseconds>(m_rig.scheduler.steadyNow().time_since_epoch())
            .count();
    }

    void send(std::size_t device) {
        const int rssi = pick(0, 14) == 0 ? BluetoothAdvertisement::noRssi : pick(-90, -40);
        log(Happening::sent, device, rssi);
        m_rig.hear(idOf(device), rssi);
        if (const auto* heard = manager().deviceWith(idOf(device)))
            m_beacons[device].seen = *heard;
    }

    static Uuid idOf(std::size_t device) { return deviceID(static_cast<std::uint32_t>(device)); }
    void log(Happening what, std::size_t device = 0, int value = 0, std::string name = {}) {
        m_day.events.push_back({m_now, what, device, value, std::move(name)});
    }

    void startScanning() {
        log(Happening::startScanning);
        manager().startScanning();
    }
    void stopScanning() {
        log(Happening::stopScanning);
        manager().stopScanning();
    }
    void startFinding(std::size_t device) {
        log(Happening::startFinding, device);
        manager().startFinding(idOf(device));
    }
    void stopFinding() {
        log(Happening::stopFinding);
        manager().stopFinding();
    }
    void setRadio(BluetoothRadioState state) {
        log(state == BluetoothRadioState::poweredOn ? Happening::radioOn : Happening::radioOff);
        m_rig.bluetooth.setState(state);
    }
    void track(std::size_t device) {
        auto record = m_beacons[device].seen.value_or(DiscoveredTracker{});
        record.id = idOf(device);
        record.name = "Device " + std::to_string(device);
        log(Happening::track, device, 0, record.name);
        manager().track(record);
    }
    void stopTracking(std::size_t device) {
        log(Happening::stopTracking, device);
        manager().stopTracking(idOf(device));
    }
    void setAlert(std::size_t device, bool enabled) {
        log(enabled ? Happening::alertOn : Happening::alertOff, device);
        manager().setLossAlert(enabled, idOf(device));
    }
    void setDelay(std::size_t device) {
        constexpr std::array delays{5, 15, 20, 30, 60};
        const int delay = delays[static_cast<std::size_t>(pick(0, 4))];
        log(Happening::delay, device, delay);
        manager().setLossAlertDelay(delay, idOf(device));
    }
    void rename(std::size_t device) {
        const auto name = "Renamed " + std::to_string(pick(0, 99));
        log(Happening::rename, device, 0, name);
        manager().renameTrackedDevice(idOf(device), name);
    }
    void setClock() {
        log(Happening::clockSet);
        m_rig.scheduler.setDate(m_rig.scheduler.now() + std::chrono::seconds(pick(-90'000, 90'000)));
    }
    void changeTransport() {
        log(Happening::transport);
        m_isRefusing = pick(0, 1) == 1;
        std::optional<MessageTransportError> refusal;
        if (m_isRefusing)
            refusal.emplace();
        m_rig.messages.refuse(std::move(refusal));
    }
    /// Monotonic time stands still while the computer sleeps.
    void sleep(bool isNoticed) {
        m_rig.scheduler.setDate(m_rig.scheduler.now() + std::chrono::hours(pick(1, 9)));
        log(isNoticed ? Happening::wake : Happening::wakeUnnoticed);
        if (isNoticed) {
            m_rig.wake.wake();
        } else {
            m_rig.wake.wakeUnnoticed();
        }
    }
    void cycleRadio() {
        constexpr std::array without{BluetoothRadioState::poweredOff, BluetoothRadioState::resetting,
                                     BluetoothRadioState::unknown, BluetoothRadioState::unauthorised};
        setRadio(without[static_cast<std::size_t>(pick(0, 3))]);
        dwell(pick(0, 30'000));
        setRadio(BluetoothRadioState::poweredOn);
    }

    std::size_t anyDevice() { return static_cast<std::size_t>(pick(0, Day::devices - 1)); }
    void beAwayForAWhile(std::size_t device) {
        m_beacons[device].isPresent = false;
        dwell(pick(15'000, 70'000));
        m_beacons[device].isPresent = true;
    }

    void act(std::size_t device) {
        switch (pick(0, 27)) {
        case 0:
            return startScanning();
        case 1:
            stopScanning();
            return pick(0, 3) != 0 ? startScanning() : void();
        case 2:
            return startFinding(device);
        case 3:
        case 4:
            stopFinding();
            return pick(0, 3) != 0 ? startScanning() : void();
        case 5:
            return cycleRadio();
        case 6:
            return sleep(true);
        case 7:
            return sleep(false);
        case 8:
            stopTracking(device);
            return pick(0, 1) == 0 ? track(device) : void();
        case 9:
            return track(device);
        case 10:
        case 11:
            return setAlert(device, pick(0, 3) != 0);
        case 12:
        case 13:
            return setDelay(device);
        case 14:
            return rename(device);
        case 15:
            return setClock();
        case 16:
            return changeTransport();
        default:
            m_beacons[device].isPresent = !m_beacons[device].isPresent;
        }
    }

    std::mt19937 m_random;
    BluetoothRig m_rig;
    std::array<Beacon, Day::devices> m_beacons;
    bool m_isRefusing = false;
    Moment m_now = 0;
    Day m_day;
};

} // namespace

Day liveThrough(std::uint32_t seed) {
    return World(seed).live();
}

std::string toText(const Event& event) {
    return std::to_string(event.at) + ' ' + happeningNames[static_cast<std::size_t>(event.what)] +
           " device " + std::to_string(event.device) + " value " + std::to_string(event.value) + ' ' +
           event.name;
}

std::string toText(const Alert& alert) {
    return std::to_string(alert.at) + ' ' + alert.title;
}

} // namespace nightjar::testing
