// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "program/WindowProgram.h"

#include "app/alerts/AlertIdentifiers.h"
#include "program/EndSignals.h"
#include "radio/MeshRadio.h"
#include "ui/style/NightjarStyle.h"
#include "ui/window/MainWindow.h"
#include "ui/window/NotificationBanners.h"

#include <QApplication>
#include <QFontDatabase>

#include <memory>

namespace nightjar {

WindowProgram::WindowProgram(const World& world)
    : m_notifications(&world.platform.notifications),
      m_app({.platform = world.platform.with(m_notifications),
             .appearance = world.appearance,
             .version = QStringLiteral(NIGHTJAR_VERSION),
             .cacheFolder = world.cacheFolder},
            std::make_unique<MeshRadio>(world.platform.host, world.platform.mainThread, m_clock)) {
    if (!world.showsNotifications)
        return;
    m_banners = new NotificationBanners(m_app.mainWindow(), world.platform.scheduler);
    m_notifications.setReporter([this](const Notification& notification) {
        // Chats have their own view; here they would hide it.
        if (!AlertIdentifiers::isMessage(notification.identifier))
            m_banners->show(notification);
    });
}

WindowProgram::~WindowProgram() {
    // The model goes after its windows, so its last notifications have no banner any more.
    m_notifications.setReporter({});
}

void WindowProgram::run() {
    const EndSignals signals;
    QObject::connect(&signals, &EndSignals::endRequested, qApp, &QCoreApplication::quit);
    QObject::connect(&m_app, &NightjarApp::closed, qApp, &QCoreApplication::quit);
    m_app.start();
    QApplication::exec();
}

void WindowProgram::dress() {
    // A desktop without a font of its own leaves this name.
    if (QApplication::font().family() == QLatin1String("Sans Serif") &&
        QFontDatabase::hasFamily(QStringLiteral("Inter")))
        QApplication::setFont(QFont(QStringLiteral("Inter"), 10));
    QApplication::setStyle(new NightjarStyle);
    QApplication::setQuitOnLastWindowClosed(false);
}

} // namespace nightjar
