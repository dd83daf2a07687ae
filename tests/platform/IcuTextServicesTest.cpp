// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/IcuTextServices.h"

#include "platform/simulated/SimulatedHostEnvironment.h"
#include "tests/support/Environment.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <iostream>
#include <map>
#include <vector>

namespace nightjar {
namespace {

TEST(IcuTextServices, ordersNamesAsAFileBrowserDoes) {
    const std::vector<std::string> ordered = {
        "",
        "!abc",
        "🚲",
        "7 Eichen",
        "10 Eichen",
        "alpha",
        "Alpha", // case matters only between equal names
        "Alpha 2",
        "alpha 10",
        "beta",
        "cote",
        "coté", // and accents before case
        "côte",
        "Node 2",
        "node 10",
        "node 99999999999999999998",
        "node 100000000000000000000",
        "Straße",
        "Tor 007",
        "Tor 7",
        "Zeta",
        "омега",
    };
    // The tests run under LC_ALL=C.UTF-8, where the C library itself knows no numbers.
    for (const char* locale : {"", "en_GB", "no_SUCH"}) {
        const IcuTextServices text(locale);
        for (std::size_t i = 0; i + 1 < ordered.size(); ++i) {
            EXPECT_LT(text.collationKey(ordered[i]), text.collationKey(ordered[i + 1]))
                << locale << ": " << ordered[i] << " | " << ordered[i + 1];
        }
    }
}

TEST(IcuTextServices, theLanguageCounts) {
    const IcuTextServices german("de_DE");
    const IcuTextServices swedish("sv_SE");

    EXPECT_LT(german.collationKey("Ärger"), german.collationKey("Zeta"));
    EXPECT_GT(swedish.collationKey("Ärger"), swedish.collationKey("Zeta"));
}

TEST(IcuTextServices, differentTextsHaveDifferentKeys) {
    const IcuTextServices text("");
    EXPECT_EQ(text.collationKey("Fox"), text.collationKey("Fox"));
    EXPECT_NE(text.collationKey("Tor 7"), text.collationKey("Tor 07"));
    EXPECT_NE(text.collationKey("é"), text.collationKey("e\u0301"));
    EXPECT_NE(text.collationKey("a"), text.collationKey("a\u0001"));
    EXPECT_LT(text.collationKey(std::string(5'000, 'a')), text.collationKey(std::string(5'000, 'a') + "b"));
}

TEST(IcuTextServices, theLocaleIsTheFirstThatIsSet) {
    struct Case {
        std::map<std::string, std::string> variables;
        std::string locale;
    };
    const Case cases[] = {
        {{}, ""},
        {{{"LANG", "de_DE.UTF-8"}}, "de_DE"},
        {{{"LANG", "de_DE.UTF-8"}, {"LC_COLLATE", "C"}}, ""},
        {{{"LANG", "C.UTF-8"}, {"LC_COLLATE", "sv_SE"}}, "sv_SE"},
        {{{"LANG", "de_DE"}, {"LC_COLLATE", "sv_SE"}, {"LC_ALL", "fr_FR@euro"}}, "fr_FR"},
        {{{"LANG", "fi_FI"}, {"LC_ALL", ""}}, "fi_FI"},
        {{{"LANG", "POSIX"}}, ""},
    };
    for (const auto& [variables, locale] : cases) {
        SimulatedHostEnvironment host;
        for (const auto& [name, value] : variables)
            host.setEnvironmentVariable(name, value);
        EXPECT_EQ(IcuTextServices::systemLocale(host), locale);
    }
}

/// In a process of its own each, because the locale of the system is read once.
TEST(IcuTextServicesDeathTest, timesOfDayAreShortInEveryLocale) {
    struct Case {
        const char* locale;
        const char* time;
    };
    const Case cases[] = {
        {"C", "^00:07 14:05$"},
        {"C.UTF-8", "^00:07 14:05$"},
        {"POSIX", "^00:07 14:05$"},
        {"de_DE.UTF-8", "^00:07 14:05$"},
        {"fi_FI.UTF-8", "^0\\.07 14\\.05$"},
        {"en_US.UTF-8", "^12:07.{1,3}AM 2:05.{1,3}PM$"},
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    for (const auto& [locale, time] : cases) {
        const Environment set({{"LC_ALL", locale}, {"TZ", "HERE-5:30"}});
        const auto print = [] {
            // 18:37:59 and 08:35:00 UTC, five and a half hours earlier than there.
            const IcuTextServices text("");
            std::cerr << text.shortTimeOfDay(dateFromUnixSeconds(1'700'073'479)) << ' '
                      << text.shortTimeOfDay(dateFromUnixSeconds(1'700'123'700)) << std::flush;
            std::_Exit(0);
        };
        EXPECT_EXIT(print(), ::testing::ExitedWithCode(0), time) << locale;
    }
}

} // namespace
} // namespace nightjar
