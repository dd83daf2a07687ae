// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ControllerTable.h"
#include "app/network/LocalNetworkBrowser.h"

namespace nightjar::headless {

/// Everything that the local network side publishes and can be told to do. The browser outlives the table.
[[nodiscard]] ControllerTable networkTable(LocalNetworkBrowser& browser);

} // namespace nightjar::headless
