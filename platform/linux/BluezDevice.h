// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/BluetoothCentral.h"

#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>

namespace nightjar {

/// What the Bluetooth daemon tells of one device, as an advertisement that is always ready to be handed out.
/// Properties of another type than they should have count as missing.
class BluezDevice {
public:
    static constexpr std::size_t longestName = 248; ///< bytes; Bluetooth Core: the longest name of a device
    static constexpr qsizetype mostServices = 256;

    /// A version 5 identifier (RFC 4122) made of the address; none unless that is six hexadecimal pairs with
    /// colons.
    [[nodiscard]] static std::optional<Uuid> identifier(const QString& address);

    void set(const QString& property, const QVariant& value);
    void clear(const QString& property);
    /// Once all the properties of a message are set. Whether a reading was among them.
    bool finish();

    /// A device without a valid address is none.
    [[nodiscard]] bool isValid() const { return m_isValid; }
    [[nodiscard]] const BluetoothAdvertisement& advertisement() const { return m_advertisement; }

private:
    void setNames();

    QString m_address;
    QString m_name;
    QString m_alias;
    BluetoothAdvertisement m_advertisement;
    bool m_isValid = false;
    bool m_hasNewNames = false;
    bool m_hasReading = false;
};

} // namespace nightjar
