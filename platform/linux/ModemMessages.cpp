// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/ModemMessages.h"

#include <QDBusArgument>
#include <QDBusObjectPath>

namespace nightjar {
namespace {

const auto service = QStringLiteral("org.freedesktop.ModemManager1");
const auto managerPath = QStringLiteral("/org/freedesktop/ModemManager1");
const auto modemInterface = QStringLiteral("org.freedesktop.ModemManager1.Modem");
const auto messagingInterface = QStringLiteral("org.freedesktop.ModemManager1.Modem.Messaging");
const auto smsInterface = QStringLiteral("org.freedesktop.ModemManager1.Sms");

/// MM_MODEM_STATE_REGISTERED; what lies above is registered too.
constexpr int registered = 8;

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

bool canSend(const Interfaces& interfaces) {
    const auto state = interfaces.value(modemInterface).value(QStringLiteral("State"));
    return interfaces.contains(messagingInterface) && state.typeId() == QMetaType::Int &&
           state.toInt() >= registered;
}

/// The modem's object path; absent when there is none that can send.
std::optional<QString> findModem(const BoundedBus& bus, const MessageLimits& limits) {
    const auto answer = bus.call({.service = service,
                                  .path = managerPath,
                                  .interface = QStringLiteral("org.freedesktop.DBus.ObjectManager"),
                                  .method = QStringLiteral("GetManagedObjects"),
                                  .limit = limits.answer});
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != QLatin1String("a{oa{sa{sv}}}"))
        return std::nullopt;
    const auto objects = qdbus_cast<Objects>(answer.arguments().at(0));
    for (auto object = objects.begin(); object != objects.end(); ++object) {
        if (canSend(object.value()))
            return object.key().path();
    }
    return std::nullopt;
}

QDBusMessage create(const BoundedBus& bus, const QString& modem, const QString& number,
                    const std::string& text, const MessageLimits& limits) {
    const QVariantMap properties{{QStringLiteral("number"), number},
                                 {QStringLiteral("text"), QString::fromStdString(text)}};
    return bus.call({.service = service,
                     .path = modem,
                     .interface = messagingInterface,
                     .method = QStringLiteral("Create"),
                     .arguments = {properties},
                     .limit = limits.answer});
}

} // namespace

SendingResult sendByModem(const BoundedBus& systemBus, const OutgoingText& text,
                          const MessageLimits& limits) {
    const auto modem = findModem(systemBus, limits);
    if (!modem)
        return std::nullopt;
    const auto number = phoneNumber(text.recipient);
    if (!number)
        return refusal(noPhoneNumber);
    const auto created = create(systemBus, *modem, *number, text.text, limits);
    if (isNobodyThere(created))
        return std::nullopt;
    if (created.type() != QDBusMessage::ReplyMessage || created.signature() != QLatin1String("o"))
        return refusal(created);

    const auto sms = created.arguments().at(0).value<QDBusObjectPath>();
    const auto sent = systemBus.call({.service = service,
                                      .path = sms.path(),
                                      .interface = smsInterface,
                                      .method = QStringLiteral("Send"),
                                      .limit = limits.sending});
    // The modem would keep the text; whether it forgets it changes nothing for the sender.
    systemBus.send({.service = service,
                    .path = *modem,
                    .interface = messagingInterface,
                    .method = QStringLiteral("Delete"),
                    .arguments = {QVariant::fromValue(sms)}});
    if (sent.type() != QDBusMessage::ReplyMessage)
        return refusal(sent);
    return std::expected<void, MessageTransportError>();
}

} // namespace nightjar
