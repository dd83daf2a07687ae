// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BluezDaemon.h"

#include "platform/linux/BluezNames.h"
#include "platform/linux/BusCall.h"
#include "platform/linux/BusConnector.h"

#include <QDBusPendingCall>
#include <QDBusPendingCallWatcher>

#include <utility>

namespace nightjar {
namespace {

constexpr const char* propertiesChangedSignature = "sa{sv}as";

} // namespace

BluezDaemon::BluezDaemon(BusConnector& connector, Scheduler& scheduler, const BluezSettings& settings,
                         Handlers handlers)
    : m_connector(connector), m_scheduler(scheduler), m_settings(settings), m_handlers(std::move(handlers)) {
    connect(&m_connector, &BusConnector::opened, this, &BluezDaemon::busOpened);
    connect(&m_connector, &BusConnector::lost, this, &BluezDaemon::busLost);
    if (m_connector.isConnected())
        busOpened();
    else
        m_connector.open();
}

void BluezDaemon::busOpened() {
    if (subscribe())
        askForOwner();
}

void BluezDaemon::busLost() {
    m_ownerRetry.cancel();
    setOwner(QString());
}

/// Without naming the sender: given a name, Qt asks the bus for its owner and waits for the answer.
bool BluezDaemon::subscribe() {
    auto bus = m_connector.bus();
    const QString anySender;
    const QString anyPath;
    const auto propertiesChanged = QStringLiteral("PropertiesChanged");
    return bus.connect(anySender, bluez::busPath, bluez::busService, QStringLiteral("NameOwnerChanged"),
                       {bluez::service}, QString(), this, SLOT(nameOwnerChanged(QDBusMessage))) &&
           bus.connect(anySender, bluez::rootPath, bluez::objectManager, QStringLiteral("InterfacesAdded"),
                       this, SLOT(interfacesAdded(QDBusMessage))) &&
           bus.connect(anySender, bluez::rootPath, bluez::objectManager, QStringLiteral("InterfacesRemoved"),
                       this, SLOT(interfacesRemoved(QDBusMessage))) &&
           bus.connect(anySender, anyPath, bluez::propertiesInterface, propertiesChanged,
                       {bluez::deviceInterface}, QString(), this, SLOT(deviceChanged(QDBusMessage))) &&
           bus.connect(anySender, anyPath, bluez::propertiesInterface, propertiesChanged,
                       {bluez::adapterInterface}, QString(), this, SLOT(adapterChanged(QDBusMessage)));
}

void BluezDaemon::askForOwner() {
    auto question = QDBusMessage::createMethodCall(bluez::busService, bluez::busPath, bluez::busService,
                                                   QStringLiteral("GetNameOwner"));
    question.setArguments({bluez::service});
    callService(bluez::busService, question, m_settings.answerTimeout, [this](const QDBusMessage& answer) {
        if (answer.type() == QDBusMessage::ReplyMessage)
            setOwner(answer.arguments().value(0).toString());
        else if (isSilence(answer))
            m_ownerRetry = m_scheduler.after(m_settings.pingPause, [this] { askForOwner(); });
    });
}

void BluezDaemon::nameOwnerChanged(const QDBusMessage& signal) {
    if (signal.service() == bluez::busService && signal.signature() == QLatin1String("sss"))
        setOwner(signal.arguments().at(2).toString());
}

void BluezDaemon::setOwner(const QString& owner) {
    if (owner == m_owner)
        return;
    m_ownerRetry.cancel();
    if (!m_owner.isEmpty())
        vanish();
    m_owner = owner;
    m_hangs = false;
    if (!m_owner.isEmpty())
        m_handlers.appeared();
    setWatched(m_isWatched);
}

void BluezDaemon::vanish() {
    ++m_epoch;
    m_isPinging = false;
    m_pulse.cancel();
    m_handlers.vanished();
}

bool BluezDaemon::accepts(const QDBusMessage& signal, const char* signature) {
    // Anyone can send a signal, also in the daemon's name.
    if (m_owner.isEmpty() || signal.service() != m_owner)
        return false;
    m_lastHeard = m_scheduler.steadyNow();
    if (m_hangs && !m_isPinging)
        ping();
    return !m_hangs && signal.signature() == QLatin1String(signature);
}

void BluezDaemon::interfacesAdded(const QDBusMessage& signal) {
    if (accepts(signal, "oa{sa{sv}}"))
        m_handlers.interfacesAdded(signal);
}

void BluezDaemon::interfacesRemoved(const QDBusMessage& signal) {
    if (accepts(signal, "oas"))
        m_handlers.interfacesRemoved(signal);
}

void BluezDaemon::deviceChanged(const QDBusMessage& signal) {
    if (accepts(signal, propertiesChangedSignature))
        m_handlers.deviceChanged(signal);
}

void BluezDaemon::adapterChanged(const QDBusMessage& signal) {
    if (accepts(signal, propertiesChangedSignature))
        m_handlers.adapterChanged(signal);
}

QDBusMessage BluezDaemon::message(const QString& path, const QString& interface,
                                  const QString& method) const {
    // By its unique name: what is meant for this daemon must not start or reach another one.
    return QDBusMessage::createMethodCall(m_owner, path, interface, method);
}

void BluezDaemon::call(const QString& path, const QString& interface, const QString& method,
                       const QVariantList& arguments, Answered answered) {
    if (m_owner.isEmpty() || m_hangs)
        return;
    auto question = message(path, interface, method);
    question.setArguments(arguments);
    callService(m_owner, question, m_settings.answerTimeout, std::move(answered));
}

void BluezDaemon::send(const QString& path, const QString& interface, const QString& method) {
    if (!m_owner.isEmpty() && m_connector.isConnected())
        m_connector.bus().send(message(path, interface, method));
}

void BluezDaemon::callService(const QString& destination, const QDBusMessage& message,
                              std::chrono::milliseconds timeout, Answered answered) {
    // On a dead connection an answer never comes, not even an error; that it is lost is told soon.
    if (!m_connector.isConnected())
        return;
    auto question = message;
    question.setAutoStartService(false);
    auto* watcher = new QDBusPendingCallWatcher(
        m_connector.bus().asyncCall(question, static_cast<int>(timeout.count())), this);
    connect(
        watcher, &QDBusPendingCallWatcher::finished, this,
        [this, destination, answered = std::move(answered), epoch = m_epoch](QDBusPendingCallWatcher* done) {
            done->deleteLater();
            if (epoch != m_epoch)
                return;
            if (destination == m_owner && !isSilence(done->reply()))
                m_lastHeard = m_scheduler.steadyNow();
            answered(done->reply());
        });
}

void BluezDaemon::setWatched(bool isWatched) {
    const bool begins = isWatched && (!m_isWatched || !m_pulse);
    m_isWatched = isWatched;
    if (m_owner.isEmpty() || m_hangs || m_isPinging)
        return;
    if (!isWatched) {
        m_pulse.cancel();
    } else if (begins) {
        m_lastHeard = m_scheduler.steadyNow();
        lookAtPulse();
    }
}

void BluezDaemon::lookAtPulse() {
    const auto silence =
        std::chrono::duration_cast<std::chrono::milliseconds>(m_scheduler.steadyNow() - m_lastHeard);
    if (silence >= m_settings.silenceUntilPing)
        return ping();
    m_pulse = m_scheduler.after(m_settings.silenceUntilPing - silence, [this] { lookAtPulse(); });
}

bool BluezDaemon::isResponsive() {
    constexpr std::chrono::seconds recent{1};
    if (m_owner.isEmpty() || m_hangs)
        return false;
    if (m_scheduler.steadyNow() - m_lastHeard <= recent)
        return true;
    if (!m_isPinging)
        ping();
    return false;
}

void BluezDaemon::ping() {
    m_isPinging = true;
    // The limit of the call alone would not do: it is kept by the thread that serves all buses.
    m_pulse = m_scheduler.after(m_settings.pingTimeout * 5 / 4, [this] {
        if (m_isPinging)
            pingAnswered(false);
    });
    const auto asked = m_scheduler.steadyNow();
    callService(m_owner, message(bluez::rootPath, bluez::peerInterface, QStringLiteral("Ping")),
                m_settings.pingTimeout, [this, asked](const QDBusMessage& answer) {
                    // Any answer tells of life, even a refusal, and so does any signal in the meantime.
                    pingAnswered(!isSilence(answer) || (!m_hangs && m_lastHeard > asked));
                });
}

void BluezDaemon::pingAnswered(bool isAlive) {
    m_isPinging = false;
    m_pulse.cancel();
    if (m_hangs && isAlive) {
        m_hangs = false;
        m_handlers.appeared();
    } else if (!isAlive) {
        return suspect();
    }
    setWatched(m_isWatched);
}

void BluezDaemon::suspect() {
    if (m_owner.isEmpty())
        return;
    if (!std::exchange(m_hangs, true))
        vanish();
    m_isPinging = false;
    pingLater(m_settings.pingPause);
}

void BluezDaemon::pingLater(std::chrono::milliseconds delay) {
    m_pulse = m_scheduler.after(delay, [this] { ping(); });
}

} // namespace nightjar
