// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/DesktopAppearance.h"
#include "platform/linux/BusConnector.h"

#include <QDBusMessage>
#include <QObject>

#include <optional>
#include <string>

namespace nightjar {

/// The colour scheme as the desktop's portal tells it over the session's bus. Light until it answers, and
/// where nobody does. Main thread.
class PortalAppearance final : public QObject, public DesktopAppearance {
    Q_OBJECT
public:
    /// The environment variable by which a user overrides the desktop.
    static constexpr const char* overrideVariable = "NIGHTJAR_COLOR_SCHEME";

    /// "light" or "dark" in `override` hold whatever the desktop says; nothing is asked then.
    explicit PortalAppearance(BusConnector& sessionBus, const std::optional<std::string>& override = {});

    [[nodiscard]] ColorScheme colorScheme() const override { return m_scheme; }
    /// With a listener the bus is opened and the desktop asked.
    void setListener(std::function<void()> changed) override;

private Q_SLOTS:
    void settingChanged(const QDBusMessage& signal);
    void nameOwnerChanged(const QDBusMessage& signal);

private:
    void listen();
    void ask(const QString& method);
    void answered(const QDBusMessage& answer);
    void use(const QVariant& value);

    BusConnector& m_bus;
    bool m_isFixed = false;
    bool m_isListening = false; ///< on the bus as it is now
    std::function<void()> m_changed;
    ColorScheme m_scheme = ColorScheme::light;
    QString m_owner; ///< the portal's unique name; empty while unknown
    int m_asked = 0; ///< answers to earlier questions are dropped
};

} // namespace nightjar
