// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <optional>
#include <string_view>
#include <vector>

namespace nightjar::headless {

// The pieces of a JSON text as they were written, for what must be handed on unchanged. The text must be
// known to be JSON of bounded depth; white space round a piece is not part of it.

/// The value of an object's first member whose key is written exactly as `key`.
[[nodiscard]] std::optional<std::string_view> rawMember(std::string_view object, std::string_view key);
[[nodiscard]] std::vector<std::string_view> rawElements(std::string_view array);

} // namespace nightjar::headless
