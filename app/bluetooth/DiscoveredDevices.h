// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/bluetooth/DeviceIndex.h"
#include "app/bluetooth/DiscoveredTracker.h"
#include "core/bluetooth/BluetoothProximityEstimator.h"
#include "platform/BluetoothCentral.h"
#include "platform/Scheduler.h"

#include <cstddef>
#include <deque>
#include <optional>
#include <string_view>
#include <unordered_map>

namespace nightjar {

/// The service that Meshtastic radios advertise.
[[nodiscard]] const Uuid& meshtasticService();

/// The devices of the current scan and when each was last processed. Main thread. Made for a crowded place:
/// hearing a known device again costs no memory, and neither growing nor clearing holds up the thread.
class DiscoveredDevices {
public:
    explicit DiscoveredDevices(Scheduler& scheduler) : m_scheduler(scheduler) {}

    [[nodiscard]] const DiscoveredTrackers& list() const { return m_scan.devices; }
    /// The place of a device in `list()`.
    [[nodiscard]] std::optional<std::size_t> placeOf(const Uuid& id) const { return m_scan.placeOf(id); }
    [[nodiscard]] const DiscoveredTracker* find(const Uuid& id) const;
    /// `lastSeen` of a listed device, in time that no clock setting moves.
    [[nodiscard]] std::optional<SteadyTime> heardAt(const Uuid& id) const;

    /// Whether an advertisement is to be processed, which is then noted. A throttled device is processed
    /// every 2 s at most, also across `clear`.
    [[nodiscard]] bool admit(const BluetoothAdvertisement& advertisement, SteadyTime now, bool isThrottled);
    /// Adds the device or renews its record. For one that was admitted, with a reading that the estimator
    /// accepts. Returns its place.
    std::size_t update(const BluetoothAdvertisement& advertisement, SteadyTime now, Date date);
    /// Begins the readings of a device afresh. Returns its place, where it is listed.
    std::optional<std::size_t> restartReadings(const Uuid& id);
    void clear();

private:
    /// What is kept of a device apart from its record: one line of the processor's cache, all that an
    /// ignored advertisement touches.
    struct alignas(64) Reception {
        Uuid id;
        SteadyTime processedAt{}; ///< also an advertisement without a reading
        SteadyTime heardAt{};     ///< with a reading
        BluetoothProximityEstimator estimator;
        bool hasMadeUpName = false;
    };
    struct Scan {
        [[nodiscard]] std::optional<std::size_t> placeOf(const Uuid& id) const {
            return index.find(id, [this](std::size_t place) -> const Uuid& { return receptions[place].id; });
        }

        DiscoveredTrackers devices;
        std::deque<Reception> receptions; ///< of the device at the same place
        DeviceIndex index;
    };
    struct FormerScan {
        Scan scan;
        SteadyTime clearedAt{};
    };
    using Stamps = std::unordered_map<Uuid, SteadyTime>;

    static void rename(DiscoveredTracker& device, Reception& reception,
                       const BluetoothAdvertisement& advertisement);
    [[nodiscard]] bool wasProcessedUnlisted(const Uuid& id, SteadyTime now) const;
    void noteUnlisted(const Uuid& id, SteadyTime now);
    void disposeOfFormerScans();

    Scheduler& m_scheduler;
    Scan m_scan;
    std::deque<FormerScan> m_formerScans; ///< oldest first; taken apart a little at a time
    Timer m_disposal;
    /// Devices processed without a reading while not in the list: those since `m_stampsSince`, and of the 2 s
    /// or more before.
    Stamps m_stamps;
    Stamps m_olderStamps;
    SteadyTime m_stampsSince{};
};

} // namespace nightjar
