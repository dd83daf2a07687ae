// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/BluezCentral.h"

#include "platform/linux/BluezNames.h"
#include "platform/linux/BluezReading.h"
#include "platform/linux/BusCall.h"

#include <utility>

namespace nightjar {

BluezCentral::BluezCentral(BusConnector& connector, Scheduler& scheduler, const BluezSettings& settings)
    : m_scheduler(scheduler),
      m_settings(settings),
      m_daemon(connector, scheduler, m_settings,
               {.appeared = [this] { appeared(); },
                .vanished = [this] { vanished(); },
                .interfacesAdded = [this](const QDBusMessage& signal) { interfacesAdded(signal); },
                .interfacesRemoved = [this](const QDBusMessage& signal) { interfacesRemoved(signal); },
                .deviceChanged = [this](const QDBusMessage& signal) { deviceChanged(signal); },
                .adapterChanged = [this](const QDBusMessage& signal) { adapterChanged(signal); }}),
      m_discovery(m_daemon, scheduler, m_settings, [this] { settle(); }) {}

void BluezCentral::setListener(Listener listener) {
    m_listener = std::make_shared<const Listener>(std::move(listener));
}

void BluezCentral::scan() {
    if (m_state != BluetoothRadioState::poweredOn)
        return;
    m_discovery.want();
    m_daemon.setWatched(true);
}

void BluezCentral::stopScan() {
    // With the state the scan has ended already; what goes on is ours, to find out when the radio works
    // again.
    if (m_state != BluetoothRadioState::poweredOn)
        return;
    m_discovery.unwant();
    m_daemon.setWatched(false);
}

bool BluezCentral::isResponsive() {
    return m_daemon.isResponsive();
}

void BluezCentral::appeared() {
    askForObjects();
}

void BluezCentral::vanished() {
    m_knowledge = Knowledge::none;
    m_nextQuestion.cancel();
    m_grace.cancel();
    m_adapters.clear();
    m_devices.clear();
    chooseAdapter();
}

void BluezCentral::askForObjects() {
    m_nextQuestion.cancel();
    m_daemon.call(bluez::rootPath, bluez::objectManager, QStringLiteral("GetManagedObjects"), {},
                  [this](const QDBusMessage& answer) { objectsAnswered(answer); });
}

void BluezCentral::objectsAnswered(const QDBusMessage& answer) {
    if (answer.type() == QDBusMessage::ReplyMessage && answer.signature() == QLatin1String("a{oa{sa{sv}}}"))
        return readObjects(answer);
    if (isSilence(answer))
        return m_daemon.suspect();
    const bool isRefused = bluez::isRefusal(answer.errorName());
    m_knowledge = isRefused ? Knowledge::refused : Knowledge::none;
    // A daemon that is just starting may not have its objects yet.
    m_nextQuestion = m_scheduler.after(isRefused ? m_settings.deniedPause : m_settings.adapterGrace,
                                       [this] { askForObjects(); });
    settle();
}

/// No discovery of ours runs yet, so none of these readings, which may be minutes old, is heard.
void BluezCentral::readObjects(const QDBusMessage& answer) {
    m_knowledge = Knowledge::complete;
    m_wasKnown = true;
    m_adapters.clear();
    m_devices.clear();
    bluez::readObjects(
        bluez::argumentOf(answer, 0),
        [this](const QString& path, const QDBusArgument& interfaces) { readInterfaces(path, interfaces); });
    chooseAdapter();
}

void BluezCentral::readInterfaces(const QString& path, const QDBusArgument& interfaces) {
    bluez::readInterfaces(interfaces, [&](const QString& interface, const QDBusArgument& properties) {
        if (interface == bluez::adapterInterface)
            readAdapter(path, properties);
        else if (interface == bluez::deviceInterface)
            readDevice(path, properties);
        else
            bluez::readProperties(properties, [](const QString&, const QVariant&) {});
    });
}

void BluezCentral::readAdapter(const QString& path, const QDBusArgument& properties) {
    m_adapters.add(path);
    bluez::readProperties(properties, [&](const QString& property, const QVariant& value) {
        m_adapters.set(path, property, value);
    });
}

void BluezCentral::readDevice(const QString& path, const QDBusArgument& properties) {
    BluezDevice device;
    bluez::readProperties(
        properties, [&](const QString& property, const QVariant& value) { device.set(property, value); });
    if (m_devices.size() >= mostDevices && !m_devices.contains(path))
        return;
    const bool hasReading = device.finish();
    const auto& kept = m_devices[path] = std::move(device);
    if (hasReading)
        hear(path, kept);
}

void BluezCentral::interfacesAdded(const QDBusMessage& signal) {
    if (m_knowledge != Knowledge::complete)
        return;
    const auto path = signal.arguments().at(0).value<QDBusObjectPath>().path();
    readInterfaces(path, bluez::argumentOf(signal, 1));
    chooseAdapter();
}

void BluezCentral::interfacesRemoved(const QDBusMessage& signal) {
    const auto path = signal.arguments().at(0).value<QDBusObjectPath>().path();
    const auto interfaces = signal.arguments().at(1).toStringList();
    if (interfaces.contains(bluez::deviceInterface))
        m_devices.remove(path);
    if (!interfaces.contains(bluez::adapterInterface))
        return;
    m_adapters.remove(path);
    const QString prefix = path + u'/';
    m_devices.removeIf([&](const auto& device) { return device.key().startsWith(prefix); });
    chooseAdapter();
}

void BluezCentral::deviceChanged(const QDBusMessage& signal) {
    const auto found = m_devices.find(signal.path());
    if (found == m_devices.end())
        return;
    BluezDevice& device = *found;
    const auto arguments = signal.arguments();
    bluez::readProperties(
        arguments.at(1).value<QDBusArgument>(),
        [&](const QString& property, const QVariant& value) { device.set(property, value); });
    for (const auto& property : arguments.at(2).toStringList())
        device.clear(property);
    if (device.finish())
        hear(found.key(), device);
}

void BluezCentral::hear(const QString& path, const BluezDevice& device) {
    if (!m_discovery.isRunning() || !device.isValid() || !m_adapters.isUnderChosen(path))
        return;
    m_discovery.advertisementCame(m_daemon.lastHeard());
    const auto listener = m_listener;
    if (listener->onAdvertisement)
        listener->onAdvertisement(device.advertisement());
}

void BluezCentral::adapterChanged(const QDBusMessage& signal) {
    const QString path = signal.path();
    bool hasEnded = false;
    bluez::readProperties(bluez::argumentOf(signal, 1), [&](const QString& property, const QVariant& value) {
        m_adapters.set(path, property, value);
        hasEnded |= property == QLatin1String("Discovering") && bluez::valueOf<bool>(value) == false;
    });
    chooseAdapter();
    if (hasEnded && path == m_adapters.chosen())
        m_discovery.reportedEnded();
}

void BluezCentral::chooseAdapter() {
    if (m_adapters.choose())
        m_discovery.setAdapter(m_adapters.chosen());
    awaitAdapters();
    settle();
}

void BluezCentral::awaitAdapters() {
    if (m_knowledge != Knowledge::complete || m_adapters.hasCentral()) {
        m_grace.cancel();
        m_isGraceOver = false;
    } else if (!m_grace && !m_isGraceOver) {
        m_grace = m_scheduler.after(m_settings.adapterGrace, [this] {
            m_grace.cancel();
            m_isGraceOver = true;
            settle();
        });
    }
}

BluetoothRadioState BluezCentral::trueState() const {
    using enum BluetoothRadioState;
    const auto trouble = m_discovery.trouble();
    if (m_knowledge == Knowledge::refused || trouble == BluezDiscovery::Trouble::denied)
        return unauthorised;
    if (m_knowledge == Knowledge::none)
        return m_wasKnown ? resetting : unknown;
    if (!m_adapters.chosen().isEmpty())
        return trouble == BluezDiscovery::Trouble::blind ? resetting : poweredOn;
    if (m_adapters.hasCentral())
        return poweredOff;
    if (m_isGraceOver)
        return unsupported;
    return m_state == unknown ? unknown : resetting;
}

void BluezCentral::settle() {
    const auto state = trueState();
    if (state == m_state)
        return m_debounce.cancel();
    if (state == BluetoothRadioState::poweredOn)
        return publish(state);
    if (m_debounce)
        return;
    m_debounce = m_scheduler.after(m_settings.stateDebounce, [this] {
        m_debounce.cancel();
        publish(trueState());
    });
}

void BluezCentral::publish(BluetoothRadioState state) {
    m_debounce.cancel();
    if (std::exchange(m_state, state) == state)
        return;
    if (state != BluetoothRadioState::poweredOn) {
        if (m_discovery.trouble() == BluezDiscovery::Trouble::none)
            m_discovery.unwant();
        else
            m_discovery.probe();
    }
    const auto listener = m_listener;
    if (listener->onStateChanged)
        listener->onStateChanged();
    if (m_state == BluetoothRadioState::poweredOn)
        m_discovery.endProbe();
    m_daemon.setWatched(m_discovery.isTrying());
}

} // namespace nightjar
