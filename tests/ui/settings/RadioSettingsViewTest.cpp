// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "ui/settings/RadioSettingsView.h"
#include "tests/ui/settings/SettingsRig.h"
#include "ui/common/AlertSheet.h"
#include "ui/common/SwitchControl.h"

#include <QComboBox>
#include <QSpinBox>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

class RadioSettingsViewTest : public ::testing::Test, public testing::SettingsRig {
protected:
    QSpinBox& hops() const { return control<QSpinBox>("Maximum hops"); }
    QSpinBox& power() const { return control<QSpinBox>("Transmit power"); }
    AlertSheet* confirmation() const {
        auto* sheet = window->findChild<AlertSheet*>();
        return sheet && sheet->isVisible() ? sheet : nullptr;
    }
    void openConnected() {
        startConnected();
        open(SettingsTab::base);
        radioTells(recommended());
    }
};

TEST_F(RadioSettingsViewTest, looksForPortsAndAsksTheRadioWhenItComesOnScreen) {
    startConnected();
    open(SettingsTab::general);
    EXPECT_EQ(radio->reads.size(), 0U);
    const auto timers = scheduler.armedTimers();
    host.plugIn("cu.usbserial-0002");
    model->setSelectedSettingsTab(SettingsTab::base);
    EXPECT_EQ(model->availablePorts().size(), 2U);
    EXPECT_EQ(radio->reads.size(), 1U);

    host.plugIn("cu.usbserial-0003");
    scheduler.advance(1'999ms);
    EXPECT_EQ(model->availablePorts().size(), 2U);
    scheduler.advance(1ms);
    EXPECT_EQ(model->availablePorts().size(), 3U);

    model->setSelectedSettingsTab(SettingsTab::about);
    EXPECT_EQ(scheduler.armedTimers(), timers);
    model->setSelectedSettingsTab(SettingsTab::base);
    EXPECT_EQ(scheduler.armedTimers(), timers + 1);
    window->close();
    EXPECT_EQ(scheduler.armedTimers(), timers);
    EXPECT_EQ(radio->reads.size(), 2U);
}

TEST_F(RadioSettingsViewTest, nothingIsSentBeforeTheUserConfirms) {
    openConnected();
    EXPECT_FALSE(isEnabled("Apply to Radio"));
    hops().setFocus();
    QTest::keyClick(&hops(), Qt::Key_Up);
    QTest::mouseClick(&control<SwitchControl>("RX boosted gain"), Qt::LeftButton);
    settle();
    click("Apply to Radio");
    ASSERT_NE(confirmation(), nullptr);
    EXPECT_EQ(confirmation()->windowTitle(), QStringLiteral("Apply radio settings?"));
    EXPECT_EQ(confirmation()->text(), QStringLiteral("Hops: 3 → 4\nRX boosted gain: off"));
    QTest::keyClick(confirmation(), Qt::Key_Escape);
    EXPECT_EQ(confirmation(), nullptr);
    EXPECT_TRUE(radio->applies.empty());

    click("Apply to Radio");
    ASSERT_NE(confirmation(), nullptr);
    EXPECT_EQ(confirmation()->button(0)->text(), QStringLiteral("Apply"));
    EXPECT_EQ(confirmation()->button(1)->text(), QStringLiteral("Cancel"));
    QTest::mouseClick(confirmation()->button(0), Qt::LeftButton);
    ASSERT_EQ(radio->applies.size(), 1U);
    auto expected = recommended();
    expected.hopLimit = 4;
    expected.rxBoostedGain = false;
    EXPECT_EQ(radio->applies.front().settings, expected);
    settle();
    EXPECT_THAT(texts(), HasSubstr("Applying to radio…"));
    radio->applies.front().done({});
    settle();
    EXPECT_FALSE(isEnabled("Apply to Radio"));
}

TEST_F(RadioSettingsViewTest, theRecommendedSetupChangesTheDraftAlone) {
    openConnected();
    auto other = recommended();
    other.region = MeshtasticRegion::unset;
    other.modemPreset = MeshtasticModemPreset::shortFast;
    radioTells(other);
    auto& region = control<QComboBox>("Region");
    EXPECT_EQ(region.currentIndex(), -1) << "a region that is not set is not shown as another";
    EXPECT_EQ(region.count(), 1);
    EXPECT_EQ(control<QComboBox>("Modem preset").currentText(), QStringLiteral("Short Range – Fast"));
    click("Recommended Halvard Setup");
    EXPECT_EQ(region.currentText(), QStringLiteral("European Union 868 MHz"));
    EXPECT_TRUE(isEnabled("Apply to Radio"));
    EXPECT_EQ(model->loraConfig(), other);
    EXPECT_TRUE(radio->applies.empty());
}

TEST_F(RadioSettingsViewTest, aReadingReplacesTheDraftAndItsQuestion) {
    openConnected();
    hops().setValue(6);
    settle();
    click("Apply to Radio");
    auto told = recommended();
    told.channelNum = 12;
    radioTells(told);
    EXPECT_EQ(confirmation(), nullptr) << "what it asked is no longer what would be sent";
    EXPECT_EQ(hops().value(), 3);
    EXPECT_EQ(control<QSpinBox>("Frequency slot").value(), 12);
    EXPECT_FALSE(isEnabled("Apply to Radio"));

    hops().setValue(5);
    settle();
    click("Read from Radio");
    EXPECT_EQ(hops().value(), 5);
    radioTells(told);
    EXPECT_EQ(hops().value(), 3) << "shown as what the radio holds";
}

TEST_F(RadioSettingsViewTest, aRadioThatGoesTakesTheQuestionAlongAndLeavesTheDraft) {
    openConnected();
    hops().setValue(6);
    settle();
    click("Apply to Radio");
    event({.event = MeshtasticBridgeEvent::disconnected});
    settle();
    EXPECT_EQ(confirmation(), nullptr);
    EXPECT_EQ(hops().value(), 6);
    EXPECT_FALSE(isEnabled("Apply to Radio"));
    EXPECT_THAT(texts(), HasSubstr("The base station is disconnected."));
    EXPECT_TRUE(control<QPushButton>("Scan Again").isVisible());
}

TEST_F(RadioSettingsViewTest, theButtonsOfAConnectedBase) {
    openConnected();
    EXPECT_THAT(texts(), HasSubstr("Radio settings below belong to the active base station. Disconnecting "
                                   "returns it to the available list."));
    click("Read from Radio");
    EXPECT_EQ(radio->reads.size(), 2U);
    click("Disconnect");
    EXPECT_EQ(model->connectedPort(), std::nullopt);
    host.unplug("cu.usbserial-0001");
    click("Scan Again");
    EXPECT_THAT(texts(), HasSubstr("No USB devices found"));
    EXPECT_EQ(availablePortsText(3), QStringLiteral("3 USB devices available"));
}

TEST_F(RadioSettingsViewTest, showsPowerInWords) {
    openConnected();
    EXPECT_EQ(power().text(), QStringLiteral("Regional default"));
    power().setFocus();
    power().selectAll();
    QTest::keyClicks(&power(), QStringLiteral("14"));
    hops().setFocus();
    EXPECT_EQ(power().text(), QStringLiteral("14 dBm (0 is regional default)"));
    EXPECT_EQ(power().value(), 14);
}

TEST_F(RadioSettingsViewTest, whatIsNotOfferedIsShownAsItIsAndSurvivesOtherEdits) {
    openConnected();
    auto odd = recommended();
    odd.hopLimit = 0;
    odd.channelNum = 4'294'967'295U;
    odd.txPower = -7;
    odd.overrideFrequency = 869.5F;
    radioTells(odd);
    EXPECT_EQ(hops().value(), 0);
    EXPECT_EQ(power().text(), QStringLiteral("-7 dBm (0 is regional default)"));
    EXPECT_FALSE(isEnabled("Apply to Radio"));
    QTest::mouseClick(&control<SwitchControl>("Transmit enabled"), Qt::LeftButton);
    settle();
    click("Apply to Radio");
    QTest::mouseClick(confirmation()->button(0), Qt::LeftButton);
    odd.txEnabled = false;
    ASSERT_EQ(radio->applies.size(), 1U);
    EXPECT_EQ(radio->applies.front().settings, odd);
}

} // namespace
} // namespace nightjar
