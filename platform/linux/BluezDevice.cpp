// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BluezDevice.h"

#include "platform/linux/BluezReading.h"

#include <QUuid>

#include <algorithm>
#include <utility>

namespace nightjar {
namespace {

/// Of this program alone; another one would give every tracked device another identifier.
constexpr QUuid identifierNamespace(0x3d1f6c52, 0x9a47, 0x4e0b, 0x8c, 0x35, 0x61, 0xd2, 0x7f, 0x0e, 0xb8,
                                    0x94);

constexpr qsizetype addressLength = 17;

bool isHexadecimal(QChar character) {
    return (character >= u'0' && character <= u'9') || (character >= u'A' && character <= u'F');
}

bool isAddress(const QString& text) {
    if (text.size() != addressLength)
        return false;
    for (qsizetype i = 0; i < addressLength; ++i) {
        if (i % 3 == 2 ? text[i] != u':' : !isHexadecimal(text[i]))
            return false;
    }
    return true;
}

/// UTF-8, cut between two characters; absent when empty.
std::optional<std::string> boundedName(const QString& name) {
    if (name.isEmpty())
        return std::nullopt;
    // A character takes at least half as many bytes in UTF-8 as in UTF-16, so what is left out here is cut
    // anyway.
    std::string text =
        name.first(std::min<qsizetype>(name.size(), 2 * BluezDevice::longestName)).toStdString();
    if (text.size() <= BluezDevice::longestName)
        return text;
    std::size_t end = BluezDevice::longestName;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80u)
        --end;
    text.resize(end);
    return text;
}

std::vector<Uuid> services(const QStringList& texts) {
    std::vector<Uuid> services;
    for (const auto& text : texts.first(std::min(texts.size(), BluezDevice::mostServices))) {
        if (const auto uuid = Uuid::fromText(text.toStdString()))
            services.push_back(*uuid);
    }
    return services;
}

} // namespace

std::optional<Uuid> BluezDevice::identifier(const QString& address) {
    const QString upper = address.toUpper();
    if (!isAddress(upper))
        return std::nullopt;
    const QByteArray bytes = QUuid::createUuidV5(identifierNamespace, upper.toLatin1()).toRfc4122();
    Uuid uuid;
    std::copy(bytes.begin(), bytes.end(), uuid.bytes.begin());
    return uuid;
}

void BluezDevice::set(const QString& property, const QVariant& value) {
    if (property == QLatin1String("RSSI")) {
        m_hasReading = true;
        m_advertisement.rssi = bluez::valueOf<short>(value).value_or(BluetoothAdvertisement::noRssi);
    } else if (property == QLatin1String("Address")) {
        m_address = bluez::valueOf<QString>(value).value_or(QString()).toUpper();
        const auto identifier = BluezDevice::identifier(m_address);
        m_isValid = identifier.has_value();
        m_advertisement.peripheral = identifier.value_or(Uuid());
        m_hasNewNames = true;
    } else if (property == QLatin1String("Name")) {
        m_name = bluez::valueOf<QString>(value).value_or(QString());
        m_hasNewNames = true;
    } else if (property == QLatin1String("Alias")) {
        m_alias = bluez::valueOf<QString>(value).value_or(QString());
        m_hasNewNames = true;
    } else if (property == QLatin1String("UUIDs")) {
        m_advertisement.serviceUUIDs = services(bluez::valueOf<QStringList>(value).value_or(QStringList()));
    }
}

void BluezDevice::clear(const QString& property) {
    if (property == QLatin1String("RSSI"))
        m_advertisement.rssi = BluetoothAdvertisement::noRssi;
    else if (property != QLatin1String("Address"))
        set(property, QVariant());
}

bool BluezDevice::finish() {
    if (std::exchange(m_hasNewNames, false))
        setNames();
    return std::exchange(m_hasReading, false);
}

/// The daemon makes up an alias where the user has given none: of the name, or else of the address.
void BluezDevice::setNames() {
    QString dashed = m_address;
    dashed.replace(u':', u'-');
    const bool isMadeUp = m_alias == m_name || m_alias.toUpper() == dashed;
    m_advertisement.peripheralName = isMadeUp ? std::nullopt : boundedName(m_alias);
    m_advertisement.localName = boundedName(m_name);
}

} // namespace nightjar
