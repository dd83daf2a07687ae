// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bridge/MeshtasticRadioSettings.h"

#include <QString>

#include <optional>

namespace nightjar {

/// The radio settings that the user is editing; nothing of them is sent until they are applied.
struct RadioSettingsDraft {
    std::optional<MeshtasticRadioSettings> values; ///< absent until a radio has told its settings

    /// The radio told its settings: what was not applied is given up. A radio that tells none changes
    /// nothing.
    void follow(const std::optional<MeshtasticRadioSettings>& current);
    void applyRecommended();
    [[nodiscard]] bool hasChanges(const std::optional<MeshtasticRadioSettings>& current) const;
    /// What applying would change, one line a setting.
    [[nodiscard]] QString changeSummary(const std::optional<MeshtasticRadioSettings>& current) const;
};

} // namespace nightjar
