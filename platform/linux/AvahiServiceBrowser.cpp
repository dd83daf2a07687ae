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

AvahiServiceBrowser::AvahiServiceBrowser(BusConnector& connector, Scheduler& scheduler, NetworkLinks& links,
                                         const AvahiSettings& settings)
    : m_scheduler(scheduler),
      m_settings(settings),
      m_prober(
          scheduler, m_settings.prober,
          [this](const ProbedService& service, auto answered) { resolve(service, std::move(answered)); },
          proberHandlers()),
      m_sets(scheduler, m_settings, setHandlers()),
      m_sight(links, scheduler, m_settings, sightHandlers()),
      m_daemon(connector, scheduler, m_settings, daemonHandlers()),
      m_browsers(m_daemon, scheduler, m_settings, browserHandlers()) {}

ServiceProber::Handlers AvahiServiceBrowser::proberHandlers() {
    return {.changed = [this](const ProbedService& service) { m_sets.touch(service.type); },
            .settled = [this] { m_sets.touchAllNow(); },
            .doubtChanged = [this] { publishSoon(); }};
}

LinkSight::Handlers AvahiServiceBrowser::sightHandlers() {
    return {.usableChanged =
                [this](int index, bool isUsable) {
                    m_prober.setUsable(index, isUsable);
                    publishSoon();
                },
            .released = [this] { m_sets.tellNow(); }};
}

ServiceSets::Handlers AvahiServiceBrowser::setHandlers() {
    return {
        .isThere =
            [this](const std::string& type, const std::string& name, int index) {
                return m_prober.isThere({.name = name, .type = type, .interfaceIndex = index}).value_or(true);
            },
        .interfaceName = [this](int index) -> std::optional<InterfaceName> {
            const auto found = m_interfaceNames.find(index);
            return found == m_interfaceNames.end() ? std::nullopt : found->second;
        },
        .isUnsettled = [this] { return m_prober.isUnsettled(); },
        .mayTell = [this] { return mayTell(); },
        .keeps = [this](const std::string& name) { return m_sight.keeps(name); },
        .judges = [this](const std::string& name) { return m_sight.judges(name); },
        .tell =
            [this](const std::string& type, const std::vector<ServiceInstance>& instances) {
                // The listener may be replaced by what it does.
                const auto listener = m_listener;
                if (listener->onResults)
                    listener->onResults(type, instances);
            },
        .outOfSight =
            [this](const std::vector<ServiceInstance>& instances) {
                const auto listener = m_listener;
                if (listener->onOutOfSight)
                    listener->onOutOfSight(instances);
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
    m_sight.begin();
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
    m_hasToldTrouble = false;
}

void AvahiServiceBrowser::setImportant(std::function<bool(const ServiceInstance&)> isImportant) {
    m_prober.setImportant([isImportant = std::move(isImportant)](const ProbedService& service) {
        return isImportant && isImportant(ServiceSets::instance(service.type, service.name));
    });
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
    using Source = ServiceProber::Source;
    const bool isHeld = m_sets.isHeld(type, name);
    if (!m_sets.add(type, name, place))
        return;
    const ProbedService service{.name = name, .type = type, .interfaceIndex = place.interfaceIndex};
    m_prober.add(service, !(flags & avahi::resultCached) ? Source::heard
                          : isHeld                       ? Source::knownBefore
                                                         : Source::remembered);
    askForInterfaceName(place.interfaceIndex);
}

void AvahiServiceBrowser::removed(const std::string& type, const std::string& name,
                                  ServiceSets::Place place) {
    if (m_sets.remove(type, name, place))
        m_prober.remove({.name = name, .type = type, .interfaceIndex = place.interfaceIndex});
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

void AvahiServiceBrowser::resolve(const ProbedService& service,
                                  std::function<void(ServiceProber::Answer)> answered) {
    m_daemon.call(avahi::rootPath, avahi::server, QStringLiteral("ResolveService"),
                  {service.interfaceIndex, avahi::unspecified, QString::fromStdString(service.name),
                   QString::fromStdString(service.type), QStringLiteral("local"), avahi::unspecified,
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
    const auto state = trueState();
    if (m_told != state) {
        m_told = state;
        m_hasToldTrouble = m_hasToldTrouble || state.kind == Kind::waiting || state.kind == Kind::failed;
        const auto listener = m_listener;
        if (listener->onState)
            listener->onState(state);
    }
    if (m_told != state || state.kind != Kind::ready)
        return;
    // Who was told of trouble has to hear that what is known holds again.
    if (std::exchange(m_hasToldTrouble, false))
        m_sets.tellAgain();
    else
        m_sets.resume();
}

/// A watch that hears nobody says so, instead of telling sets that nobody has looked at.
bool AvahiServiceBrowser::mayTell() {
    m_sight.lookNow();
    return m_daemon.presence() == Presence::present && m_sight.canHear() && !m_prober.isInDoubt();
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
    if (!m_sight.canHear())
        return waiting("This computer is not connected to a network.");
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
