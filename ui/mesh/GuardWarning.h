// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/mesh/NightjarModel.h"

#include <QString>

#include <optional>

namespace nightjar {

/// Why the guard would not notice, or not soon, that its device moves.
struct GuardWarning {
    QString brief;
    QString text;

    /// Absent while the guard sees its device, and where nothing is guarded.
    [[nodiscard]] static std::optional<GuardWarning> of(const NightjarModel& model, Date now);
};

} // namespace nightjar
