// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/mesh/MessageBubble.h"

#include "ui/mesh/MeshRows.h"
#include "ui/text/ShownText.h"

namespace nightjar {

namespace {

constexpr Seconds oneDay{24 * 3600};

QString senderOf(const MeshMessage& message, const NightjarModel& model) {
    if (!message.isOutgoing)
        return shownLine(model.displayName(message.sender));
    if (message.recipient == broadcastNodeNumber)
        return QStringLiteral("You");
    return QStringLiteral("You → ") + shownLine(model.displayName(message.recipient));
}

QString timeOf(Date date, const ViewContext& context) {
    const auto time = QString::fromStdString(context.platform().text.shortTimeOfDay(date));
    const bool isOfToday = context.now() - date < oneDay;
    return isOfToday ? time : QStringLiteral("%1, %2").arg(context.relativeTime(date), time);
}

} // namespace

MessageBubble MessageBubble::of(const MeshMessage& message, const ViewContext& context) {
    const auto& model = context.model();
    MessageBubble bubble{.text = shownText(message.text),
                         .sender = senderOf(message, model),
                         .time = timeOf(message.timestamp, context),
                         .isOutgoing = message.isOutgoing};
    if (message.recipient == broadcastNodeNumber)
        bubble.channel = MeshRows::channelName(model, message.channel);
    return bubble;
}

QString MessageBubble::caption() const {
    return channel ? QStringLiteral("%1 · %2").arg(sender, *channel) : sender;
}

QString MessageBubble::spoken() const {
    return QStringLiteral("%1, %2: %3").arg(caption(), time, text);
}

} // namespace nightjar
