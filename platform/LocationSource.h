// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Date.h"

#include <functional>
#include <string>
#include <vector>

namespace nightjar {

enum class LocationAuthorization { notDetermined, denied, authorizedAlways };

struct LocationFix {
    double latitude = 0;           ///< degrees
    double longitude = 0;          ///< degrees
    double horizontalAccuracy = 0; ///< metres; negative: the fix is not valid
    Date timestamp{};              ///< of the fix

    bool operator==(const LocationFix&) const = default;
};

struct LocationError {
    bool isTemporary = false;  ///< the location is not known at the moment
    std::string description{}; ///< for the user
};

/// Where the computer is. Main thread; no call waits, and none calls the listener before it returns.
class LocationSource {
public:
    struct Listener {
        std::function<void()> onAuthorizationChanged{};
        /// Oldest first.
        std::function<void(const std::vector<LocationFix>&)> onFixes{};
        std::function<void(const LocationError&)> onError{};
    };
    struct Wishes {
        double accuracy = 100;      ///< metres
        double distanceFilter = 50; ///< metres to move before there is a new fix
    };

    virtual ~LocationSource() = default;
    /// Replaces the listener; an empty one is told nothing.
    virtual void setListener(Listener listener, const Wishes& wishes) = 0;
    [[nodiscard]] virtual LocationAuthorization authorization() const = 0;
    /// Asks the user for access while the program is in use; nothing once that is settled.
    virtual void requestWhenInUseAuthorization() = 0;
    /// Asks for one fix: later one `onFixes` or one `onError`.
    virtual void requestLocation() = 0;
    /// A fix that was asked for is no longer wanted.
    virtual void stopUpdatingLocation() = 0;
};

} // namespace nightjar
