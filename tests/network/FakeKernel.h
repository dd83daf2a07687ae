// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <array>
#include <cstring>
#include <string>

#include <arpa/inet.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

namespace nightjar {

/// Tells of links and addresses as the kernel does.
class FakeKernel {
public:
    FakeKernel() { static_cast<void>(::socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, m_ends.data())); }
    ~FakeKernel() { ::close(m_ends[0]); }
    FakeKernel(const FakeKernel&) = delete;
    FakeKernel& operator=(const FakeKernel&) = delete;

    /// For NetworkLinks, once.
    [[nodiscard]] int openSocket() const { return m_ends[1]; }

    /// What is there at the beginning has been told.
    void finish() {
        for (int i = 0; i < 2; ++i)
            send(Message<rtgenmsg>(NLMSG_DONE, {}));
    }
    void setLink(int index, const std::string& name, bool isUp, unsigned otherFlags = IFF_MULTICAST) {
        ifinfomsg body{};
        body.ifi_index = index;
        body.ifi_flags = otherFlags | (isUp ? IFF_UP | IFF_RUNNING : 0u);
        send(Message<ifinfomsg>(RTM_NEWLINK, body).with(IFLA_IFNAME, name.c_str(), name.size() + 1));
    }
    void removeLink(int index) {
        ifinfomsg body{};
        body.ifi_index = index;
        send(Message<ifinfomsg>(RTM_DELLINK, body));
    }
    void addAddress(int index, const char* address) { tellAddress(RTM_NEWADDR, index, address); }
    void removeAddress(int index, const char* address) { tellAddress(RTM_DELADDR, index, address); }

private:
    template <class Body>
    struct Message {
        Message(int type, const Body& itsBody) : body(itsBody) {
            header.nlmsg_type = static_cast<unsigned short>(type);
            header.nlmsg_len = NLMSG_LENGTH(sizeof(Body));
        }
        Message& with(unsigned short type, const void* data, std::size_t size) {
            attribute = {.rta_len = static_cast<unsigned short>(RTA_LENGTH(size)), .rta_type = type};
            std::memcpy(value.data(), data, size);
            header.nlmsg_len = static_cast<unsigned>(NLMSG_SPACE(sizeof(Body)) + RTA_LENGTH(size));
            return *this;
        }

        nlmsghdr header{};
        alignas(NLMSG_ALIGNTO) Body body;
        alignas(NLMSG_ALIGNTO) rtattr attribute{};
        std::array<char, 64> value{};
    };

    template <class Body>
    void send(const Message<Body>& message) const {
        static_cast<void>(::send(m_ends[0], &message, message.header.nlmsg_len, 0));
    }
    /// In a network of 256.
    void tellAddress(int type, int index, const char* address) const {
        in_addr bytes{};
        ::inet_pton(AF_INET, address, &bytes);
        ifaddrmsg body{};
        body.ifa_family = AF_INET;
        body.ifa_prefixlen = 24;
        body.ifa_scope = RT_SCOPE_UNIVERSE;
        body.ifa_index = static_cast<unsigned>(index);
        send(Message<ifaddrmsg>(type, body).with(IFA_LOCAL, &bytes, sizeof bytes));
    }

    std::array<int, 2> m_ends{-1, -1};
};

} // namespace nightjar
