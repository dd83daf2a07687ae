// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NotificationCenter.h"
#include "platform/linux/SoundPlayer.h"

namespace nightjar {

/// The sound of a notification for desktops that show notifications but play nothing themselves: the event
/// sounds of the user's sound theme. Main thread.
class AlertSound {
public:
    explicit AlertSound(SoundPlayer& player) : m_player(player) {}

    void play(NotificationSound sound);

private:
    SoundPlayer& m_player;
};

} // namespace nightjar
