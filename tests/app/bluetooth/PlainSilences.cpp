// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/bluetooth/LossRules.h"

#include <algorithm>
#include <string_view>

namespace nightjar::testing {

namespace {

bool disturbs(const Event& event) {
    using enum Happening;
    return event.what != sent && event.what != rename && event.what != clockSet && event.what != transport;
}

bool isOfRadio(const Event& event) {
    return disturbs(event) && (event.what <= Happening::wakeUnnoticed);
}

/// The silences of one device that was never forgotten.
class SilencesOfDevice {
public:
    SilencesOfDevice(const Day& day, std::size_t device) : m_day(day), m_device(device) {}

    [[nodiscard]] PlainSilences judge() {
        for (const Event& event : m_day.events) {
            if (event.what == Happening::stopTracking && event.device == m_device)
                return m_result;
            if (event.what == Happening::sent && event.device == m_device) {
                hear(event);
            } else if (disturbs(event)) {
                disturb(event);
            }
        }
        return m_result;
    }

private:
    void disturb(const Event& event) {
        m_disturbedAt = event.at;
        m_heardAt.reset();
        if (isOfRadio(event))
            m_isScanning = event.what == Happening::startScanning;
        if (event.device != m_device)
            return;
        if (event.what == Happening::alertOn || event.what == Happening::alertOff)
            m_isEnabled = event.what == Happening::alertOn;
        if (event.what == Happening::delay)
            m_delay = std::max(event.value, 15) * Moment{1000};
    }

    void hear(const Event& event) {
        if (event.value > 0) {
            m_emptyAt = event.at;
            return;
        }
        // An advertisement without a reading may have held this one back.
        const bool isClear = event.at - m_emptyAt >= 2000;
        if (m_heardAt && event.at - *m_heardAt >= m_delay + 5000 && isClear)
            judge(*m_heardAt, event.at);
        m_heardAt.reset();
        // Whatever was done before, the device has been processed since.
        if (m_isScanning && m_isEnabled && isClear && event.at - m_disturbedAt > 6000)
            m_heardAt = event.at;
    }

    void judge(Moment from, Moment to) {
        ++m_result.count;
        // The last advertisement may have been held back by the one before.
        constexpr Moment heldBack = 2000;
        const bool isRight =
            count(" is no longer nearby", from, to - 1) == 1 &&
            count(" is no longer nearby", from + m_delay - heldBack, from + m_delay + 5000) == 1 &&
            count(" is nearby again", from + 1, to) == 1 && count(" is nearby again", to, to) == 1;
        if (!isRight) {
            m_result.fault = "device " + std::to_string(m_device) + " was silent from " +
                             std::to_string(from) + " to " + std::to_string(to);
        }
    }

    [[nodiscard]] std::ptrdiff_t count(std::string_view what, Moment from, Moment to) const {
        return std::ranges::count_if(m_day.alerts, [&](const Alert& alert) {
            return alert.device == m_device && alert.at >= from && alert.at <= to &&
                   alert.title.ends_with(what);
        });
    }

    const Day& m_day;
    std::size_t m_device;
    PlainSilences m_result;
    bool m_isScanning = false;
    bool m_isEnabled = false;
    Moment m_delay = 30'000;
    Moment m_disturbedAt = 0;
    Moment m_emptyAt = -10'000; ///< an advertisement without a reading
    std::optional<Moment> m_heardAt;
};

} // namespace

PlainSilences judgePlainSilences(const Day& day) {
    PlainSilences all;
    for (std::size_t device = 0; device < Day::devices; ++device) {
        const auto own = SilencesOfDevice(day, device).judge();
        all.count += own.count;
        if (own.fault)
            all.fault = own.fault;
    }
    return all;
}

} // namespace nightjar::testing
