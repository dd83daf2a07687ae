// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/AvahiServiceBrowser.h"

#include "platform/linux/AvahiNames.h"

#include <algorithm>
#include <utility>

namespace nightjar {
namespace {

using Kind = ServiceBrowserState::Kind;
using Phase = AvahiTypeBrowsers::Phase;
using Presence = AvahiDaemon::Presence;

ServiceBrowserState waiting(std::string description) {
    return {.kind = Kind::waiting, .description = std::move(description)};
}

ServiceBrowserState denied(std::string description) {
    return {.kind = Kind::waiting,
            .code = ServiceBrowserState::policyDenied,
            .description = std::move(description)};
}

ServiceProber::Answer read(const QDBusMessage& answer) {
    if (answer.errorName() == avahi::timeoutError)
        return ServiceProber::Answer::timeout;
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != QLatin1String("iissssisqaayu"))
        return ServiceProber::Answer::error;
    return answer.arguments().constLast().toUInt() & avahi::resultCached
               ? ServiceProber::Answer::thereFromMemory
               : ServiceProber::Answer::there;
}

} // namespace

AvahiServiceBrowser::AvahiServiceBrowser(BusConnector& connector, Scheduler& scheduler,
                                         const AvahiSettings& settings)
    : m_scheduler(scheduler),
      m_settings(settings),
      m_prober(
          scheduler, m_settings.prober,
          [this](const ServiceInstance& instance, auto answered) { resolve(instance, std::move(answered)); },
          proberHandlers()),
      m_sets(scheduler, m_settings, setHandlers()),
      m_daemon(connector, scheduler, m_settings, daemonHandlers()),
      m_browsers(m_daemon, scheduler, m_settings, browserHandlers()) {}

ServiceProber::Handlers AvahiServiceBrowser::proberHandlers() {
    return {.changed = [this](const ServiceInstance& instance) { m_sets.touch(instance.type); },
            .settled = [this] { m_sets.touchAllNow(); },
            .doubtChanged = [this] { publishSoon(); }};
}

ServiceSets::Handlers AvahiServiceBrowser::setHandlers() {
    return {.isThere = [this](const ServiceInstance& instance) { return m_prober.isThere(instance); },
            .interfaceName = [this](int index) -> std::optional<InterfaceName> {
                const auto found = m_interfaceNames.find(index);
                return found == m_interfaceNames.end() ? std::nullopt : found->second;
            },
            .isUnsettled = [this] { return m_prober.isUnsettled(); },
            .tell =
                [this](const std::string& type, const std::vector<ServiceInstance>& instances) {
                    // The listener may be replaced by what it does.
                    const auto listener = m_listener;
                    if (listener->onResults)
                        listener->onResults(type, instances);
                }};
}

AvahiDaemon::Handlers AvahiServiceBrowser::daemonHandlers() {
    return {.presenceChanged = [this] { presenceChanged(); },
            .signalled = [this](const QDBusMessage& signal) { m_browsers.signalled(signal); }};
}

AvahiTypeBrowsers::Handlers AvahiServiceBrowser::browserHandlers() {
    return {.added = [this](const auto& type, const auto& name, ServiceSets::Place place,
                            unsigned flags) { added(type, name, place, flags); },
            .removed = [this](const auto& type, const auto& name,
                              ServiceSets::Place place) { removed(type, name, place); },
            .completed = [this](const std::string& type) { m_sets.complete(type); },
            .failed =
                [this](const std::string& type) {
                    m_sets.restart(type);
                    m_prober.removeType(type);
                },
            .phaseChanged = [this] { publishSoon(); }};
}

void AvahiServiceBrowser::setListener(Listener listener) {
    m_listener = std::make_shared<const Listener>(std::move(listener));
}

void AvahiServiceBrowser::browse(const std::string& type) {
    if (!m_patience && !m_isPatienceOver)
        m_patience = m_scheduler.after(m_settings.answerTimeout, [this] {
            m_isPatienceOver = true;
            publish();
        });
    m_browsers.add(type);
    m_daemon.setNeeded(true);
    publishSoon();
}

void AvahiServiceBrowser::cancel() {
    m_daemon.setNeeded(false);
    m_browsers.clear();
    m_sets.clear();
    m_prober.clear();
    m_patience.cancel();
    m_isPatienceOver = false;
    m_publishing.cancel();
    m_told.reset();
}

void AvahiServiceBrowser::setImportant(std::function<bool(const ServiceInstance&)> isImportant) {
    m_prober.setImportant(std::move(isImportant));
}

void AvahiServiceBrowser::presenceChanged() {
    m_browsers.suspend();
    m_sets.restartAll();
    m_prober.clear();
    m_interfaceNames.clear();
    if (m_daemon.presence() == Presence::present)
        m_browsers.resume();
    publishSoon();
}

void AvahiServiceBrowser::added(const std::string& type, const std::string& name, ServiceSets::Place place,
                                unsigned flags) {
    if (flags & avahi::resultLocal)
        return;
    const auto instance = ServiceSets::instance(type, name);
    using Source = ServiceProber::Source;
    const bool isHeld = m_sets.isHeld(type, name);
    if (!m_sets.add(type, name, place))
        return;
    m_prober.add(instance, !(flags & avahi::resultCached) ? Source::heard
                           : isHeld                       ? Source::knownBefore
                                                          : Source::remembered);
    askForInterfaceName(place.interfaceIndex);
}

void AvahiServiceBrowser::removed(const std::string& type, const std::string& name,
                                  ServiceSets::Place place) {
    if (m_sets.remove(type, name, place))
        m_prober.remove(ServiceSets::instance(type, name));
}

void AvahiServiceBrowser::askForInterfaceName(int index) {
    if (!m_interfaceNames.try_emplace(index).second)
        return;
    m_daemon.call(avahi::rootPath, avahi::server, QStringLiteral("GetNetworkInterfaceNameByIndex"), {index},
                  m_settings.answerTimeout, [this, index](const QDBusMessage& answer) {
                      const auto name = answer.type() == QDBusMessage::ReplyMessage
                                            ? answer.arguments().value(0).toString().toStdString()
                                            : std::string();
                      m_interfaceNames[index] = name.empty() ? InterfaceName() : InterfaceName(name);
                      m_sets.touchAllNow();
                  });
}

void AvahiServiceBrowser::resolve(const ServiceInstance& instance,
                                  std::function<void(ServiceProber::Answer)> answered) {
    m_daemon.call(avahi::rootPath, avahi::server, QStringLiteral("ResolveService"),
                  {avahi::unspecified, avahi::unspecified, QString::fromStdString(instance.name),
                   QString::fromStdString(instance.type), QStringLiteral("local"), avahi::unspecified,
                   avahi::lookupNoTextNoAddress},
                  m_settings.resolveTimeout,
                  [answered = std::move(answered)](const QDBusMessage& answer) { answered(read(answer)); });
}

/// Never inside the call of the one who listens, and once for changes that come together.
void AvahiServiceBrowser::publishSoon() {
    if (!m_publishing)
        m_publishing = m_scheduler.after({}, [this] { publish(); });
}

void AvahiServiceBrowser::publish() {
    m_publishing.cancel();
    if (m_browsers.all().empty())
        return;
    auto state = trueState();
    if (m_told == state)
        return;
    m_told = state;
    const auto listener = m_listener;
    if (listener->onState)
        listener->onState(state);
}

ServiceBrowserState AvahiServiceBrowser::trueState() const {
    switch (m_daemon.presence()) {
    case Presence::unknown:
        return m_isPatienceOver ? waiting("The message bus does not answer.") : ServiceBrowserState{};
    case Presence::absent:
        return waiting(m_daemon.problem().isEmpty() ? "The service discovery daemon is not running."
                                                    : m_daemon.problem().toStdString());
    case Presence::refused:
        return denied(m_daemon.problem().toStdString());
    case Presence::hanging:
        return waiting("The service discovery daemon does not answer.");
    case Presence::present:
        break;
    }
    const auto& browsers = m_browsers.all();
    const auto firstIn = [&](Phase phase) {
        return std::ranges::find(browsers, phase, [](const auto& item) { return item.second.phase; });
    };
    if (const auto found = firstIn(Phase::refused); found != browsers.end())
        return denied(found->second.problem.toStdString());
    if (const auto found = firstIn(Phase::failed); found != browsers.end())
        return {.kind = Kind::failed, .description = found->second.problem.toStdString()};
    if (firstIn(Phase::preparing) != browsers.end())
        return {};
    if (m_prober.isInDoubt())
        return waiting("No device on the network answers.");
    return {.kind = Kind::ready};
}

} // namespace nightjar
