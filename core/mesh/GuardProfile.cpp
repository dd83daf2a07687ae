// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/mesh/GuardProfile.h"

namespace nightjar {

std::string_view rawValue(GuardProfile profile) {
    return guardProfileNames[static_cast<std::size_t>(profile)];
}

std::optional<GuardProfile> guardProfileFromRawValue(std::string_view text) {
    for (const auto profile : guardProfiles) {
        if (rawValue(profile) == text)
            return profile;
    }
    return std::nullopt;
}

std::string_view title(GuardProfile profile) {
    return profile == GuardProfile::bicycle ? "Bicycle" : "General";
}

std::string_view systemImage(GuardProfile profile) {
    return profile == GuardProfile::bicycle ? "bicycle" : "shield.checkered";
}

} // namespace nightjar
