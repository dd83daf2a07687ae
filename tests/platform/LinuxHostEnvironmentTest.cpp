// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/LinuxHostEnvironment.h"

#include "tests/support/Environment.h"

#include <QTemporaryDir>

#include <gmock/gmock.h>

#include <fstream>
#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace nightjar {
namespace {

namespace fs = std::filesystem;
using ::testing::UnorderedElementsAre;

TEST(LinuxHostEnvironment, foldersFollowTheBaseFolderRules) {
    const fs::path account = ::getpwuid(::getuid())->pw_dir;
    struct Case {
        std::optional<std::string> data, config, home;
        fs::path support, configuration;
    };
    const Case cases[] = {
        {"/d", "/c", "/h", "/d", "/c"},
        {std::nullopt, std::nullopt, "/h", "/h/.local/share", "/h/.config"},
        {"", "", "/h", "/h/.local/share", "/h/.config"},
        {"relative", "./c", "/h", "/h/.local/share", "/h/.config"},
        {std::nullopt, std::nullopt, std::nullopt, account / ".local/share", account / ".config"},
        {std::nullopt, std::nullopt, "", account / ".local/share", account / ".config"},
        {std::nullopt, std::nullopt, "h", account / ".local/share", account / ".config"},
    };
    for (const auto& expected : cases) {
        const Environment set({{"XDG_DATA_HOME", expected.data},
                               {"XDG_CONFIG_HOME", expected.config},
                               {"HOME", expected.home}});
        EXPECT_EQ(LinuxHostEnvironment().applicationSupportFolder(), expected.support);
        EXPECT_EQ(LinuxHostEnvironment().configurationFolder(), expected.configuration);
    }
}

TEST(LinuxHostEnvironment, environmentVariablesTellEmptyFromAbsent) {
    const Environment set({{"NIGHTJAR_TEST_EMPTY", ""}, {"NIGHTJAR_TEST_ABSENT", std::nullopt}});
    EXPECT_EQ(LinuxHostEnvironment().environmentVariable("NIGHTJAR_TEST_EMPTY"), "");
    EXPECT_EQ(LinuxHostEnvironment().environmentVariable("NIGHTJAR_TEST_ABSENT"), std::nullopt);
}

TEST(LinuxHostEnvironment, onlyFilesThatMayBeRunAreExecutable) {
    QTemporaryDir temporary;
    const fs::path folder = temporary.path().toStdString();
    for (const char* name : {"program", "text"})
        std::ofstream(folder / name) << "#!/bin/sh\n";
    fs::permissions(folder / "program", fs::perms::owner_all);
    fs::permissions(folder / "text", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink("program", folder / "link");
    fs::create_symlink("nothing", folder / "dangling");

    const LinuxHostEnvironment host;
    EXPECT_TRUE(host.isExecutableFile(folder / "program"));
    EXPECT_TRUE(host.isExecutableFile(folder / "link"));
    EXPECT_FALSE(host.isExecutableFile(folder / "text"));
    EXPECT_FALSE(host.isExecutableFile(folder / "dangling"));
    EXPECT_FALSE(host.isExecutableFile(folder)) << "a folder that may be entered";
    EXPECT_FALSE(host.isExecutableFile(""));
    EXPECT_TRUE(host.exists(folder / "text"));
    EXPECT_FALSE(host.exists(folder / "dangling"));
    EXPECT_FALSE(host.exists(folder / "text" / "below a file"));
}

TEST(LinuxHostEnvironment, devicesAreListedFromTheGivenFolder) {
    QTemporaryDir temporary;
    const fs::path folder = temporary.path().toStdString();
    std::ofstream(folder / "cu.usbmodem1");
    std::ofstream(folder / "tty0");
    const LinuxHostEnvironment host;
    {
        const Environment set({{LinuxHostEnvironment::deviceFolderVariable, folder.string()}});
        EXPECT_EQ(host.deviceFolder(), folder);
        EXPECT_THAT(host.deviceNames(), UnorderedElementsAre("cu.usbmodem1", "tty0"));
    }
    {
        const Environment set({{LinuxHostEnvironment::deviceFolderVariable, (folder / "gone").string()}});
        EXPECT_THAT(host.deviceNames(), UnorderedElementsAre());
    }
    for (const auto& unusable :
         {std::optional<std::string>(), std::optional<std::string>(""), std::optional<std::string>("dev")}) {
        const Environment set({{LinuxHostEnvironment::deviceFolderVariable, unusable}});
        EXPECT_EQ(host.deviceFolder(), "/dev");
    }
}

} // namespace
} // namespace nightjar
