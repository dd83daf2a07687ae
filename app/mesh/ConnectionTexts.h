// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "radio/MeshRadioError.h"

#include <string>

/// What the user reads when the base radio cannot be connected, or when its bridge goes away.
namespace nightjar::ConnectionTexts {

/// The short line.
[[nodiscard]] std::string connectionStatus(const MeshRadioError& error);
/// The line that says more.
[[nodiscard]] std::string connectionDetail(const MeshRadioError& error);

} // namespace nightjar::ConnectionTexts
