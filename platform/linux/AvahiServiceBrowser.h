// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/ServiceBrowser.h"
#include "platform/linux/AvahiDaemon.h"
#include "platform/linux/AvahiSettings.h"
#include "platform/linux/AvahiTypeBrowsers.h"
#include "platform/linux/LinkSight.h"
#include "platform/linux/ServiceProber.h"
#include "platform/linux/ServiceSets.h"

#include <map>
#include <memory>
#include <optional>
#include <string>

namespace nightjar {

class BusConnector;

/// The local network as the daemon of Avahi sees it, without what is on this computer and without the dead.
/// Main thread.
///
/// A daemon that goes or hangs makes the state `waiting` and no device leave: the sets stay as they were told
/// until the daemon is back and has had time to hear of everybody. When nobody answers any more the state is
/// `waiting` too while it is doubtful whether that is our own link; see ServiceProber. Without any interface
/// of our own it is `waiting` as well; see LinkSight. While it is, and until each set has been told again, no
/// set changes.
class AvahiServiceBrowser final : public ServiceBrowser {
public:
    /// The bus is for this alone, since the daemon keeps a limited number of objects for each of its clients;
    /// it outlives this, and is opened at the first use. So are the links.
    AvahiServiceBrowser(BusConnector& connector, Scheduler& scheduler, NetworkLinks& links,
                        const AvahiSettings& settings = {});
    AvahiServiceBrowser(const AvahiServiceBrowser&) = delete;
    AvahiServiceBrowser& operator=(const AvahiServiceBrowser&) = delete;

    void setListener(Listener listener) override;
    void browse(const std::string& type) override;
    void cancel() override;
    void setImportant(std::function<bool(const ServiceInstance&)> isImportant) override;

private:
    using InterfaceName = std::optional<std::string>;

    [[nodiscard]] AvahiDaemon::Handlers daemonHandlers();
    [[nodiscard]] AvahiTypeBrowsers::Handlers browserHandlers();
    [[nodiscard]] ServiceSets::Handlers setHandlers();
    [[nodiscard]] ServiceProber::Handlers proberHandlers();
    [[nodiscard]] LinkSight::Handlers sightHandlers();
    void presenceChanged();
    void added(const std::string& type, const std::string& name, ServiceSets::Place place, unsigned flags);
    void removed(const std::string& type, const std::string& name, ServiceSets::Place place);
    void askForInterfaceName(int index);
    void resolve(const ProbedService& service, std::function<void(ServiceProber::Answer)> answered);
    void publishSoon();
    void publish();
    [[nodiscard]] ServiceBrowserState trueState() const;
    [[nodiscard]] bool mayTell();

    Scheduler& m_scheduler;
    const AvahiSettings m_settings;
    std::shared_ptr<const Listener> m_listener = std::make_shared<const Listener>();
    std::optional<ServiceBrowserState> m_told;
    bool m_hasToldTrouble = false;                                ///< since the sets were last told
    std::map<int, std::optional<InterfaceName>> m_interfaceNames; ///< by index; absent while asked for
    bool m_isPatienceOver = false;                                ///< with a bus that does not even open
    Timer m_patience;
    Timer m_publishing;
    ServiceProber m_prober;
    ServiceSets m_sets;
    LinkSight m_sight;
    // Last: they call the others.
    AvahiDaemon m_daemon;
    AvahiTypeBrowsers m_browsers;
};

} // namespace nightjar
