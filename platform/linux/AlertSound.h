// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/NotificationCenter.h"

#include <memory>

struct ca_context;

namespace nightjar {

/// The sound of a notification for desktops that show notifications but play nothing themselves: the event
/// sounds of the user's sound theme, through the sound server. Main thread. The server is looked for at the
/// first sound; a computer without one stays silent.
class AlertSound {
public:
    AlertSound();
    ~AlertSound();

    void play(NotificationSound sound);

private:
    struct Destroy {
        void operator()(ca_context* context) const;
    };
    [[nodiscard]] static std::unique_ptr<ca_context, Destroy> open();

    std::unique_ptr<ca_context, Destroy> m_context;
};

} // namespace nightjar
