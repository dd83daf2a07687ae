// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "RandomRecords.h"

#include <bit>
#include <cmath>
#include <cstdlib>

namespace nightjar::testing {
namespace {

std::uint64_t chooseSeed() {
    if (const char* wanted = std::getenv("NIGHTJAR_TEST_SEED"))
        return std::strtoull(wanted, nullptr, 10);
    return std::random_device{}();
}

void appendUtf8(std::string& text, std::uint32_t c) {
    const auto byte = [&](std::uint32_t value) { text += static_cast<char>(value); };
    if (c < 0x80) {
        byte(c);
    } else if (c < 0x800) {
        byte(0xC0 | c >> 6);
        byte(0x80 | (c & 0x3F));
    } else if (c < 0x10000) {
        byte(0xE0 | c >> 12);
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    } else {
        byte(0xF0 | c >> 18);
        byte(0x80 | (c >> 12 & 0x3F));
        byte(0x80 | (c >> 6 & 0x3F));
        byte(0x80 | (c & 0x3F));
    }
}

} // namespace

RandomRecords::RandomRecords() : m_seed(chooseSeed()), m_random(m_seed) {}

std::uint64_t RandomRecords::below(std::uint64_t end) {
    return std::uniform_int_distribution<std::uint64_t>(0, end - 1)(m_random);
}

std::uint32_t RandomRecords::uint32() {
    constexpr std::array<std::uint32_t, 4> edges{0, 1, 0x7FFF'FFFF, 0xFFFF'FFFF};
    return chance(4) ? edges[below(edges.size())] : static_cast<std::uint32_t>(m_random());
}

Uuid RandomRecords::uuid() {
    return {std::bit_cast<std::array<std::uint8_t, 16>>(std::array{m_random(), m_random()})};
}

std::string RandomRecords::text() {
    std::string text;
    for (auto length = below(chance(5) ? 60 : 12); length > 0; --length) {
        switch (m_ordinary ? 2 + below(2) * below(2) : below(4)) {
        case 0:
            appendUtf8(text, static_cast<std::uint32_t>(below(0x20)));
            break;
        case 1:
            text += "\"\\/\b\n/\x7F"[below(7)];
            break;
        case 2:
            text += static_cast<char>('a' + below(26));
            break;
        default:
            const auto c = static_cast<std::uint32_t>(0x20 + below(0x110000 - 0x20));
            appendUtf8(text, c >= 0xD800 && c < 0xE000 ? 0x20AC : c);
        }
    }
    return text;
}

double RandomRecords::number() {
    if (m_ordinary || chance(3))
        return static_cast<double>(static_cast<std::int64_t>(below(3'600'000'000)) - 1'800'000'000) * 1e-7;
    if (chance(3))
        return static_cast<double>(static_cast<std::int64_t>(m_random() >> below(64)));
    for (;;) {
        const auto any = std::bit_cast<double>(m_random());
        if (std::isfinite(any))
            return any;
    }
}

float RandomRecords::smallNumber() {
    if (m_ordinary)
        return static_cast<float>(below(4000)) / 1000 - 2;
    for (;;) {
        const auto any = std::bit_cast<float>(static_cast<std::uint32_t>(m_random()));
        if (std::isfinite(any))
            return any;
    }
}

Date RandomRecords::date() {
    return dateFromUnixSeconds(static_cast<double>(below(315'537'897'600)) - 62'135'596'800);
}

MeshPosition RandomRecords::position() {
    return {.id = uuid(),
            .nodeNumber = uint32(),
            .latitude = number(),
            .longitude = number(),
            .altitude = maybe([&] { return static_cast<std::int32_t>(uint32()); }),
            .timestamp = date()};
}

MeshMessage RandomRecords::message() {
    return {.id = uuid(),
            .packetID = uint32(),
            .sender = uint32(),
            .recipient = uint32(),
            .channel = uint32(),
            .text = text(),
            .timestamp = date(),
            .isOutgoing = chance(2)};
}

MeshNode RandomRecords::node() {
    return {.number = uint32(),
            .longName = text(),
            .shortName = text(),
            .hardware = text(),
            .batteryLevel = maybe([&] { return uint32(); }),
            .voltage = maybe([&] { return smallNumber(); }),
            .signalToNoise = maybe([&] { return smallNumber(); }),
            .hopsAway = maybe([&] { return uint32(); }),
            .lastSeen = maybe([&] { return date(); }),
            .position = maybe([&] { return position(); })};
}

MeshtasticRadioSettings RandomRecords::settings() {
    return {.usePreset = chance(2),
            .region = meshtasticRegions[below(meshtasticRegions.size())],
            .modemPreset = meshtasticModemPresets[below(meshtasticModemPresets.size())],
            .hopLimit = uint32(),
            .channelNum = uint32(),
            .txEnabled = chance(2),
            .txPower = static_cast<std::int32_t>(uint32()),
            .rxBoostedGain = chance(2),
            .overrideDutyCycle = chance(2),
            .overrideFrequency = smallNumber()};
}

MeshtasticBridgeRequest RandomRecords::request() {
    return {.protocolVersion = meshtasticBridgeProtocolVersion,
            .requestID = uuid(),
            .command = static_cast<MeshtasticBridgeCommand>(below(meshtasticBridgeCommandNames.size())),
            .port = maybe([&] { return text(); }),
            .text = maybe([&] { return text(); }),
            .recipient = maybe([&] { return uint32(); }),
            .channel = maybe([&] { return uint32(); }),
            .settings = maybe([&] { return settings(); })};
}

MeshtasticBridgeResponse RandomRecords::response() {
    return {.protocolVersion = m_ordinary ? 1 : static_cast<std::int64_t>(m_random()),
            .requestID = maybe([&] { return uuid(); }),
            .event = static_cast<MeshtasticBridgeEvent>(below(meshtasticBridgeEventNames.size())),
            .error = maybe([&] { return text(); }),
            .status = maybe([&] { return text(); }),
            .port = maybe([&] { return text(); }),
            .localNodeID = maybe([&] { return uint32(); }),
            .node = maybe([&] { return node(); }),
            .channel = maybe([&] { return uint32(); }),
            .channelName = maybe([&] { return text(); }),
            .message = maybe([&] { return message(); }),
            .settings = maybe([&] { return settings(); }),
            .packetID = maybe([&] { return uint32(); })};
}

void RandomRecords::mutate(std::string& text) {
    static constexpr std::array<std::string_view, 40> pieces{"\"",
                                                             "\\",
                                                             "/",
                                                             "{",
                                                             "}",
                                                             "[",
                                                             "]",
                                                             ",",
                                                             ":",
                                                             " ",
                                                             "\n",
                                                             "\t",
                                                             "\r",
                                                             "0",
                                                             "-",
                                                             "-0",
                                                             "1.0",
                                                             ".5",
                                                             "1e5",
                                                             "E+3",
                                                             "1e400",
                                                             "99999999999999999999",
                                                             "0.1234567890123456789",
                                                             "null",
                                                             "true",
                                                             "false",
                                                             "\\u0041",
                                                             "\\ud800",
                                                             "\\n",
                                                             "\\/",
                                                             "\xFF",
                                                             "\xC3",
                                                             "\xE2\x82",
                                                             "é",
                                                             "\x01",
                                                             "\0",
                                                             "\"x\":1,",
                                                             "\"id\":",
                                                             "+",
                                                             "x"};
    const auto at = below(text.size() + 1);
    const auto length = std::min<std::size_t>(below(4), text.size() - at);
    switch (below(4)) {
    case 0:
        text.erase(at, length);
        break;
    case 1:
        text.insert(at, text.substr(below(text.size() + 1), below(30)));
        break;
    default:
        text.replace(at, length, pieces[below(pieces.size())]);
    }
}

} // namespace nightjar::testing
