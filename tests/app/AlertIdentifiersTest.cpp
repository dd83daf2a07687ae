// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/alerts/AlertIdentifiers.h"

#include <gtest/gtest.h>

namespace nightjar {
namespace {

const Uuid device = *Uuid::fromText("0f8fad5b-d9cb-469f-a165-70867728950e");

TEST(AlertIdentifiers, carryWhatMakesThemUnique) {
    const Date halfPast = dateFromUnixSeconds(1'746'100'800.5);

    EXPECT_EQ(AlertIdentifiers::message(device), "message-0F8FAD5B-D9CB-469F-A165-70867728950E");
    EXPECT_EQ(AlertIdentifiers::guardedDeviceMoved(halfPast), "guarded-device-moved-1746100800.5");
    EXPECT_EQ(AlertIdentifiers::bluetoothLost(device, halfPast),
              "bluetooth-lost-0F8FAD5B-D9CB-469F-A165-70867728950E-1746100800.5");
    EXPECT_EQ(AlertIdentifiers::bluetoothReturned(device, halfPast),
              "bluetooth-returned-0F8FAD5B-D9CB-469F-A165-70867728950E-1746100800.5");
    EXPECT_EQ(AlertIdentifiers::localNetworkLeft("printer|local."), "local-network-left-printer|local.");
    EXPECT_EQ(AlertIdentifiers::localNetworkReturned("printer|local."),
              "local-network-returned-printer|local.");
}

TEST(AlertIdentifiers, aRoundTimeIsWrittenInPlainDigits) {
    EXPECT_EQ(AlertIdentifiers::guardedDeviceMoved(dateFromUnixSeconds(1'800'000'000)),
              "guarded-device-moved-1800000000.0");
}

} // namespace
} // namespace nightjar
