// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/FreedesktopNotificationCenter.h"
#include "tests/platform/FakeNotificationDaemon.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/EventLoop.h"

#include <QDBusPendingCallWatcher>
#include <QFile>

#include <gmock/gmock.h>

#include <memory>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::ElementsAre;

const QStringList plain{QStringLiteral("body")};
const QStringList markup{QStringLiteral("body"), QStringLiteral("body-markup"), QStringLiteral("sound")};

Notification named(std::string identifier, std::string body = "Body") {
    return {.identifier = std::move(identifier), .title = "Title", .body = std::move(body)};
}

class FreedesktopNotificationCenterTest : public ::testing::Test {
protected:
    void startDaemon(const QStringList& capabilities = markup) {
        daemon.reset();
        daemon = std::make_unique<FakeNotificationDaemon>(bus.connect(), capabilities);
    }

    FreedesktopNotificationCenter& center() {
        if (!m_center)
            m_center = std::make_unique<FreedesktopNotificationCenter>(m_connection, settings);
        return *m_center;
    }

    /// Until the center has been told what happened on the bus so far: signals and answers keep their order.
    bool isUpToDate() {
        bool answered = false;
        const QDBusPendingCallWatcher watcher(m_connection.asyncCall(busCall("GetId")));
        QObject::connect(&watcher, &QDBusPendingCallWatcher::finished, [&] { answered = true; });
        return runEventsUntil([&] { return answered; });
    }

    static QDBusMessage busCall(const char* method) {
        return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/"),
                                              QStringLiteral("org.freedesktop.DBus"),
                                              QString::fromLatin1(method));
    }

    bool arrives(std::size_t count) {
        return runEventsUntil([&] { return daemon->calls.size() >= count; });
    }

    /// Until the answer to the last call has been read too.
    bool isQuiet() {
        return runEventsUntil([&] { return center().callsUnderWay() == 0; });
    }

    std::string bodyOf(std::size_t call) { return daemon->calls.at(call).body.toStdString(); }

    PrivateBus bus;
    NotificationSettings settings;
    std::unique_ptr<FakeNotificationDaemon> daemon;

private:
    QDBusConnection m_connection = bus.connect();
    std::unique_ptr<FreedesktopNotificationCenter> m_center;
};

TEST_F(FreedesktopNotificationCenterTest, everyFieldHasTheTypeThatDaemonsRead) {
    struct Case {
        NotificationSound sound;
        int urgency;
        const char* soundName;
        const char* icon;
    };
    startDaemon();
    std::size_t calls = 0;
    for (const auto& expected :
         {Case{NotificationSound::standard, 1, "message-new-instant", "dialog-information"},
          Case{NotificationSound::critical, 2, "alarm-clock-elapsed", "dialog-warning"}}) {
        auto notification = named("n" + std::to_string(calls));
        notification.sound = expected.sound;
        center().post(notification);
        ASSERT_TRUE(arrives(++calls));

        const auto& call = daemon->calls.back();
        EXPECT_EQ(call.application.toStdString(), "Nightjar");
        EXPECT_EQ(call.replaces, 0u);
        EXPECT_EQ(call.icon.toStdString(), expected.icon);
        EXPECT_EQ(call.title.toStdString(), "Title");
        EXPECT_EQ(call.timeout, -1);
        EXPECT_TRUE(call.actions.isEmpty());
        const auto urgency = call.hints.value(QStringLiteral("urgency"));
        EXPECT_EQ(urgency.typeId(), int(QMetaType::UChar));
        EXPECT_EQ(urgency.toInt(), expected.urgency);
        EXPECT_EQ(call.hints.value(QStringLiteral("sound-name")).toString().toStdString(),
                  expected.soundName);
        EXPECT_EQ(call.hints.value(QStringLiteral("desktop-entry")).toString().toStdString(), "nightjar");
    }
}

TEST_F(FreedesktopNotificationCenterTest, bodyIsEscapedOnlyForDaemonsThatReadMarkup) {
    const std::string body = "<b>2 & 3</b> \"x\"";
    for (const auto& [capabilities, expected] :
         {std::pair(markup, std::string("&lt;b&gt;2 &amp; 3&lt;/b&gt; \"x\"")), std::pair(plain, body)}) {
        startDaemon(capabilities);
        auto notification = named("n", body);
        notification.title = "<i>A & B</i>";
        center().post(notification);

        ASSERT_TRUE(arrives(1));
        EXPECT_EQ(bodyOf(0), expected);
        EXPECT_EQ(daemon->calls[0].title.toStdString(), "<i>A & B</i>");
        ASSERT_TRUE(isQuiet());
    }
}

TEST_F(FreedesktopNotificationCenterTest, sameIdentifierReplacesAlsoWhenPostedQuickly) {
    startDaemon();

    center().post(named("other"));
    center().post(named("printer", "left"));
    center().post(named("printer", "skipped: a newer one waits already"));
    center().post(named("printer", "returned"));

    ASSERT_TRUE(arrives(3));
    ASSERT_TRUE(isQuiet());
    EXPECT_EQ(daemon->calls.size(), 3u);
    EXPECT_EQ(bodyOf(1), "left");
    EXPECT_EQ(daemon->calls[1].replaces, 0u);
    EXPECT_EQ(bodyOf(2), "returned");
    EXPECT_EQ(daemon->calls[2].replaces, 2u);
    EXPECT_EQ(daemon->capabilityQuestions, 1);
}

TEST_F(FreedesktopNotificationCenterTest, newDaemonIsToldNoNumberOfTheOldOne) {
    for (const bool noticed : {true, false}) {
        SCOPED_TRACE(noticed);
        startDaemon(markup);
        ASSERT_TRUE(isUpToDate());
        center().post(named("printer"));
        ASSERT_TRUE(arrives(1) && isQuiet());

        startDaemon(plain);
        if (noticed) {
            ASSERT_TRUE(isUpToDate());
        }
        center().post(named("printer", "a & b"));

        ASSERT_TRUE(arrives(1));
        EXPECT_EQ(daemon->calls[0].replaces, 0u);
        EXPECT_EQ(bodyOf(0), "a & b") << "the new daemon's capabilities count";
        ASSERT_TRUE(isQuiet());
    }
}

TEST_F(FreedesktopNotificationCenterTest, daemonThatDiesWithoutAnswerDoesNotHoldUpTheNext) {
    startDaemon();
    daemon->silent = true;
    center().post(named("printer", "lost with the daemon"));
    ASSERT_TRUE(runEventsUntil([&] { return daemon->capabilityQuestions == 1; }));
    center().post(named("printer", "next"));

    startDaemon();

    ASSERT_TRUE(runEventsUntil(
        [&] { return !daemon->calls.empty() && daemon->calls.back().body == QStringLiteral("next"); }));
}

TEST_F(FreedesktopNotificationCenterTest, closedNotificationIsForgottenAndOthersAreNot) {
    startDaemon();
    center().post(named("first"));
    center().post(named("second"));
    ASSERT_TRUE(arrives(2) && isQuiet());

    Q_EMIT daemon->NotificationClosed(99, 2);
    Q_EMIT daemon->NotificationClosed(1, 2);
    ASSERT_TRUE(runEventsUntil([&] { return center().rememberedCount() == 1; }));
    center().post(named("first"));
    center().post(named("second"));

    ASSERT_TRUE(arrives(4));
    EXPECT_EQ(daemon->calls[2].replaces, 0u);
    EXPECT_EQ(daemon->calls[3].replaces, 2u);
}

TEST_F(FreedesktopNotificationCenterTest, strangersCannotCloseNotifications) {
    startDaemon();
    center().post(named("first"));
    ASSERT_TRUE(arrives(1) && isQuiet());

    auto stranger = bus.connect();
    auto signal = QDBusMessage::createSignal(QStringLiteral("/org/freedesktop/Notifications"),
                                             QStringLiteral("org.freedesktop.Notifications"),
                                             QStringLiteral("NotificationClosed"));
    signal << 1u << 2u;
    ASSERT_TRUE(stranger.send(signal));
    // Answered after the signal was passed on, so the signal has been read by the time the post arrives.
    ASSERT_EQ(stranger.call(busCall("GetId")).type(), QDBusMessage::ReplyMessage);
    center().post(named("second"));
    ASSERT_TRUE(arrives(2) && isQuiet());

    EXPECT_EQ(center().rememberedCount(), 2u);
}

TEST_F(FreedesktopNotificationCenterTest, silentDaemonIsGivenUpAndLaterPostsGoOut) {
    settings.answerTimeout = 100ms;
    startDaemon();
    daemon->silent = true;

    center().post(named("printer", "one"));
    center().post(named("printer", "two"));
    center().post(named("keys", "three"));

    ASSERT_TRUE(arrives(3));
    daemon->silent = false;
    ASSERT_TRUE(isQuiet());
    center().post(named("keys", "four"));
    ASSERT_TRUE(arrives(4));
    std::vector<std::string> bodies;
    for (const auto& call : daemon->calls)
        bodies.push_back(call.body.toStdString());
    EXPECT_THAT(bodies, ElementsAre("one", "three", "two", "four"));
    EXPECT_EQ(daemon->capabilityQuestions, 1) << "a daemon that did not answer is not waited for twice";
}

TEST_F(FreedesktopNotificationCenterTest, withoutDaemonPostsAreDroppedUntilOneComes) {
    center().requestPermission();
    center().post(named("lost"));
    ASSERT_TRUE(isQuiet());
    EXPECT_EQ(center().rememberedCount(), 0u);

    startDaemon(plain);
    ASSERT_TRUE(isUpToDate());
    center().post(named("shown", "a & b"));

    ASSERT_TRUE(arrives(1));
    EXPECT_EQ(bodyOf(0), "a & b");
}

TEST_F(FreedesktopNotificationCenterTest, daemonThatIsStartedOnDemandIsStarted) {
    QTemporaryDir folder;
    const auto mark = folder.filePath(QStringLiteral("started"));
    bus.makeActivatable(QStringLiteral("org.freedesktop.Notifications"),
                        QStringLiteral("/usr/bin/touch ") + mark);

    center().post(named("n"));

    EXPECT_TRUE(runEventsUntil([&] { return QFile::exists(mark); }));
}

TEST_F(FreedesktopNotificationCenterTest, postingDoesNotWaitForAFrozenBus) {
    startDaemon();
    auto connection = bus.connect();
    bus.freeze();
    const auto start = std::chrono::steady_clock::now();
    FreedesktopNotificationCenter frozen(connection, settings);
    frozen.requestPermission();
    frozen.post(named("n"));
    const auto took = std::chrono::steady_clock::now() - start;
    bus.thaw();

    EXPECT_LT(took, 2s) << "a bus that hangs is waited for 25 seconds by careless calls";
    EXPECT_TRUE(arrives(1));
}

TEST_F(FreedesktopNotificationCenterTest, aLostOrMissingBusIsIgnored) {
    startDaemon();
    settings.answerTimeout = 100ms;
    center().post(named("first"));
    ASSERT_TRUE(arrives(1) && isQuiet());
    daemon->silent = true;
    center().post(named("under way"));
    bus.end();
    ASSERT_TRUE(runEventsUntil([&] { return !center().isConnected(); }));
    center().post(named("after"));
    center().requestPermission();
    EXPECT_TRUE(isQuiet());

    FreedesktopNotificationCenter busless(QDBusConnection(QStringLiteral("no such bus")), settings);
    busless.requestPermission();
    busless.post(named("n"));
    EXPECT_EQ(busless.rememberedCount(), 0u);
}

TEST_F(FreedesktopNotificationCenterTest, monthsOfMessagesAreNotAllRemembered) {
    startDaemon();
    constexpr auto posts = FreedesktopNotificationCenter::maximumRemembered + 50;
    for (std::size_t i = 0; i < posts; ++i) {
        center().post(named("message-" + std::to_string(i)));
        if (i % 100 == 0) {
            ASSERT_TRUE(isQuiet());
        }
    }
    ASSERT_TRUE(arrives(posts) && isQuiet());

    EXPECT_EQ(center().rememberedCount(), FreedesktopNotificationCenter::maximumRemembered);
    center().post(named("message-" + std::to_string(posts - 1)));
    center().post(named("message-0"));
    ASSERT_TRUE(arrives(posts + 2));
    EXPECT_EQ(daemon->calls[posts].replaces, posts) << "the newest are kept";
    EXPECT_EQ(daemon->calls[posts + 1].replaces, 0u);
}

TEST_F(FreedesktopNotificationCenterTest, ownSoundIsPlayedWhereTheDesktopPlaysNone) {
    std::vector<NotificationSound> played;
    settings.playSound = [&](NotificationSound sound) { played.push_back(sound); };
    startDaemon(markup);
    center().post(named("with the desktop's sound"));
    ASSERT_TRUE(arrives(1) && isQuiet());
    EXPECT_TRUE(played.empty());

    startDaemon(plain);
    auto critical = named("with ours");
    critical.sound = NotificationSound::critical;
    center().post(critical);
    ASSERT_TRUE(arrives(1) && isQuiet());
    EXPECT_THAT(played, ElementsAre(NotificationSound::critical));
}

} // namespace
} // namespace nightjar
