// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/network/NetworkTexts.h"
#include "tests/app/network/NetworkRig.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>

// Devices that leave the network and come back.

namespace nightjar {
namespace {

using namespace nightjar::testing;
using namespace std::chrono_literals;

using Names = std::vector<std::string>;

class DepartureTest : public ::testing::Test, protected NetworkRig {
protected:
    [[nodiscard]] std::string printerStatus() const { return statusOf(printerID); }
};

TEST_F(DepartureTest, aDepartureIsToldOnceAndSoIsTheReturn) {
    scan();
    watchPrinter(600);
    EXPECT_EQ(notifications.permissionRequests(), 1);
    EXPECT_EQ(printerStatus(), "Online · alarm armed");
    pass(3s);
    network.vanish(printer);
    EXPECT_EQ(printerStatus(), "Offline · waiting for grace period");
    pass(599s);
    EXPECT_TRUE(titles().empty());
    pass(6s);
    const Notification departure{.identifier = "local-network-left-printer|local.",
                                 .title = left,
                                 .body =
                                     "Printer has not been available on the Local Network for 10 minutes."};
    ASSERT_EQ(notifications.posted(), std::vector{departure});
    EXPECT_EQ(printerStatus(), "Offline · alert sent");
    pass(24h);
    EXPECT_EQ(titles().size(), 1U);

    network.announce(printer);
    const Notification homecoming{.identifier = "local-network-returned-printer|local.",
                                  .title = returned,
                                  .body = "Printer is available on the Local Network again."};
    ASSERT_EQ(titles(), (Names{left, returned}));
    EXPECT_EQ(notifications.posted().back(), homecoming);
    network.vanish(printer);
    pass(599s);
    network.announce(printer);
    EXPECT_EQ(titles().size(), 2U) << "back in time";
}

TEST_F(DepartureTest, whatHappensOnTheWayDecidesWhatIsTold) {
    struct Row {
        const char* what;
        std::function<void(NetworkRig&)> happens;
        Names told;
        const char* status;
    };
    const std::vector<Row> rows{
        {"not seen in this scan",
         [](NetworkRig& t) {
             t.network.vanish(t.printer);
             t.browser->stop();
             t.browser->start();
             t.network.announce(service("Other"));
             t.pass(1h);
         },
         {},
         "Waiting to see this device online"},
        {"the scan ends in the grace",
         [](NetworkRig& t) {
             t.network.vanish(t.printer);
             t.pass(50s);
             t.browser->stop();
             t.pass(1h);
         },
         {},
         "Waiting to see this device online"},
        {"an interface of our own takes it along",
         [](NetworkRig& t) {
             t.network.loseSight(t.printer);
             t.pass(1h);
         },
         {},
         "Waiting to see this device online"},
        {"it is heard again after that and leaves",
         [](NetworkRig& t) {
             t.network.loseSight(t.printer);
             t.network.announce(t.printer);
             t.network.vanish(t.printer);
             t.pass(65s);
         },
         {left},
         "Offline · alert sent"},
        {"told before the scan ended, seen in the next",
         [](NetworkRig& t) {
             t.network.vanish(t.printer);
             t.pass(65s);
             t.browser->stop();
             t.browser->start();
             t.network.announce(t.printer);
         },
         {left, returned},
         "Online · alarm armed"},
        {"the alert is turned off and on again while it is away",
         [](NetworkRig& t) {
             t.network.vanish(t.printer);
             t.pass(65s);
             t.browser->setLossAlert(false, t.printerID);
             t.browser->setLossAlert(true, t.printerID);
             t.pass(1h);
             t.network.announce(t.printer);
         },
         {left},
         "Online · alarm armed"},
        {"tracked no longer, then watched again when another device changes",
         [](NetworkRig& t) {
             t.browser->stopTracking(t.printerID);
             t.browser->setLossAlert(true, t.printerID);
             t.network.vanish(t.printer);
             t.pass(65s);
         },
         {left},
         "Offline · alert sent"},
        {"a new delay begins a new grace",
         [](NetworkRig& t) {
             t.network.vanish(t.printer);
             t.pass(55s);
             t.browser->setLossAlertDelay(30, t.printerID);
             t.pass(25s);
         },
         {},
         "Offline · waiting for grace period"},
        {"a new delay lets it be told again",
         [](NetworkRig& t) {
             t.network.vanish(t.printer);
             t.pass(65s);
             t.browser->setLossAlertDelay(70, t.printerID);
             t.pass(75s);
         },
         {left, left},
         "Offline · alert sent"},
        {"a delay below zero is over at once",
         [](NetworkRig& t) {
             t.browser->setLossAlertDelay(-1e300, t.printerID);
             t.pass(10s);
             t.network.vanish(t.printer);
         },
         {left},
         "Offline · alert sent"},
        {"a delay without end, and none at all",
         [](NetworkRig& t) {
             t.browser->setLossAlertDelay(1e300, t.printerID);
             t.browser->setLossAlertDelay(std::numeric_limits<double>::infinity(), printerID);
             t.browser->setLossAlertDelay(std::numeric_limits<double>::quiet_NaN(), printerID);
             t.network.vanish(t.printer);
             t.pass(100h);
         },
         {},
         "Offline · waiting for grace period"},
        {"a sleep, in which only the date goes on, late in the grace; then the clock is set back",
         [](NetworkRig& t) {
             t.network.vanish(t.printer);
             t.pass(58s);
             t.scheduler.setDate(t.scheduler.now() + 24h);
             t.pass(50s);
             t.scheduler.setDate(t.scheduler.now() - 48h);
             t.pass(5s);
         },
         {},
         "Offline · waiting for grace period"},
        {"the clock is set back during the grace",
         [](NetworkRig& t) {
             t.network.vanish(t.printer);
             t.scheduler.setDate(t.scheduler.now() - 24h);
             t.pass(65s);
         },
         {left},
         "Offline · alert sent"},
        {"forgotten while it is away and back again",
         [](NetworkRig& t) {
             t.network.vanish(t.printer);
             t.pass(65s);
             t.browser->forget(t.printerID);
             t.network.announce(t.printer);
             t.network.vanish(t.printer);
             t.pass(1h);
         },
         {left},
         "Waiting to see this device online"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.what);
        browser.reset();
        network.setInstances("_ipp._tcp", {});
        network.setInstances("_ssh._tcp", {});
        std::filesystem::remove(file());
        scan();
        watchPrinter();
        const auto before = titles().size();
        row.happens(*this);
        const auto all = titles();
        EXPECT_EQ(Names(all.begin() + static_cast<std::ptrdiff_t>(before), all.end()), row.told);
        EXPECT_EQ(printerStatus(), row.status);
    }
}

TEST_F(DepartureTest, nobodyIsMissedWhileNothingCanBeHeard) {
    using Kind = ServiceBrowserState::Kind;
    scan();
    watchPrinter();
    network.vanish(printer);
    pass(50s);
    network.tell({.kind = Kind::waiting});
    pass(1h);
    EXPECT_TRUE(titles().empty()) << "it may have been back for long";
    network.tell({.kind = Kind::ready});
    pass(15s);
    EXPECT_TRUE(titles().empty());
    network.announce(printer);
    pass(1h);
    EXPECT_TRUE(titles().empty());

    network.tell({.kind = Kind::waiting});
    network.vanish(printer);
    pass(55s);
    EXPECT_TRUE(titles().empty());
    pass(10s);
    EXPECT_EQ(titles(), Names{left}) << "results are a sign of sight too";
}

/// Its time may pass without its timers, as when the whole program stands still.
struct StallingScheduler final : Scheduler {
    [[nodiscard]] Date now() const override { return fake.now(); }
    [[nodiscard]] SteadyTime steadyNow() const override { return fake.steadyNow() + stall; }
    [[nodiscard]] Timer after(std::chrono::milliseconds delay, std::function<void()> callback) override {
        return fake.after(delay, std::move(callback));
    }
    [[nodiscard]] Timer every(std::chrono::milliseconds period, std::function<void()> callback) override {
        return fake.every(period, std::move(callback));
    }

    FakeScheduler fake;
    std::chrono::seconds stall{0};
};

TEST_F(DepartureTest, aThreadThatWasHeldUpHearsWhatHappenedFirst) {
    scan();
    watchPrinter();
    browser.reset();
    StallingScheduler time;
    LocalNetworkBrowser stalled(services(time));
    stalled.start();
    network.setInstances("_ipp._tcp", {printer});
    network.vanish(printer);
    time.fake.advance(10s);
    time.stall = 3600s;
    network.announce(service("Other"));
    time.fake.advance(5s);
    EXPECT_TRUE(titles().empty());
    network.announce(printer);
    time.fake.advance(1h);
    EXPECT_TRUE(titles().empty());
    network.vanish(printer);
    time.fake.advance(65s);
    EXPECT_EQ(titles(), Names{left});
}

TEST_F(DepartureTest, unknownDevicesChangeNothing) {
    scan();
    browser->track("x");
    browser->stopTracking("x");
    browser->setLossAlert(true, "x");
    browser->setLossAlertDelay(90, "x");
    EXPECT_FALSE(std::filesystem::exists(file()));
    EXPECT_EQ(notifications.permissionRequests(), 0);
    browser->forget("x");
    EXPECT_TRUE(browser->devices().empty());
}

TEST(NetworkTextsTest, durationsAreWholeUnits) {
    const std::vector<std::pair<double, const char*>> rows{
        {-1e300, "-16666666666666 minute"},
        {0, "0 minute"},
        {59.9, "0 minute"},
        {60, "1 minute"},
        {119.9, "1 minute"},
        {120, "2 minutes"},
        {600, "10 minutes"},
        {3599, "59 minutes"},
        {3600, "1 hour"},
        {7199, "1 hour"},
        {7200, "2 hours"},
        {86399, "23 hours"},
        {86400, "1 day"},
        {1e300, "1 day"},
    };
    for (const auto& [seconds, text] : rows)
        EXPECT_EQ(NetworkTexts::durationText(seconds), text) << seconds;
}

} // namespace
} // namespace nightjar
