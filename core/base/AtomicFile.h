// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <expected>
#include <filesystem>
#include <string>
#include <string_view>

namespace nightjar {

/// The whole file; a sentence where it cannot be read.
[[nodiscard]] std::expected<std::string, std::string> readWholeFile(const std::filesystem::path& path);

/// Replaces the file in one step after creating its folder with any missing parents: whoever looks, also
/// after a crash at any instant, finds the old bytes or the new ones. The bytes are on the disk before they
/// replace the old ones. Returns a sentence for the user where that fails; the old file is then unchanged and
/// nothing is left behind.
[[nodiscard]] std::expected<void, std::string> replaceFile(const std::filesystem::path& path,
                                                           std::string_view bytes);

} // namespace nightjar
