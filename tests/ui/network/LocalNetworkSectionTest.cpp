// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/network/LocalNetworkSection.h"
#include "tests/app/network/NetworkRig.h"
#include "tests/support/ViewRig.h"
#include "ui/common/DelayPicker.h"
#include "ui/common/SwitchControl.h"

#include <QSignalSpy>

#include <filesystem>
#include <fstream>
#include <set>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using testing::service;

class LocalNetworkSectionTest : public ::testing::Test, public testing::ViewRig<LocalNetworkSection> {
protected:
    static inline const std::string printerID = "printer|local.";
    static inline const std::string laptopID = "laptop|local.";

    LocalNetworkBrowser& browser() { return model->localNetwork(); }
    [[nodiscard]] const LocalNetworkDevice& printer() { return *browser().deviceWith(printerID); }
    void announce(const ServiceInstance& instance) {
        network.announce(instance);
        settle();
    }
    /// "Printer" is there and chosen.
    void choosePrinter() {
        open();
        announce(service("Printer", "_ipp._tcp"));
        clickRow(printerID);
    }
};

TEST_F(LocalNetworkSectionTest, watchesWhileItIsOnScreen) {
    open();
    QSignalSpy title(&*section, &ScanningSection::scanTitleChanged);
    EXPECT_TRUE(browser().isScanning());
    EXPECT_EQ(section->scanTitle(), QStringLiteral("Stop"));
    EXPECT_THAT(texts(section->sidebar()),
                HasSubstr("Looking for devices\nBonjour devices will appear as they announce services."));
    EXPECT_THAT(texts(section->content()),
                HasSubstr("Listening on the Local Network\nSelect an available or previously seen device in "
                          "the sidebar."));
    EXPECT_THAT(texts(section->inspector()),
                HasSubstr("Select a Local Network device\nChoose a device to see when it was last available "
                          "and which services it announced."));

    section->scanOrStop();
    settle();
    EXPECT_EQ(title.size(), 1);
    EXPECT_EQ(section->scanTitle(), QStringLiteral("Scan"));
    EXPECT_THAT(texts(section->sidebar()),
                AllOf(HasSubstr("No Local Network devices\nStart a scan to listen for devices on this "
                                "network."),
                      HasSubstr("Local Network is ready")));
    EXPECT_THAT(texts(section->content()),
                HasSubstr("Choose a Local Network device\nStart a scan to discover devices that announce "
                          "services through Bonjour."));

    section->scanOrStop();
    EXPECT_TRUE(browser().isScanning());
    section->deactivate();
    EXPECT_FALSE(browser().isScanning());
}

TEST_F(LocalNetworkSectionTest, listsWhatIsThereAndWhatWas) {
    open();
    announce(service("Printer", "_ipp._tcp"));
    announce(service("Laptop"));
    browser().setLossAlert(true, laptopID);
    network.vanish(service("Printer", "_ipp._tcp"));
    settle();

    EXPECT_THAT(rows(), ElementsAre("Tracked:", "Laptop | Remote login | Network departure alert enabled",
                                    "Seen before:", "Printer | Last seen 0 s ago"));
    EXPECT_THAT(texts(section->sidebar()), HasSubstr("1 devices available"));
}

TEST_F(LocalNetworkSectionTest, showsTheChosenDevice) {
    choosePrinter();

    EXPECT_THAT(texts(section->content()),
                HasSubstr("Printer\nAvailable on this network\nPrinter\nNightjar can currently see one or "
                          "more services announced by this device."));
    EXPECT_THAT(
        texts(section->inspector()),
        AllOf(HasSubstr("Printer\nAvailable now\nStatus\nState\nAvailable\nLast seen\n0 s ago\nDomain\n"
                        "local.\nInterface\nwlan0"),
              HasSubstr("Services\nPrinter\n_ipp._tcp"), Not(HasSubstr("Tracking"))));

    announce(service("Printer", "_http._tcp", std::nullopt));
    EXPECT_THAT(texts(section->inspector()), HasSubstr("Web service\n_http._tcp\nPrinter\n_ipp._tcp"));

    network.setInstances("_ipp._tcp", {});
    network.setInstances("_http._tcp", {});
    settle();
    EXPECT_THAT(texts(section->content()),
                HasSubstr("Not currently available\nWeb service, Printer\nLast seen 0 s ago"));
    EXPECT_THAT(texts(section->inspector()),
                AllOf(HasSubstr("Seen before"), HasSubstr("Not currently seen")));
}

TEST_F(LocalNetworkSectionTest, itsControlsDoWhatTheySay) {
    choosePrinter();
    click(section->content(), "Track This Device");
    EXPECT_TRUE(printer().isTracked);
    EXPECT_THAT(texts(section->content()), HasSubstr("Tracked by Nightjar"));
    EXPECT_FALSE(control<QAbstractButton>(section->content(), "Track This Device"));
    EXPECT_THAT(
        texts(section->inspector()),
        AllOf(HasSubstr("The alarm is armed only after this Mac sees the device online. Nightjar sends "
                        "one alert when it leaves and one update when it returns."),
              Not(HasSubstr("Monitor"))));

    click(section->inspector(), "Alert when this device leaves the network");
    EXPECT_TRUE(printer().lossAlertEnabled);
    EXPECT_THAT(texts(section->inspector()),
                AllOf(HasSubstr("Monitor\nOnline · alarm armed"), Not(HasSubstr("no alert can come"))));
    for (const auto trouble : {ServiceBrowserState::Kind::waiting, ServiceBrowserState::Kind::failed}) {
        network.tell({.kind = trouble});
        settle();
        EXPECT_THAT(texts(section->inspector()), HasSubstr("no alert can come"));
        announce(service("Laptop " + std::to_string(static_cast<int>(trouble))));
        EXPECT_THAT(texts(section->inspector()), Not(HasSubstr("no alert can come")));
    }

    auto* picker = control<DelayPicker>(section->inspector(), "Alert after");
    picker->setFocus();
    QTest::keyClick(picker, Qt::Key_Down);
    EXPECT_EQ(printer().lossAlertDelay, 900);

    click(section->inspector(), "Alert when this device leaves the network");
    EXPECT_FALSE(printer().lossAlertEnabled);
    click(section->inspector(), "Stop Tracking");
    EXPECT_FALSE(printer().isTracked);
    click(section->inspector(), "Track This Device");
    EXPECT_TRUE(printer().isTracked);
    click(section->inspector(), "Forget Device");
    EXPECT_FALSE(browser().deviceWith(printerID));
    EXPECT_THAT(texts(section->inspector()), HasSubstr("Select a Local Network device"));
}

TEST_F(LocalNetworkSectionTest, offersTheSameInTheMenuOfARow) {
    choosePrinter();
    chooseInMenu(printerID, "Track This Device");
    EXPECT_TRUE(printer().isTracked);
    chooseInMenu(printerID, "Stop Tracking");
    EXPECT_FALSE(printer().isTracked);
    chooseInMenu(printerID, "Forget Device");
    EXPECT_FALSE(browser().deviceWith(printerID));
}

TEST_F(LocalNetworkSectionTest, selectsTheFirstTrackedDeviceWhenTheChosenOneIsForgotten) {
    choosePrinter();
    announce(service("Laptop"));
    browser().track(laptopID);
    settle();
    EXPECT_EQ(section->selection().id(), printerID);

    browser().forget(printerID);
    settle();
    EXPECT_EQ(section->selection().id(), laptopID);
    EXPECT_EQ(list().selectedID(), laptopID);

    section->deactivate();
    browser().forget(laptopID);
    settle();
    EXPECT_EQ(section->selection().id(), laptopID) << "not on screen: chosen when it comes back";
    section->activate();
    settle();
    EXPECT_THAT(section->selection().id(), IsEmpty());
}

TEST_F(LocalNetworkSectionTest, showsADelayThatIsNoneOfTheChoices) {
    choosePrinter();
    browser().setLossAlert(true, printerID);
    browser().setLossAlertDelay(60, printerID);
    settle();

    auto* picker = control<DelayPicker>(section->inspector(), "Alert after");
    EXPECT_EQ(picker->currentText(), QStringLiteral("1 minute"));
    EXPECT_EQ(picker->count(), 7);
    browser().setLossAlertDelay(5400, printerID);
    settle();
    EXPECT_EQ(picker->currentText(), QStringLiteral("1 hour 30 minutes"));
    EXPECT_EQ(picker->itemText(5), picker->currentText()) << "in its place among the others";
    browser().setLossAlertDelay(300, printerID);
    settle();
    EXPECT_EQ(picker->currentText(), QStringLiteral("5 minutes"));
    EXPECT_EQ(picker->count(), 6);

    QWheelEvent wheel({5, 5}, picker->mapToGlobal(QPointF(5, 5)), {}, {0, -120}, Qt::NoButton, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(picker, &wheel);
    EXPECT_EQ(printer().lossAlertDelay, 300);
}

TEST_F(LocalNetworkSectionTest, survivesWhatTheNetworkSays) {
    const std::string marked = "<b>bold</b><img src=x>";
    const std::string endless(10'000, 'W');
    const std::string turned = "\u202eleft\u202c\nline";
    std::filesystem::create_directories(folder.path() / "Nightjar");
    std::ofstream(folder.path() / "Nightjar" / "local-network-devices.json")
        << R"([{"id":"kept|","name":"kept","domain":"","lossAlertDelay":1e300,"serviceTypes":["","_)"
        << endless << R"(._tcp","<i>\u202e"]}])";
    open();
    for (const auto& name : {marked, endless, turned, std::string("a\0b", 3), std::string(40, '\n')})
        announce(service(name, "_http._tcp", name));
    std::set<ServiceInstance> crowd;
    for (int number = 0; number < 2000; ++number)
        crowd.insert(service("Device " + std::to_string(number)));
    network.setInstances("_ssh._tcp", crowd);
    settle();
    EXPECT_EQ(list().rows().rowCount(), 2000 + 5 + 1 + 2);

    for (const auto& device : std::vector(browser().devices())) {
        if (device.name.starts_with("Device "))
            continue;
        browser().track(device.id);
        section->selection().set(device.id);
        settle();
        EXPECT_LE(widthNeeded(section->inspector()), 280);
        EXPECT_LE(widthNeeded(section->content()), 480);
        EXPECT_THAT(texts(section->inspector()), Not(HasSubstr("\u202e")));
    }
    EXPECT_THAT(rows(), Contains("<b>bold</b><img src=x> | Web service | Tracked"));
    EXPECT_THAT(rows(), Contains("left line | Web service | Tracked"));
    window->grab();
    EXPECT_THAT(nameless(), IsEmpty());
}

} // namespace
} // namespace nightjar
