// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/CommandLine.h"

#include <gmock/gmock.h>

#include <vector>

namespace nightjar::headless {
namespace {

using testing::HasSubstr;

std::expected<CommandLine, std::string> parse(std::vector<std::string_view> arguments) {
    return CommandLine::parse(arguments);
}

TEST(CommandLineTest, readsItsOptionsInAnyOrder) {
    EXPECT_EQ(parse({}), CommandLine());
    EXPECT_EQ(parse({"--headless"}), (CommandLine{.headless = true}));
    EXPECT_EQ(parse({"--jsonl"}), (CommandLine{.headless = true, .jsonLines = true}));
    EXPECT_EQ(parse({"--demo", "--headless"}), (CommandLine{.headless = true, .demo = true}));
    EXPECT_EQ(parse({"--watch", "network", "--demo"}),
              (CommandLine{.demo = true, .watches = {Watch::network}}));
    EXPECT_EQ(parse({"--watch=bluetooth,network", "--watch", "network"}),
              (CommandLine{.watches = {Watch::bluetooth, Watch::network}}));
}

TEST(CommandLineTest, refusesWhatItDoesNotKnow) {
    const std::vector<std::pair<std::vector<std::string_view>, std::string>> cases{
        {{"--headles"}, "Unknown option \"--headles\""},
        {{"demo"}, "Unknown option \"demo\""},
        {{"--demo=1"}, "Unknown option \"--demo=1\""},
        {{"--watchers"}, "Unknown option \"--watchers\""},
        {{"--watch"}, "--watch needs a list"},
        {{"--watch", "mesh"}, "not \"mesh\""},
        {{"--watch", ""}, "not \"\""},
        {{"--watch", "bluetooth,"}, "not \"\""},
        {{"--watch="}, "not \"\""},
    };
    for (const auto& [arguments, reason] : cases) {
        const auto result = CommandLine::parse(arguments);
        ASSERT_FALSE(result) << arguments.front();
        EXPECT_THAT(result.error(), HasSubstr(reason));
    }
}

} // namespace
} // namespace nightjar::headless
