// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/BluetoothCentral.h"
#include "platform/linux/BluezAdapters.h"
#include "platform/linux/BluezDaemon.h"
#include "platform/linux/BluezDevice.h"
#include "platform/linux/BluezDiscovery.h"
#include "platform/linux/BluezSettings.h"

#include <QDBusArgument>
#include <QHash>

#include <memory>

namespace nightjar {

/// The Bluetooth radio behind the daemon of BlueZ. Main thread.
///
/// The state says what a scan would hear: a daemon that hangs, or one that keeps refusing to look for
/// devices, makes the radio `resetting`, since a scan that hears nothing must not look like devices that have
/// gone. It is `poweredOn` again once the discovery works.
class BluezCentral final : public BluetoothCentral {
public:
    /// The bus is opened by its owner and may come, go and come back at any time; it outlives this.
    BluezCentral(BusConnector& connector, Scheduler& scheduler, const BluezSettings& settings = {});
    BluezCentral(const BluezCentral&) = delete;
    BluezCentral& operator=(const BluezCentral&) = delete;

    void setListener(Listener listener) override;
    [[nodiscard]] BluetoothRadioState state() const override { return m_state; }
    void scan() override;
    void stopScan() override;
    [[nodiscard]] bool isResponsive() override;

    static constexpr qsizetype mostDevices = 100'000;
    [[nodiscard]] qsizetype knownDevices() const { return m_devices.size(); }

private:
    enum class Knowledge { none, refused, complete };

    void appeared();
    void vanished();
    void askForObjects();
    void objectsAnswered(const QDBusMessage& answer);
    void readObjects(const QDBusMessage& answer);
    void interfacesAdded(const QDBusMessage& signal);
    void interfacesRemoved(const QDBusMessage& signal);
    void deviceChanged(const QDBusMessage& signal);
    void adapterChanged(const QDBusMessage& signal);
    void readInterfaces(const QString& path, const QDBusArgument& interfaces);
    void readAdapter(const QString& path, const QDBusArgument& properties);
    void readDevice(const QString& path, const QDBusArgument& properties);
    void hear(const QString& path, const BluezDevice& device);
    void chooseAdapter();
    void awaitAdapters();
    void settle();
    void publish(BluetoothRadioState state);
    [[nodiscard]] BluetoothRadioState trueState() const;

    Scheduler& m_scheduler;
    const BluezSettings m_settings;
    std::shared_ptr<const Listener> m_listener = std::make_shared<const Listener>();
    BluetoothRadioState m_state = BluetoothRadioState::unknown;
    Knowledge m_knowledge = Knowledge::none;
    bool m_wasKnown = false; ///< what the daemon has, at any time
    BluezAdapters m_adapters;
    QHash<QString, BluezDevice> m_devices; ///< by object path
    Timer m_debounce;
    Timer m_grace; ///< runs while no adapter has been found yet
    bool m_isGraceOver = false;
    Timer m_nextQuestion;
    // Last: the daemon calls the others, and the discovery calls the daemon.
    BluezDaemon m_daemon;
    BluezDiscovery m_discovery;
};

} // namespace nightjar
