// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/simulated/NetworkWorld.h"
#include "platform/simulated/FakeScheduler.h"

#include <gmock/gmock.h>

#include <map>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

TEST(NetworkWorldTest, machinesComeAndGoInRoundsOnAllTheirInterfaces) {
    FakeScheduler scheduler;
    FakeServiceBrowser browser;
    std::map<std::string, std::vector<std::size_t>> sizes;
    browser.setListener({.onResults = [&](const std::string& type, const std::vector<ServiceInstance>& all) {
        sizes[type].push_back(all.size());
    }});
    browser.browse("_ipp._tcp");
    browser.browse("_ssh._tcp");
    NetworkWorld world(browser, scheduler,
                       {{.name = "Printer",
                         .types = {"_ipp._tcp"},
                         .interfaces = {"eth0"},
                         .stays = {{1, 18}, {42, 60}},
                         .roundSeconds = 100},
                        {.name = "Attic", .types = {"_ssh._tcp"}, .interfaces = {"eth0", "wlan0"}}});

    world.begin();
    scheduler.advance(999ms);
    EXPECT_THAT(sizes["_ipp._tcp"], ElementsAre());
    scheduler.advance(1ms);
    EXPECT_THAT(sizes["_ipp._tcp"], ElementsAre(1));
    scheduler.advance(17s);
    EXPECT_THAT(sizes["_ipp._tcp"], ElementsAre(1, 0));
    scheduler.advance(200s);
    EXPECT_THAT(sizes["_ipp._tcp"], ElementsAre(1, 0, 1, 0, 1, 0, 1, 0, 1, 0)) << "218 s: in the third round";
    EXPECT_THAT(sizes["_ssh._tcp"], ElementsAre(1, 2));

    browser.cancel();
    browser.browse("_ssh._tcp");
    EXPECT_EQ(sizes["_ssh._tcp"].size(), 2U) << "never within the call";
    scheduler.advance(1s);
    EXPECT_THAT(sizes["_ssh._tcp"], ElementsAre(1, 2, 2)) << "who looks again finds who is there";
}

} // namespace
} // namespace nightjar
