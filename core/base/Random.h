// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "core/base/Uuid.h"

#include <cstddef>
#include <cstdint>

namespace nightjar {

/// A small reproducible source of numbers: the same seed and stream give the same sequence on every machine.
class Random {
public:
    /// Sources with the same seed and different streams are independent, so that what one node does never
    /// depends on how often another was asked.
    Random(std::uint64_t seed, std::uint64_t stream);

    [[nodiscard]] std::uint64_t next();
    /// From 0 up to but not including 1.
    [[nodiscard]] double share();
    [[nodiscard]] double between(double least, double most);
    /// From 0 up to but not including `count`, which is at least 1.
    [[nodiscard]] std::size_t index(std::size_t count);
    [[nodiscard]] Uuid uuid();
    /// Never 0.
    [[nodiscard]] std::uint32_t packetID();

private:
    std::uint64_t m_state;
};

} // namespace nightjar
