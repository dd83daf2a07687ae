// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/app/bluetooth/BluetoothRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

// A thread that is held up has heard nothing meanwhile: that must not look like silence.

namespace nightjar {
namespace {

using namespace nightjar::testing;
using namespace std::chrono_literals;
using ::testing::ElementsAre;

const Uuid keys = deviceID(1);
const Uuid bicycle = deviceID(2);

class HeldUpThreadTest : public ::testing::Test, protected BluetoothRig {
protected:
    [[nodiscard]] std::vector<std::string> titles() const {
        std::vector<std::string> titles;
        for (const auto& posted : notifications.posted())
            titles.push_back(posted.title);
        return titles;
    }
};

PlatformServices withMessages(const PlatformServices& base, MessageTransport& messages) {
    return {.host = base.host,
            .mainThread = base.mainThread,
            .scheduler = base.scheduler,
            .preferences = base.preferences,
            .notifications = base.notifications,
            .text = base.text,
            .bluetooth = base.bluetooth,
            .location = base.location,
            .sound = base.sound,
            .wake = base.wake,
            .messages = messages,
            .services = base.services};
}

/// Time that can leap ahead before a timer fires, as for a thread that was held up.
class LeapingScheduler final : public Scheduler {
public:
    explicit LeapingScheduler(FakeScheduler& scheduler) : m_scheduler(scheduler) {}
    [[nodiscard]] Date now() const override { return m_scheduler.now(); }
    [[nodiscard]] SteadyTime steadyNow() const override { return m_scheduler.steadyNow() + m_leaps; }
    [[nodiscard]] Timer after(std::chrono::milliseconds delay, std::function<void()> callback) override {
        return m_scheduler.after(delay, std::move(callback));
    }
    [[nodiscard]] Timer every(std::chrono::milliseconds period, std::function<void()> callback) override {
        return m_scheduler.every(period, std::move(callback));
    }
    void leap(std::chrono::seconds time) { m_leaps += time; }

private:
    FakeScheduler& m_scheduler;
    std::chrono::seconds m_leaps{0};
};

TEST_F(HeldUpThreadTest, whatWaitedWhileTheThreadWasHeldUpIsHeardBeforeAnAlarm) {
    LeapingScheduler leaping(scheduler);
    manager = std::make_unique<BluetoothTrackerManager>(services(leaping));
    manager->startScanning();
    trackWithAlert(keys, 15);
    trackWithAlert(bicycle, 15, "Bicycle");

    leaping.leap(1min);
    pass(5s);
    EXPECT_TRUE(titles().empty());
    hear(keys);
    pass(11s);
    EXPECT_TRUE(titles().empty()) << "some radios report an address every ten seconds only";
    pass(1s);
    EXPECT_THAT(titles(), ElementsAre("Bicycle is no longer nearby"));
}

TEST_F(HeldUpThreadTest, aMessageThatTakesLongRaisesNoAlarmForOthers) {
    LeapingScheduler leaping(scheduler);
    struct SlowTransport final : MessageTransport {
        explicit SlowTransport(LeapingScheduler& leaper) : time(leaper) {}
        std::expected<void, MessageTransportError> send(const OutgoingText&) override {
            time.leap(30s);
            return {};
        }
        LeapingScheduler& time;
    } slow(leaping);
    manager = std::make_unique<BluetoothTrackerManager>(withMessages(services(leaping), slow));
    manager->setIMessageRecipient("a@b.c");
    manager->setIMessageAlertsEnabled(true);
    manager->startScanning();
    trackWithAlert(keys, 15, "A keys");
    trackWithAlert(bicycle, 15, "Bicycle");
    for (int i = 0; i < 4; ++i) {
        pass(4s);
        hear(bicycle);
    }
    pass(4s);
    EXPECT_THAT(titles(), ElementsAre("A keys is no longer nearby"));
    hear(bicycle);
    pass(6s);
    EXPECT_THAT(titles(), ElementsAre("A keys is no longer nearby"));
}

TEST_F(HeldUpThreadTest, aRadioServiceThatHangsLosesNobody) {
    scan();
    trackWithAlert(keys, 15);
    bluetooth.setResponsive(false);
    pass(1min);
    EXPECT_TRUE(titles().empty()) << "it has to give a sign of life first";
    bluetooth.setResponsive(true);
    pass(200ms);
    EXPECT_THAT(titles(), ElementsAre("Keys is no longer nearby"));
}

TEST_F(HeldUpThreadTest, messagesOfSeveralDevicesGoOutOneByOneAfterAllNotifications) {
    struct CountingTransport final : MessageTransport {
        explicit CountingTransport(FakeNotificationCenter& center) : notifications(center) {}
        std::expected<void, MessageTransportError> send(const OutgoingText&) override {
            toldBefore.push_back(notifications.posted().size());
            return {};
        }
        FakeNotificationCenter& notifications;
        std::vector<std::size_t> toldBefore;
    } counting(notifications);
    manager = std::make_unique<BluetoothTrackerManager>(withMessages(services(), counting));
    manager->setIMessageRecipient("a@b.c");
    manager->setIMessageAlertsEnabled(true);
    manager->startScanning();
    for (std::uint32_t i = 1; i <= 3; ++i)
        trackWithAlert(deviceID(i), 15);

    pass(15s);
    EXPECT_THAT(counting.toldBefore, ElementsAre(3, 3, 3));
}

} // namespace
} // namespace nightjar
