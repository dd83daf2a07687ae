// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string_view>

namespace nightjar {

/// The mesh that the demo's bridge plays, as the text of a scenario file.
extern const std::string_view demoScenario;

} // namespace nightjar
