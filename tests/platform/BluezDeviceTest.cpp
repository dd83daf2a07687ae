// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BluezDevice.h"

#include <gtest/gtest.h>

#include <string>

namespace nightjar {
namespace {

BluezDevice device(const QVariantMap& properties) {
    BluezDevice device;
    device.set(QStringLiteral("Address"), QStringLiteral("C0:11:22:33:44:55"));
    for (const auto& [name, value] : properties.asKeyValueRange())
        device.set(name, value);
    device.finish();
    return device;
}

struct Names {
    const char* description;
    QString alias;
    QString name;
    std::optional<std::string> peripheralName;
    std::optional<std::string> localName;
};

TEST(BluezDeviceTest, anAliasIsTheDevicesOwnNameUnlessTheDaemonMadeItUp) {
    const Names table[] = {
        {"neither", QStringLiteral("C0-11-22-33-44-55"), {}, {}, {}},
        {"an address in small letters", QStringLiteral("c0-11-22-33-44-55"), {}, {}, {}},
        {"as advertised", QStringLiteral("Tag"), QStringLiteral("Tag"), {}, "Tag"},
        {"given by the user", QStringLiteral("Keys"), QStringLiteral("Tag"), "Keys", "Tag"},
        {"given, never advertised", QStringLiteral("Keys"), {}, "Keys", {}},
        {"another device's address", QStringLiteral("C0-11-22-33-44-56"), {}, "C0-11-22-33-44-56", {}},
    };
    for (const auto& [description, alias, name, peripheralName, localName] : table) {
        const auto heard =
            device({{QStringLiteral("Alias"), alias}, {QStringLiteral("Name"), name}}).advertisement();
        EXPECT_EQ(heard.peripheralName, peripheralName) << description;
        EXPECT_EQ(heard.localName, localName) << description;
    }
}

TEST(BluezDeviceTest, aLongNameIsCutBetweenTwoCharacters) {
    const auto nameOf = [](const QString& text) {
        return device({{QStringLiteral("Name"), text}}).advertisement().localName.value_or("");
    };
    const QString fits(248, u'a');
    const QString two = QString(247, u'a') + QStringLiteral("ä");
    const QString four = QStringLiteral("🦊").repeated(1'000);

    EXPECT_EQ(nameOf(fits), fits.toStdString());
    EXPECT_EQ(nameOf(fits + u'a'), fits.toStdString());
    EXPECT_EQ(nameOf(two), std::string(247, 'a'));
    EXPECT_EQ(nameOf(four), QStringLiteral("🦊").repeated(62).toStdString());
    EXPECT_EQ(nameOf(u'a' + four), (u'a' + QStringLiteral("🦊").repeated(61)).toStdString());
}

/// What is tracked is kept under these identifiers: they must never change.
TEST(BluezDeviceTest, anAddressGivesTheSameIdentifierForEver) {
    const auto identifier = BluezDevice::identifier(QStringLiteral("c0:11:22:33:44:55"));
    ASSERT_TRUE(identifier.has_value());
    EXPECT_EQ(identifier->text(), "8F87C9D6-33CD-5A0B-B412-7C761C8A600A");
    EXPECT_EQ(identifier, BluezDevice::identifier(QStringLiteral("C0:11:22:33:44:55")));
}

TEST(BluezDeviceTest, whatIsNoAddressGivesNoDevice) {
    for (const auto& text : {QString(), QStringLiteral("C0:11:22:33:44"), QStringLiteral("C0:11:22:33:44:5G"),
                             QStringLiteral("C0-11-22-33-44-55"), QStringLiteral("C0:11:22:33:44:55:66"),
                             QStringLiteral("Ｃ0:11:22:33:44:55")}) {
        EXPECT_FALSE(BluezDevice::identifier(text).has_value()) << text.toStdString();
        BluezDevice device;
        device.set(QStringLiteral("Address"), text);
        EXPECT_FALSE(device.isValid()) << text.toStdString();
    }
}

TEST(BluezDeviceTest, aReadingOfAnotherTypeCountsAsHeardWithoutReading) {
    for (const auto& value : {QVariant(-60), QVariant(QStringLiteral("-60")), QVariant(-60.0),
                              QVariant::fromValue<ushort>(0xFFC4), QVariant(true), QVariant()}) {
        BluezDevice device;
        device.set(QStringLiteral("RSSI"), QVariant::fromValue<short>(-50));
        device.finish();
        device.set(QStringLiteral("RSSI"), value);
        EXPECT_TRUE(device.finish()) << value.typeName();
        EXPECT_EQ(device.advertisement().rssi, BluetoothAdvertisement::noRssi) << value.typeName();
    }
}

TEST(BluezDeviceTest, aReadingThatIsTakenBackIsNoAdvertisement) {
    auto device = nightjar::device({{QStringLiteral("RSSI"), QVariant::fromValue<short>(-50)}});
    device.clear(QStringLiteral("RSSI"));
    EXPECT_FALSE(device.finish());
    EXPECT_EQ(device.advertisement().rssi, BluetoothAdvertisement::noRssi);
}

TEST(BluezDeviceTest, servicesAreReadAsFarAsTheyAreIdentifiers) {
    const auto good = QStringLiteral("6ba1b218-15a8-461f-9fa8-5dcae273eafd");
    const auto servicesOf = [](const QVariant& value) {
        return device({{QStringLiteral("UUIDs"), value}}).advertisement().serviceUUIDs;
    };

    EXPECT_EQ(servicesOf(QStringList{QStringLiteral("180f"), good, QString()}),
              std::vector{*Uuid::fromText(good.toStdString())});
    EXPECT_TRUE(servicesOf(good).empty()) << "a text is no list";
    EXPECT_EQ(servicesOf(QStringList(100'000, good)).size(),
              static_cast<std::size_t>(BluezDevice::mostServices));
}

} // namespace
} // namespace nightjar
