// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/WakeSignal.h"

#include <cerrno>
#include <cstdint>
#include <sys/eventfd.h>
#include <system_error>

namespace nightjar {

WakeSignal::WakeSignal() : m_event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!m_event)
        throw std::system_error(errno, std::system_category(), "eventfd");
}

void WakeSignal::ring() const {
    // A counter that is full already rings loudly enough, so the result says nothing.
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(m_event.get(), &one, sizeof one);
}

void WakeSignal::clear() const {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto length = ::read(m_event.get(), &count, sizeof count);
}

} // namespace nightjar
