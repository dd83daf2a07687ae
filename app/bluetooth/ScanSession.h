// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"
#include "core/base/Date.h"

#include <optional>

namespace nightjar {

/// Whether the user wants a scan, and whether there is one. Main thread. A step that told somebody of
/// something looks at `generation` to see whether its scan still is the current one.
class ScanSession {
public:
    explicit ScanSession(Announcer isScanning) : m_isScanning(isScanning) {}

    [[nodiscard]] bool isScanning() const { return m_isScanning.get(); }
    /// Kept while the radio is off and while the computer sleeps.
    [[nodiscard]] bool isRequested() const { return m_isRequested; }
    /// The radio has been told to scan.
    [[nodiscard]] bool isRadioScanning() const { return m_isRadioScanning; }
    /// Since when devices are watched; absent while they are not.
    [[nodiscard]] const std::optional<Date>& monitoringStartedAt() const { return m_monitoringStartedAt; }
    [[nodiscard]] int generation() const { return m_generation; }

    void setRequested(bool requested) { m_isRequested = requested; }
    void setRadioScanning() { m_isRadioScanning = true; }
    void setMonitoringStartedAt(std::optional<Date> date) { m_monitoringStartedAt = date; }
    void setScanning(bool scanning) { m_isScanning.set(scanning); }
    /// Another scan, or none. What is published follows with `setScanning`.
    int begin(std::optional<Date> monitoringSince, bool isRadioScanning) {
        m_isRadioScanning = isRadioScanning;
        m_monitoringStartedAt = monitoringSince;
        return ++m_generation;
    }

private:
    Published<bool> m_isScanning;
    bool m_isRequested = false;
    bool m_isRadioScanning = false;
    std::optional<Date> m_monitoringStartedAt;
    int m_generation = 0;
};

} // namespace nightjar
