// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BluezDiscovery.h"

#include "platform/linux/BluezDaemon.h"
#include "platform/linux/BluezNames.h"

#include <algorithm>
#include <utility>

namespace nightjar {
namespace {

const auto startDiscovery = QStringLiteral("StartDiscovery");
const auto stopDiscovery = QStringLiteral("StopDiscovery");
const auto setDiscoveryFilter = QStringLiteral("SetDiscoveryFilter");

bool isError(const QDBusMessage& answer) {
    return answer.type() != QDBusMessage::ReplyMessage;
}

} // namespace

BluezDiscovery::BluezDiscovery(BluezDaemon& daemon, Scheduler& scheduler, const BluezSettings& settings,
                               std::function<void()> troubleChanged)
    : m_daemon(daemon),
      m_scheduler(scheduler),
      m_settings(settings),
      m_troubleChanged(std::move(troubleChanged)) {}

BluezDiscovery::~BluezDiscovery() {
    if (m_session == Session::starting || m_session == Session::running)
        m_daemon.send(m_adapter, bluez::adapterInterface, stopDiscovery);
}

void BluezDiscovery::want() {
    const bool wasWanted = std::exchange(m_wish, Wish::scan) != Wish::none;
    if (m_session == Session::running)
        return refresh();
    if (!wasWanted && m_trouble == Trouble::none) {
        m_retry.cancel();
        m_failures = 0;
    }
    pursue();
}

void BluezDiscovery::unwant() {
    m_wish = Wish::none;
    m_blindness.cancel();
    pursue();
}

void BluezDiscovery::probe() {
    if (m_wish == Wish::scan)
        m_wish = Wish::probe;
}

void BluezDiscovery::endProbe() {
    if (m_wish == Wish::probe && m_trouble == Trouble::none)
        unwant();
}

void BluezDiscovery::setAdapter(const QString& path) {
    ++m_epoch;
    m_adapter = path;
    m_session = Session::none;
    m_failures = 0;
    m_retry.cancel();
    m_stall.cancel();
    m_blindness.cancel();
    m_trouble = Trouble::none;
    pursue();
}

/// True says nothing, since other programs look for devices too; false says that our session has ended.
void BluezDiscovery::reportedEnded() {
    if (m_session != Session::running)
        return;
    ended();
    tryAfter(m_settings.retryDelays.front());
}

void BluezDiscovery::pursue() {
    if (m_adapter.isEmpty() || m_retry)
        return;
    if (m_wish != Wish::none && m_session == Session::none)
        start();
    else if (m_wish == Wish::none && m_session == Session::running)
        stop();
}

void BluezDiscovery::start() {
    m_session = Session::starting;
    watchForBlindness();
    call(setDiscoveryFilter, {filter()}, &BluezDiscovery::filterAnswered);
}

void BluezDiscovery::filterAnswered(const QDBusMessage& answer) {
    if (isError(answer))
        return failed(answer.errorName());
    if (m_wish == Wish::none)
        ended();
    else
        call(startDiscovery, {}, &BluezDiscovery::startAnswered);
}

void BluezDiscovery::startAnswered(const QDBusMessage& answer) {
    if (!isError(answer))
        return begun();
    // "InProgress" can mean a session of ours that we do not know of, or a radio that still scans for a
    // daemon that died; when there was no answer there may be a session too. None of them can be relied upon.
    if (!bluez::isRefusal(answer.errorName()))
        m_daemon.send(m_adapter, bluez::adapterInterface, stopDiscovery);
    failed(answer.errorName());
}

void BluezDiscovery::begun() {
    m_session = Session::running;
    m_failures = 0;
    m_isRestartNext = false;
    m_blindness.cancel();
    m_lastAdvertisement = m_scheduler.steadyNow();
    lookForStall();
    setTrouble(Trouble::none);
    pursue();
}

void BluezDiscovery::failed(const QString& error) {
    ended();
    if (m_wish == Wish::none)
        return;
    const bool isDenied = bluez::isRefusal(error);
    const auto& delays = m_settings.retryDelays;
    tryAfter(isDenied ? m_settings.deniedPause : delays[std::min(m_failures, delays.size() - 1)]);
    ++m_failures;
    if (isDenied)
        setTrouble(Trouble::denied);
    else if (m_failures >= m_settings.attemptsUntilBlind)
        setTrouble(Trouble::blind);
}

void BluezDiscovery::ended() {
    m_session = Session::none;
    m_stall.cancel();
    if (m_wish != Wish::none)
        watchForBlindness();
    else if (!m_retry)
        setTrouble(Trouble::none);
}

void BluezDiscovery::tryAfter(std::chrono::milliseconds delay) {
    m_retry = m_scheduler.after(delay, [this] {
        m_retry.cancel();
        if (m_wish == Wish::none)
            setTrouble(Trouble::none);
        pursue();
    });
}

void BluezDiscovery::stop() {
    m_session = Session::stopping;
    m_stall.cancel();
    call(stopDiscovery, {}, &BluezDiscovery::stopAnswered);
}

/// Whatever the answer is, the session can no longer be relied upon.
void BluezDiscovery::stopAnswered(const QDBusMessage&) {
    m_session = Session::none;
    pursue();
}

/// A filter that differs has the daemon begin the radio's scan afresh, which forgets what it held back as
/// repetitions; the session stays.
void BluezDiscovery::refresh() {
    m_isOtherFilter = !m_isOtherFilter;
    call(setDiscoveryFilter, {filter()}, &BluezDiscovery::refreshAnswered);
}

void BluezDiscovery::refreshAnswered(const QDBusMessage& answer) {
    if (!isError(answer) || m_session != Session::running)
        return;
    m_daemon.send(m_adapter, bluez::adapterInterface, stopDiscovery);
    failed(answer.errorName());
}

void BluezDiscovery::lookForStall() {
    const auto now = m_scheduler.steadyNow();
    auto silence = std::chrono::duration_cast<std::chrono::milliseconds>(now - m_lastAdvertisement);
    if (silence < m_settings.stallLimit) {
        m_isRestartNext = false;
    } else if (std::exchange(m_isRestartNext, true)) {
        return stop();
    } else {
        refresh();
        m_lastAdvertisement = now;
        silence = {};
    }
    m_stall = m_scheduler.after(m_settings.stallLimit - silence, [this] { lookForStall(); });
}

/// However few attempts it takes: a radio that has not looked for a while sees nothing.
void BluezDiscovery::watchForBlindness() {
    if (m_blindness || m_wish == Wish::none)
        return;
    m_blindness = m_scheduler.after(m_settings.blindAfter, [this] {
        m_blindness.cancel();
        if (m_wish != Wish::none && m_trouble == Trouble::none)
            setTrouble(Trouble::blind);
    });
}

void BluezDiscovery::setTrouble(Trouble trouble) {
    if (std::exchange(m_trouble, trouble) != trouble)
        m_troubleChanged();
}

void BluezDiscovery::call(const QString& method, const QVariantList& arguments, Next next) {
    m_daemon.call(m_adapter, bluez::adapterInterface, method, arguments,
                  [this, next, epoch = m_epoch](const QDBusMessage& answer) {
                      if (epoch == m_epoch)
                          (this->*next)(answer);
                  });
}

/// Only a limit on the strength makes every version of the daemon report equal readings too; without one,
/// newer versions report changes by 8 dB and a tag that lies still looks gone.
QVariantMap BluezDiscovery::filter() const {
    const short weakest = m_isOtherFilter ? -126 : -127;
    return {{QStringLiteral("Transport"), QStringLiteral("le")},
            {QStringLiteral("RSSI"), QVariant::fromValue<short>(weakest)},
            {QStringLiteral("DuplicateData"), false}};
}

} // namespace nightjar
