// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"

#include <optional>
#include <string>

namespace nightjar {

/// The lines that tell the user how the mesh side is doing; several collaborators write them.
struct MeshStatus {
    struct Announcers {
        Announcer connectionState;
        Announcer radioSettingsState;
        Announcer errorMessage;
    };

    explicit MeshStatus(const Announcers& announcers)
        : connectionState(announcers.connectionState, "Connecting…"),
          radioSettingsState(announcers.radioSettingsState, "Waiting for radio…"),
          errorMessage(announcers.errorMessage) {}

    Published<std::string> connectionState;
    Published<std::string> radioSettingsState;
    Published<std::optional<std::string>> errorMessage; ///< the last sentence for the user
};

} // namespace nightjar
