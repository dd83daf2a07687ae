// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/platform/StandInBluetoothd.h"

#include "platform/linux/BluezNames.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusServiceWatcher>

#include <algorithm>
#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace nightjar {
namespace {

using DBusObjects = QMap<QDBusObjectPath, DBusInterfaces>;

QString withError(const char* name) {
    return QStringLiteral("org.bluez.Error.") + QString::fromLatin1(name);
}

QDBusMessage refusal(const QDBusMessage& call, const QString& error) {
    return call.createErrorReply(error, error);
}

QString devicePath(const QString& adapterPath, QString address) {
    return adapterPath + QStringLiteral("/dev_") + address.replace(u':', u'_');
}

} // namespace

StandInBluetoothd::StandInBluetoothd(QString busAddress)
    : m_busAddress(std::move(busAddress)), m_bus(QString()) {
    qDBusRegisterMetaType<DBusInterfaces>();
    qDBusRegisterMetaType<DBusObjects>();
}

StandInBluetoothd::~StandInBluetoothd() {
    down(false);
}

bool StandInBluetoothd::up() {
    static int ups = 0;
    m_bus = QDBusConnection::connectToBus(m_busAddress, QStringLiteral("stand-in-%1").arg(++ups));
    auto* watcher = new QDBusServiceWatcher(this);
    watcher->setObjectName(QStringLiteral("clients"));
    watcher->setConnection(m_bus);
    watcher->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(watcher, &QDBusServiceWatcher::serviceUnregistered, this, &StandInBluetoothd::forget);
    return m_bus.registerVirtualObject(bluez::rootPath, this, QDBusConnection::SubPath) &&
           m_bus.registerService(bluez::service);
}

void StandInBluetoothd::down(bool inOrder) {
    if (inOrder) {
        while (!m_adapters.empty()) {
            const QString name = m_adapters.begin()->first;
            setPower(name, false);
            unplug(name);
        }
        m_bus.unregisterService(bluez::service);
    }
    m_adapters.clear();
    delete findChild<QDBusServiceWatcher*>(QStringLiteral("clients"));
    const QString name = std::exchange(m_bus, QDBusConnection(QString())).name();
    QDBusConnection::disconnectFromBus(name);
}

bool StandInBluetoothd::handleMessage(const QDBusMessage& message, const QDBusConnection&) {
    ++m_calls[message.member()];
    const auto fault = m_faults.find(message.member());
    if (fault != m_faults.end() && fault->times != 0) {
        if (fault->times > 0)
            --fault->times;
        message.setDelayedReply(true);
        if (!fault->error.isEmpty())
            m_bus.send(refusal(message, fault->error));
        return true;
    }
    m_bus.send(answer(message));
    return true;
}

QDBusMessage StandInBluetoothd::answer(const QDBusMessage& call) {
    if (call.member() == QLatin1String("GetManagedObjects"))
        return managedObjects(call);
    const auto found =
        std::ranges::find(m_adapters, call.path(), [](const auto& item) { return item.second.path; });
    if (found == m_adapters.end())
        return refusal(call, QStringLiteral("org.freedesktop.DBus.Error.UnknownObject"));
    Adapter& adapter = found->second;
    if (!adapter.properties.value(QStringLiteral("Powered")).toBool())
        return refusal(call, withError("NotReady"));
    if (call.member() == QLatin1String("SetDiscoveryFilter"))
        return setFilter(adapter, call);
    if (call.member() == QLatin1String("StartDiscovery"))
        return start(adapter, call);
    if (call.member() == QLatin1String("StopDiscovery"))
        return stop(adapter, call);
    return refusal(call, QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"));
}

QDBusMessage StandInBluetoothd::managedObjects(const QDBusMessage& call) {
    DBusObjects objects;
    for (const auto& [name, adapter] : m_adapters) {
        objects[QDBusObjectPath(adapter.path)] = {{bluez::adapterInterface, adapter.properties}};
        for (const auto& [address, device] : adapter.devices)
            objects[QDBusObjectPath(device.path)] = {{bluez::deviceInterface, device.properties}};
    }
    return call.createReply(QVariant::fromValue(objects));
}

QDBusMessage StandInBluetoothd::setFilter(Adapter& adapter, const QDBusMessage& call) {
    const auto filter = qdbus_cast<QVariantMap>(call.arguments().value(0));
    const QVariant rssi = filter.value(QStringLiteral("RSSI"));
    if (rssi.isValid() && rssi.typeId() != QMetaType::Short)
        return refusal(call, withError("InvalidArguments"));
    findChild<QDBusServiceWatcher*>(QStringLiteral("clients"))->addWatchedService(call.service());
    adapter.filters[call.service()] = filter;
    return call.createReply();
}

QDBusMessage StandInBluetoothd::start(Adapter& adapter, const QDBusMessage& call) {
    if (adapter.clients.contains(call.service()))
        return refusal(call, withError("InProgress"));
    findChild<QDBusServiceWatcher*>(QStringLiteral("clients"))->addWatchedService(call.service());
    adapter.clients.insert(call.service());
    // After the answer.
    QTimer::singleShot(0, this, [this, path = adapter.path] {
        for (auto& [name, one] : m_adapters) {
            if (one.path == path && !one.clients.isEmpty())
                setProperty(one, QStringLiteral("Discovering"), true);
        }
    });
    return call.createReply();
}

QDBusMessage StandInBluetoothd::stop(Adapter& adapter, const QDBusMessage& call) {
    if (!adapter.clients.contains(call.service()))
        return refusal(call, withError("Failed"));
    leave(adapter, call.service());
    return call.createReply();
}

void StandInBluetoothd::forget(const QString& client) {
    for (auto& [name, adapter] : m_adapters)
        leave(adapter, client);
}

void StandInBluetoothd::leave(Adapter& adapter, const QString& client) {
    adapter.filters.remove(client);
    if (adapter.clients.remove(client) && adapter.clients.isEmpty())
        endDiscovery(adapter);
}

void StandInBluetoothd::endDiscovery(Adapter& adapter) {
    adapter.clients.clear();
    adapter.filters.clear();
    for (auto& [address, device] : adapter.devices) {
        if (device.properties.remove(QStringLiteral("RSSI")))
            change(device.path, bluez::deviceInterface, {}, {QStringLiteral("RSSI")});
    }
    setProperty(adapter, QStringLiteral("Discovering"), false);
}

void StandInBluetoothd::plugIn(const QString& name, bool isPowered, bool isCentral) {
    Adapter& adapter = m_adapters[name];
    adapter.path = QStringLiteral("/org/bluez/") + name;
    adapter.properties = {
        {QStringLiteral("Address"), QStringLiteral("00:11:22:33:44:55")},
        {QStringLiteral("Powered"), isPowered},
        {QStringLiteral("Discovering"), false},
        {QStringLiteral("Roles"), isCentral ? QStringList{QStringLiteral("central")} : QStringList{}},
        {QStringLiteral("Class"), QVariant::fromValue<uint>(0x6c010c)},
    };
    signalAdded(adapter.path, bluez::adapterInterface, adapter.properties);
}

void StandInBluetoothd::unplug(const QString& name) {
    Adapter& adapter = this->adapter(name);
    while (!adapter.devices.empty())
        removeDevice(adapter, adapter.devices.begin()->first);
    signalRemoved(adapter.path, bluez::adapterInterface);
    m_adapters.erase(name);
}

void StandInBluetoothd::setPower(const QString& name, bool isOn) {
    Adapter& adapter = this->adapter(name);
    if (!isOn) {
        endDiscovery(adapter);
        QStringList temporary;
        for (const auto& [address, device] : adapter.devices) {
            if (device.isTemporary)
                temporary.append(address);
        }
        for (const auto& address : temporary)
            removeDevice(adapter, address);
    }
    setProperty(adapter, QStringLiteral("Powered"), isOn);
}

StandInBluetoothd::Adapter& StandInBluetoothd::adapter(const QString& name) {
    const auto found = m_adapters.find(name);
    if (found == m_adapters.end())
        throw std::invalid_argument("there is no such adapter");
    return found->second;
}

StandInBluetoothd::Device& StandInBluetoothd::device(const QString& name, const QString& address) {
    auto& devices = adapter(name).devices;
    const auto found = devices.find(address);
    if (found == devices.end())
        throw std::invalid_argument("there is no such device");
    return found->second;
}

void StandInBluetoothd::addDevice(const QString& name, const QString& address,
                                  const QVariantMap& properties) {
    Adapter& adapter = this->adapter(name);
    Device& device = adapter.devices[address];
    device.path = devicePath(adapter.path, address);
    QString dashed = address;
    device.properties = {
        {QStringLiteral("Address"), address},
        {QStringLiteral("AddressType"), QStringLiteral("random")},
        {QStringLiteral("Alias"), properties.value(QStringLiteral("Name"), dashed.replace(u':', u'-'))},
        {QStringLiteral("Paired"), false},
        {QStringLiteral("UUIDs"), QStringList()},
    };
    device.properties.insert(properties);
    signalAdded(device.path, bluez::deviceInterface, device.properties);
}

void StandInBluetoothd::removeDevice(Adapter& adapter, const QString& address) {
    const auto device = adapter.devices.extract(address);
    if (!device.empty())
        signalRemoved(device.mapped().path, bluez::deviceInterface);
}

/// By how many dB a reading must differ from the one before to be reported.
int StandInBluetoothd::reportedStep(const Adapter& adapter) const {
    const bool every = std::ranges::any_of(adapter.clients, [&](const QString& client) {
        const auto filter = adapter.filters.value(client);
        return m_hasOldRule ? !filter.isEmpty() : filter.contains(QStringLiteral("RSSI"));
    });
    return every ? 0 : 8;
}

QString StandInBluetoothd::receive(const QString& name, const QString& address, int rssi,
                                   const QVariantMap& properties) {
    Adapter& adapter = this->adapter(name);
    if (adapter.clients.isEmpty())
        return QStringLiteral("not heard");
    QVariantMap changed = properties;
    changed[QStringLiteral("RSSI")] = QVariant::fromValue<short>(static_cast<short>(rssi));
    if (!adapter.devices.contains(address)) {
        addDevice(name, address, changed);
        live(adapter, address);
        return QStringLiteral("added");
    }
    Device& device = adapter.devices[address];
    live(adapter, address);
    const QVariant before = device.properties.value(QStringLiteral("RSSI"));
    if (before.isValid() && std::abs(before.toInt() - rssi) < reportedStep(adapter))
        changed.remove(QStringLiteral("RSSI"));
    device.properties.insert(changed);
    if (changed.isEmpty())
        return QStringLiteral("held back");
    change(device.path, bluez::deviceInterface, changed);
    return QStringLiteral("changed");
}

void StandInBluetoothd::live(Adapter& adapter, const QString& address) {
    Device& device = adapter.devices[address];
    if (!device.isTemporary)
        return;
    device.end = std::make_unique<QTimer>();
    device.end->setSingleShot(true);
    connect(device.end.get(), &QTimer::timeout, this, [this, &adapter, address] {
        adapter.devices[address].end.release()->deleteLater();
        removeDevice(adapter, address);
    });
    device.end->start(m_lifetime);
}

void StandInBluetoothd::setProperty(Adapter& adapter, const QString& name, const QVariant& value) {
    if (std::exchange(adapter.properties[name], value) != value)
        change(adapter.path, bluez::adapterInterface, {{name, value}});
}

} // namespace nightjar
