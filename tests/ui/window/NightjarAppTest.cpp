// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/window/NightjarApp.h"

#include "platform/simulated/FakeDesktopAppearance.h"
#include "tests/support/ModelRig.h"
#include "tests/ui/Widgets.h"
#include "ui/common/AlertSheet.h"
#include "ui/mesh/MeshMap.h"
#include "ui/mesh/MeshSection.h"
#include "ui/settings/SettingsWindow.h"
#include "ui/window/MainWindow.h"

#include <gmock/gmock.h>

#include <memory>

namespace nightjar {
namespace {

using testing::node;

/// The whole program on a computer of fakes.
class NightjarAppTest : public ::testing::Test {
protected:
    NightjarApp& start() {
        rig.bluetooth.setState(BluetoothRadioState::poweredOn);
        auto link = std::make_unique<testing::FakeRadioLink>();
        radio = link.get();
        app = std::make_unique<NightjarApp>(NightjarApp::Environment{.platform = rig.services(),
                                                                     .appearance = appearance,
                                                                     .version = QStringLiteral("9"),
                                                                     .cacheFolder = {}},
                                            std::move(link));
        app->start();
        rig.scheduler.advance(std::chrono::seconds(1));
        ui::settle();
        return *app;
    }
    NightjarApp& startConnected() {
        rig.preferences.setString("serialPort", testing::ModelRig::port);
        start();
        EXPECT_TRUE(rig.mainThread.runUntil([this] { return !radio->connects.empty(); }));
        radio->connects.back().done(testing::ModelRig::port);
        ui::settle();
        return *app;
    }
    void hear(const MeshNode& node) {
        radio->connects.back().listener.onEvent({.event = MeshtasticBridgeEvent::node, .node = node});
        ui::settle();
    }
    MainWindow& window() { return app->mainWindow(); }
    SettingsWindow* settings() {
        for (auto* widget : QApplication::topLevelWidgets()) {
            if (auto* found = qobject_cast<SettingsWindow*>(widget); found && found->isVisible())
                return found;
        }
        return nullptr;
    }
    AlertSheet* alert() { return qobject_cast<AlertSheet*>(QApplication::activeModalWidget()); }

    testing::ModelRig rig;
    testing::FakeRadioLink* radio = nullptr;
    FakeDesktopAppearance appearance;
    std::unique_ptr<NightjarApp> app;
};

TEST_F(NightjarAppTest, aSectionChosenWhileAnotherOpensLeavesNoWatchBehind) {
    start();
    auto& bluetooth = app->model().bluetoothTrackers();
    auto& network = app->model().localNetwork();
    const auto choose = [this](NetworkSection section) {
        return [=, this] { window().setNetwork(section); };
    };
    QObject::connect(&network, &LocalNetworkBrowser::isScanningChanged, &window(),
                     choose(NetworkSection::meshtastic), Qt::SingleShotConnection);
    window().setNetwork(NetworkSection::localNetwork);
    ui::settle();
    EXPECT_EQ(window().network(), NetworkSection::meshtastic);
    EXPECT_FALSE(network.isScanning());

    window().setNetwork(NetworkSection::bluetooth);
    QObject::connect(&bluetooth, &BluetoothTrackerManager::isScanningChanged, &window(),
                     choose(NetworkSection::meshtastic), Qt::SingleShotConnection);
    window().setNetwork(NetworkSection::localNetwork);
    ui::settle();
    EXPECT_EQ(window().network(), NetworkSection::meshtastic);
    EXPECT_FALSE(bluetooth.isScanning());
    EXPECT_FALSE(network.isScanning());
}

TEST_F(NightjarAppTest, watchesRunWhileTheirSectionIsOnScreen) {
    start();
    auto& bluetooth = app->model().bluetoothTrackers();
    auto& network = app->model().localNetwork();
    EXPECT_EQ(window().network(), NetworkSection::meshtastic);
    EXPECT_FALSE(bluetooth.isScanning());
    EXPECT_FALSE(network.isScanning());

    QTest::keyClick(&window(), Qt::Key_2, Qt::ControlModifier);
    EXPECT_TRUE(network.isScanning());
    QTest::keyClick(&window(), Qt::Key_1, Qt::ControlModifier);
    ui::settle();
    EXPECT_FALSE(network.isScanning());
    EXPECT_TRUE(bluetooth.isScanning());
    EXPECT_EQ(rig.preferences.string("main.selectedNetwork"), "Bluetooth");
    ui::click(window(), "Stop");
    EXPECT_FALSE(bluetooth.isScanning());
    ui::click(window(), "Scan");
    EXPECT_TRUE(bluetooth.isScanning());
    bluetooth.setFinderSoundEnabled(true);

    QTest::keyClick(&window(), Qt::Key_3, Qt::ControlModifier);
    EXPECT_FALSE(bluetooth.isScanning());
    EXPECT_FALSE(bluetooth.finderSoundEnabled());
}

TEST_F(NightjarAppTest, tellsOnEverySectionWhatIsNotWatched) {
    startConnected();
    auto& model = app->model();
    auto& network = model.localNetwork();
    hear(node(42).seen(rig.scheduler.now()).at(52, 5));
    model.setGuarded(MeshNode(node(42)));
    model.markGuardedPosition();
    window().setNetwork(NetworkSection::localNetwork);
    rig.network.announce({.name = "Printer", .type = "_ipp._tcp", .domain = "local."});
    network.setLossAlert(true, "printer|local.");
    ui::settle();
    EXPECT_FALSE(ui::shows(window(), "Guard blind · no base radio"));
    EXPECT_FALSE(ui::shows(window(), "Alerts off: Local Network"));

    window().setNetwork(NetworkSection::bluetooth);
    ui::settle();
    EXPECT_TRUE(ui::shows(window(), "Alerts off: Local Network"));
    radio->connects.back().listener.onLost({.kind = MeshRadioError::Kind::bridgeStopped});
    ui::settle();
    EXPECT_TRUE(ui::shows(window(), "Guard blind · no base radio · Alerts off: Local Network"));
}

TEST_F(NightjarAppTest, beginsWithTheSectionOfLastTime) {
    rig.preferences.setString("main.selectedNetwork", "Local Network");
    start();
    EXPECT_EQ(window().network(), NetworkSection::localNetwork);
    EXPECT_TRUE(app->model().localNetwork().isScanning());
    app.reset();

    rig.preferences.setString("main.selectedNetwork", "Carrier pigeons");
    start();
    EXPECT_EQ(window().network(), NetworkSection::meshtastic);
}

TEST_F(NightjarAppTest, choosesARadioInTheSettingsAndReconnectsTheChosenOne) {
    startConnected();
    hear(node(42).at(52, 5).seen(rig.scheduler.now()));
    const auto connects = radio->connects.size();
    ui::click(window(), "Reconnect Meshtastic USB base");
    EXPECT_EQ(radio->connects.size(), connects + 1);
    EXPECT_EQ(radio->connects.back().port, testing::ModelRig::port);
    EXPECT_TRUE(ui::named<QAbstractButton>(window(), "Fit Meshtastic devices on map")->isEnabled());
    EXPECT_FALSE(settings());

    app->model().disconnect();
    ui::settle();
    EXPECT_FALSE(ui::named<QAbstractButton>(window(), "Fit Meshtastic devices on map")->isEnabled());
    ui::click(window(), "Choose Meshtastic USB radio");
    ASSERT_TRUE(settings());
    EXPECT_EQ(app->model().selectedSettingsTab(), SettingsTab::base);
    QTest::keyClick(settings(), Qt::Key_Escape);
    EXPECT_FALSE(settings());
    window().activateWindow();
    ui::settle();
    QTest::keyClick(&window(), Qt::Key_Comma, Qt::ControlModifier);
    EXPECT_TRUE(settings());
}

TEST_F(NightjarAppTest, showsAnErrorUntilItIsDismissedAndEndsInTheMiddleOfOne) {
    start();
    auto& network = app->model().localNetwork();
    network.setErrorMessage("The <b>browser</b> was denied.");
    ui::settle();
    ASSERT_TRUE(alert());
    EXPECT_EQ(alert()->windowTitle(), QStringLiteral("Local Network"));
    EXPECT_EQ(alert()->text(), QStringLiteral("The <b>browser</b> was denied."));
    QTest::mouseClick(alert()->button(0), Qt::LeftButton);
    ui::settle();
    EXPECT_FALSE(network.errorMessage());

    app->model().setErrorMessage("Something else.");
    ui::settle();
    ASSERT_TRUE(alert());
    window().close();
    app.reset();
    ui::settle();
}

TEST_F(NightjarAppTest, asksOnceBeforeAnyStreetMapIsLoaded) {
    start();
    Q_EMIT window().mesh().map().map().streetMapRequested();
    Q_EMIT window().mesh().map().map().streetMapRequested();
    ui::settle();
    ASSERT_TRUE(alert());
    QTest::keyClick(alert(), Qt::Key_Escape);
    ui::settle();
    EXPECT_FALSE(alert());
    EXPECT_FALSE(rig.preferences.boolean("map.streetMap").value_or(false));
}

TEST_F(NightjarAppTest, followsTheDesktopsColours) {
    start();
    EXPECT_FALSE(Colors::of(&window()).isDark);
    appearance.choose(ColorScheme::dark);
    ui::settle();
    EXPECT_TRUE(Colors::of(&window()).isDark);
    appearance.choose(ColorScheme::light);
}

TEST_F(NightjarAppTest, namesEveryControlOfEverySection) {
    startConnected();
    hear(node(42).named("Bicycle").at(52, 5).seen(rig.scheduler.now()));
    for (const auto section :
         {NetworkSection::bluetooth, NetworkSection::localNetwork, NetworkSection::meshtastic}) {
        window().setNetwork(section);
        ui::settle();
        EXPECT_THAT(ui::unnamedControls(window()), ::testing::IsEmpty());
    }
    for (const auto tab : {SettingsTab::general, SettingsTab::base, SettingsTab::about}) {
        app->model().setSelectedSettingsTab(tab);
        app->openSettings();
        ui::settle();
        EXPECT_THAT(ui::unnamedControls(*settings()), ::testing::IsEmpty());
    }
}

TEST_F(NightjarAppTest, wakesNobodyWhileNobodyLooks) {
    start();
    rig.scheduler.advance(std::chrono::seconds(30));
    EXPECT_GT(rig.scheduler.armedTimers(), 0U);
    window().hide();
    ui::settle();
    EXPECT_EQ(rig.scheduler.armedTimers(), 0U);
}

} // namespace
} // namespace nightjar
