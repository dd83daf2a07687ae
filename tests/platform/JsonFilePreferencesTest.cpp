// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/JsonFilePreferences.h"

#include "core/base/AtomicFile.h"
#include "platform/simulated/FakeScheduler.h"

#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <limits>
#include <sys/stat.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
namespace fs = std::filesystem;

class JsonFilePreferencesTest : public ::testing::Test {
protected:
    [[nodiscard]] JsonFilePreferences open() { return JsonFilePreferences(file, scheduler); }

    void write(std::string_view text) {
        fs::create_directories(file.parent_path());
        std::ofstream(file) << text;
    }
    [[nodiscard]] std::string fileText() const { return readWholeFile(file).value_or("(none)"); }

    QTemporaryDir m_folder;
    fs::path folder = m_folder.path().toStdString();
    fs::path file = folder / "Nightjar" / "preferences.json";
    FakeScheduler scheduler;
};

TEST_F(JsonFilePreferencesTest, everyTypeSurvivesARestart) {
    const Preferences::Dictionary names{{"/dev/cu.usbserial-1", "Basis \"Süd\" 🏠"}, {"", ""}};
    const Preferences::Data bytes{0, 1, 0xFE, 0xFF, '"', '\n'};
    {
        auto preferences = open();
        preferences.setBoolean("yes", true);
        preferences.setString("text", "a/b \"c\"\n\u2028 <ü>");
        preferences.setString("one", "1");
        preferences.setNumber("real", 75.25);
        preferences.setNumber("whole real", 1.0);
        preferences.setNumber("tiny", 5e-324);
        preferences.setInteger("broadcast", 4294967295);
        preferences.setInteger("lowest", std::numeric_limits<std::int64_t>::min());
        preferences.setInteger("highest", std::numeric_limits<std::int64_t>::max());
        preferences.setDictionary("names", names);
        preferences.setDictionary("no names", {});
        preferences.setData("data", bytes);
        preferences.setData("no data", {});
    }
    const auto preferences = open();
    EXPECT_EQ(preferences.boolean("yes"), true);
    EXPECT_EQ(preferences.string("text"), "a/b \"c\"\n\u2028 <ü>");
    EXPECT_EQ(preferences.string("one"), "1");
    EXPECT_EQ(preferences.number("real"), 75.25);
    EXPECT_EQ(preferences.number("whole real"), 1.0);
    EXPECT_EQ(preferences.number("tiny"), 5e-324);
    EXPECT_EQ(preferences.integer("broadcast"), 4294967295);
    EXPECT_EQ(preferences.number("broadcast"), 4294967295.0);
    EXPECT_EQ(preferences.integer("lowest"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(preferences.integer("highest"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(preferences.dictionary("names"), names);
    EXPECT_EQ(preferences.dictionary("no names"), Preferences::Dictionary());
    EXPECT_EQ(preferences.data("data"), bytes);
    EXPECT_EQ(preferences.data("no data"), Preferences::Data());
}

TEST_F(JsonFilePreferencesTest, anotherTypeReadsAsMissingBeforeAndAfterARestart) {
    struct Case {
        const char* key;
        bool boolean, string, number, integer, dictionary, data;
    };
    const Case cases[] = {
        {"true", true, false, false, false, false, false},
        {"\"1\"", false, true, false, false, false, false},
        {"1", false, false, true, true, false, false},
        {"1.0", false, false, true, false, false, false},
        {"names", false, false, false, false, true, false},
        {"absent", false, false, false, false, false, false},
    };
    auto before = open();
    before.setBoolean("true", true);
    before.setString("\"1\"", "1");
    before.setInteger("1", 1);
    before.setNumber("1.0", 1.0);
    before.setDictionary("names", {{"a", "b"}});
    before.flush();
    const auto after = open();

    for (const Preferences* preferences :
         {static_cast<const Preferences*>(&before), static_cast<const Preferences*>(&after)}) {
        for (const auto& expected : cases) {
            SCOPED_TRACE(expected.key);
            EXPECT_EQ(preferences->boolean(expected.key).has_value(), expected.boolean);
            EXPECT_EQ(preferences->string(expected.key).has_value(), expected.string);
            EXPECT_EQ(preferences->number(expected.key).has_value(), expected.number);
            EXPECT_EQ(preferences->integer(expected.key).has_value(), expected.integer);
            EXPECT_EQ(preferences->dictionary(expected.key).has_value(), expected.dictionary);
            EXPECT_EQ(preferences->data(expected.key).has_value(), expected.data);
        }
    }
}

TEST_F(JsonFilePreferencesTest, theReaderTellsDataFromADictionary) {
    auto preferences = open();
    preferences.setDictionary("like data", {{"data", "AAEC"}});
    preferences.setDictionary("not base64", {{"data", "a name"}});
    preferences.setDictionary("more", {{"data", "AAEC"}, {"else", ""}});

    EXPECT_EQ(preferences.dictionary("like data"), (Preferences::Dictionary{{"data", "AAEC"}}));
    EXPECT_EQ(preferences.data("not base64"), std::nullopt);
    EXPECT_EQ(preferences.data("more"), std::nullopt);
    EXPECT_EQ(preferences.dictionary("not base64"), (Preferences::Dictionary{{"data", "a name"}}));
}

TEST_F(JsonFilePreferencesTest, changesAreWrittenTogetherAndOnlyWhenThereAreAny) {
    auto preferences = open();
    preferences.setInteger("a", 1);
    scheduler.advance(150ms);
    preferences.setInteger("a", 2);
    EXPECT_FALSE(fs::exists(file));
    scheduler.advance(50ms);
    EXPECT_EQ(fileText(), "{\n  \"a\" : 2\n}\n");

    write("{}");
    preferences.setInteger("a", 2);
    preferences.remove("b");
    scheduler.advance(1h);
    EXPECT_EQ(fileText(), "{}") << "nothing has changed";

    preferences.remove("a");
    preferences.setNumber("c", 0.5);
    scheduler.advance(200ms);
    EXPECT_EQ(fileText(), "{\n  \"c\" : 0.5\n}\n");
}

TEST_F(JsonFilePreferencesTest, whatOthersPutIntoTheFileStays) {
    write(R"({"future":{"list":[1,2.5,null,{"x":"y"}],"z":true},"parkingRadius":"wide","old":null})");
    {
        auto preferences = open();
        EXPECT_EQ(preferences.number("parkingRadius"), std::nullopt);
        preferences.setString("serialPort", "/dev/cu.usbmodem1");
    }
    EXPECT_EQ(
        json::JsonValue::parse(fileText()),
        json::JsonValue::parse(R"({"future":{"list":[1,2.5,null,{"x":"y"}],"z":true},"parkingRadius":"wide",)"
                               R"("old":null,"serialPort":"/dev/cu.usbmodem1"})"));
}

TEST_F(JsonFilePreferencesTest, aDamagedFileIsKeptAside) {
    for (const std::string damaged : {"", "{\"a\":1", "[1]", "{} x", "{\"a\":\"\xff\"}"}) {
        SCOPED_TRACE(damaged);
        write(damaged);
        {
            auto preferences = open();
            EXPECT_EQ(preferences.problem(),
                      "The settings file “preferences.json” could not be read. It was kept as "
                      "“preferences.json.damaged”, and the settings start afresh.");
            EXPECT_EQ(preferences.integer("a"), std::nullopt);
            preferences.setInteger("b", 2);
        }
        EXPECT_EQ(readWholeFile(file.string() + ".damaged"), damaged);
        EXPECT_EQ(open().integer("b"), 2);
        EXPECT_EQ(open().problem(), std::nullopt);
    }
}

TEST_F(JsonFilePreferencesTest, aDamagedFileThatCannotBeMovedIsNotOverwritten) {
    write("{");
    fs::create_directories(file.string() + ".damaged/full");
    {
        auto preferences = open();
        EXPECT_EQ(preferences.problem(), "The settings file “preferences.json” could not be read. Settings "
                                         "are not saved until it is removed.");
        preferences.setInteger("b", 2);
        EXPECT_EQ(preferences.integer("b"), 2);
    }
    EXPECT_EQ(fileText(), "{");
}

TEST_F(JsonFilePreferencesTest, whatCouldNotBeSavedIsKeptAndTriedAgain) {
    std::ofstream(folder / "Nightjar") << "a file where the folder should be";
    auto preferences = open();
    EXPECT_EQ(preferences.problem(), std::nullopt);
    preferences.setInteger("a", 1);
    scheduler.advance(200ms);
    EXPECT_EQ(preferences.integer("a"), 1);
    EXPECT_TRUE(
        preferences.problem().value_or("").starts_with("The file “preferences.json” couldn’t be saved: "))
        << preferences.problem().value_or("(none)");

    fs::remove(folder / "Nightjar");
    preferences.setInteger("b", 2);
    scheduler.advance(200ms);

    EXPECT_EQ(preferences.problem(), std::nullopt);
    EXPECT_EQ(open().integer("a"), 1);
}

TEST_F(JsonFilePreferencesTest, aLinkedFileStaysALink) {
    write("{\"a\":1}");
    const auto target = folder / "dotfiles.json";
    fs::rename(file, target);
    fs::create_symlink(target, file);

    open().setInteger("b", 2);

    EXPECT_TRUE(fs::is_symlink(file));
    EXPECT_EQ(fileText(), "{\n  \"a\" : 1,\n  \"b\" : 2\n}\n");
}

TEST_F(JsonFilePreferencesTest, numbersThatAreNotFiniteRemoveTheValue) {
    auto preferences = open();
    preferences.setNumber("parkingRadius", 100);
    preferences.setNumber("parkingRadius", std::nan(""));
    preferences.setNumber("other", std::numeric_limits<double>::infinity());
    preferences.setBoolean("kept", true);
    preferences.flush();

    EXPECT_EQ(preferences.number("parkingRadius"), std::nullopt);
    EXPECT_EQ(fileText(), "{\n  \"kept\" : true\n}\n");
}

TEST_F(JsonFilePreferencesTest, withoutAHomeSettingsLiveInMemory) {
    JsonFilePreferences preferences(std::nullopt, scheduler);
    preferences.setString("serialPort", "x");
    scheduler.advance(1s);

    EXPECT_EQ(preferences.string("serialPort"), "x");
    EXPECT_EQ(preferences.problem(), std::nullopt);
}

} // namespace
} // namespace nightjar
