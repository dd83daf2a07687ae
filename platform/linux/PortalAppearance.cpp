// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/PortalAppearance.h"

#include "platform/linux/BusCall.h"

#include <QDBusVariant>

#include <utility>

namespace nightjar {
namespace {

const auto service = QStringLiteral("org.freedesktop.portal.Desktop");
const auto path = QStringLiteral("/org/freedesktop/portal/desktop");
const auto interface = QStringLiteral("org.freedesktop.portal.Settings");
const auto group = QStringLiteral("org.freedesktop.appearance");
const auto key = QStringLiteral("color-scheme");
const auto busService = QStringLiteral("org.freedesktop.DBus");
const auto busPath = QStringLiteral("/org/freedesktop/DBus");

const auto readOne = QStringLiteral("ReadOne");
const auto unknownMethod = QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod");

constexpr uint prefersDark = 1;

/// The older way of reading wraps the value twice.
QVariant unwrapped(QVariant value) {
    for (int depth = 0; depth < 3 && value.canConvert<QDBusVariant>(); ++depth)
        value = value.value<QDBusVariant>().variant();
    return value;
}

} // namespace

PortalAppearance::PortalAppearance(BusConnector& sessionBus, const std::optional<std::string>& override)
    : m_bus(sessionBus), m_isFixed(override == "light" || override == "dark") {
    if (m_isFixed) {
        m_scheme = override == "dark" ? ColorScheme::dark : ColorScheme::light;
        return;
    }
    connect(&m_bus, &BusConnector::opened, this, &PortalAppearance::listen);
    connect(&m_bus, &BusConnector::lost, this, [this] {
        m_isListening = false;
        m_owner.clear();
        ++m_asked;
    });
}

void PortalAppearance::setListener(std::function<void()> changed) {
    m_changed = std::move(changed);
    if (!m_changed || m_isFixed)
        return;
    if (m_bus.isConnected())
        listen();
    else
        m_bus.open();
}

void PortalAppearance::listen() {
    if (!m_changed || std::exchange(m_isListening, true))
        return;
    QDBusConnection bus = m_bus.bus();
    bus.connect(busService, busPath, busService, QStringLiteral("NameOwnerChanged"), {service}, QString(),
                this, SLOT(nameOwnerChanged(QDBusMessage)));
    // Without the sender's name: given one, Qt asks the bus for its owner and waits for the answer.
    bus.connect(QString(), path, interface, QStringLiteral("SettingChanged"), this,
                SLOT(settingChanged(QDBusMessage)));
    ask(readOne);
}

void PortalAppearance::ask(const QString& method) {
    callLater(m_bus.bus(), *this,
              {.service = service,
               .path = path,
               .interface = interface,
               .method = method,
               .arguments = {group, key},
               .startsService = true},
              [this, method, question = ++m_asked](const QDBusMessage& answer) {
                  if (question != m_asked)
                      return;
                  const bool isOldPortal = answer.errorName() == unknownMethod && method == readOne;
                  if (isOldPortal)
                      ask(QStringLiteral("Read"));
                  else
                      answered(answer);
              });
}

void PortalAppearance::answered(const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage)
        return;
    m_owner = answer.service();
    use(answer.arguments().value(0));
}

void PortalAppearance::nameOwnerChanged(const QDBusMessage& signal) {
    m_owner = signal.arguments().value(2).toString();
    if (!m_owner.isEmpty())
        ask(readOne);
}

void PortalAppearance::settingChanged(const QDBusMessage& signal) {
    // Anyone can send this signal.
    if (m_owner.isEmpty() || signal.service() != m_owner || signal.signature() != QLatin1String("ssv"))
        return;
    if (signal.arguments().at(0).toString() == group && signal.arguments().at(1).toString() == key)
        use(signal.arguments().at(2));
}

void PortalAppearance::use(const QVariant& value) {
    const QVariant wish = unwrapped(value);
    if (wish.typeId() != QMetaType::UInt)
        return;
    const auto scheme = wish.toUInt() == prefersDark ? ColorScheme::dark : ColorScheme::light;
    if (scheme == std::exchange(m_scheme, scheme))
        return;
    if (const auto tell = m_changed)
        tell();
}

} // namespace nightjar
