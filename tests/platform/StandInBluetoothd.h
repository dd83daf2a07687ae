// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QHash>
#include <QMap>
#include <QSet>
#include <QTimer>
#include <QVariantMap>

#include <map>
#include <memory>

namespace nightjar {

using DBusInterfaces = QMap<QString, QVariantMap>;

/// A Bluetooth daemon without radio: the objects, discovery sessions per client, filters and rules for
/// reporting of the real one, and faults on demand. The radio's world is moved by the caller.
class StandInBluetoothd final : public QDBusVirtualObject {
public:
    struct Device {
        QString path;
        QVariantMap properties;
        bool isTemporary = true;
        std::unique_ptr<QTimer> end;
    };
    struct Adapter {
        QString path;
        QVariantMap properties;
        QHash<QString, QVariantMap> filters; ///< by client; some have set one without looking for devices
        QSet<QString> clients;               ///< that look for devices
        std::map<QString, Device> devices;   ///< by address
    };
    struct Fault {
        QString error; ///< empty: no answer at all
        int times = -1;
    };

    explicit StandInBluetoothd(QString busAddress);
    ~StandInBluetoothd() override;

    /// Takes the name on a new connection; false when it cannot.
    [[nodiscard]] bool up();
    /// In order, or by closing the connection at once.
    void down(bool inOrder);

    void plugIn(const QString& name, bool isPowered, bool isCentral);
    void unplug(const QString& name);
    void setPower(const QString& name, bool isOn);
    /// The controller gave up: nobody's session is left.
    void endDiscovery(Adapter& adapter);
    [[nodiscard]] Adapter& adapter(const QString& name);
    [[nodiscard]] Device& device(const QString& name, const QString& address);

    /// A device that the daemon knows without having heard it.
    void addDevice(const QString& name, const QString& address, const QVariantMap& properties);
    void removeDevice(Adapter& adapter, const QString& address);
    /// One received advertisement; what the daemon made of it.
    QString receive(const QString& name, const QString& address, int rssi, const QVariantMap& properties);
    void change(const QString& path, const QString& interface, const QVariantMap& changed,
                const QStringList& invalidated = {});
    /// `rate` advertisements a second, 0 = as fast as they go; returns once the bus has taken them all.
    void flood(const QString& name, int devices, int rate, int count);

    void setFault(const QString& method, const Fault& fault) { m_faults[method] = fault; }
    void clearFaults() { m_faults.clear(); }
    [[nodiscard]] int calls(const QString& method) const { return m_calls.value(method); }
    void setLifetime(std::chrono::milliseconds lifetime) { m_lifetime = lifetime; }
    /// Older daemons report every reading as soon as there is any filter.
    void setOldRule(bool isOld) { m_hasOldRule = isOld; }

    [[nodiscard]] QString introspect(const QString&) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;

private:
    [[nodiscard]] QDBusMessage answer(const QDBusMessage& call);
    [[nodiscard]] QDBusMessage managedObjects(const QDBusMessage& call);
    [[nodiscard]] QDBusMessage setFilter(Adapter& adapter, const QDBusMessage& call);
    [[nodiscard]] QDBusMessage start(Adapter& adapter, const QDBusMessage& call);
    [[nodiscard]] QDBusMessage stop(Adapter& adapter, const QDBusMessage& call);
    void forget(const QString& client);
    void leave(Adapter& adapter, const QString& client);
    void setProperty(Adapter& adapter, const QString& name, const QVariant& value);
    void signalAdded(const QString& path, const QString& interface, const QVariantMap& properties);
    void signalRemoved(const QString& path, const QString& interface);
    [[nodiscard]] int reportedStep(const Adapter& adapter) const;
    void live(Adapter& adapter, const QString& address);

    QString m_busAddress;
    QDBusConnection m_bus;
    std::map<QString, Adapter> m_adapters;
    QHash<QString, Fault> m_faults;
    QHash<QString, int> m_calls;
    std::chrono::milliseconds m_lifetime{30'000};
    bool m_hasOldRule = false;
};

} // namespace nightjar
