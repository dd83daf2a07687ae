// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <algorithm>
#include <chrono>
#include <vector>

namespace nightjar::bench {

/// Durations of one step, of which the median counts: a machine that is busy for a moment does not move it.
class Durations {
public:
    template <class Step>
    void measure(Step&& step) {
        const auto start = std::chrono::steady_clock::now();
        step();
        m_seconds.push_back(std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count());
    }

    [[nodiscard]] double median() const {
        auto sorted = m_seconds;
        const auto middle = sorted.begin() + static_cast<std::ptrdiff_t>(sorted.size() / 2);
        std::nth_element(sorted.begin(), middle, sorted.end());
        return *middle;
    }

private:
    std::vector<double> m_seconds;
};

} // namespace nightjar::bench
