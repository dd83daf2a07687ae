// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "radio/RadioLink.h"

#include <deque>
#include <vector>

namespace nightjar::testing {

/// A radio that remembers what was asked of it; the test answers, and tells what the bridges say. Like the
/// real one it answers each question once and may tell late things about a connection that has been replaced:
/// each connection keeps its own listener.
class FakeRadioLink final : public RadioLink {
public:
    struct Connect {
        std::optional<std::string> port;
        Listener listener;
        Completion<std::string> done;
    };
    struct SendText {
        std::string text;
        std::optional<std::uint32_t> recipient;
        std::uint32_t channel;
        Completion<std::uint32_t> done;
    };
    struct Apply {
        MeshtasticRadioSettings settings;
        Completion<void> done;
    };

    void connect(std::optional<std::string> port, Listener listener, Completion<std::string> done) override {
        connects.push_back({std::move(port), std::move(listener), std::move(done)});
    }
    void sendText(std::string text, std::optional<std::uint32_t> recipient, std::uint32_t channel,
                  Completion<std::uint32_t> done) override {
        texts.push_back({std::move(text), recipient, channel, std::move(done)});
    }
    void requestRadioSettings(Completion<void> done) override { reads.push_back(std::move(done)); }
    void applyRadioSettings(const MeshtasticRadioSettings& settings, Completion<void> done) override {
        applies.push_back({settings, std::move(done)});
    }
    void disconnect(std::move_only_function<void()> done) override {
        ++disconnects;
        done();
    }

    /// Everything asked so far, in order. References stay good while more is asked.
    std::deque<Connect> connects;
    std::deque<SendText> texts;
    std::deque<Completion<void>> reads;
    std::deque<Apply> applies;
    int disconnects = 0;
};

} // namespace nightjar::testing
