// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// The sentences of the local network side.
namespace nightjar::NetworkTexts {

inline constexpr std::string_view ready = "Local Network is ready";
inline constexpr std::string_view looking = "Looking for devices…";
inline constexpr std::string_view stopped = "Scan stopped";
inline constexpr std::string_view failed = "Local Network scan failed";
inline constexpr std::string_view waiting = "Waiting for Local Network access";
inline constexpr std::string_view allowAccess =
    "Allow Halvard Nightjar to access the Local Network in System Settings → Privacy & Security → Local "
    "Network.";

/// How many devices are online.
[[nodiscard]] std::string available(std::size_t count);
/// The text of `saveFailed` before its reason.
[[nodiscard]] std::string saveFailed(std::string_view reason);

/// "10 minutes", "2 hours": whole units, the fraction dropped; a day is the longest.
[[nodiscard]] std::string durationText(double seconds);

} // namespace nightjar::NetworkTexts
