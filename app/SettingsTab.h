// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <string_view>

namespace nightjar {

/// The tabs of the settings window.
enum class SettingsTab { general, base, about };
inline constexpr std::array<std::string_view, 3> settingsTabNames{"general", "base", "about"};

} // namespace nightjar
