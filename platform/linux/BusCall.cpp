// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BusCall.h"

#include <QDBusPendingCallWatcher>

#include <utility>

namespace nightjar {
namespace {

constexpr qsizetype longestText = 300;

QDBusMessage message(const BusCall& call) {
    auto message = QDBusMessage::createMethodCall(call.service, call.path, call.interface, call.method);
    message.setArguments(call.arguments);
    message.setAutoStartService(call.startsService);
    return message;
}

int milliseconds(const BusCall& call) {
    return static_cast<int>(call.limit.count());
}

} // namespace

void callLater(const QDBusConnection& bus, QObject& context, const BusCall& call,
               std::function<void(const QDBusMessage&)> answered) {
    const QDBusPendingCall pending = bus.asyncCall(message(call), milliseconds(call));
    if (!bus.isConnected()) {
        // The call is empty then, and a watcher of it would wait for ever.
        QMetaObject::invokeMethod(
            &context, [answered = std::move(answered)] { answered(QDBusMessage()); }, Qt::QueuedConnection);
        return;
    }
    auto* watcher = new QDBusPendingCallWatcher(pending, &context);
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished, &context,
                     [answered = std::move(answered)](QDBusPendingCallWatcher* done) {
                         done->deleteLater();
                         answered(done->reply());
                     });
}

QDBusMessage callAndWait(const QDBusConnection& bus, const BusCall& call) {
    return bus.isConnected() ? bus.call(message(call), QDBus::Block, milliseconds(call)) : QDBusMessage();
}

bool isNobodyThere(const QDBusMessage& answer) {
    return answer.errorName() == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
           answer.errorName() == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner");
}

bool isSilence(const QDBusMessage& answer) {
    const QString error = answer.errorName();
    return error == QLatin1String("org.freedesktop.DBus.Error.NoReply") ||
           error == QLatin1String("org.freedesktop.DBus.Error.Timeout") ||
           error == QLatin1String("org.freedesktop.DBus.Error.TimedOut");
}

QString errorText(const QDBusMessage& answer) {
    const QString text = answer.errorMessage().trimmed();
    return (text.isEmpty() ? answer.errorName() : text).left(longestText);
}

} // namespace nightjar
