// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/KdeConnectMessages.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QStringList>

#include <algorithm>

namespace nightjar {

/// How KDE Connect writes a recipient: a structure of one text.
struct KdeConnectAddress {
    QString address;
};

QDBusArgument& operator<<(QDBusArgument& argument, const KdeConnectAddress& address) {
    argument.beginStructure();
    argument << address.address;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, KdeConnectAddress& address) {
    argument.beginStructure();
    argument >> address.address;
    argument.endStructure();
    return argument;
}

} // namespace nightjar
Q_DECLARE_METATYPE(nightjar::KdeConnectAddress)

namespace nightjar {
namespace {

const auto service = QStringLiteral("org.kde.kdeconnect");
const auto daemonPath = QStringLiteral("/modules/kdeconnect");
const auto daemonInterface = QStringLiteral("org.kde.kdeconnect.daemon");
const auto deviceInterface = QStringLiteral("org.kde.kdeconnect.device");
const auto conversationsInterface = QStringLiteral("org.kde.kdeconnect.device.conversations");

bool canSend(const BoundedBus& bus, const QString& device, const MessageLimits& limits) {
    const auto answer = bus.call({.service = service,
                                  .path = device,
                                  .interface = deviceInterface,
                                  .method = QStringLiteral("hasPlugin"),
                                  .arguments = {QStringLiteral("kdeconnect_sms")},
                                  .limit = limits.answer});
    return answer.signature() == QLatin1String("b") && answer.arguments().at(0).toBool();
}

/// An identifier is a part of an object path and comes from the phone.
bool isIdentifier(const QString& text) {
    return !text.isEmpty() && std::ranges::all_of(text, [](QChar character) {
        return character.unicode() < 128 && (character.isLetterOrNumber() || character == QLatin1Char('_'));
    });
}

/// The phone's object path; absent when there is none that can send.
std::optional<QString> findPhone(const BoundedBus& bus, const MessageLimits& limits) {
    const bool onlyReachable = true;
    const bool onlyPaired = true;
    const auto answer = bus.call({.service = service,
                                  .path = daemonPath,
                                  .interface = daemonInterface,
                                  .method = QStringLiteral("devices"),
                                  .arguments = {onlyReachable, onlyPaired},
                                  .limit = limits.answer});
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != QLatin1String("as"))
        return std::nullopt;
    for (const QString& identifier : answer.arguments().at(0).toStringList()) {
        const auto device = daemonPath + QStringLiteral("/devices/") + identifier;
        if (isIdentifier(identifier) && canSend(bus, device, limits))
            return device;
    }
    return std::nullopt;
}

} // namespace

SendingResult sendByPhone(const BoundedBus& sessionBus, const OutgoingText& text,
                          const MessageLimits& limits) {
    qDBusRegisterMetaType<KdeConnectAddress>();
    const auto phone = findPhone(sessionBus, limits);
    if (!phone)
        return std::nullopt;
    const auto number = phoneNumber(text.recipient);
    if (!number)
        return refusal(noPhoneNumber);
    const QVariantList recipients{QVariant::fromValue(KdeConnectAddress{*number})};
    const QVariantList attachments;
    const auto sent = sessionBus.call(
        {.service = service,
         .path = *phone,
         .interface = conversationsInterface,
         .method = QStringLiteral("sendWithoutConversation"),
         // Lists in lists: without the wrapping they would become one list.
         .arguments = {QVariant(recipients), QString::fromStdString(text.text), QVariant(attachments)},
         .limit = limits.answer});
    if (sent.type() != QDBusMessage::ReplyMessage)
        return refusal(sent);
    return std::expected<void, MessageTransportError>();
}

} // namespace nightjar
