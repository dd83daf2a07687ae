// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// A bridge for benchmarks: answers every request at once, and writes NIGHTJAR_FLOOD_LINES node lines as fast
// as they are taken once it is connected, followed by one `localNode` line.

#include "bench/Samples.h"
#include "core/bridge/BridgeJson.h"

#include <array>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <unistd.h>

using namespace nightjar;

namespace {

void write(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = ::write(STDOUT_FILENO, bytes.data(), bytes.size());
        if (count <= 0)
            std::_Exit(1);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void say(const MeshtasticBridgeResponse& response) {
    write(encodeLine(response).value());
}

/// With NIGHTJAR_FLOOD_STANDING_NODES that many nodes take turns and none of them ever moves.
std::vector<std::optional<MeshPosition>> standingPlaces(bench::Samples& samples) {
    const char* count = std::getenv("NIGHTJAR_FLOOD_STANDING_NODES");
    std::vector<std::optional<MeshPosition>> places(count ? std::strtoull(count, nullptr, 10) : 0);
    for (std::size_t i = 0; i < places.size(); ++i) {
        places[i] = samples.position(0);
        places[i]->nodeNumber = 0xA000'0000u + static_cast<std::uint32_t>(i);
    }
    return places;
}

/// Encoding a million records would measure this program, so a few thousand different lines come round and
/// round.
void flood(std::size_t lines) {
    constexpr std::size_t different = 4000;
    bench::Samples samples;
    const auto places = standingPlaces(samples);
    std::vector<std::string> round;
    for (std::size_t i = 0; i < different; ++i) {
        MeshtasticBridgeResponse response;
        response.event = MeshtasticBridgeEvent::node;
        response.node = samples.node(static_cast<int>(i));
        if (!places.empty()) {
            response.node->position = places[i % places.size()];
            response.node->number = response.node->position->nodeNumber;
        }
        round.push_back(encodeLine(response).value());
    }
    std::string block;
    for (std::size_t i = 0; i < lines; ++i) {
        block += round[i % different];
        if (block.size() < 60000 && i + 1 < lines)
            continue;
        write(block);
        block.clear();
    }
    MeshtasticBridgeResponse end;
    end.event = MeshtasticBridgeEvent::localNode;
    end.localNodeID = 0xA0000000u;
    say(end);
}

void answer(const MeshtasticBridgeRequest& request) {
    MeshtasticBridgeResponse response;
    response.requestID = request.requestID;
    using enum MeshtasticBridgeEvent;
    switch (request.command) {
    case MeshtasticBridgeCommand::connect: {
        response.event = connected;
        response.port = request.port;
        say(response);
        const char* lines = std::getenv("NIGHTJAR_FLOOD_LINES");
        if (lines)
            flood(std::strtoull(lines, nullptr, 10));
        return;
    }
    case MeshtasticBridgeCommand::sendText:
        response.event = sent;
        response.packetID = 1;
        break;
    case MeshtasticBridgeCommand::disconnect:
        response.event = disconnected;
        break;
    case MeshtasticBridgeCommand::readRadioSettings:
    case MeshtasticBridgeCommand::applyRadioSettings:
        response.event = radioSettings;
        break;
    }
    say(response);
}

} // namespace

int main() {
    auto decoder = makeBridgeDecoder();
    for (std::string line; std::getline(std::cin, line);) {
        if (const auto request = decoder.decode<MeshtasticBridgeRequest>(line))
            answer(*request);
    }
    return 0;
}
