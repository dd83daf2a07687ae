// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "app/Published.h"
#include "app/mesh/MeshStatus.h"
#include "platform/HostEnvironment.h"
#include "platform/Preferences.h"
#include "radio/MeshRadioError.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace nightjar {

/// Which base radio is chosen and which is connected, and which attempt to connect still counts. Talks to no
/// radio: it is told how an attempt ended. Main thread.
class BaseConnection {
public:
    struct Announcers {
        Announcer connectedPort;
        Announcer availablePorts;
        Announcer selectedPort;
        Announcer localNodeID;
    };
    struct Attempt {
        int generation;
        std::string port;
    };
    struct Base {
        std::string port;
        std::uint32_t number;
    };

    BaseConnection(const HostEnvironment& host, Preferences& preferences, MeshStatus& status,
                   const Announcers& announcers);

    [[nodiscard]] const std::optional<std::string>& connectedPort() const { return m_connectedPort.get(); }
    [[nodiscard]] const std::vector<std::string>& availablePorts() const { return m_availablePorts.get(); }
    [[nodiscard]] const std::string& selectedPort() const { return m_selectedPort.get(); }
    [[nodiscard]] std::optional<std::uint32_t> localNodeID() const { return m_localNodeID.get(); }

    /// Counts every attempt to connect and every disconnection.
    [[nodiscard]] int generation() const { return m_generation; }
    /// The generation of the latest attempt to connect, whatever came of it.
    [[nodiscard]] int latestAttempt() const { return m_latestAttempt; }
    /// The generation that the radio was last told about, 0 once its bridge is lost; events and answers of
    /// another one are void. An attempt that found no port leaves the bridge alone, and a guarded node is
    /// still heard through it.
    [[nodiscard]] int link() const { return m_link; }
    /// Whether `link` has been replaced by another connection, and not by a disconnection: its bridge is
    /// heard until it has stopped, so that no message and no position of the guarded node falls between two
    /// connections.
    [[nodiscard]] bool isReplaced(int link) const { return link > m_lastRelease && link < m_link; }
    /// Whether a radio is connected and has told its own node number.
    [[nodiscard]] bool isEstablished() const { return connectedPort() && localNodeID(); }
    /// The connected radio, once it has itself told its number over this connection.
    [[nodiscard]] std::optional<Base> base() const;

    void selectPort(const std::string& port) { m_selectedPort.set(port); }
    /// Lists the ports anew and settles which one is selected.
    void refreshPorts();
    /// The port of the last connection, when it is there.
    [[nodiscard]] std::optional<std::string> lastPort() const;
    /// There was nothing to reconnect at the start.
    void showNothingToReconnect();

    /// Begins an attempt to connect the given port, or the selected one; absent when there is no such port,
    /// which the status lines then say.
    [[nodiscard]] std::optional<Attempt> begin(const std::optional<std::string>& port);
    /// Whether the outcome of an attempt is still awaited.
    [[nodiscard]] bool isAwaited(int generation) const { return m_connecting && generation == m_generation; }
    /// The awaited attempt succeeded: the port that answered is the one to reconnect at the next start.
    void accept(const std::string& port);
    void showConnected();
    /// The awaited attempt failed.
    void reject(const MeshRadioError& error);

    /// The user lets go of the radio for good.
    void release();
    /// The radio is gone, but remains the one to reconnect at the next start.
    void drop();
    /// Its bridge is gone too: nothing more is heard over this connection.
    void lose();
    /// The radio told its own node number.
    void setLocalNode(std::optional<std::uint32_t> number);

private:
    [[nodiscard]] std::string savedPort() const;
    [[nodiscard]] bool isAvailable(const std::string& port) const;
    void showNoUsablePort();

    const HostEnvironment& m_host;
    Preferences& m_preferences;
    MeshStatus& m_status;
    Published<std::optional<std::string>> m_connectedPort;
    Published<std::vector<std::string>> m_availablePorts;
    Published<std::string> m_selectedPort;
    Published<std::optional<std::uint32_t>> m_localNodeID;
    int m_generation = 0;
    int m_latestAttempt = 0;
    int m_link = 0;
    int m_lastRelease = 0; ///< the generation in which the user last let go of a radio
    bool m_connecting = false;
    int m_localNodeLink = 0; ///< the connection over which the local node number came
};

} // namespace nightjar
