// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BusConnector.h"
#include "platform/linux/QtMainThread.h"
#include "platform/simulated/FakeScheduler.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/Environment.h"
#include "tests/support/EventLoop.h"

#include <QDBusConnectionInterface>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <cstring>
#include <optional>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace nightjar {
namespace {

using namespace std::chrono_literals;

/// A socket that takes connections and never says a word, until it goes.
class SilentSocket {
public:
    SilentSocket() {
        sockaddr_un address{.sun_family = AF_UNIX, .sun_path = {}};
        std::strncpy(address.sun_path, path().c_str(), sizeof address.sun_path - 1);
        EXPECT_EQ(::bind(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(::listen(m_socket, 8), 0);
    }
    ~SilentSocket() { ::close(m_socket); }
    SilentSocket(const SilentSocket&) = delete;
    SilentSocket& operator=(const SilentSocket&) = delete;

    /// Whether somebody has connected.
    [[nodiscard]] bool isCalled() const {
        pollfd entry{.fd = m_socket, .events = POLLIN, .revents = 0};
        return ::poll(&entry, 1, 0) == 1;
    }
    [[nodiscard]] std::string path() const { return m_folder.filePath(QStringLiteral("bus")).toStdString(); }

private:
    QTemporaryDir m_folder;
    int m_socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

TEST(SilentBusTest, aBusThatSaysNothingHoldsUpNoOther) {
    QtMainThread mainThread;
    FakeScheduler scheduler;
    PrivateBus lively;
    std::optional<SilentSocket> silent(std::in_place);
    const Environment environment({{"DBUS_SYSTEM_BUS_ADDRESS", "unix:path=" + silent->path()},
                                   {"DBUS_SESSION_BUS_ADDRESS", lively.address().toStdString()}});
    BusConnector system(mainThread, scheduler, BusConnector::openSystemBus);
    BusConnector session(mainThread, scheduler, BusConnector::openSessionBus);
    bool isOpen = false;
    QObject::connect(&session, &BusConnector::opened, &session, [&isOpen] { isOpen = true; });

    system.open();
    ASSERT_TRUE(runEventsUntil([&] { return silent->isCalled(); }));
    session.open();
    EXPECT_TRUE(runEventsUntil([&] { return isOpen; }, 5s));
    EXPECT_TRUE(session.bus().interface()->isServiceRegistered(QStringLiteral("org.freedesktop.DBus")));
    EXPECT_FALSE(system.isConnected());
    // Whoever waits for it would wait for ever: the silence ends before the test.
    silent.reset();
}

} // namespace
} // namespace nightjar
