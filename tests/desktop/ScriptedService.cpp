// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/desktop/ScriptedService.h"

#include "platform/linux/BusCall.h"
#include "tests/support/EventLoop.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <utility>

namespace nightjar {

ScriptedService::ScriptedService(QDBusConnection bus, const QString& name, const QString& root)
    : m_bus(std::move(bus)), m_name(name) {
    EXPECT_TRUE(m_bus.registerVirtualObject(root, this, QDBusConnection::SubPath));
    EXPECT_TRUE(m_bus.registerService(name));
}

ScriptedService::~ScriptedService() {
    // Waits until the name is free for the next one.
    m_bus.unregisterService(m_name);
    QDBusConnection::disconnectFromBus(m_bus.name());
}

void ScriptedService::on(const std::string& method, Answer answer) {
    const std::scoped_lock lock(m_mutex);
    m_answers[method] = std::move(answer);
}

void ScriptedService::on(const std::string& method, const QVariantList& values) {
    on(method, [values](const QDBusMessage& call) { return call.createReply(values); });
}

void ScriptedService::refuse(const std::string& method, const QString& errorName, const QString& text) {
    on(method, [=](const QDBusMessage& call) { return call.createErrorReply(errorName, text); });
}

void ScriptedService::staySilent(const std::string& method) {
    on(method, [](const QDBusMessage&) { return QDBusMessage(); });
}

void ScriptedService::answer(const QDBusMessage& reply) {
    EXPECT_TRUE(m_bus.send(reply));
}

void ScriptedService::tell(const QString& path, const QString& interface, const QString& signal,
                           const QVariantList& arguments) {
    auto message = QDBusMessage::createSignal(path, interface, signal);
    message.setArguments(arguments);
    EXPECT_TRUE(m_bus.send(message));
}

bool ScriptedService::isHeardBy(const QDBusConnection& listener) const {
    // An answer from the same sender overtakes nothing, not even when it is an error.
    QObject context;
    bool isAnswered = false;
    callLater(listener, context,
              {.service = m_bus.baseService(),
               .path = QStringLiteral("/"),
               .interface = QStringLiteral("org.example.Mark"),
               .method = QStringLiteral("Mark")},
              [&](const QDBusMessage&) { isAnswered = true; });
    return runEventsUntil([&] { return isAnswered; });
}

std::vector<QDBusMessage> ScriptedService::calls(const std::string& method) const {
    const std::scoped_lock lock(m_mutex);
    std::vector<QDBusMessage> found;
    std::ranges::copy_if(m_calls, std::back_inserter(found),
                         [&](const QDBusMessage& call) { return call.member().toStdString() == method; });
    return found;
}

bool ScriptedService::handleMessage(const QDBusMessage& call, const QDBusConnection& connection) {
    Answer answer;
    {
        const std::scoped_lock lock(m_mutex);
        m_calls.push_back(call);
        const auto found = m_answers.find(call.member().toStdString());
        if (found == m_answers.end())
            return false;
        answer = found->second;
    }
    call.setDelayedReply(true);
    if (const auto reply = answer(call); reply.type() != QDBusMessage::InvalidMessage)
        connection.send(reply);
    return true;
}

ServiceThread::ServiceThread() {
    m_worker.moveToThread(&m_thread);
    m_thread.start();
}

ServiceThread::~ServiceThread() {
    m_thread.quit();
    m_thread.wait();
}

ServiceThread::Service ServiceThread::take(std::unique_ptr<ScriptedService> service) {
    service->moveToThread(&m_thread);
    return {service.release(), Remove{this}};
}

/// There, because it may be answering.
void ServiceThread::Remove::operator()(ScriptedService* service) const {
    QMetaObject::invokeMethod(
        &thread->m_worker, [service] { delete service; }, Qt::BlockingQueuedConnection);
}

} // namespace nightjar
