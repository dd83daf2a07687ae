// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/ServiceBrowser.h"

#include <map>
#include <set>

namespace nightjar {

/// A network in a world that the test moves. Each change is told at once, as the complete set of its type,
/// while the type is browsed. One thread.
class FakeServiceBrowser final : public ServiceBrowser {
public:
    void setListener(Listener listener) override { m_listener = std::move(listener); }
    void browse(const std::string& type) override;
    void cancel() override { m_browsed.clear(); }
    void setImportant(std::function<bool(const ServiceInstance&)> isImportant) override {
        m_isImportant = std::move(isImportant);
    }

    void announce(const ServiceInstance& instance);
    void vanish(const ServiceInstance& instance);
    /// It goes because an interface of this computer does.
    void loseSight(const ServiceInstance& instance);
    /// Replaces all instances of a type at once.
    void setInstances(const std::string& type, std::set<ServiceInstance> instances);
    void tell(const ServiceBrowserState& state);
    /// Tells the current set of every type that is browsed, as a system does soon after `browse`.
    void tellAll();

    /// `act` is called for each type that is browsed from now on; it may arm a timer to tell of it.
    void onBrowse(std::function<void()> act) { m_onBrowse = std::move(act); }

    [[nodiscard]] const std::set<std::string>& browsed() const { return m_browsed; }
    [[nodiscard]] bool isImportant(const ServiceInstance& instance) const {
        return m_isImportant && m_isImportant(instance);
    }

private:
    void tellResults(const std::string& type);

    Listener m_listener;
    std::function<bool(const ServiceInstance&)> m_isImportant;
    std::function<void()> m_onBrowse;
    std::set<std::string> m_browsed;
    std::map<std::string, std::set<ServiceInstance>> m_instances; ///< by type
};

} // namespace nightjar
