// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// Text messages through the real ModemManager, which runs on a bus of the test's own in its test mode and
// finds one modem there. Skipped where it is not installed or does not run.
#include "platform/linux/LinuxMessageTransport.h"

#include "platform/linux/QtMainThread.h"
#include "platform/simulated/FakeScheduler.h"
#include "tests/desktop/FakeModem.h"
#include "tests/desktop/SentMessage.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/EventLoop.h"

#include <QDBusArgument>
#include <QDBusObjectPath>
#include <QFile>

#include <gmock/gmock.h>

#include <csignal>
#include <sys/prctl.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::AnyOf;
using ::testing::Not;

const auto program = QStringLiteral("/usr/sbin/ModemManager");
const auto service = QStringLiteral("org.freedesktop.ModemManager1");
const auto managerPath = QStringLiteral("/org/freedesktop/ModemManager1");
const auto modemInterface = QStringLiteral("org.freedesktop.ModemManager1.Modem");

using Objects = QMap<QDBusObjectPath, QMap<QString, QVariantMap>>;

class RealModemManagerTest : public ::testing::Test {
protected:
    void SetUp() override {
        if (!QFile::exists(program))
            GTEST_SKIP() << "ModemManager is not installed";
        start();
        if (!runEventsUntil([this] { return isOnBus() || m_manager.state() == QProcess::NotRunning; }) ||
            !isOnBus())
            GTEST_SKIP() << "ModemManager does not run here: "
                         << m_manager.readAllStandardError().toStdString();
        plugIn();
        ASSERT_TRUE(runEventsUntil([this] { return enable(); }, 60s)) << "the modem never came up";
        ASSERT_TRUE(runEventsUntil([this] { return modemState() >= 8; }, 60s)) << "it never registered";
    }
    ~RealModemManagerTest() override {
        m_manager.kill();
        m_manager.waitForFinished();
    }

    std::string send(const std::string& text) {
        const auto sent = transport.send({.recipient = "+31 6 12345678", .text = text, .script = ""});
        return sent ? "" : sent.error().message.value_or("(nothing)");
    }

    FakeModem modem;

private:
    void start() {
        // A test that crashes leaves it not behind.
        m_manager.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert(QStringLiteral("DBUS_SESSION_BUS_ADDRESS"), m_bus.address());
        environment.insert(QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"), m_bus.address());
        m_manager.setProcessEnvironment(environment);
        m_manager.start(program, {QStringLiteral("--test-session"), QStringLiteral("--test-enable"),
                                  QStringLiteral("--test-no-udev"), QStringLiteral("--no-auto-scan")});
    }

    QDBusMessage call(const QString& path, const QString& interface, const char* method,
                      const QVariantList& arguments = {}) {
        return callAndWait(m_ours, {.service = service,
                                    .path = path,
                                    .interface = interface,
                                    .method = QString::fromLatin1(method),
                                    .arguments = arguments,
                                    .limit = 30s});
    }
    bool isOnBus() { return objects().has_value(); }
    void plugIn() {
        const auto set = call(managerPath, service + QStringLiteral(".Test"), "SetProfile",
                              {QStringLiteral("test"), QStringLiteral("generic"),
                               QStringList{QString::fromStdString(modem.port())}});
        ASSERT_EQ(set.type(), QDBusMessage::ReplyMessage) << set.errorMessage().toStdString();
    }
    bool enable() {
        const auto known = objects();
        return known && !known->isEmpty() &&
               call(known->firstKey().path(), modemInterface, "Enable", {true}).type() ==
                   QDBusMessage::ReplyMessage;
    }
    int modemState() {
        const auto known = objects();
        return known && !known->isEmpty()
                   ? known->first().value(modemInterface).value(QStringLiteral("State")).toInt()
                   : 0;
    }
    std::optional<Objects> objects() {
        const auto answer =
            call(managerPath, QStringLiteral("org.freedesktop.DBus.ObjectManager"), "GetManagedObjects");
        if (answer.type() != QDBusMessage::ReplyMessage)
            return std::nullopt;
        return qdbus_cast<Objects>(answer.arguments().at(0));
    }

    PrivateBus m_bus;
    QDBusConnection m_ours = m_bus.connect();
    QProcess m_manager;
    QtMainThread m_mainThread;
    FakeScheduler m_scheduler;
    BusConnector m_system{m_mainThread, m_scheduler, [this] { return m_bus.connect(); }};
    BusConnector m_session{m_mainThread, m_scheduler, [this] { return m_bus.connect(); }};

protected:
    LinuxMessageTransport transport{m_system, m_session};
};

TEST_F(RealModemManagerTest, textsArriveAsTyped) {
    const std::string texts[] = {
        "Nightjar update: Keys is nearby again.",
        "Nightjar alert: \"Oma's\" \\ back\\slash\nsecond line 🚲 é",
        "Nightjar alert: " + std::string(200, 'x') + " is no longer nearby 🚲.",
        "Nightjar alert: " + std::string(400, 'y') + " is no longer nearby.",
    };
    std::size_t read = 0;
    for (const auto& text : texts) {
        ASSERT_EQ(send(text), "");

        std::string arrived;
        const auto sent = modem.messages();
        ASSERT_GT(sent.size(), read);
        for (int part = 1; read < sent.size(); ++read, ++part) {
            const auto message = SentMessage::read(sent[read]);
            EXPECT_EQ(message.number, "+31612345678");
            EXPECT_EQ(message.part, part);
            arrived += message.text;
        }
        EXPECT_EQ(arrived, text);
    }
    EXPECT_GT(read, std::size(texts)) << "the long ones came in parts";
}

TEST_F(RealModemManagerTest, aNetworkThatRefusesIsReported) {
    modem.refuseMessages(38);
    EXPECT_THAT(send("Nightjar test alert."), Not(AnyOf("", "(nothing)")));
    modem.refuseMessages(0);
    EXPECT_EQ(send("Nightjar test alert."), "");
}

} // namespace
} // namespace nightjar
