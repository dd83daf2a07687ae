// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

namespace nightjar {

enum class MeshtasticRegion { unset, eu868 };
enum class MeshtasticModemPreset { longFast, longModerate, mediumSlow, mediumFast, shortSlow, shortFast };

inline constexpr std::array meshtasticRegions{MeshtasticRegion::unset, MeshtasticRegion::eu868};
inline constexpr std::array<std::string_view, 2> meshtasticRegionNames{"unset", "eu868"};
inline constexpr std::array meshtasticModemPresets{
    MeshtasticModemPreset::longFast,   MeshtasticModemPreset::longModerate, MeshtasticModemPreset::mediumSlow,
    MeshtasticModemPreset::mediumFast, MeshtasticModemPreset::shortSlow,    MeshtasticModemPreset::shortFast};
inline constexpr std::array<std::string_view, 6> meshtasticModemPresetNames{
    "longFast", "longModerate", "mediumSlow", "mediumFast", "shortSlow", "shortFast"};

/// The title shown to the user; empty for `unset`, which is not offered.
[[nodiscard]] std::string_view title(MeshtasticRegion region);
[[nodiscard]] std::string_view title(MeshtasticModemPreset preset);

/// The LoRa settings of the base radio, mirroring the LoRa configuration of Meshtastic firmware.
struct MeshtasticRadioSettings {
    bool usePreset = false; ///< the modem follows `modemPreset` rather than individual parameters
    MeshtasticRegion region = MeshtasticRegion::unset;
    MeshtasticModemPreset modemPreset = MeshtasticModemPreset::longFast;
    std::uint32_t hopLimit = 0;
    std::uint32_t channelNum = 0; ///< frequency slot; 0 = automatic
    bool txEnabled = false;
    std::int32_t txPower = 0; ///< dBm; 0 = the regional default
    bool rxBoostedGain = false;
    bool overrideDutyCycle = false;
    float overrideFrequency = 0; ///< MHz; 0 = none

    bool operator==(const MeshtasticRadioSettings&) const = default;
};

/// Sets all ten fields of an edited copy to the recommended setup: EU868, LongFast, automatic slot, three
/// hops and the legal transmit power.
void applyRecommendedSetup(MeshtasticRadioSettings& draft);

} // namespace nightjar
