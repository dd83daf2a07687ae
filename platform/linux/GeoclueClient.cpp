// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/GeoclueClient.h"

#include "platform/linux/BusCall.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QPointer>

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

namespace nightjar {
namespace {

const auto service = QStringLiteral("org.freedesktop.GeoClue2");
const auto managerPath = QStringLiteral("/org/freedesktop/GeoClue2/Manager");
const auto managerInterface = QStringLiteral("org.freedesktop.GeoClue2.Manager");
const auto clientInterface = QStringLiteral("org.freedesktop.GeoClue2.Client");
const auto locationInterface = QStringLiteral("org.freedesktop.GeoClue2.Location");
const auto propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

/// The finest of the service's levels: at a coarser one it leaves some of its sources alone.
constexpr unsigned accuracyLevelExact = 8;

using Failure = GeoclueClient::Failure;

Failure failureOf(const QDBusMessage& answer) {
    // An error that says nothing worse than that there is no answer now, or that the service has gone.
    const auto temporary = {"NoReply", "Timeout", "TimedOut", "Disconnected"};
    const auto prefix = QLatin1String("org.freedesktop.DBus.Error.");
    const auto name = answer.errorName();
    if (name == prefix + QLatin1String("AccessDenied"))
        return {.kind = Failure::Kind::denied};
    if (answer.type() != QDBusMessage::ErrorMessage || isNobodyThere(answer) ||
        std::ranges::any_of(temporary, [&](const char* end) { return name == prefix + QLatin1String(end); }))
        return {.kind = Failure::Kind::temporary};
    return {.kind = Failure::Kind::other, .text = errorText(answer)};
}

std::optional<QString> pathIn(const QDBusMessage& answer) {
    if (answer.type() != QDBusMessage::ReplyMessage || answer.signature() != QLatin1String("o"))
        return std::nullopt;
    return answer.arguments().at(0).value<QDBusObjectPath>().path();
}

std::optional<double> number(const QVariantMap& properties, const char* name, double lowest, double highest) {
    const auto value = properties.value(QString::fromLatin1(name));
    if (value.typeId() != QMetaType::Double)
        return std::nullopt;
    const double number = value.toDouble();
    // Not a number fails both comparisons.
    return number >= lowest && number <= highest ? std::optional(number) : std::nullopt;
}

/// Seconds and microseconds since 1970.
std::optional<Date> timestamp(const QVariantMap& properties) {
    const auto value = properties.value(QStringLiteral("Timestamp"));
    if (value.typeId() != qMetaTypeId<QDBusArgument>())
        return std::nullopt;
    const auto argument = value.value<QDBusArgument>();
    if (argument.currentSignature() != QLatin1String("(tt)"))
        return std::nullopt;
    quint64 seconds = 0;
    quint64 microseconds = 0;
    argument.beginStructure();
    argument >> seconds >> microseconds;
    argument.endStructure();
    return dateFromUnixSeconds(static_cast<double>(seconds) + static_cast<double>(microseconds) / 1e6);
}

/// A location without a sensible place or accuracy is none.
std::optional<LocationFix> fix(const QVariantMap& properties, Date now) {
    const auto latitude = number(properties, "Latitude", -90, 90);
    const auto longitude = number(properties, "Longitude", -180, 180);
    const auto accuracy = number(properties, "Accuracy", 0, std::numeric_limits<double>::max());
    if (!latitude || !longitude || !accuracy)
        return std::nullopt;
    return LocationFix{.latitude = *latitude,
                       .longitude = *longitude,
                       .horizontalAccuracy = *accuracy,
                       .timestamp = timestamp(properties).value_or(now)};
}

} // namespace

GeoclueClient::GeoclueClient(QDBusConnection bus, const Scheduler& scheduler, Settings settings,
                             QObject& parent)
    : QObject(&parent), m_bus(std::move(bus)), m_scheduler(scheduler), m_settings(std::move(settings)) {
    const auto busService = QStringLiteral("org.freedesktop.DBus");
    m_bus.connect(busService, QStringLiteral("/org/freedesktop/DBus"), busService,
                  QStringLiteral("NameOwnerChanged"), {service}, QString(), this,
                  SLOT(nameOwnerChanged(QDBusMessage)));
    create();
}

void GeoclueClient::create() {
    // Outlives this object: a client whose making is answered too late has to be cleared away as well.
    auto answered = [self = QPointer(this), bus = m_bus, context = parent()](const QDBusMessage& answer) {
        if (self && !self->m_isOver)
            self->created(answer);
        else if (const auto path = pathIn(answer))
            destroy(bus, *context, answer.service(), *path);
    };
    callLater(m_bus, *parent(),
              {.service = service,
               .path = managerPath,
               .interface = managerInterface,
               .method = QStringLiteral("CreateClient"),
               .limit = m_settings.limit,
               .startsService = true},
              std::move(answered));
}

void GeoclueClient::created(const QDBusMessage& answer) {
    const auto path = pathIn(answer);
    if (!path)
        return isNobodyThere(answer) ? endWith({.kind = Failure::Kind::denied}) : fail(answer);
    m_owner = answer.service();
    m_path = *path;
    start();
}

void GeoclueClient::start() {
    // Without the sender's name: given one, Qt asks the bus for its owner and waits for the answer.
    if (!m_bus.connect(QString(), m_path, clientInterface, QStringLiteral("LocationUpdated"), this,
                       SLOT(locationUpdated(QDBusMessage))))
        return endWith({.kind = Failure::Kind::temporary});
    set("DesktopId", m_settings.desktopId);
    set("DistanceThreshold", m_settings.distanceThreshold);
    set("RequestedAccuracyLevel", accuracyLevelExact);
    call(m_path, clientInterface, QStringLiteral("Start"), {},
         [this](const QDBusMessage&) { Q_EMIT started(); });
}

void GeoclueClient::set(const char* property, const QVariant& value) {
    call(m_path, propertiesInterface, QStringLiteral("Set"),
         {clientInterface, QString::fromLatin1(property), QVariant::fromValue(QDBusVariant(value))},
         [](const QDBusMessage&) {});
}

void GeoclueClient::locationUpdated(const QDBusMessage& signal) {
    // Anyone can send this signal.
    if (m_isOver || signal.service() != m_owner || signal.signature() != QLatin1String("oo"))
        return;
    m_location = signal.arguments().at(1).value<QDBusObjectPath>().path();
    Q_EMIT locationAvailable();
}

void GeoclueClient::readLocation() {
    if (!m_location.isEmpty())
        call(m_location, propertiesInterface, QStringLiteral("GetAll"), {locationInterface},
             [this](const QDBusMessage& answer) { locationRead(answer); });
}

void GeoclueClient::locationRead(const QDBusMessage& answer) {
    if (answer.signature() != QLatin1String("a{sv}"))
        return;
    const auto properties = qdbus_cast<QVariantMap>(answer.arguments().at(0));
    if (const auto read = fix(properties, m_scheduler.now()))
        Q_EMIT located(*read);
}

void GeoclueClient::nameOwnerChanged(const QDBusMessage& signal) {
    if (!m_isOver && !m_owner.isEmpty() && signal.arguments().value(1).toString() == m_owner)
        endWith({.kind = Failure::Kind::temporary});
}

void GeoclueClient::call(const QString& path, const QString& interface, const QString& method,
                         const QVariantList& arguments, std::function<void(const QDBusMessage&)> succeeded) {
    callLater(m_bus, *this,
              {.service = m_owner,
               .path = path,
               .interface = interface,
               .method = method,
               .arguments = arguments,
               .limit = m_settings.limit},
              [this, succeeded = std::move(succeeded)](const QDBusMessage& answer) {
                  if (m_isOver)
                      return;
                  if (answer.type() == QDBusMessage::ReplyMessage)
                      succeeded(answer);
                  else
                      fail(answer);
              });
}

void GeoclueClient::fail(const QDBusMessage& answer) {
    endWith(failureOf(answer));
}

void GeoclueClient::endWith(const Failure& failure) {
    m_isOver = true;
    Q_EMIT failed(failure);
}

void GeoclueClient::close() {
    m_isOver = true;
    if (!m_path.isEmpty())
        destroy(m_bus, *parent(), m_owner, m_path);
    deleteLater();
}

void GeoclueClient::destroy(const QDBusConnection& bus, QObject& context, const QString& owner,
                            const QString& path) {
    const auto ignore = [](const QDBusMessage&) {};
    callLater(
        bus, context,
        {.service = owner, .path = path, .interface = clientInterface, .method = QStringLiteral("Stop")},
        ignore);
    callLater(bus, context,
              {.service = owner,
               .path = managerPath,
               .interface = managerInterface,
               .method = QStringLiteral("DeleteClient"),
               .arguments = {QVariant::fromValue(QDBusObjectPath(path))}},
              ignore);
}

} // namespace nightjar
