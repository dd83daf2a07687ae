// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/NetworkLinks.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <string_view>
#include <utility>

#include <arpa/inet.h>
#include <linux/rtnetlink.h>
#include <net/if.h>
#include <sys/socket.h>
#include <unistd.h>

namespace nightjar {
namespace {

/// The value of the first attribute of this type; empty when there is none.
std::span<const std::byte> attribute(const rtattr* first, std::size_t length, unsigned short type) {
    auto left = static_cast<int>(length);
    for (const rtattr* item = first; RTA_OK(item, left); item = RTA_NEXT(item, left))
        if (item->rta_type == type)
            return {static_cast<const std::byte*>(RTA_DATA(item)), RTA_PAYLOAD(item)};
    return {};
}

std::string text(int family, std::span<const std::byte> address) {
    std::array<char, INET6_ADDRSTRLEN> buffer{};
    const std::size_t size = family == AF_INET ? sizeof(in_addr) : sizeof(in6_addr);
    if (address.size() != size || !::inet_ntop(family, address.data(), buffer.data(), buffer.size()))
        return {};
    return buffer.data();
}

std::string network(int family, std::span<const std::byte> address, unsigned prefixLength) {
    std::vector<std::byte> bytes(address.begin(), address.end());
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto bits =
            static_cast<unsigned>(std::clamp(static_cast<int>(prefixLength) - 8 * static_cast<int>(i), 0, 8));
        bytes[i] &= static_cast<std::byte>(0xff00u >> bits);
    }
    return text(family, bytes) + '/' + std::to_string(prefixLength);
}

} // namespace

NetworkLinks::NetworkLinks(OpenSocket open) : m_open(std::move(open)) {}

NetworkLinks::~NetworkLinks() {
    m_notifier.reset();
    if (m_socket >= 0)
        ::close(m_socket);
}

int NetworkLinks::openSocket() {
    const int opened = ::socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
    sockaddr_nl own{};
    own.nl_family = AF_NETLINK;
    own.nl_groups = RTMGRP_LINK | RTMGRP_IPV4_IFADDR | RTMGRP_IPV6_IFADDR;
    if (opened >= 0 && ::bind(opened, reinterpret_cast<const sockaddr*>(&own), sizeof own) != 0) {
        ::close(opened);
        return -1;
    }
    return opened;
}

void NetworkLinks::watch(std::function<void(int, const Link&)> changed) {
    m_changed = std::move(changed);
    if (m_socket >= 0)
        return;
    m_socket = m_open();
    if (m_socket < 0)
        return;
    m_notifier = std::make_unique<QSocketNotifier>(m_socket, QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(), [this] { readNow(); });
    begin();
}

void NetworkLinks::begin() {
    for (auto& [index, known] : m_links)
        known = Known{.told = known.told};
    m_stage = Stage::links;
    ask(RTM_GETLINK);
}

void NetworkLinks::ask(int type) {
    struct {
        nlmsghdr header{};
        rtgenmsg body{};
    } request;
    request.header.nlmsg_len = NLMSG_LENGTH(sizeof(rtgenmsg));
    request.header.nlmsg_type = static_cast<unsigned short>(type);
    request.header.nlmsg_flags = NLM_F_REQUEST | NLM_F_DUMP;
    request.body.rtgen_family = AF_UNSPEC;
    static_cast<void>(::send(m_socket, &request, request.header.nlmsg_len, MSG_NOSIGNAL));
}

void NetworkLinks::readNow() {
    alignas(nlmsghdr) std::array<std::byte, 32'768> buffer;
    while (m_socket >= 0) {
        sockaddr_nl sender{};
        socklen_t senderLength = sizeof sender;
        const auto count = ::recvfrom(m_socket, buffer.data(), buffer.size(), MSG_DONTWAIT,
                                      reinterpret_cast<sockaddr*>(&sender), &senderLength);
        if (count < 0 && errno == ENOBUFS)
            begin(); // Something was lost: all of it again.
        else if (count < 0 && errno == EINTR)
            continue;
        else if (count <= 0)
            return;
        // Only the kernel has the number 0.
        else if (sender.nl_family != AF_NETLINK || sender.nl_pid == 0)
            read(std::span(buffer).first(static_cast<std::size_t>(count)));
    }
}

void NetworkLinks::read(std::span<const std::byte> packet) {
    // Signed: the last message may end before its padding would.
    auto left = static_cast<int>(packet.size());
    const auto* message = reinterpret_cast<const nlmsghdr*>(packet.data());
    for (; NLMSG_OK(message, left); message = NLMSG_NEXT(message, left))
        apply(*message);
}

void NetworkLinks::apply(const nlmsghdr& message) {
    switch (message.nlmsg_type) {
    case RTM_NEWLINK:
    case RTM_DELLINK:
        return applyLink(message);
    case RTM_NEWADDR:
    case RTM_DELADDR:
        return applyAddress(message);
    case NLMSG_DONE:
        if (m_stage == Stage::links) {
            m_stage = Stage::addresses;
            return ask(RTM_GETADDR);
        }
        m_stage = Stage::complete;
        for (auto& [index, known] : m_links)
            tell(index, known);
        return;
    default:
        return;
    }
}

void NetworkLinks::applyLink(const nlmsghdr& message) {
    if (message.nlmsg_len < NLMSG_LENGTH(sizeof(ifinfomsg)))
        return;
    const auto* body = static_cast<const ifinfomsg*>(NLMSG_DATA(&message));
    // A bridge tells of its ports in messages of its own.
    if (body->ifi_family != AF_UNSPEC)
        return;
    Known& known = m_links[body->ifi_index];
    const auto name = attribute(IFLA_RTA(body), IFLA_PAYLOAD(&message), IFLA_IFNAME);
    if (!name.empty())
        known.name.assign(reinterpret_cast<const char*>(name.data()),
                          ::strnlen(reinterpret_cast<const char*>(name.data()), name.size()));
    known.flags = message.nlmsg_type == RTM_NEWLINK ? body->ifi_flags : 0;
    tell(body->ifi_index, known);
    if (message.nlmsg_type == RTM_DELLINK)
        m_links.erase(body->ifi_index);
}

void NetworkLinks::applyAddress(const nlmsghdr& message) {
    if (message.nlmsg_len < NLMSG_LENGTH(sizeof(ifaddrmsg)))
        return;
    const auto* body = static_cast<const ifaddrmsg*>(NLMSG_DATA(&message));
    const auto found = m_links.find(static_cast<int>(body->ifa_index));
    const auto size = IFA_PAYLOAD(&message);
    // The own address; where it has no other side, that is the only one told.
    auto address = attribute(IFA_RTA(body), size, IFA_LOCAL);
    if (address.empty())
        address = attribute(IFA_RTA(body), size, IFA_ADDRESS);
    const auto key = text(body->ifa_family, address);
    if (found == m_links.end() || key.empty())
        return;
    if (message.nlmsg_type == RTM_DELADDR)
        found->second.networks.erase(key);
    else
        found->second.networks[key] = body->ifa_scope == RT_SCOPE_UNIVERSE
                                          ? network(body->ifa_family, address, body->ifa_prefixlen)
                                          : std::string();
    tell(found->first, found->second);
}

NetworkLinks::Link NetworkLinks::linkOf(const Known& known) {
    constexpr unsigned needed = IFF_UP | IFF_RUNNING | IFF_MULTICAST;
    constexpr unsigned unfit = IFF_LOOPBACK | IFF_POINTOPOINT;
    Link link{.name = known.name,
              .isUsable = (known.flags & (needed | unfit)) == needed && !known.networks.empty()};
    for (const auto& [address, itsNetwork] : known.networks)
        if (!itsNetwork.empty())
            link.networks.insert(itsNetwork);
    return link;
}

void NetworkLinks::tell(int index, Known& known) {
    if (m_stage != Stage::complete)
        return;
    auto link = linkOf(known);
    if (link == known.told)
        return;
    known.told = std::move(link);
    if (m_changed)
        m_changed(index, Link(known.told));
}

} // namespace nightjar
