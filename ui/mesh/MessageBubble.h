// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/mesh/MeshMessage.h"
#include "ui/common/ViewContext.h"

#include <QString>

#include <optional>

namespace nightjar {

/// What a bubble shows of a message, fit to be shown.
struct MessageBubble {
    QString text;
    QString sender;
    std::optional<QString> channel{};
    QString time;
    bool isOutgoing = false;

    [[nodiscard]] static MessageBubble of(const MeshMessage& message, const ViewContext& context);
    /// The sender and the channel.
    [[nodiscard]] QString caption() const;
    /// What a screen reader says.
    [[nodiscard]] QString spoken() const;
};

} // namespace nightjar
