// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/bluetooth/TrackedDevices.h"
#include "core/base/Uuid.h"
#include "platform/Scheduler.h"

#include <unordered_set>
#include <vector>

namespace nightjar {

/// How the loss alert of a tracked device stands.
enum class LossAlertState {
    off,     ///< the user wants none
    blind,   ///< nobody listens: no alert can come
    waiting, ///< it has not been heard since listening began
    armed,   ///< its silence will be told
    alerted, ///< its silence has been told
};

/// Which tracked devices are armed, and which have been alerted. Main thread. Only a device that was heard in
/// this scan is armed: whatever else silences the radio raises no alarm.
class LossAlertMonitor {
public:
    /// Below this no delay is taken seriously, whatever a file says; seconds.
    static constexpr double leastDelay = 15;
    /// The delay that counts for a device; seconds.
    [[nodiscard]] static double delayOf(const TrackedBluetoothDevice& device);

    void arm(const Uuid& id) { m_heardThisScan.insert(id); }
    void disarmAll() { m_heardThisScan.clear(); }

    void noteAlerted(const Uuid& id) { m_lossAlertedIDs.insert(id); }
    /// The device may be alerted anew; whether it had been alerted.
    bool forgetAlerted(const Uuid& id) { return m_lossAlertedIDs.erase(id) > 0; }

    [[nodiscard]] LossAlertState stateOf(const TrackedBluetoothDevice& device, bool isListening) const;
    /// Whether the device is to be alerted, having been processed last at `heardAt`.
    [[nodiscard]] bool isDue(const TrackedBluetoothDevice& device, SteadyTime heardAt, SteadyTime now) const;
    /// The devices that are to be alerted, in the order of the list.
    [[nodiscard]] std::vector<Uuid> due(const TrackedDevices& devices, SteadyTime now) const;

private:
    std::unordered_set<Uuid> m_heardThisScan;
    std::unordered_set<Uuid> m_lossAlertedIDs;
};

} // namespace nightjar
