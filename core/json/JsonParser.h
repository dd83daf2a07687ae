// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

// The one place that names the JSON library: included by the sources of this folder only.

#include <simdjson.h>

#include <string_view>

namespace nightjar::json {

/// The deepest nesting of objects and arrays that is read; our own records need 4.
inline constexpr std::size_t maximumDepth = 64;

/// The library's parser with our bounds. What it returns lives until the next parse.
class JsonParser {
public:
    [[nodiscard]] simdjson::simdjson_result<simdjson::dom::element> parse(std::string_view text) {
        if (text.size() > m_parser.capacity() || m_parser.max_depth() != maximumDepth) {
            if (const auto error = m_parser.allocate(text.size(), maximumDepth)) return error;
        }
        return m_parser.parse(text.data(), text.size());
    }

    /// Gives the buffers back after a text far larger than usual.
    void release() { m_parser = simdjson::dom::parser(); }

private:
    simdjson::dom::parser m_parser;
};

} // namespace nightjar::json
