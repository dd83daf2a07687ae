// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/linux/MessageWay.h"

namespace nightjar {

/// Sends through the first modem of ModemManager that is registered in its network. Waits.
[[nodiscard]] SendingResult sendByModem(const BoundedBus& systemBus, const OutgoingText& text,
                                        const MessageLimits& limits);

} // namespace nightjar
