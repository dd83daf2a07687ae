// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

// The one place that names the JSON library: included by the sources of this folder only.

#include <simdjson.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <memory>
#include <new>
#include <string_view>

namespace nightjar::json {

/// The deepest nesting of objects and arrays that is read; our own records need 4.
inline constexpr std::size_t maximumDepth = 64;

/// The library's parser with our bounds. What it returns lives until the next parse.
class JsonParser {
public:
    [[nodiscard]] simdjson::simdjson_result<simdjson::dom::element> parse(std::string_view text) {
        if (text.empty())
            return simdjson::EMPTY;
        if (text.size() > m_capacity && !reserve(text.size()))
            return simdjson::MEMALLOC;
        // The library reads some bytes beyond the text, which its owner may not have.
        std::memcpy(m_text.get(), text.data(), text.size());
        std::memset(m_text.get() + text.size(), 0, simdjson::SIMDJSON_PADDING);
        return m_parser.parse(m_text.get(), text.size(), false);
    }

    /// Gives the buffers back after a text far larger than usual.
    void release() {
        m_parser = simdjson::dom::parser();
        m_text.reset();
        m_capacity = 0;
    }

private:
    /// Grows in powers of two, so that lines of slowly growing length do not allocate each time.
    bool reserve(std::size_t size) {
        constexpr std::size_t smallest = 4096;
        constexpr std::size_t largest = simdjson::SIMDJSON_MAXSIZE_BYTES;
        release();
        if (size > largest)
            return false;
        const std::size_t capacity = std::min(std::bit_ceil(std::max(size, smallest)), largest);
        m_text.reset(new (std::nothrow) char[capacity + simdjson::SIMDJSON_PADDING]);
        const bool reserved =
            m_text && !m_parser.allocate(capacity, maximumDepth) && !m_parser.doc.allocate(capacity);
        if (reserved)
            m_capacity = capacity;
        else
            release();
        return reserved;
    }

    simdjson::dom::parser m_parser;
    std::unique_ptr<char[]> m_text;
    std::size_t m_capacity = 0;
};

} // namespace nightjar::json
