// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <atomic>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace nightjar {

/// A modem that speaks the AT commands of a GSM phone (3GPP TS 27.007 and 27.005) on a local socket, on a
/// thread of its own. It is registered in its network and remembers the messages that it was to send.
class FakeModem {
public:
    FakeModem();
    ~FakeModem();
    FakeModem(const FakeModem&) = delete;
    FakeModem& operator=(const FakeModem&) = delete;

    /// What ModemManager calls its port.
    [[nodiscard]] const std::string& port() const { return m_port; }
    /// The protocol data units, in hexadecimal digits.
    [[nodiscard]] std::vector<std::string> messages() const;
    /// From now on the network refuses messages with this code of 3GPP TS 27.005; 0 = takes them.
    void refuseMessages(int code) { m_refusal = code; }

private:
    /// One who has opened the port.
    struct Caller {
        std::string unread;
        bool isSendingMessage = false;
    };

    void run();
    void accept();
    /// False when the caller has gone.
    bool serve(int socket, Caller& caller);
    void answer(int socket, Caller& caller, const std::string& command);
    void takeMessage(int socket, Caller& caller);

    std::string m_port;
    int m_listener = -1;
    int m_end = -1;
    std::map<int, Caller> m_callers; ///< by socket
    std::atomic<int> m_refusal = 0;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_messages; ///< guarded by m_mutex
    std::thread m_thread;
};

} // namespace nightjar
