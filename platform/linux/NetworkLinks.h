// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QSocketNotifier>

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <span>
#include <string>

struct nlmsghdr;

namespace nightjar {

/// This computer's own network interfaces, as the kernel tells of them (rtnetlink). Main thread; nothing here
/// waits. Where the kernel tells nothing, none is known.
class NetworkLinks {
public:
    struct Link {
        std::string name{};
        /// Devices can be heard there: it is up, has its signal, carries multicast and has an address.
        /// Neither the loop back nor a tunnel between two points is.
        bool isUsable = false;
        /// Those of its addresses, such as "10.0.0.0/24". Addresses that only hold for the link have none.
        std::set<std::string> networks{};

        bool operator==(const Link&) const = default;
    };
    /// A socket that tells of links and addresses, to be closed by the caller; negative when there is none.
    using OpenSocket = std::function<int()>;

    explicit NetworkLinks(OpenSocket open = openSocket);
    ~NetworkLinks();
    NetworkLinks(const NetworkLinks&) = delete;
    NetworkLinks& operator=(const NetworkLinks&) = delete;

    /// From now on `changed` is called with each change, of which none is skipped. The first ones come later.
    void watch(std::function<void(int index, const Link&)> changed);
    /// Tells at once what the kernel has told up to now.
    void readNow();
    /// Whether all are known.
    [[nodiscard]] bool isComplete() const { return m_stage == Stage::complete; }

    [[nodiscard]] static int openSocket();

private:
    enum class Stage { silent, links, addresses, complete };
    struct Known {
        std::string name{};
        unsigned flags = 0;
        std::map<std::string, std::string> networks{}; ///< by address; empty when it has none of its own
        Link told{};
    };

    void ask(int type);
    void begin();
    void read(std::span<const std::byte> packet);
    void apply(const nlmsghdr& message);
    void applyLink(const nlmsghdr& message);
    void applyAddress(const nlmsghdr& message);
    void tell(int index, Known& known);
    [[nodiscard]] static Link linkOf(const Known& known);

    OpenSocket m_open;
    std::function<void(int, const Link&)> m_changed;
    int m_socket = -1;
    std::unique_ptr<QSocketNotifier> m_notifier;
    Stage m_stage = Stage::silent;
    std::map<int, Known> m_links; ///< by index
};

} // namespace nightjar
