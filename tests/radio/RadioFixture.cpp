// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/radio/RadioFixture.h"

#include <algorithm>
#include <cstdlib>
#include <unistd.h>

namespace nightjar {
namespace {

std::filesystem::path makeFolder() {
    std::string name = std::filesystem::temp_directory_path() / "nightjar-radio-XXXXXX";
    if (!::mkdtemp(name.data()))
        std::abort();
    return name;
}

std::string toText(const MeshtasticBridgeResponse& event) {
    std::string text(meshtasticBridgeEventNames[static_cast<std::size_t>(event.event)]);
    if (event.status)
        text += " " + event.status->substr(0, 200);
    if (event.error)
        text += " " + *event.error;
    if (event.settings)
        text += " hops " + std::to_string(event.settings->hopLimit);
    return text;
}

} // namespace

std::string toText(const MeshRadioError& error) {
    using enum MeshRadioError::Kind;
    switch (error.kind) {
    case noRadio:
        return "noRadio";
    case bridgeMissing:
        return "bridgeMissing";
    case bridgeStopped:
        return "bridgeStopped";
    case invalidBridgeReply:
        return "invalidBridgeReply";
    case requestTimedOut:
        return "requestTimedOut";
    case bridge:
        return "bridge(" + error.text + ")";
    case system:
        return "system(" + error.text + ")";
    case cancelled:
        return "cancelled";
    }
    return "?";
}

RadioFixture::RadioFixture() : folder(makeFolder()) {
    host.plugIn("cu.usbmodem1");
    createRadio();
}

RadioFixture::~RadioFixture() {
    radio.reset();
    std::filesystem::remove_all(folder);
}

void RadioFixture::createRadio() {
    radio.reset();
    radio.emplace(host, mainThread, clock, options);
}

void RadioFixture::useBridge(const std::string& behaviours) {
    const auto program = folder / behaviours;
    if (!std::filesystem::exists(program))
        std::filesystem::create_symlink(NIGHTJAR_MISBEHAVING_BRIDGE, program);
    host.addFile(program, SimulatedHostEnvironment::FileKind::executable);
    host.setEnvironmentVariable("HALVARD_MESHTASTIC_BRIDGE_PATH", program.string());
}

RadioLink::Listener RadioFixture::listener() {
    return {.onEvent = [this](const auto& event) { story.push_back(toText(event)); },
            .onLost = [this](const auto& error) { story.push_back("lost " + toText(error)); }};
}

void RadioFixture::connect() {
    radio->connect(port, listener(), [this](auto result) {
        story.push_back(result ? "connected to " + *result : "not connected: " + toText(result.error()));
    });
}

void RadioFixture::disconnect() {
    radio->disconnect([this] { story.push_back("disconnect done"); });
}

void RadioFixture::sendText(const std::string& text) {
    radio->sendText(text, std::nullopt, 0, [this, text](auto result) {
        story.push_back(result ? text + " sent " + std::to_string(*result)
                               : text + " failed: " + toText(result.error()));
    });
}

bool RadioFixture::tells(std::string_view text) {
    // Each entry is looked at once: a flood makes the story long.
    std::size_t looked = 0;
    return waitFor([&] {
        while (looked < story.size()) {
            if (story[looked++] == text)
                return true;
        }
        return false;
    });
}

bool RadioFixture::waitWithoutMainThread(const std::function<bool()>& condition) {
    ManualMainThread nobody;
    return nobody.runUntil(condition);
}

bool RadioFixture::connectsTo(const std::string& behaviours) {
    constexpr auto success = "connected to /dev/cu.usbmodem1";
    const auto before = timesTold(success);
    useBridge(behaviours);
    connect();
    return waitFor([&] { return timesTold(success) > before; });
}

std::ptrdiff_t RadioFixture::timesTold(std::string_view text) const {
    return std::ranges::count(story, text);
}

std::size_t RadioFixture::positionOf(std::string_view text) const {
    return static_cast<std::size_t>(std::ranges::find(story, text) - story.begin());
}

pid_t RadioFixture::numberTold(std::string_view word) const {
    const auto start = "status " + std::string(word) + " ";
    for (auto line = story.rbegin(); line != story.rend(); ++line) {
        if (line->starts_with(start))
            return static_cast<pid_t>(std::atoi(line->c_str() + start.size()));
    }
    return 0;
}

bool RadioFixture::passTimeUntil(const std::function<bool()>& condition) {
    return mainThread.runUntil([&] {
        if (condition())
            return true;
        clock.advance(std::chrono::milliseconds(20));
        return false;
    });
}

} // namespace nightjar
