// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/AtomicFile.h"
#include "tests/app/network/NetworkRig.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

// Who is there, what is shown of it and what is kept.

namespace nightjar {
namespace {

using namespace nightjar::testing;
using namespace std::chrono_literals;

using Names = std::vector<std::string>;

class NetworkBrowsingTest : public ::testing::Test, protected NetworkRig {
protected:
    [[nodiscard]] std::string kept() const { return readWholeFile(file()).value_or(""); }
};

TEST_F(NetworkBrowsingTest, aScanBrowsesAllTypesUntilItEnds) {
    create();
    EXPECT_EQ(browser->state(), "Local Network is ready");
    EXPECT_FALSE(browser->isScanning());
    browser->setErrorMessage("old");

    browser->start();
    EXPECT_TRUE(browser->isScanning());
    EXPECT_EQ(browser->state(), "Looking for devices…");
    EXPECT_EQ(browser->errorMessage(), std::nullopt);
    EXPECT_EQ(network.browsed().size(), 15U);
    network.setInstances("_http._tcp", {});
    EXPECT_EQ(browser->state(), "Listening for Bonjour services…");

    browser->stop();
    EXPECT_TRUE(network.browsed().empty());
    EXPECT_EQ(browser->state(), "Local Network is ready");
    EXPECT_FALSE(browser->isScanning());

    browser->start();
    network.announce(printer);
    EXPECT_EQ(browser->state(), "1 devices available");
    browser->stop();
    EXPECT_EQ(browser->state(), "Scan stopped");
    EXPECT_FALSE(device(printerID).isOnline);
}

TEST_F(NetworkBrowsingTest, aDeviceIsOnlineWhileAnyOfItsServicesIs) {
    scan();
    const auto ssh = service("Box", "_ssh._tcp", "eth0");
    const auto sshToo = service("BÓX", "_ssh._tcp", "wlan0");
    const auto smb = service("box", "_smb._tcp", std::nullopt);
    for (const auto& instance : {ssh, sshToo, smb})
        network.announce(instance);
    ASSERT_EQ(names(), Names{"Box"});

    const Names types{"_smb._tcp", "_ssh._tcp"};
    const Names interfaces{"eth0", "wlan0"};
    EXPECT_EQ(device("box|local.").serviceTypes, types);
    EXPECT_EQ(device("box|local.").interfaceNames, interfaces);

    network.vanish(ssh);
    EXPECT_TRUE(device("box|local.").isOnline);
    network.vanish(sshToo);
    EXPECT_TRUE(device("box|local.").isOnline);
    EXPECT_EQ(browser->state(), "1 devices available");
    network.vanish(smb);
    EXPECT_FALSE(device("box|local.").isOnline);
    EXPECT_EQ(browser->state(), "Listening for Bonjour services…");
    EXPECT_EQ(device("box|local.").serviceTypes, types) << "whatever was ever heard";
}

TEST_F(NetworkBrowsingTest, onlineDevicesComeFirstAndNumbersCount) {
    scan();
    std::set<ServiceInstance> all;
    for (const char* name : {"node 10", "Node 2", "alpha", "Zebra", "beta"})
        all.insert(service(name));
    network.setInstances("_ssh._tcp", all);
    EXPECT_EQ(names(), (Names{"alpha", "beta", "Node 2", "node 10", "Zebra"}));

    all.erase(service("alpha"));
    all.erase(service("Node 2"));
    network.setInstances("_ssh._tcp", all);
    EXPECT_EQ(names(), (Names{"beta", "node 10", "Zebra", "alpha", "Node 2"}));
    browser->stop();
    EXPECT_EQ(names(), (Names{"beta", "node 10", "Zebra", "alpha", "Node 2"})) << "the order stays";

    create();
    EXPECT_EQ(names(), (Names{"beta", "node 10", "Zebra", "alpha", "Node 2"})) << "also in the file";
    browser->start();
    EXPECT_EQ(names(), (Names{"beta", "node 10", "Zebra", "alpha", "Node 2"}));
    network.setInstances("_http._tcp", {});
    EXPECT_EQ(names(), (Names{"alpha", "beta", "Node 2", "node 10", "Zebra"}));
    network.setInstances("_ssh._tcp", {service("Zebra")});
    EXPECT_EQ(names(), (Names{"Zebra", "alpha", "beta", "Node 2", "node 10"}));
}

TEST_F(NetworkBrowsingTest, hostileNamesAreOnlyNames) {
    scan();
    const Names hostile{"<b>Tom</b>", "line\nbreak",         "\u202Eevil", "a|b|c", "🖨️",
                        "",           std::string("a\0b", 3)};
    for (const auto& name : hostile)
        network.announce(service(name));
    pass(0ms);
    Names heard = names();
    std::ranges::sort(heard);
    Names expected = hostile;
    std::ranges::sort(expected);
    EXPECT_EQ(heard, expected);
    create();
    EXPECT_EQ(names().size(), hostile.size()) << "and come back from the file";
}

TEST_F(NetworkBrowsingTest, twoDevicesWithOneKeyShareItOneAfterTheOther) {
    scan();
    const auto bar = service("a", "_ssh._tcp", "x|y");
    ServiceInstance twin = bar;
    twin.domain = "local.|x";
    twin.interfaceName = "y";
    network.setInstances("_ssh._tcp", {bar});
    network.setInstances("_ssh._tcp", {twin});
    EXPECT_FALSE(device("a|local.").isOnline);
    EXPECT_TRUE(device("a|local.|x").isOnline);
    network.setInstances("_ssh._tcp", {bar, twin});
    EXPECT_NE(device("a|local.").isOnline, device("a|local.|x").isOnline);
    network.setInstances("_ssh._tcp", {});
    EXPECT_FALSE(device("a|local.").isOnline);
    EXPECT_FALSE(device("a|local.|x").isOnline);
}

TEST_F(NetworkBrowsingTest, statesOfTheSystemAreShown) {
    using Kind = ServiceBrowserState::Kind;
    create();
    network.tell({.kind = Kind::failed, .code = 1, .description = "broken"});
    EXPECT_EQ(browser->state(), "Local Network is ready");
    browser->start();
    network.tell({.kind = Kind::failed, .code = 1, .description = "broken"});
    EXPECT_EQ(browser->state(), "Local Network scan failed");
    EXPECT_EQ(browser->errorMessage(), "broken");
    EXPECT_TRUE(browser->isScanning());

    network.tell({.kind = Kind::waiting, .code = -1, .description = "later"});
    EXPECT_EQ(browser->state(), "Waiting for Local Network access");
    EXPECT_EQ(browser->errorMessage(), "broken");
    network.tell({.kind = Kind::waiting, .code = -65570, .description = "denied"});
    EXPECT_EQ(browser->errorMessage(),
              "Allow Halvard Nightjar to access the Local Network in System Settings → Privacy & Security → "
              "Local Network.");
    for (const auto kind : {Kind::settingUp, Kind::ready, Kind::cancelled})
        network.tell({.kind = kind});
    EXPECT_EQ(browser->state(), "Waiting for Local Network access");
    network.announce(printer);
    EXPECT_EQ(browser->state(), "1 devices available");
}

TEST_F(NetworkBrowsingTest, changesOfOneTurnAreWrittenOnceAtItsEnd) {
    scan();
    for (const auto type : LocalNetworkBrowser::serviceTypes)
        network.announce(service("Box", std::string(type)));
    EXPECT_FALSE(std::filesystem::exists(file()));
    pass(0ms);
    const auto once = kept();
    EXPECT_TRUE(once.contains("_spotify-connect._tcp"));
    EXPECT_FALSE(once.contains("\"isOnline\":true"));

    std::filesystem::remove(file());
    network.announce(service("Flapping"));
    pass(4900ms);
    EXPECT_FALSE(std::filesystem::exists(file())) << "the disk is spared";
    pass(100ms);
    EXPECT_TRUE(kept().contains("Flapping"));
    std::filesystem::remove(file());
    pass(24h);
    EXPECT_FALSE(std::filesystem::exists(file())) << "nothing changed";

    network.announce(service("Late"));
    browser.reset();
    EXPECT_TRUE(kept().contains("Late")) << "the end comes before the turn's";
}

TEST_F(NetworkBrowsingTest, whatTheUserChoosesIsWrittenAtOnce) {
    scan();
    network.announce(printer);
    browser->track(printerID);
    EXPECT_TRUE(kept().contains("\"isTracked\":true"));
    browser->setLossAlertDelay(30, printerID);
    EXPECT_TRUE(kept().contains("\"lossAlertDelay\":30}"));
    browser->setLossAlert(true, printerID);
    EXPECT_TRUE(kept().contains("\"lossAlertEnabled\":true"));
    browser->stopTracking(printerID);
    EXPECT_TRUE(kept().contains("\"isTracked\":false,\"lossAlertEnabled\":false"));
    browser->forget(printerID);
    EXPECT_EQ(kept(), "[]");
    network.setInstances("_http._tcp", {});
    EXPECT_EQ(browser->state(), "Listening for Bonjour services…");
    network.announce(service("PRINTER", "_smb._tcp"));
    EXPECT_EQ(names(), Names{"PRINTER"}) << "a new one";
    EXPECT_FALSE(device(printerID).isTracked);
}

TEST_F(NetworkBrowsingTest, aFileThatCannotBeWrittenIsTriedAgainWithTheNextChange) {
    std::filesystem::create_directories(file().parent_path().parent_path());
    std::ofstream(file().parent_path()) << "a file where the folder should be";
    scan();
    network.announce(printer);
    pass(0ms);
    const std::string sentence = "Known Local Network devices could not be saved: ";
    ASSERT_TRUE(browser->errorMessage().value_or("").starts_with(sentence));
    EXPECT_GT(browser->errorMessage()->size(), sentence.size());
    EXPECT_EQ(names(), Names{"Printer"});

    std::filesystem::remove(file().parent_path());
    network.vanish(printer);
    pass(5s);
    EXPECT_TRUE(kept().contains("Printer"));
}

TEST_F(NetworkBrowsingTest, nobodyIsOnlineAtTheStartWhateverTheFileSays) {
    std::filesystem::create_directories(file().parent_path());
    const std::string record = R"({"id":"a|local.","name":"A","domain":"local.","isOnline":true,)"
                               R"("isTracked":true,"lossAlertEnabled":true,"lossAlertDelay":1})";
    std::ofstream(file()) << "[" << record << "," << record << "]";
    create();
    ASSERT_EQ(names(), Names{"A"});
    EXPECT_FALSE(device("a|local.").isOnline);
    EXPECT_EQ(device("a|local.").lossAlertDelay, 60);

    std::ofstream(file()) << "[";
    create();
    EXPECT_TRUE(names().empty());
    EXPECT_EQ(browser->errorMessage(), std::nullopt);
}

TEST_F(NetworkBrowsingTest, strangersOfLongAgoAreDroppedAndNobodyElse) {
    scan();
    network.announce(printer);
    browser->track(printerID);
    network.vanish(printer);
    const auto guest = [](std::size_t number) { return service("Guest " + std::to_string(number)); };
    std::set<ServiceInstance> all;
    for (std::size_t i = 0; i < 1500; ++i)
        all.insert(guest(i));
    network.setInstances("_ssh._tcp", all);
    pass(1h);
    // One half stays an hour longer, and one of the other comes back.
    all.erase(all.begin(), std::next(all.begin(), 750));
    network.setInstances("_ssh._tcp", all);
    EXPECT_EQ(names().size(), 1501U) << "fewer than a thousand are away";
    network.setInstances("_ssh._tcp", {guest(0)});

    EXPECT_EQ(names().size(), 1002U);
    EXPECT_NE(browser->deviceWith(printerID), nullptr) << "tracked, and away longest";
    EXPECT_TRUE(device("guest 0|local.").isOnline);
    for (const auto& stayed : all)
        EXPECT_NE(browser->deviceWith(LocalNetworkDevice::identifier(stayed.name, "local.")), nullptr);
    create();
    EXPECT_EQ(names().size(), 1002U) << "and in the file";
}

TEST_F(NetworkBrowsingTest, theSystemLearnsWhichServicesMatter) {
    scan();
    network.announce(printer);
    const auto anyOfIt = service("PRINTER", "_http._tcp", "eth7");
    EXPECT_FALSE(network.isImportant(printer));
    browser->track(printerID);
    EXPECT_TRUE(network.isImportant(anyOfIt));
    EXPECT_FALSE(network.isImportant(service("Box")));
    browser->stopTracking(printerID);
    EXPECT_FALSE(network.isImportant(anyOfIt));
    browser->setLossAlert(true, printerID);
    EXPECT_TRUE(network.isImportant(printer));
    create();
    EXPECT_TRUE(network.isImportant(printer)) << "from the file";
    browser->forget(printerID);
    EXPECT_FALSE(network.isImportant(printer));
    browser.reset();
    EXPECT_FALSE(network.isImportant(printer));
}

} // namespace
} // namespace nightjar
