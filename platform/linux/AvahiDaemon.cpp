// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/AvahiDaemon.h"

#include "platform/linux/AvahiNames.h"
#include "platform/linux/BusCall.h"
#include "platform/linux/BusConnector.h"

#include <utility>

namespace nightjar {

AvahiDaemon::AvahiDaemon(BusConnector& connector, Scheduler& scheduler, const AvahiSettings& settings,
                         Handlers handlers)
    : m_connector(connector), m_scheduler(scheduler), m_settings(settings), m_handlers(std::move(handlers)) {
    connect(&m_connector, &BusConnector::opened, this, &AvahiDaemon::busOpened);
    connect(&m_connector, &BusConnector::lost, this, &AvahiDaemon::busLost);
    connect(&m_connector, &BusConnector::failed, this, &AvahiDaemon::busFailed);
    if (m_connector.isConnected())
        busOpened();
}

bool AvahiDaemon::isRefusal(const QDBusMessage& answer) {
    return answer.errorName() == QLatin1String("org.freedesktop.DBus.Error.AccessDenied") ||
           answer.errorName() == QLatin1String("org.freedesktop.Avahi.AccessDeniedError") ||
           answer.errorName() == QLatin1String("org.freedesktop.Avahi.NotPermittedError");
}

void AvahiDaemon::setNeeded(bool isNeeded) {
    const bool begins = isNeeded && !m_isNeeded;
    m_isNeeded = isNeeded;
    if (!isNeeded) {
        m_pulse.cancel();
        m_nextStart.cancel();
        return;
    }
    if (!begins)
        return;
    if (!m_connector.isConnected())
        m_connector.openNow();
    else if (m_presence == Presence::hanging)
        ping();
    else if (!m_owner.isEmpty())
        pingAfter(m_settings.pingPeriod);
    else
        startDaemon();
}

void AvahiDaemon::busOpened() {
    m_isStarting = false;
    if (subscribe())
        askForOwner();
    else
        setPresence(Presence::absent);
}

void AvahiDaemon::busLost() {
    m_nextQuestion.cancel();
    setOwner(QString());
    m_nextStart.cancel();
}

void AvahiDaemon::busFailed() {
    m_problem = QStringLiteral("There is no message bus.");
    setPresence(Presence::absent);
}

/// Without naming the sender: given a name, Qt asks the bus for its owner and waits for the answer.
bool AvahiDaemon::subscribe() {
    auto bus = m_connector.bus();
    const auto hear = [&](const char* signal) {
        return bus.connect(QString(), QString(), avahi::serviceBrowser, QString::fromLatin1(signal), this,
                           SLOT(browserSignalled(QDBusMessage)));
    };
    return bus.connect(QString(), avahi::busPath, avahi::busService, QStringLiteral("NameOwnerChanged"),
                       {avahi::service}, QString(), this, SLOT(nameOwnerChanged(QDBusMessage))) &&
           hear("ItemNew") && hear("ItemRemove") && hear("AllForNow") && hear("Failure");
}

void AvahiDaemon::askForOwner() {
    m_nextQuestion = m_scheduler.after(m_settings.answerTimeout * 5 / 4, [this] {
        m_problem = QStringLiteral("The message bus does not answer.");
        setPresence(Presence::absent);
        askForOwner();
    });
    callService(avahi::busService, avahi::busPath, avahi::busService, QStringLiteral("GetNameOwner"),
                {avahi::service}, m_settings.answerTimeout, [this](const QDBusMessage& answer) {
                    if (isSilence(answer))
                        return;
                    m_nextQuestion.cancel();
                    if (answer.type() == QDBusMessage::ReplyMessage)
                        setOwner(answer.arguments().value(0).toString());
                    else
                        startDaemon();
                });
}

/// A daemon that is stopped for good cannot be started; one that crashed can.
void AvahiDaemon::startDaemon() {
    if (!m_owner.isEmpty() || m_isStarting || !m_connector.isConnected())
        return;
    if (!m_isNeeded)
        return setPresence(Presence::absent);
    m_isStarting = true;
    callLater(m_connector.bus(), *this,
              {.service = avahi::service,
               .path = avahi::rootPath,
               .interface = avahi::server,
               .method = QStringLiteral("GetAPIVersion"),
               .limit = m_settings.startTimeout,
               .startsService = true},
              [this](const QDBusMessage& answer) {
                  // One that came from an earlier bus does no harm.
                  if (std::exchange(m_isStarting, false) && m_owner.isEmpty() &&
                      answer.type() != QDBusMessage::InvalidMessage)
                      startAnswered(answer);
              });
}

void AvahiDaemon::startAnswered(const QDBusMessage& answer) {
    if (answer.type() == QDBusMessage::ReplyMessage)
        return setOwner(answer.service());
    m_problem = errorText(answer);
    setPresence(isRefusal(answer) ? Presence::refused : Presence::absent);
}

void AvahiDaemon::nameOwnerChanged(const QDBusMessage& signal) {
    if (signal.service() == avahi::busService && signal.signature() == QLatin1String("sss") &&
        signal.arguments().at(0) == avahi::service)
        setOwner(signal.arguments().at(2).toString());
}

void AvahiDaemon::setOwner(const QString& owner) {
    if (owner == m_owner && !owner.isEmpty())
        return;
    m_nextQuestion.cancel();
    m_problem.clear();
    if (!m_owner.isEmpty()) {
        m_owner.clear();
        setPresence(Presence::absent);
    }
    m_owner = owner;
    setPresence(owner.isEmpty() ? Presence::absent : Presence::present);
}

void AvahiDaemon::setPresence(Presence presence) {
    m_pulse.cancel();
    if (m_presence != presence) {
        ++m_epoch;
        m_presence = presence;
        m_handlers.presenceChanged();
    }
    if (m_presence == Presence::present && m_isNeeded)
        pingAfter(m_settings.pingPeriod);
    m_nextStart.cancel();
    if (m_isNeeded && m_owner.isEmpty() && m_connector.isConnected())
        m_nextStart = m_scheduler.after(m_settings.startPause, [this] { startDaemon(); });
}

void AvahiDaemon::browserSignalled(const QDBusMessage& signal) {
    // Anyone can send a signal, also in the daemon's name.
    if (m_presence == Presence::present && signal.service() == m_owner)
        m_handlers.signalled(signal);
}

void AvahiDaemon::call(const QString& path, const QString& interface, const QString& method,
                       const QVariantList& arguments, std::chrono::milliseconds limit, Answered answered) {
    if (m_presence == Presence::present)
        callService(m_owner, path, interface, method, arguments, limit, std::move(answered));
}

void AvahiDaemon::send(const QString& path, const QString& interface, const QString& method) {
    if (m_owner.isEmpty() || !m_connector.isConnected())
        return;
    auto message = QDBusMessage::createMethodCall(m_owner, path, interface, method);
    message.setAutoStartService(false);
    m_connector.bus().send(message);
}

/// On a dead connection the answer is dropped: that it is lost is told soon.
void AvahiDaemon::callService(const QString& destination, const QString& path, const QString& interface,
                              const QString& method, const QVariantList& arguments,
                              std::chrono::milliseconds limit, Answered answered) {
    callLater(m_connector.bus(), *this,
              {.service = destination,
               .path = path,
               .interface = interface,
               .method = method,
               .arguments = arguments,
               .limit = limit},
              [this, epoch = m_epoch, answered = std::move(answered)](const QDBusMessage& answer) {
                  if (epoch == m_epoch && answer.type() != QDBusMessage::InvalidMessage)
                      answered(answer);
              });
}

void AvahiDaemon::pingAfter(std::chrono::milliseconds delay) {
    m_pulse = m_scheduler.after(delay, [this] { ping(); });
}

void AvahiDaemon::ping() {
    const auto number = ++m_pings;
    const auto end = [this, number](bool isAlive) {
        if (number == m_pings)
            pingEnded(isAlive);
    };
    // The limit of the call alone would not do: it is kept by the thread that serves all buses.
    m_pulse = m_scheduler.after(m_settings.pingTimeout * 5 / 4, [end] { end(false); });
    // Any answer tells of life, even a refusal.
    callService(m_owner, avahi::rootPath, avahi::server, QStringLiteral("GetAPIVersion"), {},
                m_settings.pingTimeout, [end](const QDBusMessage& answer) { end(!isSilence(answer)); });
}

void AvahiDaemon::pingEnded(bool isAlive) {
    ++m_pings;
    if (m_owner.isEmpty())
        return;
    if (!isAlive)
        return suspect();
    setPresence(Presence::present);
    if (m_isNeeded)
        pingAfter(m_settings.pingPeriod);
}

void AvahiDaemon::suspect() {
    if (m_owner.isEmpty())
        return;
    setPresence(Presence::hanging);
    pingAfter(m_settings.pingPause);
}

} // namespace nightjar
