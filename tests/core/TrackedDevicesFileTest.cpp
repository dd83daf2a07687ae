// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/bluetooth/TrackedDevicesFile.h"

#include "core/base/AtomicFile.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fstream>
#include <string>

namespace nightjar {
namespace {

using nightjar::testing::TemporaryFolder;

constexpr const char* keysText =
    R"({"id":"6BA1B218-15A8-461F-9FA8-5DCAE273EAFD","name":"Keys","discoveredName":"Tag",)"
    R"("addedAt":767793600.1234567,"lastSeen":767793660.25,"lastRSSI":-67)";

class TrackedDevicesFileTest : public ::testing::Test {
protected:
    void write(const std::string& text) {
        std::filesystem::create_directories(m_path.parent_path());
        std::ofstream(m_path, std::ios::binary) << text;
    }
    [[nodiscard]] std::vector<TrackedBluetoothDevice> loaded() { return m_file.load(); }
    [[nodiscard]] std::vector<TrackedBluetoothDevice> loadedFrom(const std::string& text) {
        write(text);
        return loaded();
    }
    [[nodiscard]] static TrackedBluetoothDevice keys() {
        return {.id = *Uuid::fromText("6BA1B218-15A8-461F-9FA8-5DCAE273EAFD"),
                .name = "Keys",
                .discoveredName = "Tag",
                .addedAt = Date{Seconds{767793600.1234567}},
                .lastSeen = Date{Seconds{767793660.25}},
                .lastRSSI = -67};
    }

    TemporaryFolder m_folder;
    std::filesystem::path m_path = m_folder.path() / "Nightjar" / "tracked-bluetooth-devices.json";
    TrackedDevicesFile m_file{m_path};
};

using Devices = std::vector<TrackedBluetoothDevice>;

TEST_F(TrackedDevicesFileTest, anOlderFileHasNoAlerts) {
    EXPECT_EQ(loadedFrom(std::string("[") + keysText + R"(,"colour":"red"}])"), Devices{keys()});
}

TEST_F(TrackedDevicesFileTest, whatWasSavedComesBackTheSame) {
    auto bicycle = keys();
    bicycle.id = Uuid::random();
    bicycle.name = "Bicycle \"blue\"\n🚲";
    bicycle.latitude = 52.123456789012345;
    bicycle.longitude = -5.1;
    bicycle.lossAlertEnabled = true;
    bicycle.lossAlertDelay = 7.5;
    bicycle.lastSeen = Date{Seconds{0.1 + 0.2}};
    const Devices all{keys(), bicycle};

    ASSERT_TRUE(m_file.save(all)) << "the folder is made first";
    EXPECT_EQ(loaded(), all);

    ASSERT_TRUE(m_file.save(Devices{keys()}));
    EXPECT_EQ(*readWholeFile(m_path),
              std::string("[") + keysText + R"(,"lossAlertEnabled":false,"lossAlertDelay":30}])");
}

TEST_F(TrackedDevicesFileTest, oneBadRecordFailsTheWhole) {
    const std::string good = std::string(keysText) + "}";
    const auto with = [&](const std::string& from, const std::string& to) {
        auto text = good;
        return text.replace(text.find(from), from.size(), to);
    };
    const std::vector<std::string> bad{with(R"(,"lastRSSI":-67)", ""),
                                       with(R"("lastRSSI":-67)", R"("lastRSSI":-67.5)"),
                                       with(R"("name":"Keys",)", ""),
                                       with(R"("Keys")", "\"Ke\xFFys\""),
                                       with("EAFD", "EAF"),
                                       with("767793660.25", "1e999"),
                                       with("767793660.25", "\"today\""),
                                       with("-67", "-67,\"lossAlertEnabled\":1"),
                                       with("}", ""),
                                       "null"};
    for (const auto& text : bad)
        EXPECT_EQ(loadedFrom("[" + good + "," + text + "]"), Devices{}) << text;
    EXPECT_EQ(loadedFrom("[" + good + "]").size(), 1U);
}

TEST_F(TrackedDevicesFileTest, oddRecordsAreMadeWhole) {
    const std::string second = R"({"id":"6ba1b218-15a8-461f-9fa8-5dcae273eafd","name":"Twin",)"
                               R"("discoveredName":"","addedAt":1,"lastSeen":1,"lastRSSI":0})";
    EXPECT_EQ(loadedFrom(std::string("[") + keysText + "}," + second + "]"), Devices{keys()})
        << "one record for each device";
    EXPECT_EQ(loadedFrom(std::string("[") + keysText + R"(,"latitude":52}])"), Devices{keys()});
    EXPECT_EQ(loadedFrom(std::string("[") + keysText + R"(,"lossAlertDelay":-1e300}])").at(0).lossAlertDelay,
              -1e300);
}

TEST_F(TrackedDevicesFileTest, aDamagedFileIsKeptOnceBesideTheNewOne) {
    auto aside = m_path;
    aside += ".damaged";
    EXPECT_TRUE(loadedFrom("[{]").empty());
    EXPECT_FALSE(std::filesystem::exists(aside)) << "until something else takes its place";

    ASSERT_TRUE(m_file.save(Devices{keys()}));
    EXPECT_EQ(*readWholeFile(aside), "[{]");
    ASSERT_TRUE(m_file.save({}));
    EXPECT_EQ(*readWholeFile(aside), "[{]");
    EXPECT_EQ(*readWholeFile(m_path), "[]");
}

TEST_F(TrackedDevicesFileTest, whereNothingCanBeWrittenItSaysSo) {
    std::ofstream(m_folder.path() / "Nightjar") << "a file where the folder should be";
    EXPECT_TRUE(loaded().empty());
    const auto saved = m_file.save(Devices{keys()});
    ASSERT_FALSE(saved);
    EXPECT_NE(saved.error(), "");

    TrackedDevicesFile nowhere{std::nullopt};
    EXPECT_TRUE(nowhere.load().empty());
    EXPECT_FALSE(nowhere.save(Devices{keys()}));
}

TEST(TrackedBluetoothDeviceTest, halfAPlaceLeavesTheOneThatIsKnown) {
    TrackedBluetoothDevice device;
    device.observe(Date{Seconds{1}}, -50, 52.0, 5.0);
    device.observe(Date{Seconds{2}}, -60, 53.0, std::nullopt);
    device.observe(Date{Seconds{3}}, -70, std::nullopt, 6.0);
    EXPECT_EQ(device.latitude, 52.0);
    EXPECT_EQ(device.longitude, 5.0);
    EXPECT_EQ(device.lastSeen, Date{Seconds{3}});
    EXPECT_EQ(device.lastRSSI, -70);
}

} // namespace
} // namespace nightjar
