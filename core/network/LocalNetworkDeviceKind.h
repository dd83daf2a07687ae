// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace nightjar {

/// What a device of the local network seems to be.
enum class LocalNetworkDeviceKind { computer, laptop, television, speaker, printer, storage, generic };

/// The raw values, in case order.
inline constexpr std::array<std::string_view, 7> localNetworkDeviceKindNames{
    "computer", "laptop", "television", "speaker", "printer", "storage", "generic"};

[[nodiscard]] constexpr std::string_view rawValue(LocalNetworkDeviceKind kind) {
    return localNetworkDeviceKindNames[static_cast<std::size_t>(kind)];
}
[[nodiscard]] std::optional<LocalNetworkDeviceKind> localNetworkDeviceKindFrom(std::string_view rawValue);

/// The name of the symbol that stands for the kind.
[[nodiscard]] std::string_view symbolName(LocalNetworkDeviceKind kind);

} // namespace nightjar
