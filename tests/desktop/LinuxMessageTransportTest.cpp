// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "platform/linux/LinuxMessageTransport.h"

#include "platform/linux/QtMainThread.h"
#include "platform/simulated/FakeScheduler.h"
#include "tests/desktop/ScriptedService.h"
#include "tests/platform/PrivateBus.h"
#include "tests/support/EventLoop.h"

#include <QDBusArgument>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QFile>
#include <QTemporaryDir>

#include <gmock/gmock.h>

namespace nightjar {

using Interfaces = QMap<QString, QVariantMap>;
using Objects = QMap<QDBusObjectPath, Interfaces>;

} // namespace nightjar
Q_DECLARE_METATYPE(nightjar::Interfaces)
Q_DECLARE_METATYPE(nightjar::Objects)

namespace nightjar {
namespace {

using namespace std::chrono_literals;
using ::testing::HasSubstr;

constexpr const char* nobody = "No modem or paired phone that can send text messages was found.";
const auto failed = QStringLiteral("org.example.Failed");
const OutgoingText hello{.recipient = "+31 6 1234-5678", .text = "Hello\n\"you\" \\ 🚲", .script = ""};

Objects modem(const QVariant& state, int number = 0) {
    const auto modem = QStringLiteral("org.freedesktop.ModemManager1.Modem");
    return {{QDBusObjectPath(QStringLiteral("/org/freedesktop/ModemManager1/Modem/%1").arg(number)),
             {{modem, {{QStringLiteral("State"), state}}}, {modem + QStringLiteral(".Messaging"), {}}}}};
}

/// The services run on a thread of their own, because the sender waits for them on this one.
class LinuxMessageTransportTest : public ::testing::Test {
protected:
    LinuxMessageTransportTest() {
        qDBusRegisterMetaType<Interfaces>();
        qDBusRegisterMetaType<Objects>();
    }

    void startModemManager(const Objects& objects) {
        modems.reset();
        modems = services.take(std::make_unique<ScriptedService>(
            systemBus.connect(), QStringLiteral("org.freedesktop.ModemManager1"),
            QStringLiteral("/org/freedesktop/ModemManager1")));
        modems->on("GetManagedObjects", {QVariant::fromValue(objects)});
        modems->on("Create", {QVariant::fromValue(
                                 QDBusObjectPath(QStringLiteral("/org/freedesktop/ModemManager1/SMS/3")))});
        modems->on("Send", QVariantList());
        modems->on("Delete", QVariantList());
    }

    void startKdeConnect(const QStringList& devices, bool canText = true) {
        phones.reset();
        phones = services.take(std::make_unique<ScriptedService>(sessionBus.connect(),
                                                                 QStringLiteral("org.kde.kdeconnect"),
                                                                 QStringLiteral("/modules/kdeconnect")));
        phones->on("devices", {devices});
        phones->on("hasPlugin", {canText});
        phones->on("sendWithoutConversation", QVariantList());
    }

    /// Empty when the message was accepted, else what was said about it; "(nothing)" when that was nothing.
    std::string send(const OutgoingText& text = hello) {
        const auto result = transport.send(text);
        return result ? "" : result.error().message.value_or("(nothing)");
    }

    PrivateBus systemBus;
    PrivateBus sessionBus;
    ServiceThread services;
    ServiceThread::Service modems;
    ServiceThread::Service phones;
    QtMainThread mainThread;
    FakeScheduler scheduler;
    BusConnector system{mainThread, scheduler, [this] { return systemBus.connect(); }};
    BusConnector session{mainThread, scheduler, [this] { return sessionBus.connect(); }};
    LinuxMessageTransport transport{
        system, session, {.bus = 10s, .answer = 300ms, .sending = 400ms, .total = 5s}};
};

TEST_F(LinuxMessageTransportTest, theModemGetsTheTextAsTypedAndForgetsIt) {
    startModemManager(modem(8));
    startKdeConnect({QStringLiteral("phone")});

    EXPECT_EQ(send(), "");

    const auto created = modems->calls("Create");
    ASSERT_EQ(created.size(), 1u);
    const auto properties = qdbus_cast<QVariantMap>(created[0].arguments().at(0));
    EXPECT_EQ(properties.value(QStringLiteral("number")).toString().toStdString(), "+31612345678");
    EXPECT_EQ(properties.value(QStringLiteral("text")).toString().toStdString(), hello.text);
    EXPECT_EQ(properties.size(), 2);
    ASSERT_EQ(modems->count("Send"), 1u);
    EXPECT_EQ(modems->calls("Send")[0].path().toStdString(), "/org/freedesktop/ModemManager1/SMS/3");
    EXPECT_TRUE(runEventsUntil([&] { return modems->count("Delete") == 1; }));
    EXPECT_EQ(phones->count("devices"), 0u);
}

TEST_F(LinuxMessageTransportTest, theFirstMessageOpensTheBuses) {
    int opened = 0;
    QObject::connect(&system, &BusConnector::opened, [&] { ++opened; });
    startModemManager(modem(8));

    EXPECT_EQ(send(), "");
    EXPECT_EQ(opened, 0) << "others are told later";
    const auto used = system.busWithin(0s);
    EXPECT_TRUE(used.isConnected());
    ASSERT_TRUE(runEventsUntil([&] { return opened == 1; }));
    EXPECT_EQ(system.bus().name(), used.name());
    EXPECT_EQ(system.busWithin(0s).name(), used.name());
}

TEST_F(LinuxMessageTransportTest, withoutAModemThePhoneGetsIt) {
    struct Case {
        const char* what;
        std::optional<Objects> objects;
    };
    const auto withoutMessaging =
        Objects{{QDBusObjectPath(QStringLiteral("/org/freedesktop/ModemManager1/Modem/0")),
                 {{QStringLiteral("org.freedesktop.ModemManager1.Modem"), {{QStringLiteral("State"), 11}}}}}};
    const Case cases[] = {
        {"no ModemManager", std::nullopt},
        {"no modem", Objects{}},
        {"not registered", modem(7)},
        {"state of a strange type", modem(QStringLiteral("11"))},
        {"a modem for data only", withoutMessaging},
    };
    startKdeConnect({QStringLiteral("../evil"), QStringLiteral("phone_1")});
    std::size_t sent = 0;
    for (const auto& [what, objects] : cases) {
        modems.reset();
        if (objects)
            startModemManager(*objects);
        EXPECT_EQ(send(), "") << what;
        ASSERT_EQ(phones->count("sendWithoutConversation"), ++sent) << what;
    }
    const auto call = phones->calls("sendWithoutConversation").back();
    EXPECT_EQ(call.path().toStdString(), "/modules/kdeconnect/devices/phone_1");
    EXPECT_EQ(call.signature().toStdString(), "avsav");
    EXPECT_EQ(call.arguments().at(1).toString().toStdString(), hello.text);
    EXPECT_EQ(phones->calls("devices")[0].arguments(), (QVariantList{true, true}));
}

TEST_F(LinuxMessageTransportTest, theFirstModemThatIsRegisteredSends) {
    auto objects = modem(3, 0);
    objects.insert(modem(11, 1));
    startModemManager(objects);

    EXPECT_EQ(send(), "");
    EXPECT_EQ(modems->calls("Create").at(0).path().toStdString(), "/org/freedesktop/ModemManager1/Modem/1");
}

TEST_F(LinuxMessageTransportTest, whereNobodyCanSendItSaysSo) {
    EXPECT_EQ(send(), nobody);
    startKdeConnect({QStringLiteral("tablet")}, false);
    EXPECT_EQ(send(), nobody);
    startKdeConnect({});
    EXPECT_EQ(send(), nobody);
    phones->on("devices", {QStringLiteral("no list")});
    EXPECT_EQ(send(), nobody);
    startModemManager({});
    modems->on("GetManagedObjects", {QStringLiteral("no objects")});
    EXPECT_EQ(send(), nobody);
    EXPECT_EQ(send({.recipient = "fox@example.org", .text = "Hello", .script = ""}), nobody);
}

TEST_F(LinuxMessageTransportTest, whoIsThereAndRefusesDecides) {
    struct Case {
        const char* method;
        QString text;
        const char* said;
    };
    const Case cases[] = {
        {"Create", QStringLiteral("No room"), "No room"},
        {"Send", QStringLiteral("SMS service rejected"), "SMS service rejected"},
        {"Send", QString(), "(nothing)"},
        {"Send", QStringLiteral(" \n"), "(nothing)"},
    };
    startKdeConnect({QStringLiteral("phone")});
    for (const auto& [method, text, said] : cases) {
        startModemManager(modem(11));
        modems->refuse(method, failed, text);
        EXPECT_EQ(send(), said) << method;
    }
    EXPECT_EQ(phones->count("devices"), 0u);

    modems.reset();
    phones->refuse("sendWithoutConversation", failed, QStringLiteral("The phone is locked"));
    EXPECT_EQ(send(), "The phone is locked");
}

TEST_F(LinuxMessageTransportTest, onlyAPhoneNumberCanBeTexted) {
    const auto to = [this](const char* recipient) {
        return send({.recipient = recipient, .text = "Hello", .script = ""});
    };
    startModemManager(modem(11));
    for (const char* recipient :
         {"fox@example.org", "+", "12", "12+34567", "+1234567890123456789012", "０６１２３４"})
        EXPECT_THAT(to(recipient), HasSubstr("need a phone number")) << recipient;
    EXPECT_EQ(modems->count("Create"), 0u);
    EXPECT_EQ(to("(06) 12.34/56"), "");

    modems.reset();
    startKdeConnect({QStringLiteral("phone")});
    EXPECT_THAT(to("fox@example.org"), HasSubstr("need a phone number"));
}

TEST_F(LinuxMessageTransportTest, aModemThatGoesInTheMiddleIsNoSuccess) {
    startModemManager(modem(11));
    modems->refuse("Send", QStringLiteral("org.freedesktop.DBus.Error.UnknownMethod"),
                   QStringLiteral("Object does not exist"));
    EXPECT_EQ(send(), "Object does not exist");
    modems->refuse("Send", QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown"),
                   QStringLiteral("Not provided by any files"));
    EXPECT_EQ(send(), "Not provided by any files");
    modems->on("Create", {QStringLiteral("no path")});
    EXPECT_NE(send(), "") << "an answer that cannot be understood";
    startModemManager(modem(11));
    modems->refuse("Create", QStringLiteral("org.freedesktop.DBus.Error.ServiceUnknown"));
    EXPECT_EQ(send(), nobody) << "the whole service has gone: the next way is tried";
}

TEST_F(LinuxMessageTransportTest, whoHangsIsWaitedForUpToALimit) {
    const auto start = std::chrono::steady_clock::now();
    startModemManager(modem(11));
    startKdeConnect({QStringLiteral("phone")});
    modems->staySilent("Send");
    EXPECT_NE(send(), "") << "the network never took it";
    modems->staySilent("Create");
    EXPECT_NE(send(), "");
    EXPECT_EQ(phones->count("devices"), 0u);

    modems->staySilent("GetManagedObjects");
    EXPECT_EQ(send(), "") << "a service that does not even say what it has is not there";
    EXPECT_EQ(phones->count("sendWithoutConversation"), 1u);
    EXPECT_LT(std::chrono::steady_clock::now() - start, 20s);
}

TEST_F(LinuxMessageTransportTest, manyPhonesThatHangDoNotAddUp) {
    QStringList devices;
    for (int i = 0; i < 100; ++i)
        devices << QStringLiteral("phone%1").arg(i);
    startKdeConnect(devices);
    phones->staySilent("hasPlugin");
    LinuxMessageTransport quick(system, session, {.bus = 10s, .answer = 60s, .sending = 60s, .total = 500ms});
    const auto start = std::chrono::steady_clock::now();

    EXPECT_FALSE(quick.send(hello).has_value());
    EXPECT_LT(std::chrono::steady_clock::now() - start, 30s) << "not even the first has its full time";
    EXPECT_LE(phones->count("hasPlugin"), 10u);
}

TEST_F(LinuxMessageTransportTest, noServiceIsStartedForIt) {
    QTemporaryDir folder;
    const auto mark = folder.filePath(QStringLiteral("started"));
    const auto command = QStringLiteral("/bin/sh -c \"touch %1\"").arg(mark);
    systemBus.makeActivatable(QStringLiteral("org.freedesktop.ModemManager1"), command);
    sessionBus.makeActivatable(QStringLiteral("org.kde.kdeconnect"), command);

    EXPECT_EQ(send(), nobody);
    EXPECT_FALSE(QFile::exists(mark));
}

} // namespace
} // namespace nightjar
