// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/network/NetworkRig.h"

#include <gtest/gtest.h>

#include <functional>

// Who watches the browser, and for how long.

namespace nightjar {
namespace {

using namespace nightjar::testing;
using namespace std::chrono_literals;

class NetworkObserversTest : public ::testing::Test, protected NetworkRig {};

TEST_F(NetworkObserversTest, eachChangeIsAnnouncedBeforeAndToldAfter) {
    scan();
    std::vector<std::string> told;
    using Browser = LocalNetworkBrowser;
    QObject::connect(browser.get(), &Browser::aboutToChange,
                     [&] { told.push_back("before " + std::to_string(browser->devices().size())); });
    QObject::connect(browser.get(), &Browser::devicesChanged,
                     [&] { told.push_back("devices " + std::to_string(browser->devices().size())); });
    QObject::connect(browser.get(), &Browser::stateChanged, [&] { told.push_back(browser->state()); });

    network.announce(printer);
    EXPECT_EQ(told, (std::vector<std::string>{"before 0", "devices 1", "before 1", "1 devices available"}));
    browser->setLossAlert(true, printerID);
    browser->setLossAlertDelay(60, printerID);
    network.vanish(printer);
    told.clear();
    pass(65s);
    EXPECT_EQ(told, (std::vector<std::string>{"before 1", "devices 1"})) << "its status is another";
}

TEST_F(NetworkObserversTest, whoIsToldMayDoAnythingAtOnce) {
    using Browser = LocalNetworkBrowser;
    using Signal = void (Browser::*)();
    const std::vector<Signal> signals{&Browser::aboutToChange, &Browser::devicesChanged,
                                      &Browser::stateChanged, &Browser::isScanningChanged,
                                      &Browser::errorMessageChanged};
    const std::vector<std::function<void(Browser&)>> answers{
        [](Browser& b) { b.start(); }, [](Browser& b) { b.stop(); },
        [](Browser& b) {
            b.stop();
            b.start();
        },
        // The very record may be gone with the operation.
        [](Browser& b) {
            if (!b.devices().empty())
                b.forget(b.devices().front().id);
        },
        [](Browser& b) {
            if (!b.devices().empty())
                b.stopTracking(b.devices().front().id);
        },
        [](Browser& b) { b.setLossAlert(true, printerID); },
        [](Browser& b) { b.setLossAlertDelay(1, printerID); }, [this](Browser&) { network.vanish(printer); },
        [this](Browser&) { network.announce(service("Box", "_http._tcp")); }};
    host.setApplicationSupportFolder(std::nullopt);
    for (const auto signal : signals) {
        for (const auto& answer : answers) {
            for (int turn = 0; turn < 3; ++turn) {
                browser.reset();
                network.setInstances("_ipp._tcp", {});
                scan();
                int told = 0;
                bool isAnswering = false;
                const auto reply = [&] {
                    if (isAnswering || told++ % 3 != turn)
                        return;
                    isAnswering = true;
                    answer(*browser);
                    isAnswering = false;
                };
                QObject::connect(browser.get(), signal, reply);
                notifications.onPost([&](const Notification&) { reply(); });
                for (int i = 0; i < 3; ++i) {
                    network.announce(printer);
                    browser->setLossAlert(true, printerID);
                    browser->setLossAlertDelay(5, printerID);
                    network.vanish(printer);
                    pass(20s);
                    network.announce(printer);
                    browser->stop();
                    browser->setErrorMessage("new");
                    browser->start();
                    browser->track(printerID);
                    browser->forget(printerID);
                }
                // What is shown is what is.
                EXPECT_EQ(browser->isScanning(), !network.browsed().empty());
                const bool saysStopped =
                    browser->state() == "Scan stopped" || browser->state() == "Local Network is ready";
                EXPECT_NE(browser->isScanning(), saysStopped) << browser->state();
                for (const auto& known : browser->devices())
                    EXPECT_FALSE(known.isOnline && !browser->isScanning());
                notifications.onPost({});
            }
        }
    }
}

TEST_F(NetworkObserversTest, nothingIsLeftBehindByABrowserThatIsGone) {
    scan();
    network.announce(printer);
    browser.reset();
    EXPECT_EQ(scheduler.armedTimers(), 0U);
    EXPECT_TRUE(network.browsed().empty());
    network.announce(service("Box"));
    network.tell({.kind = ServiceBrowserState::Kind::waiting});
    create();
    EXPECT_EQ(scheduler.armedTimers(), 0U) << "time passes in a scan only";
    EXPECT_EQ(names(), std::vector<std::string>{"Printer"});
}

TEST_F(NetworkObserversTest, aCrowdIsKeptApart) {
    constexpr int crowd = 5000;
    scan();
    std::set<ServiceInstance> all;
    for (int i = 0; i < crowd; ++i)
        all.insert(service("Node " + std::to_string(i)));
    network.setInstances("_ssh._tcp", all);
    ASSERT_EQ(browser->devices().size(), static_cast<std::size_t>(crowd));
    for (std::size_t i = 0; i < browser->devices().size(); ++i) {
        const auto& known = browser->devices()[i];
        ASSERT_EQ(known.name, "Node " + std::to_string(i));
        ASSERT_EQ(browser->deviceWith(known.id), &known);
    }
    EXPECT_EQ(browser->state(), "5000 devices available");
    network.vanish(service("Node 7"));
    EXPECT_EQ(browser->devices().back().name, "Node 7");
    EXPECT_EQ(browser->state(), "4999 devices available");
}

} // namespace
} // namespace nightjar
