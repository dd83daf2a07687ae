// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bridge/MeshtasticBridge.h"

#include <random>
#include <string>
#include <vector>

/// Records as a mesh of forty nodes would bring them; the same every time.
namespace nightjar::bench {

class Samples {
public:
    MeshPosition position(int index) {
        return {.id = uuid(),
                .nodeNumber = 0xA000'0000u + below(40),
                .latitude = static_cast<double>(525'200'066 + static_cast<int>(below(200'000))) * 1e-7,
                .longitude = static_cast<double>(134'049'540 + static_cast<int>(below(200'000))) * 1e-7,
                .altitude =
                    below(8) ? std::optional<std::int32_t>(30 + static_cast<int>(below(20))) : std::nullopt,
                .timestamp = date(index)};
    }

    MeshMessage message(int index) {
        static constexpr std::array<const char*, 6> texts{
            "On my way, see you at the north gate in ten minutes",
            "Battery is low – swapping now",
            "https://example.org/a/b?c=d",
            "Grüße aus dem Wald 🌲 alles gut",
            "ok",
            "Line one\nline two with \"quotes\" and a tab\t."};
        return {.id = uuid(),
                .packetID = below(0xFFFF'FFFF) | 1,
                .sender = 0xA000'0000u + below(40),
                .recipient = broadcastNodeNumber,
                .channel = below(3),
                .text = texts[below(texts.size())],
                .timestamp = date(index),
                .isOutgoing = below(4) == 0};
    }

    MeshNode node(int index) {
        const auto position = this->position(index);
        return {.number = position.nodeNumber,
                .longName = "Tracker on the green bicycle " + std::to_string(below(40)),
                .shortName = "T" + std::to_string(below(100)),
                .hardware = "HELTEC_WIRELESS_TRACKER",
                .batteryLevel = below(101),
                .voltage = 3.3f + static_cast<float>(below(900)) / 1000,
                .signalToNoise = static_cast<float>(below(120)) / 4 - 20,
                .hopsAway = below(4),
                .lastSeen = date(index),
                .position = position};
    }

private:
    std::uint32_t below(std::size_t end) {
        return std::uniform_int_distribution<std::uint32_t>(0, static_cast<std::uint32_t>(end - 1))(m_random);
    }
    Uuid uuid() {
        Uuid uuid;
        for (auto& byte : uuid.bytes)
            byte = static_cast<std::uint8_t>(below(256));
        return uuid;
    }
    static Date date(int index) { return dateFromUnixSeconds(1'746'102'896.0 + 30.0 * index); }

    std::mt19937 m_random{7};
};

} // namespace nightjar::bench
