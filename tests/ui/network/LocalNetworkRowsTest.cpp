// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/network/LocalNetworkRows.h"
#include "tests/support/Builders.h"

#include <gmock/gmock.h>

namespace nightjar {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

LocalNetworkDevice device(const std::string& name, bool isOnline, bool isTracked = false) {
    LocalNetworkDevice made{.id = name + "|local.", .name = name, .domain = "local."};
    made.isOnline = isOnline;
    made.isTracked = isTracked;
    return made;
}

std::string line(const Row& row) {
    QString text = row.symbol + u'/' + QString::number(static_cast<int>(row.tint)) + u' ' + row.title +
                   QStringLiteral(" | ") + row.caption;
    for (const auto& badge : row.badges)
        text += QStringLiteral(" | ") + badge.symbol + u'/' + QString::number(static_cast<int>(badge.tint)) +
                u' ' + badge.help;
    return text.toStdString();
}

std::string tinted(const char* symbol, Tint tint) {
    return std::string(symbol) + "/" + std::to_string(static_cast<int>(tint)) + " ";
}

TEST(LocalNetworkRows, tellWhetherTheDeviceIsThereAndWatched) {
    const auto lineOf = [](const LocalNetworkDevice& shown) {
        return line(localNetworkDeviceRow(shown, QStringLiteral("2 hours ago")));
    };
    const auto online = tinted("network", Tint::green);
    const auto offline = tinted("network.slash", Tint::secondary);

    auto printer = device("Printer", true);
    EXPECT_EQ(lineOf(printer), online + "Printer | Available now");
    printer.serviceTypes = {"_ipp._tcp", "_ipps._tcp"};
    EXPECT_EQ(lineOf(printer), online + "Printer | Printer, Printer");
    printer.isTracked = true;
    EXPECT_EQ(lineOf(printer), online + "Printer | Printer, Printer | " +
                                   tinted("checkmark.circle.fill", Tint::blue) + "Tracked");
    printer.isOnline = false;
    printer.lossAlertEnabled = true;
    EXPECT_EQ(lineOf(printer), offline + "Printer | Last seen 2 hours ago | " +
                                   tinted("bell.badge.fill", Tint::orange) +
                                   "Network departure alert enabled");
}

TEST(LocalNetworkRows, standOnceEachInTheOrderOfTheList) {
    const std::vector devices{device("a", true), device("b", true, true), device("c", false, true),
                              device("d", false)};

    const auto sections = localNetworkSections(devices);

    ASSERT_EQ(sections.size(), 3U);
    EXPECT_EQ(sections[0].title, QStringLiteral("Tracked"));
    EXPECT_THAT(sections[0].ids, ElementsAre("b|local.", "c|local."));
    EXPECT_EQ(sections[1].title, QStringLiteral("Available now"));
    EXPECT_THAT(sections[1].ids, ElementsAre("a|local."));
    EXPECT_EQ(sections[2].title, QStringLiteral("Seen before"));
    EXPECT_THAT(sections[2].ids, ElementsAre("d|local."));
}

TEST(LocalNetworkRows, keepTheSelectionWhileItsDeviceIsKnown) {
    const auto rule = selectFirstTrackedLocalNetworkDeviceIfNeeded;
    const std::vector devices{device("a", true), device("b", true, true), device("c", false, true)};

    EXPECT_EQ(rule("a|local.", devices), "a|local.");
    EXPECT_EQ(rule("gone|local.", devices), "b|local.");
    EXPECT_EQ(rule("", devices), "b|local.");
    EXPECT_THAT(rule("b|local.", {devices.front()}), IsEmpty());
}

TEST(LocalNetworkRows, nameWhatIsMissing) {
    auto printer = device("Printer", true);
    EXPECT_EQ(domainText(printer), QStringLiteral("local."));
    EXPECT_EQ(interfaceText(printer), QStringLiteral("Not reported"));
    printer.domain.clear();
    printer.interfaceNames = {"eth0", "wlan0"};
    EXPECT_EQ(domainText(printer), QStringLiteral("Local"));
    EXPECT_EQ(interfaceText(printer), QStringLiteral("eth0, wlan0"));
}

} // namespace
} // namespace nightjar
