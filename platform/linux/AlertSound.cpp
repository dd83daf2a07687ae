// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/AlertSound.h"

namespace nightjar {

void AlertSound::play(NotificationSound sound) {
    const bool critical = sound == NotificationSound::critical;
    m_player.play(ThemeSound{critical ? "alarm-clock-elapsed" : "message-new-instant"});
}

} // namespace nightjar
