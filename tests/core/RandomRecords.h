// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/bridge/MeshtasticBridge.h"

#include <random>

namespace nightjar::testing {

/// Records with any value that their fields can hold. The seed is new in every run; a failing test prints it,
/// and NIGHTJAR_TEST_SEED repeats it.
class RandomRecords {
public:
    RandomRecords();

    [[nodiscard]] std::uint64_t seed() const { return m_seed; }
    /// From now on only texts and numbers as people and radios send them.
    void setOrdinary(bool ordinary) { m_ordinary = ordinary; }
    std::uint64_t below(std::uint64_t end);
    bool chance(std::uint64_t oneIn) { return below(oneIn) == 0; }

    Uuid uuid();
    std::string text();
    double number();
    /// A whole second between the years 1 and 9999.
    Date date();
    MeshPosition position();
    MeshMessage message();
    MeshNode node();
    MeshtasticRadioSettings settings();
    MeshtasticBridgeRequest request();
    MeshtasticBridgeResponse response();
    /// Gives a JSON text one of the small faults and changes of form that texts have.
    void mutate(std::string& text);

private:
    template <class Make>
    auto maybe(Make make) -> std::optional<decltype(make())> {
        return chance(2) ? std::optional(make()) : std::nullopt;
    }
    std::uint32_t uint32();
    float smallNumber();

    std::uint64_t m_seed;
    bool m_ordinary = false;
    std::mt19937_64 m_random;
};

} // namespace nightjar::testing
