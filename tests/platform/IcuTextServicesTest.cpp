// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/IcuTextServices.h"

#include "platform/simulated/SimulatedHostEnvironment.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace nightjar
