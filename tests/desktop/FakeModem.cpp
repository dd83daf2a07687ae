// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/desktop/FakeModem.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <stdexcept>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace nightjar {
namespace {

constexpr const char* ok = "\r\nOK\r\n";
constexpr const char* error = "\r\nERROR\r\n";
constexpr char endOfMessage = 0x1a;

/// Commands that begin so change a setting and get nothing but their OK.
constexpr std::array settings = {"ATE",      "ATV",      "ATX",      "ATZ",      "AT&",
                                 "AT+CMEE=", "AT+IFC=",  "AT+CFUN=", "AT+CREG=", "AT+CGREG=",
                                 "AT+CMGF=", "AT+CSCS=", "AT+CPMS=", "AT+CNMI=", "AT+CIND=",
                                 "AT+CMER=", "AT+CMGL=", "AT+CLIP=", "AT+CRC=",  "AT+CUSD="};

/// What questions are answered with. The network is that for tests, 001 01.
const std::map<std::string, std::string> answers = {
    {"AT", ""},
    {"ATI", "Modem of the tests"},
    {"AT+GCAP", "+GCAP: +CGSM"},
    {"AT+CGMI", "Nightjar"},
    {"AT+CGMM", "Test modem"},
    {"AT+CGMR", "1"},
    {"AT+CGSN", "490154203237518"},
    {"AT+CIMI", "001010123456789"},
    {"AT+WS46=?", "+WS46: (12,22,25)"},
    {"AT+CPIN?", "+CPIN: READY"},
    {"AT+CFUN?", "+CFUN: 1"},
    {"AT+CSQ", "+CSQ: 22,99"},
    {"AT+COPS=3,2;+COPS?", "+COPS: 0,2,\"00101\",2"},
    {"AT+COPS=3,0;+COPS?", "+COPS: 0,0,\"Test\",2"},
    {"AT+CREG?", "+CREG: 2,1,\"0001\",\"00000001\""},
    {"AT+CGREG?", "+CGREG: 2,1,\"0001\",\"00000001\""},
    {"AT+CNMI=?", "+CNMI: (0-3),(0-3),(0-3),(0-2),(0,1)"},
    {"AT+CMGF=?", "+CMGF: (0,1)"},
    {"AT+CMGF?", "+CMGF: 0"},
    {"AT+CPMS=?", "+CPMS: (\"ME\",\"SM\"),(\"ME\",\"SM\"),(\"ME\",\"SM\")"},
    {"AT+CPMS?", "+CPMS: \"ME\",0,20,\"ME\",0,20,\"ME\",0,20"},
    {"AT+CSCS=?", "+CSCS: (\"IRA\",\"GSM\",\"UCS2\")"},
    {"AT+CSCS?", "+CSCS: \"IRA\""},
};

std::string reply(const std::string& command) {
    if (const auto found = answers.find(command); found != answers.end())
        return found->second.empty() ? ok : "\r\n" + found->second + "\r\n" + ok;
    const bool isSetting = !command.ends_with('?') && std::ranges::any_of(settings, [&](const char* start) {
        return command.starts_with(start);
    });
    return isSetting ? ok : error;
}

void write(int socket, const std::string& text) {
    (void)::send(socket, text.data(), text.size(), MSG_NOSIGNAL);
}

} // namespace

FakeModem::FakeModem() {
    static std::atomic<int> made = 0;
    // ModemManager knows sockets in the abstract namespace as ports whose names begin so.
    m_port = "abstract:nightjar-modem-" + std::to_string(::getpid()) + '-' + std::to_string(++made);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::memcpy(address.sun_path + 1, m_port.data(), m_port.size());
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + 1 + m_port.size());
    m_end = ::eventfd(0, EFD_CLOEXEC);
    m_listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(m_listener, reinterpret_cast<const sockaddr*>(&address), length) != 0 ||
        ::listen(m_listener, 8) != 0)
        throw std::runtime_error("the modem has no port");
    m_thread = std::thread([this] { run(); });
}

FakeModem::~FakeModem() {
    const std::uint64_t one = 1;
    (void)!::write(m_end, &one, sizeof one);
    m_thread.join();
    for (const auto& [socket, caller] : m_callers)
        ::close(socket);
    ::close(m_listener);
    ::close(m_end);
}

std::vector<std::string> FakeModem::messages() const {
    const std::scoped_lock lock(m_mutex);
    return m_messages;
}

void FakeModem::run() {
    for (;;) {
        std::vector<pollfd> watched = {{m_end, POLLIN, 0}, {m_listener, POLLIN, 0}};
        for (const auto& [socket, caller] : m_callers)
            watched.push_back({socket, POLLIN, 0});
        if (::poll(watched.data(), watched.size(), -1) < 0)
            continue;
        if (watched[0].revents != 0)
            return;
        for (std::size_t i = 2; i < watched.size(); ++i) {
            const int socket = watched[i].fd;
            if (watched[i].revents != 0 && !serve(socket, m_callers[socket])) {
                ::close(socket);
                m_callers.erase(socket);
            }
        }
        if (watched[1].revents != 0)
            accept();
    }
}

void FakeModem::accept() {
    const int socket = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (socket >= 0)
        m_callers[socket] = {};
}

bool FakeModem::serve(int socket, Caller& caller) {
    std::array<char, 4096> bytes;
    const auto count = ::recv(socket, bytes.data(), bytes.size(), 0);
    if (count <= 0)
        return false;
    caller.unread.append(bytes.data(), static_cast<std::size_t>(count));
    while (!caller.isSendingMessage) {
        const auto end = caller.unread.find_first_of("\r\n");
        if (end == std::string::npos)
            break;
        const auto command = caller.unread.substr(0, end);
        caller.unread.erase(0, end + 1);
        if (!command.empty())
            answer(socket, caller, command);
    }
    if (caller.isSendingMessage)
        takeMessage(socket, caller);
    return true;
}

void FakeModem::answer(int socket, Caller& caller, const std::string& command) {
    caller.isSendingMessage = command.starts_with("AT+CMGS=");
    write(socket, caller.isSendingMessage ? "\r\n> " : reply(command));
}

void FakeModem::takeMessage(int socket, Caller& caller) {
    const auto end = caller.unread.find(endOfMessage);
    if (end == std::string::npos)
        return;
    auto message = caller.unread.substr(0, end);
    caller.unread.erase(0, end + 1);
    caller.isSendingMessage = false;
    std::erase_if(message, [](char character) { return character == '\r' || character == '\n'; });
    {
        const std::scoped_lock lock(m_mutex);
        m_messages.push_back(message);
    }
    const int refusal = m_refusal;
    write(socket, refusal == 0 ? std::string("\r\n+CMGS: 7\r\n") + ok
                               : "\r\n+CMS ERROR: " + std::to_string(refusal) + "\r\n");
}

} // namespace nightjar
