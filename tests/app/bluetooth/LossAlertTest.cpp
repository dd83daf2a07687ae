// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/bluetooth/BluetoothRig.h"

#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace nightjar {
namespace {

using namespace nightjar::testing;
using namespace std::chrono_literals;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const Uuid keys = deviceID(1);
const Uuid bicycle = deviceID(2);

class LossAlertTest : public ::testing::Test, protected BluetoothRig {
protected:
    [[nodiscard]] std::vector<std::string> titles() const {
        std::vector<std::string> titles;
        for (const auto& posted : notifications.posted())
            titles.push_back(posted.title);
        return titles;
    }
    [[nodiscard]] std::size_t alerts() const { return notifications.posted().size(); }
    [[nodiscard]] std::vector<std::string> texts() const {
        std::vector<std::string> texts;
        for (const auto& sent : messages.sent())
            texts.push_back(sent.text);
        return texts;
    }
    [[nodiscard]] std::string status() const { return manager->iMessageStatus(); }
};

TEST_F(LossAlertTest, aLossAndAReturnAreToldInFull) {
    scan();
    trackWithAlert(keys, 30);
    const auto began = unixSeconds(scheduler.now());
    pass(29s);
    EXPECT_EQ(alerts(), 0U);
    pass(1s);
    pass(10min);
    pass(250ms);
    hear(keys);
    pass(2s);
    hear(keys);

    const std::string id = "AB120000-0000-4000-8000-000000000001";
    const std::vector<Notification> expected{
        {.identifier = "bluetooth-lost-" + id + "-" + std::to_string(static_cast<long>(began) + 30) + ".0",
         .title = "Keys is no longer nearby",
         .body = "No Bluetooth signal has been received for 30 seconds. Check whether the device is still "
                 "nearby.",
         .sound = NotificationSound::standard},
        {.identifier =
             "bluetooth-returned-" + id + "-" + std::to_string(static_cast<long>(began) + 630) + ".25",
         .title = "Keys is nearby again",
         .body = "Nightjar is receiving its Bluetooth signal again.",
         .sound = NotificationSound::standard}};
    EXPECT_EQ(notifications.posted(), expected);
    EXPECT_EQ(notifications.permissionRequests(), 1);
    EXPECT_THAT(texts(), IsEmpty());
}

TEST_F(LossAlertTest, onlyADeviceHeardInThisScanIsMissed) {
    scan();
    trackWithAlert(keys, 15);
    manager->startScanning();
    pass(1h);
    EXPECT_EQ(alerts(), 0U) << "not heard since the scan began";

    hear(keys);
    manager->stopScanning();
    pass(1h);
    EXPECT_EQ(alerts(), 0U) << "nobody listens";

    manager->startScanning();
    hear(keys);
    wake.wakeUnnoticed();
    pass(1h);
    EXPECT_EQ(alerts(), 0U) << "the computer slept";

    hear(keys);
    bluetooth.setState(BluetoothRadioState::poweredOff);
    pass(1h);
    bluetooth.setState(BluetoothRadioState::poweredOn);
    pass(1h);
    EXPECT_EQ(alerts(), 0U) << "the radio was off";

    hear(keys);
    pass(20s);
    EXPECT_EQ(alerts(), 1U);
}

TEST_F(LossAlertTest, anAlertThatIsSwitchedOnArmsADeviceHeardJustNow) {
    for (const auto& [silence, expected] :
         {std::pair(4900ms, 1U), std::pair(5000ms, 1U), std::pair(5001ms, 0U)}) {
        scan();
        trackHeard(keys);
        wake.wake(); // what was heard before does not count
        pass(silence);
        scheduler.setDate(scheduler.now() + 24h);
        const auto before = alerts();
        manager->setLossAlert(true, keys);
        pass(1h);
        EXPECT_EQ(alerts() - before, expected) << silence.count();
    }
}

TEST_F(LossAlertTest, aChangedDelayAlertsAnew) {
    scan();
    trackWithAlert(keys, 30);
    pass(35s);
    EXPECT_EQ(alerts(), 1U);
    manager->setLossAlertDelay(900, keys);
    pass(14min);
    EXPECT_EQ(alerts(), 1U);
    pass(1min);
    hear(keys);
    EXPECT_THAT(titles(),
                ElementsAre("Keys is no longer nearby", "Keys is no longer nearby", "Keys is nearby again"));
}

TEST_F(LossAlertTest, anAlertThatIsSwitchedOffSaysNothingMore) {
    scan();
    trackWithAlert(keys, 15);
    pass(20s);
    manager->setLossAlert(false, keys);
    hear(keys);
    pass(1h);
    EXPECT_EQ(alerts(), 1U);
    manager->setLossAlert(true, keys);
    manager->setLossAlert(true, bicycle);
    EXPECT_EQ(notifications.permissionRequests(), 2) << "not for a device that is not tracked";
}

TEST_F(LossAlertTest, oddDelaysDoNoHarm) {
    scan();
    trackWithAlert(keys, 5);
    const auto delay = [this] { return manager->trackedDeviceWith(keys)->lossAlertDelay; };
    EXPECT_EQ(delay(), 15);
    for (const double odd :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()})
        manager->setLossAlertDelay(odd, keys);
    EXPECT_EQ(delay(), 15);
    manager->setLossAlertDelay(-1e300, keys);
    EXPECT_EQ(delay(), 15);
    pass(14s);
    EXPECT_EQ(alerts(), 0U);
    pass(1s);
    EXPECT_EQ(alerts(), 1U);
    manager->setLossAlertDelay(1e300, keys);
    pass(24h);
    EXPECT_EQ(alerts(), 1U);
}

TEST_F(LossAlertTest, aClockThatIsSetNeitherAlarmsNorBlinds) {
    scan();
    trackWithAlert(keys, 30);
    scheduler.setDate(scheduler.now() + 24h);
    pass(25s);
    EXPECT_EQ(alerts(), 0U);
    scheduler.setDate(scheduler.now() - 48h);
    pass(5s);
    EXPECT_EQ(alerts(), 1U);
}

TEST_F(LossAlertTest, messagesFollowTheirSettings) {
    preferences.setString("bluetoothLossIMessageRecipient", " +31 6 1 ");
    preferences.setString("bluetoothLossIMessageEnabled", "yes");
    scan();
    EXPECT_FALSE(manager->iMessageAlertsEnabled()) << "no boolean";
    EXPECT_EQ(status(), "Ready, but off");
    manager->sendTestIMessage();
    EXPECT_EQ(status(), "Test message sent");
    manager->setIMessageAlertsEnabled(true);
    EXPECT_EQ(preferences.boolean("bluetoothLossIMessageEnabled"), true);
    EXPECT_EQ(status(), "Test message sent");
    manager->updateIMessageStatus();
    EXPECT_EQ(status(), "Enabled");

    trackWithAlert(keys, 120);
    pass(2min);
    EXPECT_EQ(status(), "Last alert sent at 12:02");
    hear(keys);
    EXPECT_EQ(status(), "Last update sent at 12:02");
    EXPECT_THAT(texts(),
                ElementsAre("Nightjar test alert. Messages delivery is working on this Mac.",
                            "Nightjar alert: Keys is no longer nearby. No Bluetooth signal has been received "
                            "for 2 minutes.",
                            "Nightjar update: Keys is nearby again. Its Bluetooth signal has returned."));
    EXPECT_EQ(messages.sent().front().recipient, "+31 6 1");

    manager->setIMessageRecipient(" \n");
    EXPECT_EQ(preferences.string("bluetoothLossIMessageRecipient"), " \n");
    manager->updateIMessageStatus();
    EXPECT_EQ(status(), "Not configured");
}

TEST_F(LossAlertTest, aMessageThatFailsKeepsNothingFromTheUser) {
    const TemporaryFolder folder;
    host.setApplicationSupportFolder(folder.path());
    scan();
    manager->setIMessageAlertsEnabled(true);
    trackWithAlert(keys, 30);
    pass(30s);
    EXPECT_EQ(alerts(), 1U);
    EXPECT_EQ(status(), "Last delivery failed");
    EXPECT_EQ(manager->errorMessage(), "Enter an iPhone phone number or Apple Account email address first.");

    manager->setIMessageRecipient("a@b.c");
    messages.refuse(MessageTransportError{.isScriptInvalid = false, .message = "No modem."});
    hear(keys);
    EXPECT_EQ(alerts(), 2U);
    EXPECT_EQ(status(), "Last delivery failed");
    EXPECT_EQ(manager->errorMessage(), "Messages could not send the alert: No modem.");
    manager->sendTestIMessage();
    EXPECT_EQ(status(), "Could not send");
}

TEST(LossDelayTextTest, aDelayIsNamedInItsLargestUnit) {
    const std::vector<std::pair<double, std::string>> rows{
        {0, "0 seconds"},   {1, "1 seconds"},     {29.5, "30 seconds"}, {59.4, "59 seconds"},
        {59.5, "1 minute"}, {60, "1 minute"},     {61, "1 minutes"},    {119.4, "1 minutes"},
        {150, "2 minutes"}, {3599, "59 minutes"}, {3600, "1 hour"},     {3601, "1 hours"},
        {7300, "2 hours"},  {86399, "23 hours"},  {86400, "1 day"},     {86401, "1 days"},
        {200'000, "2 days"}};
    for (const auto& [seconds, text] : rows)
        EXPECT_EQ(BluetoothTexts::lossDelayDescription(seconds), text) << seconds;
    for (const double odd : {1e300, -1e300})
        EXPECT_NE(BluetoothTexts::lossDelayDescription(odd), "");
}

} // namespace
} // namespace nightjar
