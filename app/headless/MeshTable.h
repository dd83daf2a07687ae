// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ControllerTable.h"

namespace nightjar {
class NightjarModel;
}

namespace nightjar::headless {

/// Everything of the mesh side: its published fields, its other fields and its operations.
[[nodiscard]] ControllerTable meshTable(NightjarModel& model);

} // namespace nightjar::headless
