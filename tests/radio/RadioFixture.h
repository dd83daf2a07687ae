// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/simulated/FakePollClock.h"
#include "platform/simulated/ManualMainThread.h"
#include "platform/simulated/SimulatedHostEnvironment.h"
#include "radio/MeshRadio.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <gmock/gmock.h>
#include <optional>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

namespace nightjar {

/// A MeshRadio with a real bridge process, on a clock and a main thread moved by the test. Everything that it
/// tells is written into `story`, one text per completion or event, in the order of its arrival.
class RadioFixture : public ::testing::Test {
protected:
    RadioFixture();
    ~RadioFixture() override;

    static constexpr const char* port = "/dev/cu.usbmodem1";

    void createRadio();
    /// The bridge that the next connection starts; see MisbehavingBridge.cpp.
    void useBridge(const std::string& behaviours);
    [[nodiscard]] RadioLink::Listener listener();
    void connect();
    void disconnect();
    void sendText(const std::string& text);
    /// The main thread runs until the story holds the text (false after 10 s of real time).
    [[nodiscard]] bool tells(std::string_view text);
    [[nodiscard]] bool waitFor(const std::function<bool()>& condition) {
        return mainThread.runUntil(condition);
    }
    /// Waits while the main thread is busy with other things: nothing that is told arrives.
    [[nodiscard]] static bool waitWithoutMainThread(const std::function<bool()>& condition);
    [[nodiscard]] bool connectsTo(const std::string& behaviours);
    [[nodiscard]] std::ptrdiff_t timesTold(std::string_view text) const;
    [[nodiscard]] std::size_t positionOf(std::string_view text) const;
    /// What the bridge told behind the word, as in "pid 123"; 0 when it did not.
    [[nodiscard]] pid_t numberTold(std::string_view word) const;
    /// Lets time pass in steps until the condition holds.
    [[nodiscard]] bool passTimeUntil(const std::function<bool()>& condition);

    std::filesystem::path folder;
    SimulatedHostEnvironment host;
    ManualMainThread mainThread;
    FakePollClock clock;
    MeshRadioOptions options{.finalGrace = std::chrono::milliseconds(100)};
    std::vector<std::string> story;
    std::optional<MeshRadio> radio;
};

/// One word for the kind and the text behind it.
[[nodiscard]] std::string toText(const MeshRadioError& error);

} // namespace nightjar
