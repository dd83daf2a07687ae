// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/network/LocalNetworkDevice.h"
#include "platform/Scheduler.h"

#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace nightjar {

/// How long armed devices have been gone, and which have been alerted. Main thread. Only a device that was
/// online in this scan is armed. Absence is measured in time that no setting of the clock moves and that
/// stands still while the computer sleeps: nobody is missed for the hours of a night in which nobody looked.
class DepartureMonitor {
public:
    /// Whether the departure of the device is watched for.
    [[nodiscard]] static bool watches(const LocalNetworkDevice& device) {
        return device.isTracked && device.lossAlertEnabled;
    }

    /// A device that is online is watched from now on.
    void arm(const std::string& id);
    /// A device that is offline may well be there: it is watched again once it is online.
    void disarm(const std::string& id);
    /// A scan begins or ends; who has been alerted stays.
    void disarmAll();
    /// A device that is watched is online. Whether its return is to be told.
    [[nodiscard]] bool noteOnline(const std::string& id);
    /// One that is not watched is. Should it be watched when it leaves again, its grace begins then.
    void noteUnwatchedOnline(const std::string& id) { m_offlineSince.erase(id); }
    /// A device that is watched is offline.
    void noteOffline(const std::string& id, SteadyTime now);
    void noteAlerted(const std::string& id) { m_lossAlertedIDs.insert(id); }

    /// Its alert has been turned off.
    void endAlert(const std::string& id);
    /// The grace begins anew, and it may be alerted again.
    void restartGrace(const LocalNetworkDevice& device, SteadyTime now);
    void forget(const std::string& id);

    /// Whether the device is to be alerted.
    [[nodiscard]] bool isDue(const LocalNetworkDevice& device, SteadyTime now) const;
    /// The ids of those of `devices` that are, in their order.
    [[nodiscard]] std::vector<std::string> due(const std::vector<LocalNetworkDevice>& devices,
                                               SteadyTime now) const;
    /// For the user.
    [[nodiscard]] std::string_view status(const LocalNetworkDevice& device) const;

private:
    std::unordered_set<std::string> m_heardThisSession;
    std::unordered_map<std::string, SteadyTime> m_offlineSince;
    std::unordered_set<std::string> m_lossAlertedIDs;
};

} // namespace nightjar
