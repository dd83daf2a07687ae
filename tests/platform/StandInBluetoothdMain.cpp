// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// The stand-in as a process of its own, so that it can be killed and frozen. Takes the address of its bus and
// then one command per line, each answered by one line: "ok", with what there is to tell, or "error". Words
// are separated by spaces and percent-encoded.
//
//   up                                     take the name
//   down [inOrder]                         close the connection, in order or at once
//   adapter NAME [powered=0] [central=0]   plugged in
//   unplug NAME
//   power NAME on|off
//   device NAME ADDRESS [Property=TYPE:VALUE ...]     known, not heard
//   adv NAME ADDRESS RSSI [Property=TYPE:VALUE ...]   received; tells what became of it
//   change NAME ADDRESS Property=TYPE:VALUE ...       a signal of just this
//   invalidate NAME ADDRESS PROPERTY
//   remove NAME ADDRESS
//   endDiscovery NAME                      for all clients
//   fail METHOD ERROR [TIMES]
//   ignore METHOD [TIMES]                  no answer
//   heal                                   no more faults
//   lifetime MILLISECONDS                  of a device that is no longer heard
//   rule old|new                           which readings are reported
//   sessions NAME                          tells how many clients look for devices, then their filters
//   calls METHOD                           tells how often it was called
//   flood NAME DEVICES RATE COUNT          RATE a second, 0 = as fast as they go
//
// TYPE is a character of a D-Bus signature: n, i, u, b, s, or S for a list of texts with commas between them.
#include "tests/platform/StandInBluetoothd.h"

#include "platform/linux/BluezNames.h"

#include <QCoreApplication>
#include <QSocketNotifier>

#include <cstdio>
#include <functional>
#include <iostream>
#include <map>
#include <stdexcept>
#include <string>
#include <unistd.h>

using namespace nightjar;

namespace {

using Words = QStringList;

QVariant value(const QString& text) {
    const QString rest = text.mid(2);
    switch (text.at(0).unicode()) {
    case u'n':
        return QVariant::fromValue<short>(rest.toShort());
    case u'i':
        return rest.toInt();
    case u'u':
        return rest.toUInt();
    case u'b':
        return rest == QLatin1String("1");
    case u'S':
        return rest.split(u',', Qt::SkipEmptyParts);
    default:
        return rest;
    }
}

/// The words from `first` on, each "Property=TYPE:VALUE".
QVariantMap properties(const Words& words, qsizetype first) {
    QVariantMap properties;
    for (qsizetype i = first; i < words.size(); ++i)
        properties[words[i].section(u'=', 0, 0)] = value(words[i].section(u'=', 1));
    return properties;
}

QString describe(const StandInBluetoothd::Adapter& adapter) {
    QString text = QString::number(adapter.clients.size());
    for (const auto& client : adapter.clients) {
        const auto filter = adapter.filters.value(client);
        for (const auto& [name, setting] : filter.asKeyValueRange())
            text += u' ' + name + u'=' + setting.toString();
    }
    return text;
}

class Commands {
public:
    explicit Commands(StandInBluetoothd& daemon) : m_daemon(daemon) {}

    QString run(const QString& line) {
        Words words;
        for (const auto& word : line.split(u' ', Qt::SkipEmptyParts))
            words.append(QString::fromUtf8(QByteArray::fromPercentEncoding(word.toUtf8())));
        const auto command = words.isEmpty() ? m_commands.end() : m_commands.find(words.first());
        if (command == m_commands.end())
            return QStringLiteral("error unknown command");
        try {
            return QStringLiteral("ok ") + command->second(words.mid(1));
        } catch (const std::exception& error) {
            return QStringLiteral("error ") + QString::fromUtf8(error.what());
        }
    }

private:
    QString up() {
        if (!m_daemon.up())
            throw std::runtime_error("the name cannot be taken");
        return {};
    }
    QString fault(const QString& method, const QString& error, const QString& times) {
        m_daemon.setFault(method, {.error = error, .times = times.isEmpty() ? -1 : times.toInt()});
        return {};
    }
    StandInBluetoothd::Device& device(const Words& w) { return m_daemon.device(w.value(0), w.value(1)); }
    QString change(const Words& w) {
        const auto changed = properties(w, 2);
        device(w).properties.insert(changed);
        m_daemon.change(device(w).path, bluez::deviceInterface, changed);
        return {};
    }

    template <class Command>
    static std::function<QString(const Words&)> plain(Command command) {
        return [command](const Words& w) { return command(w), QString(); };
    }

    StandInBluetoothd& m_daemon;
    const std::map<QString, std::function<QString(const Words&)>> m_commands = {
        {QStringLiteral("up"), [this](const Words&) { return up(); }},
        {QStringLiteral("down"), plain([this](const Words& w) { m_daemon.down(!w.isEmpty()); })},
        {QStringLiteral("adapter"), plain([this](const Words& w) {
             m_daemon.plugIn(w.value(0), !w.contains(QLatin1String("powered=0")),
                             !w.contains(QLatin1String("central=0")));
         })},
        {QStringLiteral("unplug"), plain([this](const Words& w) { m_daemon.unplug(w.value(0)); })},
        {QStringLiteral("power"),
         plain([this](const Words& w) { m_daemon.setPower(w.value(0), w.value(1) == QLatin1String("on")); })},
        {QStringLiteral("device"),
         plain([this](const Words& w) { m_daemon.addDevice(w.value(0), w.value(1), properties(w, 2)); })},
        {QStringLiteral("adv"),
         [this](const Words& w) {
             return m_daemon.receive(w.value(0), w.value(1), w.value(2).toInt(), properties(w, 3));
         }},
        {QStringLiteral("change"), [this](const Words& w) { return change(w); }},
        {QStringLiteral("invalidate"), plain([this](const Words& w) {
             m_daemon.change(device(w).path, bluez::deviceInterface, {}, {w.value(2)});
         })},
        {QStringLiteral("remove"),
         plain([this](const Words& w) { m_daemon.removeDevice(m_daemon.adapter(w.value(0)), w.value(1)); })},
        {QStringLiteral("endDiscovery"),
         plain([this](const Words& w) { m_daemon.endDiscovery(m_daemon.adapter(w.value(0))); })},
        {QStringLiteral("fail"),
         [this](const Words& w) { return fault(w.value(0), w.value(1), w.value(2)); }},
        {QStringLiteral("ignore"), [this](const Words& w) { return fault(w.value(0), {}, w.value(1)); }},
        {QStringLiteral("heal"), plain([this](const Words&) { m_daemon.clearFaults(); })},
        {QStringLiteral("lifetime"), plain([this](const Words& w) {
             m_daemon.setLifetime(std::chrono::milliseconds(w.value(0).toInt()));
         })},
        {QStringLiteral("rule"),
         plain([this](const Words& w) { m_daemon.setOldRule(w.value(0) == QLatin1String("old")); })},
        {QStringLiteral("sessions"),
         [this](const Words& w) { return describe(m_daemon.adapter(w.value(0))); }},
        {QStringLiteral("calls"),
         [this](const Words& w) { return QString::number(m_daemon.calls(w.value(0))); }},
        {QStringLiteral("flood"), plain([this](const Words& w) {
             m_daemon.flood(w.value(0), w.value(1).toInt(), w.value(2).toInt(), w.value(3).toInt());
         })},
    };
};

} // namespace

int main(int count, char** arguments) {
    const QCoreApplication application(count, arguments);
    StandInBluetoothd daemon(count > 1 ? QString::fromLocal8Bit(arguments[1])
                                       : qEnvironmentVariable("DBUS_SYSTEM_BUS_ADDRESS"));
    Commands commands(daemon);
    QByteArray received;
    QSocketNotifier input(STDIN_FILENO, QSocketNotifier::Read);
    QObject::connect(&input, &QSocketNotifier::activated, &input, [&] {
        std::array<char, 65536> bytes{};
        const auto size = ::read(STDIN_FILENO, bytes.data(), bytes.size());
        if (size <= 0)
            return QCoreApplication::quit();
        received.append(bytes.data(), size);
        for (qsizetype end = received.indexOf('\n'); end >= 0; end = received.indexOf('\n')) {
            const QString answer = commands.run(QString::fromUtf8(received.first(end)));
            received.remove(0, end + 1);
            std::puts(answer.toUtf8().constData());
            std::fflush(stdout);
        }
    });
    return QCoreApplication::exec();
}
