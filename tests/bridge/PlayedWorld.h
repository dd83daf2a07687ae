// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "bridge/scenario/ScenarioParser.h"
#include "bridge/simulated/SimulatedRadio.h"
#include "core/base/AtomicFile.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace nightjar::bridge {

inline const std::filesystem::path scenarioFolder = NIGHTJAR_SCENARIOS;

[[nodiscard]] inline Scenario scenarioNamed(const std::string& name) {
    const auto text = readWholeFile(scenarioFolder / (name + ".json"));
    auto scenario = parseScenario(text.value_or(""));
    EXPECT_TRUE(scenario) << name << ": " << (scenario ? "" : scenario.error());
    return scenario.value_or(Scenario{});
}

/// Remembers what the program would have been made to do.
struct RememberedMischief final : Mischief {
    void writeRaw(std::string_view bytes) override { raw += bytes; }
    void writeToStandardError(std::string_view bytes) override { errorBytes += bytes.size(); }
    void cutNextLine(Seconds wait) override { cuts.push_back(wait); }
    void closeOutput() override { outputClosed = true; }
    void exit(int code) override { exitCode = code; }
    void refuseToEnd(Seconds duration) override { stubbornFor = duration; }

    std::string raw;
    std::size_t errorBytes = 0;
    std::vector<Seconds> cuts;
    bool outputClosed = false;
    std::optional<int> exitCode;
    Seconds stubbornFor{0};
};

/// A simulated radio whose time is moved by hand.
class PlayedWorld final : private RadioListener {
public:
    explicit PlayedWorld(Scenario scenario, Date start = dateFromUnixSeconds(1'790'000'000.75))
        : m_now{Moment::TimePoint{std::chrono::hours(1000)}, start},
          m_radio(std::move(scenario), "/ports/radio", *this, mischief) {}

    Uuid connect() {
        return ask([&](const Uuid& id) { m_radio.connect(id, m_now); });
    }
    Uuid sendText(std::string text, std::optional<std::uint32_t> recipient = {}, std::uint32_t channel = 0) {
        return ask([&](const Uuid& id) {
            m_radio.sendText(id, {std::move(text), recipient, channel}, m_now);
        });
    }
    Uuid readSettings() {
        return ask([&](const Uuid& id) { m_radio.readSettings(id, m_now); });
    }
    Uuid applySettings(const MeshtasticRadioSettings& settings) {
        return ask([&](const Uuid& id) { m_radio.applySettings(id, settings, m_now); });
    }
    Uuid disconnect() {
        return ask([&](const Uuid& id) { m_radio.disconnect(id, m_now); });
    }

    void advance(Seconds duration) {
        m_now.monotonic += std::chrono::round<Moment::TimePoint::duration>(duration);
        m_now.date += duration;
        m_radio.advance(m_now, 0);
    }

    /// The lines that came since the last call.
    [[nodiscard]] std::vector<MeshtasticBridgeResponse> take() { return std::exchange(m_lines, {}); }
    [[nodiscard]] RadioWait waits() const { return m_radio.waits(); }
    [[nodiscard]] Date date() const { return m_now.date; }

    RememberedMischief mischief;
    bool room = true;

private:
    void emit(const MeshtasticBridgeResponse& response) override { m_lines.push_back(response); }
    bool hasRoom() const override { return room; }

    template <class Request>
    Uuid ask(Request request) {
        const Uuid id = Uuid::random();
        request(id);
        m_radio.advance(m_now, 0);
        return id;
    }

    Moment m_now;
    std::vector<MeshtasticBridgeResponse> m_lines;
    SimulatedRadio m_radio;
};

/// The lines that answer one request.
[[nodiscard]] inline std::vector<MeshtasticBridgeResponse>
answersTo(const Uuid& request, const std::vector<MeshtasticBridgeResponse>& lines) {
    std::vector<MeshtasticBridgeResponse> answers;
    std::ranges::copy_if(lines, std::back_inserter(answers),
                         [&](const auto& line) { return line.requestID == request; });
    return answers;
}

/// The node records among the lines, those of one node only when `number` is given.
[[nodiscard]] inline std::vector<MeshNode> nodesIn(const std::vector<MeshtasticBridgeResponse>& lines,
                                                   std::optional<std::uint32_t> number = {}) {
    std::vector<MeshNode> nodes;
    for (const auto& line : lines) {
        if (line.node && line.node->number == number.value_or(line.node->number))
            nodes.push_back(*line.node);
    }
    return nodes;
}

} // namespace nightjar::bridge
