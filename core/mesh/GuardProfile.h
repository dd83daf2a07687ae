// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <optional>
#include <string_view>

namespace nightjar {

/// What kind of thing is guarded. It changes the title of the alert and the symbol, nothing else.
enum class GuardProfile { general, bicycle };

inline constexpr std::array guardProfiles{GuardProfile::general, GuardProfile::bicycle};
inline constexpr std::array<std::string_view, 2> guardProfileNames{"general", "bicycle"};

/// The raw value, also the identity: "general" or "bicycle".
[[nodiscard]] std::string_view rawValue(GuardProfile profile);
[[nodiscard]] std::optional<GuardProfile> guardProfileFromRawValue(std::string_view text);
[[nodiscard]] std::string_view title(GuardProfile profile);
[[nodiscard]] std::string_view systemImage(GuardProfile profile);

} // namespace nightjar
