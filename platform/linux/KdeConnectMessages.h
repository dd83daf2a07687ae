// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/linux/MessageWay.h"

namespace nightjar {

/// Sends through the first phone that KDE Connect has paired, that is in reach and that can send text
/// messages. Waits until the phone's side has taken the message. Main thread.
[[nodiscard]] SendingResult sendByPhone(const BoundedBus& sessionBus, const OutgoingText& text,
                                        const MessageLimits& limits);

} // namespace nightjar
