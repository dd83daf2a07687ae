// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <string>
#include <string_view>

namespace nightjar {

/// Text in the user's language. Main thread.
class TextServices {
public:
    virtual ~TextServices() = default;
    /// Bytes whose plain order is the order in which a file browser lists names: letter case and accents
    /// matter only between otherwise equal names, runs of digits count by their value.
    [[nodiscard]] virtual std::string collationKey(std::string_view text) const = 0;
};

} // namespace nightjar
