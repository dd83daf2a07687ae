// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/LocationSource.h"
#include "platform/Scheduler.h"

#include <chrono>
#include <utility>

namespace nightjar {

/// The demo's computer stands in the attic beside the base radio and finds out where that is within two
/// seconds. Main thread.
class DemoLocation final : public LocationSource {
public:
    explicit DemoLocation(Scheduler& scheduler) : m_scheduler(scheduler) {}

    void setListener(Listener listener, const Wishes&) override { m_listener = std::move(listener); }
    [[nodiscard]] LocationAuthorization authorization() const override {
        return LocationAuthorization::authorizedAlways;
    }
    void requestWhenInUseAuthorization() override {}
    void requestLocation() override {
        m_search = m_scheduler.after(std::chrono::seconds(2), [this] {
            if (m_listener.onFixes)
                m_listener.onFixes({{.latitude = 50.88107,
                                     .longitude = 4.71502,
                                     .horizontalAccuracy = 30,
                                     .timestamp = m_scheduler.now()}});
        });
    }
    void stopUpdatingLocation() override { m_search.cancel(); }

private:
    Scheduler& m_scheduler;
    Listener m_listener;
    Timer m_search;
};

} // namespace nightjar
