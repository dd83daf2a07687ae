// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/headless/ReadableLines.h"

#include <functional>
#include <string>
#include <vector>

namespace nightjar::headless {

/// Status texts of a controller, each printed as "label: text" when it differs from what was printed last.
class StateLines {
public:
    /// `text` gives the present text, empty when there is nothing to say.
    void add(std::string label, std::function<std::string()> text);
    /// A sentence that is printed each time it is set; `acknowledge` is called after that and takes it away.
    void addError(std::function<std::string()> text, std::function<void()> acknowledge);

    void print(ReadableLines& lines);

private:
    struct State {
        std::string label;
        std::function<std::string()> text;
        std::function<void()> acknowledge{};
        std::string printed{};
    };

    std::vector<State> m_states;
};

} // namespace nightjar::headless
