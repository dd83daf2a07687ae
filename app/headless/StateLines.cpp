// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/StateLines.h"

#include "app/headless/ReadableText.h"

#include <utility>

namespace nightjar::headless {

void StateLines::add(std::string label, std::function<std::string()> text) {
    m_states.push_back({.label = std::move(label), .text = std::move(text)});
}

void StateLines::addError(std::function<std::string()> text, std::function<void()> acknowledge) {
    m_states.push_back({.label = "ERROR", .text = std::move(text), .acknowledge = std::move(acknowledge)});
}

void StateLines::print(ReadableLines& lines) {
    for (State& state : m_states) {
        auto text = state.text();
        if (text == state.printed)
            continue;
        if (text.empty()) {
            state.printed.clear();
            continue;
        }
        if (!lines.mayPrint())
            continue;
        lines.print(state.label + ": " + terminalSafe(text));
        if (state.acknowledge)
            state.acknowledge();
        else
            state.printed = std::move(text);
    }
}

} // namespace nightjar::headless
