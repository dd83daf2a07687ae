// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bridge/MeshtasticRadioSettings.h"

namespace nightjar {

std::string_view title(MeshtasticRegion region) {
    return region == MeshtasticRegion::eu868 ? "European Union 868 MHz" : "";
}

std::string_view title(MeshtasticModemPreset preset) {
    constexpr std::array<std::string_view, 6> titles{"Long Range – Fast",   "Long Range – Moderate",
                                                     "Medium Range – Slow", "Medium Range – Fast",
                                                     "Short Range – Slow",  "Short Range – Fast"};
    return titles[static_cast<std::size_t>(preset)];
}

void applyRecommendedSetup(MeshtasticRadioSettings& draft) {
    draft = {.usePreset = true,
             .region = MeshtasticRegion::eu868,
             .modemPreset = MeshtasticModemPreset::longFast,
             .hopLimit = 3,
             .channelNum = 0,
             .txEnabled = true,
             .txPower = 0,
             .rxBoostedGain = true,
             .overrideDutyCycle = false,
             .overrideFrequency = 0};
}

} // namespace nightjar
