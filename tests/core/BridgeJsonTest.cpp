// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bridge/BridgeJson.h"
#include "core/bridge/MeshtasticSerialPort.h"

#include <fstream>
#include <gtest/gtest.h>

namespace nightjar {
namespace {

std::vector<std::string> storedLines(const char* name) {
    std::ifstream file(std::string(NIGHTJAR_TEST_DATA "/") + name);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);)
        lines.push_back(line);
    return lines;
}

TEST(BridgeJson, rewritesLinesOfOtherBridgesInItsOwnForm) {
    const auto given = storedLines("responses.in.jsonl");
    const auto expected = storedLines("responses.out.jsonl");
    ASSERT_EQ(given.size(), expected.size());
    ASSERT_GT(given.size(), 10u);
    auto decoder = makeBridgeDecoder();
    for (std::size_t i = 0; i < given.size(); ++i) {
        const auto response = decoder.decode<MeshtasticBridgeResponse>(given[i]);
        ASSERT_TRUE(response) << given[i];
        EXPECT_EQ(encodeLine(*response), expected[i] + "\n");
    }
}

TEST(BridgeJson, writesRequestsWithOnlyTheFieldsOfTheirCommand) {
    MeshtasticBridgeRequest text;
    text.requestID = *Uuid::fromText("0f0e0d0c-0b0a-4908-8706-050403020100");
    text.command = MeshtasticBridgeCommand::sendText;
    text.text = "ready?\nyes / no";
    text.channel = 0;
    EXPECT_EQ(encodeLine(text), R"({"protocolVersion":1,"requestID":"0F0E0D0C-0B0A-4908-8706-050403020100",)"
                                R"("command":"sendText","text":"ready?\nyes \/ no","channel":0})"
                                "\n");
    text.recipient = 4'294'967'294;
    EXPECT_TRUE(encodeLine(text)->contains(R"("recipient":4294967294,"channel":0)"));

    MeshtasticBridgeRequest connect;
    connect.requestID = text.requestID;
    connect.port = "/dev/cu.usbserial-0001";
    EXPECT_EQ(encodeLine(connect),
              R"({"protocolVersion":1,"requestID":"0F0E0D0C-0B0A-4908-8706-050403020100",)"
              R"("command":"connect","port":"\/dev\/cu.usbserial-0001"})"
              "\n");
}

TEST(BridgeJson, carriesTheRecommendedSetup) {
    MeshtasticRadioSettings draft{.usePreset = false,
                                  .region = MeshtasticRegion::unset,
                                  .modemPreset = MeshtasticModemPreset::shortSlow,
                                  .hopLimit = 7,
                                  .channelNum = 9,
                                  .txEnabled = false,
                                  .txPower = 30,
                                  .rxBoostedGain = false,
                                  .overrideDutyCycle = true,
                                  .overrideFrequency = 869.4f};
    applyRecommendedSetup(draft);
    MeshtasticBridgeRequest apply;
    apply.command = MeshtasticBridgeCommand::applyRadioSettings;
    apply.settings = draft;
    EXPECT_TRUE(encodeLine(apply)->contains(
        R"("settings":{"usePreset":true,"region":"eu868","modemPreset":"longFast","hopLimit":3,"channelNum":0,)"
        R"("txEnabled":true,"txPower":0,"rxBoostedGain":true,"overrideDutyCycle":false,"overrideFrequency":0}})"))
        << *encodeLine(apply);
}

TEST(BridgeJson, titlesMatchTheirCases) {
    EXPECT_EQ(title(MeshtasticRegion::eu868), "European Union 868 MHz");
    EXPECT_EQ(title(MeshtasticModemPreset::mediumSlow), "Medium Range \u2013 Slow");
    EXPECT_EQ(title(MeshtasticModemPreset::shortFast), "Short Range \u2013 Fast");
}

TEST(MeshtasticSerialPort, knowsTheNamesOfMeshtasticRadios) {
    using MeshtasticSerialPort::isSupportedDeviceName;
    for (const char* name :
         {"cu.usbmodem1101", "cu.usbserial-0001", "cu.SLAB_USBtoUART", "cu.wchusbserial10", "cu.usbmodem"})
        EXPECT_TRUE(isSupportedDeviceName(name)) << name;
    for (const char* name : {"", "cu.", "tty.usbmodem1101", "cu.Bluetooth-Incoming-Port", "cu.slab_usb",
                             "CU.usbmodem1", "xcu.usbmodem1", "/dev/cu.usbmodem1101", "cu.usbmode"}) {
        EXPECT_FALSE(isSupportedDeviceName(name)) << name;
    }
}

} // namespace
} // namespace nightjar
