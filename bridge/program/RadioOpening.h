// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/protocol/Radio.h"
#include "bridge/simulated/Mischief.h"

namespace nightjar::bridge {

/// Chooses what stands behind a port: a regular file is a scenario to be played. `mischief` is borrowed.
[[nodiscard]] RadioOpener radioOpener(Mischief& mischief);

} // namespace nightjar::bridge
