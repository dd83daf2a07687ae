// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/Random.h"

namespace nightjar {
namespace {

constexpr std::uint64_t golden = 0x9E37'79B9'7F4A'7C15;

/// The finalizer of the SplitMix64 generator.
constexpr std::uint64_t mixed(std::uint64_t value) {
    value = (value ^ value >> 30) * 0xBF58'476D'1CE4'E5B9;
    value = (value ^ value >> 27) * 0x94D0'49BB'1331'11EB;
    return value ^ value >> 31;
}

} // namespace

Random::Random(std::uint64_t seed, std::uint64_t stream)
    : m_state(mixed(seed) ^ mixed(stream * golden + 1)) {}

std::uint64_t Random::next() {
    m_state += golden;
    return mixed(m_state);
}

double Random::share() {
    return static_cast<double>(next() >> 11) * 0x1p-53;
}

double Random::between(double least, double most) {
    return least + (most - least) * share();
}

std::size_t Random::index(std::size_t count) {
    return static_cast<std::size_t>(next() % count);
}

Uuid Random::uuid() {
    Uuid uuid;
    for (std::size_t half = 0; half < 16; half += 8) {
        std::uint64_t bits = next();
        for (std::size_t i = 0; i < 8; ++i, bits >>= 8)
            uuid.bytes[half + i] = static_cast<std::uint8_t>(bits);
    }
    uuid.bytes[6] = static_cast<std::uint8_t>((uuid.bytes[6] & 0x0F) | 0x40);
    uuid.bytes[8] = static_cast<std::uint8_t>((uuid.bytes[8] & 0x3F) | 0x80);
    return uuid;
}

std::uint32_t Random::packetID() {
    return static_cast<std::uint32_t>(next() % 0xFFFF'FFFF) + 1;
}

} // namespace nightjar
