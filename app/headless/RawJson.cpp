// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/RawJson.h"

#include <algorithm>

namespace nightjar::headless {
namespace {

/// Walks over text that is known to be JSON.
class Walker {
public:
    explicit Walker(std::string_view text) : m_text(text) {}

    /// The next character that is no white space; NUL at the end.
    char peek() {
        const auto at = m_text.find_first_not_of(" \t\r\n", m_at);
        m_at = at == std::string_view::npos ? m_text.size() : at;
        return m_at < m_text.size() ? m_text[m_at] : '\0';
    }
    void step() { ++m_at; }

    /// The whole next value.
    std::string_view value() {
        const char first = peek();
        const auto start = m_at;
        if (first == '"')
            skipString();
        else if (first == '{' || first == '[')
            skipNested();
        else
            m_at = std::min(m_text.find_first_of(",:]} \t\r\n", m_at), m_text.size());
        return m_text.substr(start, m_at - start);
    }

private:
    void skipString() {
        for (++m_at; m_at < m_text.size() && m_text[m_at] != '"'; ++m_at) {
            if (m_text[m_at] == '\\')
                ++m_at;
        }
        m_at = std::min(m_at + 1, m_text.size());
    }
    void skipNested() {
        std::size_t depth = 0;
        do {
            const char character = m_text[m_at];
            if (character == '"') {
                skipString();
                continue;
            }
            if (character == '{' || character == '[')
                ++depth;
            if (character == '}' || character == ']')
                --depth;
            ++m_at;
        } while (depth > 0 && m_at < m_text.size());
    }

    std::string_view m_text;
    std::size_t m_at = 0;
};

} // namespace

std::optional<std::string_view> rawMember(std::string_view object, std::string_view key) {
    Walker walker(object);
    if (walker.peek() != '{')
        return std::nullopt;
    walker.step();
    while (walker.peek() == '"') {
        const auto name = walker.value();
        if (walker.peek() == ':')
            walker.step();
        const auto value = walker.value();
        if (name.substr(1, name.size() - 2) == key)
            return value;
        if (walker.peek() == ',')
            walker.step();
    }
    return std::nullopt;
}

std::vector<std::string_view> rawElements(std::string_view array) {
    std::vector<std::string_view> elements;
    Walker walker(array);
    if (walker.peek() != '[')
        return elements;
    walker.step();
    for (char next = walker.peek(); next != ']' && next != '\0'; next = walker.peek()) {
        elements.push_back(walker.value());
        if (walker.peek() == ',')
            walker.step();
    }
    return elements;
}

} // namespace nightjar::headless
