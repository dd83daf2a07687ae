// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>

namespace nightjar::bench {

/// How fast a flood passed, and what it cost, beside what is wanted. Counts from when it is made.
class FloodReport {
public:
    FloodReport() { std::ofstream("/proc/self/clear_refs") << "5"; }

    void print(std::size_t lines, double longestBusyMilliseconds) const {
        const std::chrono::duration<double> seconds = std::chrono::steady_clock::now() - m_start;
        const double rate = static_cast<double>(lines) / seconds.count();
        const double growth = peakMegabytes() - m_before;
        row("lines per second", rate, "1/s", rate >= 150000, "at least 150000");
        row("growth of memory at its peak", growth, "MB", growth < 50, "below 50");
        row("longest busy time", longestBusyMilliseconds, "ms", longestBusyMilliseconds <= 20, "at most 20");
    }

private:
    static double peakMegabytes() {
        std::ifstream file("/proc/self/status");
        for (std::string line; std::getline(file, line);) {
            if (line.starts_with("VmHWM:"))
                return std::atof(line.c_str() + 6) / 1024;
        }
        return 0;
    }

    static void row(const char* what, double value, const char* unit, bool asWanted, const char* wanted) {
        std::printf("%-28s %12.1f %-4s %-6s (wanted: %s)\n", what, value, unit, asWanted ? "ok" : "MISSED",
                    wanted);
    }

    std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    double m_before = peakMegabytes();
};

} // namespace nightjar::bench
