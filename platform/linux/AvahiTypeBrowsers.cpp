// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/AvahiTypeBrowsers.h"

#include "platform/linux/AvahiDaemon.h"
#include "platform/linux/AvahiNames.h"
#include "platform/linux/BusCall.h"

#include <QDBusObjectPath>

#include <utility>

namespace nightjar {
namespace {

/// A label has at most 63 bytes (RFC 6763, 4.1.1); escaping and other daemons get some room.
constexpr std::size_t longestName = 1'000;

bool isLocalDomain(QString domain) {
    while (domain.endsWith(u'.'))
        domain.chop(1);
    return domain.compare(QLatin1String("local"), Qt::CaseInsensitive) == 0;
}

} // namespace

AvahiTypeBrowsers::AvahiTypeBrowsers(AvahiDaemon& daemon, Scheduler& scheduler, const AvahiSettings& settings,
                                     Handlers handlers)
    : m_daemon(daemon), m_scheduler(scheduler), m_settings(settings), m_handlers(std::move(handlers)) {}

void AvahiTypeBrowsers::add(const std::string& type) {
    if (m_browsers.try_emplace(type).second)
        prepare(type);
}

void AvahiTypeBrowsers::clear() {
    for (const auto& [type, browser] : m_browsers)
        if (!browser.path.isEmpty())
            free(browser.path);
    m_browsers.clear();
    m_types.clear();
}

void AvahiTypeBrowsers::resume() {
    // A daemon that only hung has kept them; another one does not know them.
    for (const auto& path : std::exchange(m_orphans, {}))
        free(path);
    for (const auto& [type, browser] : m_browsers)
        prepare(type);
}

void AvahiTypeBrowsers::suspend() {
    for (auto& [type, browser] : m_browsers) {
        if (!browser.path.isEmpty())
            m_orphans.push_back(browser.path);
        browser = Browser{};
    }
    m_types.clear();
}

void AvahiTypeBrowsers::prepare(const std::string& type) {
    Browser& browser = m_browsers[type];
    browser = Browser{};
    const auto number = browser.number = ++m_lastNumber;
    m_daemon.call(
        avahi::rootPath, avahi::server2, QStringLiteral("ServiceBrowserPrepare"),
        {avahi::unspecified, avahi::unspecified, QString::fromStdString(type), QStringLiteral("local"), 0u},
        m_settings.answerTimeout, [this, type, number](const QDBusMessage& answer) {
            const auto found = m_browsers.find(type);
            if (found != m_browsers.end() && found->second.number == number)
                prepared(type, answer);
            else if (answer.signature() == QLatin1String("o"))
                free(answer.arguments().at(0).value<QDBusObjectPath>().path());
        });
}

void AvahiTypeBrowsers::prepared(const std::string& type, const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage)
        return refuse(type, answer);
    if (answer.signature() != QLatin1String("o"))
        return fail(type, Phase::failed, QStringLiteral("The answer of the daemon cannot be understood."));
    Browser& browser = m_browsers[type];
    browser.path = answer.arguments().at(0).value<QDBusObjectPath>().path();
    m_types[browser.path] = type;
    m_daemon.call(browser.path, avahi::serviceBrowser, QStringLiteral("Start"), {}, m_settings.answerTimeout,
                  [this, type, number = browser.number](const QDBusMessage& started) {
                      const auto found = m_browsers.find(type);
                      if (found != m_browsers.end() && found->second.number == number)
                          this->started(type, started);
                  });
}

void AvahiTypeBrowsers::started(const std::string& type, const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage)
        return refuse(type, answer);
    Browser& browser = m_browsers[type];
    if (browser.phase != Phase::preparing)
        return;
    browser.phase = Phase::running;
    browser.timer = m_scheduler.after(m_settings.completeAfter, [this, type] { m_handlers.completed(type); });
    m_handlers.phaseChanged();
}

void AvahiTypeBrowsers::refuse(const std::string& type, const QDBusMessage& answer) {
    if (isSilence(answer))
        return m_daemon.suspect();
    // It has just gone; that is told by itself.
    if (isNobodyThere(answer))
        return;
    fail(type, AvahiDaemon::isRefusal(answer) ? Phase::refused : Phase::failed, errorText(answer));
}

void AvahiTypeBrowsers::fail(const std::string& type, Phase phase, const QString& problem) {
    Browser& browser = m_browsers[type];
    if (!browser.path.isEmpty()) {
        m_types.erase(browser.path);
        free(browser.path);
    }
    browser = Browser{.phase = phase, .problem = problem};
    browser.timer = m_scheduler.after(m_settings.refusedPause, [this, type] { prepare(type); });
    m_handlers.failed(type);
    m_handlers.phaseChanged();
}

void AvahiTypeBrowsers::signalled(const QDBusMessage& signal) {
    const auto found = m_types.find(signal.path());
    if (found == m_types.end())
        return;
    const std::string type = found->second;
    if (signal.member() == QLatin1String("AllForNow"))
        m_handlers.completed(type);
    else if (signal.member() == QLatin1String("Failure"))
        fail(type, Phase::failed, signal.arguments().value(0).toString().left(300));
    else if (signal.signature() == QLatin1String("iisssu"))
        itemSignalled(type, signal);
}

void AvahiTypeBrowsers::itemSignalled(const std::string& type, const QDBusMessage& signal) {
    const auto arguments = signal.arguments();
    const auto name = arguments.at(2).toString().toStdString();
    // What is announced can be of another type than was asked for, or be written in other letters.
    const bool isOfType =
        arguments.at(3).toString().compare(QString::fromStdString(type), Qt::CaseInsensitive) == 0;
    if (!isOfType || !isLocalDomain(arguments.at(4).toString()) || name.empty() || name.size() > longestName)
        return;
    const ServiceSets::Place place{.interfaceIndex = arguments.at(0).toInt(),
                                   .protocol = arguments.at(1).toInt()};
    if (signal.member() == QLatin1String("ItemNew"))
        m_handlers.added(type, name, place, arguments.at(5).toUInt());
    else if (signal.member() == QLatin1String("ItemRemove"))
        m_handlers.removed(type, name, place);
}

void AvahiTypeBrowsers::free(const QString& path) {
    m_daemon.send(path, avahi::serviceBrowser, QStringLiteral("Free"));
}

} // namespace nightjar
