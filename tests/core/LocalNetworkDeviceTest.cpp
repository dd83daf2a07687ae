// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/network/LocalNetworkDevice.h"
#include "core/base/AtomicFile.h"
#include "core/base/TextFolding.h"
#include "core/network/LocalNetworkDevicesFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

namespace nightjar {
namespace {

using nightjar::testing::TemporaryFolder;
using Device = LocalNetworkDevice;
using Kind = LocalNetworkDeviceKind;

TEST(LocalNetworkDeviceTest, oneNameIsOneDeviceHoweverItIsWritten) {
    struct Row {
        const char* name;
        const char* domain;
        const char* id;
    };
    const std::vector<Row> rows{
        {"Office-Mac", "local.", "office-mac|local."},
        {"office-mac", "LOCAL.", "office-mac|local."},
        {"Émile iMac", "local.", "emile imac|local."},
        {"E\u0301MILE IMAC", "local.", "emile imac|local."},
        {"ÅNGSTRÖM ÆØ", "local.", "angstrom æø|local."},
        {"Straße", "local.", "strasse|local."},
        {"ΣΊΣΥΦΟΣ", "local.", "σισυφοσ|local."},
        {"İstanbul I", "local.", "istanbul i|local."},
        {"ＦＵＬＬ", "local.", "ｆｕｌｌ|local."},
        {"한국", "local.", "한국|local."},
        {"Tom & <b>Ada</b>\n\u202E|🖨️", "x.É.", "tom & <b>ada</b>\n\u202E|🖨|x.é."},
        {"", "", "|"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(Device::identifier(row.name, row.domain), row.id) << row.name;
        const auto folded = foldedText(row.name);
        EXPECT_EQ(foldedText(folded), folded) << "folding twice changes nothing: " << row.name;
    }
}

TEST(LocalNetworkDeviceTest, servicesAndInterfacesAreKeptOnceAndSorted) {
    Device device{.id = "mac|local.", .name = "Mac", .domain = "local."};
    device.record("_ssh._tcp", "wlan0", Date{Seconds{1}});
    device.record("_afpovertcp._tcp", "", Date{Seconds{2}});
    device.record("_ssh._tcp", "eth0", Date{Seconds{3}});
    device.isOnline = false;
    device.record("_SSH._tcp", "wlan0", Date{Seconds{4}});

    const std::vector<std::string> types{"_SSH._tcp", "_afpovertcp._tcp", "_ssh._tcp"};
    const std::vector<std::string> interfaces{"eth0", "wlan0"};
    EXPECT_EQ(device.serviceTypes, types);
    EXPECT_EQ(device.interfaceNames, interfaces);
    EXPECT_EQ(device.lastSeen, Date{Seconds{4}});
    EXPECT_TRUE(device.isOnline);
}

TEST(LocalNetworkDeviceTest, nameAndServicesTellTheKind) {
    struct Row {
        const char* name;
        std::vector<std::string> types;
        Kind kind;
    };
    const std::vector<Row> rows{
        {"Ben MacBook Pro", {"_workstation._tcp"}, Kind::laptop},
        {"Mac Studio", {}, Kind::computer},
        {"Studio MÁC", {"_ipp._tcp"}, Kind::computer},
        {"mac of Ben", {}, Kind::computer},
        {"The iMac", {}, Kind::computer},
        {"Old mac pro 1", {}, Kind::computer},
        {"Machine", {}, Kind::generic},
        {"Tarmac", {}, Kind::generic},
        {"Mac", {}, Kind::generic},
        {"AppleTV", {"_raop._tcp"}, Kind::television},
        {"HomePod Küche", {"_printer._tcp"}, Kind::speaker},
        {"Living Room", {"_raop._tcp"}, Kind::speaker},
        {"Laser", {"_printer._tcp", "_smb._tcp"}, Kind::printer},
        {"Laser", {"_ipps._tcp"}, Kind::printer},
        {"Box", {"_raop._tcp", "_smb._tcp"}, Kind::storage},
        {"Box", {"_smb._tcp", "_workstation._tcp"}, Kind::computer},
        {"Box", {"_SMB._tcp"}, Kind::generic},
        {"Stick", {"_googlecast._tcp"}, Kind::generic},
    };
    for (const auto& row : rows) {
        const Device device{.id = "", .name = row.name, .domain = "", .serviceTypes = row.types};
        EXPECT_EQ(device.kind(), row.kind) << row.name << ": " << rawValue(device.kind());
    }
    for (const auto name : localNetworkDeviceKindNames)
        EXPECT_EQ(rawValue(localNetworkDeviceKindFrom(name).value()), name);
    EXPECT_FALSE(localNetworkDeviceKindFrom("toaster"));
}

TEST(LocalNetworkDeviceTest, servicesHaveReadableNames) {
    const std::vector<std::pair<const char*, const char*>> rows{
        {"_workstation._tcp", "Computer"},
        {"_raop._tcp", "AirPlay audio"},
        {"_foo_bar._udp", "Foo Bar"},
        {"_my-service._tcp", "My-service"},
        {"_1PASSWORD._tcp", "1Password"},
        {"_éCOLE._tcp._udp", "École"},
        {"_\t_x__y_._tcp", "X  Y"},
        {"_ssh._tcp.", "Ssh."},
        {"_._tcp", ""},
        {"", ""},
    };
    for (const auto& [type, name] : rows)
        EXPECT_EQ(Device::readableServiceName(type), name) << type;

    const Device printer{
        .id = "", .name = "", .domain = "", .serviceTypes = {"_ipp._tcp", "_ipps._tcp", "_x._tcp"}};
    EXPECT_EQ(printer.serviceSummary(), "Printer, Printer, X");
}

class LocalNetworkDevicesFileTest : public ::testing::Test {
protected:
    [[nodiscard]] std::vector<Device> loadedFrom(const std::string& text) {
        std::filesystem::create_directories(m_path.parent_path());
        std::ofstream(m_path, std::ios::binary) << text;
        return m_file.load();
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder.path() / "Nightjar" / "local-network-devices.json";
    LocalNetworkDevicesFile m_file{m_path};
};

TEST_F(LocalNetworkDevicesFileTest, theWholeRecordIsWrittenWithNobodyOnline) {
    Device device{.id = "laser|local.",
                  .name = "Laser \"2\"",
                  .domain = "local.",
                  .serviceTypes = {"_ipp._tcp", "_smb._tcp"},
                  .interfaceNames = {"wlan0"},
                  .lastSeen = Date{Seconds{767793600.125}},
                  .isOnline = true,
                  .isTracked = true,
                  .lossAlertEnabled = true,
                  .lossAlertDelay = 90};
    ASSERT_TRUE(m_file.save({device}));
    EXPECT_EQ(readWholeFile(m_path).value(),
              R"([{"id":"laser|local.","name":"Laser \"2\"","domain":"local.",)"
              R"("serviceTypes":["_ipp._tcp","_smb._tcp"],"interfaceNames":["wlan0"],)"
              R"("lastSeen":767793600.125,"isOnline":false,"isTracked":true,"lossAlertEnabled":true,)"
              R"("lossAlertDelay":90}])");
    device.isOnline = false;
    EXPECT_EQ(m_file.load(), std::vector{device});
}

TEST_F(LocalNetworkDevicesFileTest, whatIsMissingIsMadeUpAndWhatIsWrongFailsTheWhole) {
    const std::string good = R"({"id":"a|local.","domain":"local.","name":"A")";
    const Device bare{.id = "a|local.", .name = "A", .domain = "local."};
    EXPECT_EQ(loadedFrom("[" + good + "}]"), std::vector{bare});
    EXPECT_EQ(bare.lossAlertDelay, 600);
    EXPECT_EQ(bare.lastSeen, distantPast);

    const std::vector<std::pair<const char*, double>> delays{
        {"5", 60}, {"-1e300", 60}, {"60.5", 60.5}, {"90", 90}, {"1e300", 1e300}};
    for (const auto& [text, delay] : delays)
        EXPECT_EQ(loadedFrom("[" + good + ",\"lossAlertDelay\":" + text + "}]").at(0).lossAlertDelay, delay);
    EXPECT_TRUE(loadedFrom("[" + good + R"(,"isOnline":true}])").at(0).isOnline);
    EXPECT_EQ(loadedFrom("[" + good + "}," + good + R"(,"isTracked":true}])"), std::vector{bare})
        << "one record for each device, the first";

    const std::vector<std::string> bad{R"({"id":"b","name":"B"})",
                                       R"({"id":"b","domain":"local."})",
                                       R"({"name":"B","domain":"local."})",
                                       good + R"(,"serviceTypes":"_ssh._tcp"})",
                                       good + R"(,"interfaceNames":[1]})",
                                       good + R"(,"lastSeen":"today"})",
                                       good + R"(,"isTracked":1})",
                                       good + R"(,"lossAlertDelay":"60"})",
                                       good};
    for (const auto& text : bad)
        EXPECT_TRUE(loadedFrom("[" + good + "}," + text + "]").empty()) << text;
}

TEST_F(LocalNetworkDevicesFileTest, aDamagedFileIsKeptBesideTheNewOne) {
    EXPECT_TRUE(loadedFrom("[{]").empty());
    ASSERT_TRUE(m_file.save({}));
    auto aside = m_path;
    aside += ".damaged";
    EXPECT_EQ(readWholeFile(aside).value(), "[{]");
    EXPECT_EQ(readWholeFile(m_path).value(), "[]");
}

} // namespace
} // namespace nightjar
