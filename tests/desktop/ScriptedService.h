// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QThread>

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace nightjar {

/// A service on a message bus that answers each method as the test says, whatever the object, and remembers
/// what it was called for. It has a connection of its own and goes from the bus with it. Calls are answered
/// on the thread on which the object lives; the test may ask for them from another.
class ScriptedService final : public QDBusVirtualObject {
    Q_OBJECT
public:
    /// Returns the answer; an invalid message is none.
    using Answer = std::function<QDBusMessage(const QDBusMessage& call)>;

    /// Answers for all objects at and below `root`.
    ScriptedService(QDBusConnection bus, const QString& name, const QString& root);
    ~ScriptedService() override;

    void on(const std::string& method, Answer answer);
    /// Answers with these values.
    void on(const std::string& method, const QVariantList& values);
    void refuse(const std::string& method, const QString& errorName, const QString& text = {});
    void staySilent(const std::string& method);
    /// Answers late what it was silent about.
    void answer(const QDBusMessage& reply);
    void tell(const QString& path, const QString& interface, const QString& signal,
              const QVariantList& arguments);
    /// Waits until the listener has been given everything that was told so far.
    [[nodiscard]] bool isHeardBy(const QDBusConnection& listener) const;

    [[nodiscard]] std::vector<QDBusMessage> calls(const std::string& method) const;
    [[nodiscard]] std::size_t count(const std::string& method) const { return calls(method).size(); }

    bool handleMessage(const QDBusMessage& call, const QDBusConnection& connection) override;
    [[nodiscard]] QString introspect(const QString&) const override { return {}; }

private:
    QDBusConnection m_bus;
    QString m_name;
    mutable std::mutex m_mutex;
    std::map<std::string, Answer> m_answers; ///< guarded by m_mutex
    std::vector<QDBusMessage> m_calls;       ///< guarded by m_mutex
};

/// A thread for services that are waited for on the test's own. They go before it.
class ServiceThread {
public:
    struct Remove {
        ServiceThread* thread = nullptr;
        void operator()(ScriptedService* service) const;
    };
    using Service = std::unique_ptr<ScriptedService, Remove>;

    ServiceThread();
    ~ServiceThread();

    /// The service answers on the thread from here on.
    [[nodiscard]] Service take(std::unique_ptr<ScriptedService> service);

private:
    QThread m_thread;
    QObject m_worker; ///< lives on the thread
};

} // namespace nightjar
