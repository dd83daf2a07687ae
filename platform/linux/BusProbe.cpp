// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BusProbe.h"

#include <dbus/dbus.h>

#include <memory>

namespace nightjar {
namespace {

/// What the library says of a failure, which is of no interest here.
class Problem {
public:
    Problem() { dbus_error_init(&m_error); }
    ~Problem() { dbus_error_free(&m_error); }
    Problem(const Problem&) = delete;
    Problem& operator=(const Problem&) = delete;
    [[nodiscard]] DBusError* get() { return &m_error; }

private:
    DBusError m_error;
};

struct Close {
    void operator()(DBusConnection* connection) const {
        dbus_connection_close(connection);
        dbus_connection_unref(connection);
    }
};
struct Release {
    void operator()(DBusMessage* message) const { dbus_message_unref(message); }
};
using Message = std::unique_ptr<DBusMessage, Release>;

} // namespace

bool busAnswers(const std::string& address, std::chrono::milliseconds limit) {
    dbus_threads_init_default();
    Problem problem;
    const std::unique_ptr<DBusConnection, Close> connection(
        dbus_connection_open_private(address.c_str(), problem.get()));
    if (!connection)
        return false;
    // By hand: the library's own greeting has no limit, and holds a lock that every other connection needs.
    const Message hello(
        dbus_message_new_method_call(DBUS_SERVICE_DBUS, DBUS_PATH_DBUS, DBUS_INTERFACE_DBUS, "Hello"));
    if (!hello)
        return false;
    const Message answer(dbus_connection_send_with_reply_and_block(
        connection.get(), hello.get(), static_cast<int>(limit.count()), problem.get()));
    return answer != nullptr;
}

} // namespace nightjar
