// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/BluetoothWorld.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace nightjar {
namespace {

/// Loss by distance indoors: 10 n dB for each factor of ten (log-distance path loss model; n is 1.6 to 3.3 in
/// buildings, see T. Rappaport, Wireless Communications, table 4.2).
constexpr double pathLossExponent = 2.4;
/// What stands in the way changes slowly, reflections change from packet to packet.
constexpr double shadowing = 2.5; // dB
constexpr double fading = 1.8;    // dB
constexpr double shadowMemory = 0.9;
/// The weakest signal that the radio receives, dBm.
constexpr double sensitivity = -96;
/// What is lost to collisions and while the radio listens on another channel.
constexpr double receivedShare = 0.9;

/// A normally distributed number of variance 1 (Box and Muller, 1958).
double normal(Random& random) {
    const double radius = std::sqrt(-2 * std::log(1 - random.share()));
    return radius * std::cos(2 * std::numbers::pi * random.share());
}

double metresAt(const SimulatedPeripheral& peripheral, double seconds) {
    const auto& way = peripheral.way;
    if (way.empty())
        return 1;
    if (peripheral.waySeconds > 0)
        seconds = std::fmod(seconds, peripheral.waySeconds);
    const auto next =
        std::ranges::find_if(way, [seconds](const auto& point) { return point.seconds > seconds; });
    if (next == way.begin())
        return way.front().metres;
    if (next == way.end())
        return way.back().metres;
    const auto& last = *std::prev(next);
    const double share = (seconds - last.seconds) / (next->seconds - last.seconds);
    return std::lerp(last.metres, next->metres, share);
}

} // namespace

struct BluetoothWorld::Sender {
    Sender(const SimulatedPeripheral& sent, std::uint64_t seed, std::uint64_t stream)
        : peripheral(sent), random(seed, stream) {
        advertisement = {.peripheral = random.uuid(),
                         .peripheralName = peripheral.name,
                         .localName = peripheral.name,
                         .serviceUUIDs = peripheral.serviceUUIDs};
    }

    /// The strength of the next advertisement where the radio is, dBm.
    double strength(double seconds) {
        shadow =
            shadowMemory * shadow + shadowing * std::sqrt(1 - shadowMemory * shadowMemory) * normal(random);
        const double metres = std::max(metresAt(peripheral, seconds), 0.1);
        return peripheral.rssiAtOneMetre - 10 * pathLossExponent * std::log10(metres) + shadow +
               fading * normal(random);
    }

    SimulatedPeripheral peripheral;
    Random random;
    BluetoothAdvertisement advertisement;
    double shadow = 0;         ///< dB
    double addressTakenAt = 0; ///< seconds since the world began
    Timer timer{};
};

BluetoothWorld::BluetoothWorld(FakeBluetoothCentral& central, Scheduler& scheduler,
                               const std::vector<SimulatedPeripheral>& peripherals, std::uint64_t seed)
    : m_central(central), m_scheduler(scheduler), m_beginning(scheduler.steadyNow()) {
    for (std::uint64_t stream = 0; stream < peripherals.size(); ++stream)
        m_senders.push_back(std::make_unique<Sender>(peripherals[stream], seed, stream));
}

BluetoothWorld::~BluetoothWorld() = default;

void BluetoothWorld::begin() {
    m_beginning = m_scheduler.steadyNow();
    m_central.setState(BluetoothRadioState::poweredOn);
    for (const auto& sender : m_senders)
        scheduleNext(*sender);
}

double BluetoothWorld::secondsNow() const {
    return Seconds(m_scheduler.steadyNow() - m_beginning).count();
}

void BluetoothWorld::scheduleNext(Sender& sender) {
    // Each advertisement comes up to 10 ms late, so that two devices do not collide for ever (Bluetooth Core
    // Specification, volume 6, part B, advDelay).
    const auto delay = std::chrono::milliseconds(sender.random.index(11));
    sender.timer =
        m_scheduler.after(sender.peripheral.interval + delay, [this, &sender] { advertise(sender); });
}

void BluetoothWorld::advertise(Sender& sender) {
    scheduleNext(sender);
    const double seconds = secondsNow();
    if (const auto every = sender.peripheral.newAddressEvery;
        every && seconds - sender.addressTakenAt >= Seconds(*every).count()) {
        sender.addressTakenAt = seconds;
        sender.advertisement.peripheral = sender.random.uuid();
    }
    const double strength = sender.strength(seconds);
    if (strength < sensitivity || sender.random.share() >= receivedShare)
        return;
    sender.advertisement.rssi = static_cast<int>(std::lround(std::min(strength, -20.0)));
    m_central.hear(sender.advertisement);
}

} // namespace nightjar
