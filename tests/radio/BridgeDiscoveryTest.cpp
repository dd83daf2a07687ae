// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/SimulatedHostEnvironment.h"
#include "radio/MeshRadio.h"

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using ::testing::ElementsAre;
using enum SimulatedHostEnvironment::FileKind;

constexpr auto variable = "HALVARD_MESHTASTIC_BRIDGE_PATH";
const std::vector<std::string> placesInOrder{
    "/opt/my own bridge",
    "/home/kim/.local/share/Halvard Nightjar/Bridge/HalvardMeshtasticBridge",
    "/Applications/Halvard Meshtastic Bridge.app/Contents/MacOS/HalvardMeshtasticBridge",
    "/bundles/Halvard Meshtastic Bridge.app/Contents/MacOS/HalvardMeshtasticBridge",
    "/opt/homebrew/bin/halvard-meshtastic-bridge",
    "/usr/local/bin/halvard-meshtastic-bridge",
};

struct BridgeSearch : ::testing::Test {
    BridgeSearch() {
        host.setEnvironmentVariable(variable, placesInOrder[0]);
        host.setApplicationSupportFolder("/home/kim/.local/share");
        host.setBundleParentFolder("/bundles");
    }
    SimulatedHostEnvironment host;
};

TEST_F(BridgeSearch, takesTheFirstExecutableOfTheSixPlaces) {
    for (const auto& place : placesInOrder)
        host.addFile(place, executable);

    for (const auto& place : placesInOrder) {
        EXPECT_EQ(MeshRadio::installedBridgeURL(host), place);
        EXPECT_EQ(MeshRadio::bridgeStatus(host), "Installed");
        host.addFile(place, plain);
    }
    EXPECT_EQ(MeshRadio::installedBridgeURL(host), std::nullopt);
    EXPECT_EQ(MeshRadio::bridgeStatus(host), "Not installed");
}

TEST_F(BridgeSearch, passesOverPlacesWhoseFolderOrNameIsAbsent) {
    host.setEnvironmentVariable(variable, "");
    host.setApplicationSupportFolder(std::nullopt);
    host.setBundleParentFolder(std::nullopt);
    host.addFile("", executable);
    host.addFile("Halvard Nightjar/Bridge/HalvardMeshtasticBridge", executable);
    host.addFile("Halvard Meshtastic Bridge.app/Contents/MacOS/HalvardMeshtasticBridge", executable);

    EXPECT_EQ(MeshRadio::installedBridgeURL(host), std::nullopt);

    host.addFile(placesInOrder.back(), executable);
    EXPECT_EQ(MeshRadio::installedBridgeURL(host), placesInOrder.back());
}

TEST(AvailablePorts, areTheSupportedNamesSortedByCodePoint) {
    SimulatedHostEnvironment host;
    for (const auto* name :
         {"cu.usbserial-0001", "cu.usbmodem1101", "tty.usbserial-0001", "cu.wchusbserial-1",
          "cu.Bluetooth-Incoming-Port", "cu.SLAB_USBtoUART", "cu.USBSERIAL", "xcu.usbmodem1"}) {
        host.plugIn(name);
    }

    EXPECT_THAT(MeshRadio::availablePorts(host),
                ElementsAre("/dev/cu.SLAB_USBtoUART", "/dev/cu.usbmodem1101", "/dev/cu.usbserial-0001",
                            "/dev/cu.wchusbserial-1"));
}

TEST(AvailablePorts, haveNamesForTheUser) {
    const std::vector<std::pair<std::string, std::string>> names{
        {"/dev/cu.usbserial-0001", "USB device · 0001"},
        {"/dev/cu.SLAB_USBtoUART", "Silicon Labs USB device · cu.SLAB_USBtoUART"},
        {"/dev/cu.wchusbserial-1420", "WCH USB device · 1420"},
        {"/dev/cu.usbmodem14101", "USB device · cu.usbmodem14101"},
        {"/dev/cu.usbserial-a-b--", "USB device · b"},
        {"/dev/---", "USB device"},
        {"cu.slab_usb-7", "USB device · 7"},
        {"/dev/wchusbserial-SLAB_USB", "Silicon Labs USB device · SLAB_USB"},
        {"", "USB device"},
    };
    for (const auto& [path, name] : names)
        EXPECT_EQ(MeshRadio::displayName(path), name) << path;
}

} // namespace
} // namespace nightjar
