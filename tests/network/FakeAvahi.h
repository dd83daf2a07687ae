// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/linux/AvahiNames.h"
#include "tests/desktop/ScriptedService.h"

#include <QDBusMetaType>
#include <QDBusObjectPath>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace nightjar {

/// A daemon that hears what the test makes it hear. It goes from the bus with its object.
class FakeAvahi {
public:
    explicit FakeAvahi(const QDBusConnection& bus) : m_service(bus, avahi::service, avahi::rootPath) {
        qDBusRegisterMetaType<QList<QByteArray>>();
        answerAll();
    }

    /// Each method again as usual.
    void answerAll() {
        m_service.on("GetAPIVersion", {516u});
        m_service.on("Free", QVariantList{});
        m_service.on("ServiceBrowserPrepare", [this](const QDBusMessage& call) {
            const auto path = QStringLiteral("/Client1/ServiceBrowser%1").arg(++m_lastNumber);
            m_paths[call.arguments().at(2).toString().toStdString()] = path;
            return call.createReply(QVariant::fromValue(QDBusObjectPath(path)));
        });
        m_service.on("Start", [this](const QDBusMessage& call) {
            m_started.push_back(call.path());
            return call.createReply();
        });
        m_service.on("GetNetworkInterfaceNameByIndex", [](const QDBusMessage& call) {
            return call.createReply(QStringLiteral("net%1").arg(call.arguments().at(0).toInt()));
        });
        m_service.on("ResolveService", [this](const QDBusMessage& call) { return resolve(call); });
    }

    void hang() {
        for (const auto* method : {"GetAPIVersion", "ServiceBrowserPrepare", "Start",
                                   "GetNetworkInterfaceNameByIndex", "ResolveService"})
            m_service.staySilent(method);
    }

    void announce(const std::string& type, const std::string& name, unsigned flags = 4, int interface = 1,
                  int protocol = 0) {
        item("ItemNew", type, name, QString::fromStdString(type), QStringLiteral("local"), flags, interface,
             protocol);
    }
    void withdraw(const std::string& type, const std::string& name, int interface = 1, int protocol = 0) {
        item("ItemRemove", type, name, QString::fromStdString(type), QStringLiteral("local"), 4, interface,
             protocol);
    }
    /// A signal of the browser of `type` that says what it likes.
    void item(const char* signal, const std::string& type, const std::string& name, const QString& saidType,
              const QString& saidDomain, unsigned flags = 4, int interface = 1, int protocol = 0) {
        tell(type, signal, {interface, protocol, QString::fromStdString(name), saidType, saidDomain, flags});
    }
    void tell(const std::string& type, const char* signal, const QVariantList& arguments = {}) {
        m_service.tell(m_paths.at(type), avahi::serviceBrowser, QString::fromLatin1(signal), arguments);
    }
    void finish(const std::string& type) { tell(type, "AllForNow"); }

    /// Whether the newest browser of the type runs.
    [[nodiscard]] bool browses(const std::string& type) const {
        const auto path = m_paths.find(type);
        return path != m_paths.end() && std::ranges::find(m_started, path->second) != m_started.end();
    }
    [[nodiscard]] QString path(const std::string& type) const { return m_paths.at(type); }
    [[nodiscard]] ScriptedService& service() { return m_service; }

    std::set<std::string> dead; ///< names for which nobody answers

private:
    [[nodiscard]] QDBusMessage resolve(const QDBusMessage& call) const {
        const auto arguments = call.arguments();
        if (dead.contains(arguments.at(2).toString().toStdString()))
            return call.createErrorReply(avahi::timeoutError, QStringLiteral("Timeout reached"));
        return call.createReply({1, 0, arguments.at(2), arguments.at(3), arguments.at(4),
                                 QStringLiteral("host.local"), 0, QString(), QVariant::fromValue<ushort>(22),
                                 QVariant::fromValue(QList<QByteArray>()), 4u});
    }

    ScriptedService m_service;
    int m_lastNumber = 0;
    std::map<std::string, QString> m_paths; ///< of the newest browser, by type
    std::vector<QString> m_started;
};

} // namespace nightjar
