// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/ui/settings/SettingsRig.h"
#include "ui/common/SwitchControl.h"

#include <QFileDialog>
#include <QLineEdit>
#include <QSlider>
#include <QWheelEvent>

namespace nightjar {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

class GeneralTabTest : public ::testing::Test, public testing::SettingsRig {
protected:
    GeneralTabTest() { start(); }
    QSlider& radius() const { return control<QSlider>("Movement radius"); }
    QLineEdit& recipient() const { return control<QLineEdit>("iPhone number or Apple Account email"); }
    SwitchControl& alerts() const { return control<SwitchControl>("Send signal-loss alerts with Messages"); }
    BluetoothTrackerManager& manager() const { return model->bluetoothTrackers(); }
};

TEST_F(GeneralTabTest, setsTheRadiusInSteps) {
    open(SettingsTab::general);
    QTest::keyClick(&radius(), Qt::Key_Right);
    EXPECT_EQ(model->parkingRadius(), 100);
    settle();
    EXPECT_THAT(texts(), HasSubstr("100 m"));
    radius().setValue(137); // as when it is dragged
    EXPECT_EQ(model->parkingRadius(), 125);
    EXPECT_EQ(radius().value(), 125);
    QTest::keyClick(&radius(), Qt::Key_End);
    EXPECT_EQ(model->parkingRadius(), 500);
}

TEST_F(GeneralTabTest, showsARadiusThatIsNotOfferedAndLeavesIt) {
    for (const auto& [metres, words] : {std::pair(83.0, "83 m"), {1'000.0, "1000 m"}, {10.4, "10 m"}}) {
        model->setParkingRadius(metres);
        open(SettingsTab::general);
        EXPECT_THAT(texts(), HasSubstr(words));
        EXPECT_EQ(model->parkingRadius(), metres);
    }
}

TEST_F(GeneralTabTest, theWheelChangesNoValue) {
    open(SettingsTab::general);
    QWheelEvent wheel(radius().rect().center(), radius().mapToGlobal(radius().rect().center()), {}, {0, 120},
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(&radius(), &wheel);
    EXPECT_EQ(model->parkingRadius(), 75);
}

TEST_F(GeneralTabTest, alertsNeedARecipient) {
    open(SettingsTab::general);
    EXPECT_TRUE(recipient().isEnabled());
    EXPECT_FALSE(alerts().isEnabled());
    EXPECT_FALSE(isEnabled("Send Test Alert"));
    QTest::keyClicks(&recipient(), QStringLiteral("  "));
    settle();
    EXPECT_FALSE(alerts().isEnabled());
    EXPECT_EQ(manager().iMessageStatus(), "Not configured");

    QTest::keyClicks(&recipient(), QStringLiteral("fox@example.com "));
    settle();
    EXPECT_EQ(manager().iMessageRecipient(), "  fox@example.com ");
    EXPECT_EQ(preferences.string("bluetoothLossIMessageRecipient"), "  fox@example.com ");
    EXPECT_THAT(texts(), HasSubstr("Ready, but off"));
    QTest::mouseClick(&alerts(), Qt::LeftButton);
    EXPECT_TRUE(manager().iMessageAlertsEnabled());
    settle();
    EXPECT_THAT(texts(), HasSubstr("Enabled"));
}

TEST_F(GeneralTabTest, sendsATestAndTellsWhatCameOfIt) {
    manager().setIMessageRecipient("fox@example.com");
    open(SettingsTab::general);
    click("Send Test Alert");
    ASSERT_EQ(messages.sent().size(), 1U);
    EXPECT_THAT(texts(), HasSubstr("Test message sent"));
}

TEST_F(GeneralTabTest, aRecipientIsNotTakenFromUnderTheCursor) {
    manager().setIMessageRecipient("fox@example.com");
    open(SettingsTab::general);
    recipient().setFocus();
    manager().setIMessageRecipient("owl@example.com");
    settle();
    EXPECT_EQ(recipient().text(), QStringLiteral("fox@example.com"));
    alerts().setFocus();
    settle();
    EXPECT_EQ(recipient().text(), QStringLiteral("owl@example.com"));
}

TEST_F(GeneralTabTest, asksForTheStreetMapAndKeepsTheAnswer) {
    preferences.setString("map.tileServer", "https://tiles.example/{z}/{x}/{y}.png");
    open(SettingsTab::general);
    EXPECT_THAT(texts(),
                HasSubstr("Street map tiles are fetched from tiles.example. The server can see which "
                          "area you look at."));
    EXPECT_FALSE(tiles.isStreetMapEnabled());
    auto& street = control<SwitchControl>("Load street map");
    // No picture is asked for: no map is shown.
    QTest::mouseClick(&street, Qt::LeftButton);
    EXPECT_TRUE(tiles.isStreetMapEnabled());
    EXPECT_EQ(preferences.boolean("map.streetMap"), true);
    tiles.setStreetMapEnabled(false);
    settle();
    EXPECT_FALSE(street.isChecked());
}

TEST_F(GeneralTabTest, aMapFileThatCannotBeReadIsRefusedInWords) {
    open(SettingsTab::general);
    const auto path = QString::fromStdString((folder.path() / "broken.mbtiles").string());
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("no map");
    file.close();

    click("Choose map file");
    auto* dialog = window->findChild<QFileDialog*>();
    ASSERT_NE(dialog, nullptr);
    Q_EMIT dialog->fileSelected(path);
    dialog->close();
    ASSERT_TRUE(QTest::qWaitFor([this] { return texts().find("no MBTiles file") != std::string::npos; })) << texts();
    EXPECT_FALSE(preferences.contains("map.localFile"));
    EXPECT_THAT(texts(), HasSubstr("Map file\nNone"));

    preferences.setString("map.localFile", path.toStdString());
    tiles.setStreetMapEnabled(false);
    Q_EMIT tiles.changed();
    settle();
    EXPECT_THAT(texts(), Not(HasSubstr("Map file\nNone")));
    click("Remove map file");
    EXPECT_TRUE(QTest::qWaitFor([this] { return !preferences.contains("map.localFile"); }));
}

} // namespace
} // namespace nightjar
