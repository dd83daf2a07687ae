// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// Posts one notification of each kind to the session's desktop, or only the one whose number is given, for
// looking at: see real-daemons.sh.
#include "platform/linux/BusConnector.h"
#include "platform/linux/FreedesktopNotificationCenter.h"
#include "tests/support/EventLoop.h"

#include <QCoreApplication>

#include <cstdio>
#include <cstdlib>
#include <vector>

using namespace nightjar;

namespace {

const std::vector<Notification> notifications = {
    {.identifier = "local-network-left-printer|local.",
     .title = "This one must be replaced",
     .body = "Seeing this text beside the others is a fault."},
    {.identifier = "message-1",
     .title = "<b>Fox</b> & \"Söhne\" 🚲",
     .body =
         "Tea < coffee & <i>not</i> italic; \"quoted\" 'too' 🦊\nSecond line: &amp; <a href=\"x\">y</a>"},
    {.identifier = "guarded-device-moved-1",
     .title = "Bicycle moved",
     .body = "Two positions place the device outside the marked area. Latest distance: about 140 m.",
     .sound = NotificationSound::critical},
    {.identifier = "bluetooth-lost-1",
     .title = "Keys\nin two lines \x1b[31m",
     .body = "Broken bytes \xff and a bell \a end here."},
    {.identifier = "local-network-left-printer|local.",
     .title = "Printer <2nd floor> returned",
     .body = "Replaced & correct."},
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    FreedesktopNotificationCenter center(BusConnector::openSessionBus(), NotificationSettings());
    if (!center.isConnected()) {
        std::fputs("There is no session bus.\n", stderr);
        return 1;
    }
    center.requestPermission();
    const std::size_t only = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 0;
    for (std::size_t i = 0; i < notifications.size(); ++i) {
        if (only == 0 || only == i + 1)
            center.post(notifications[i]);
    }
    return runEventsUntil([&] { return center.callsUnderWay() == 0; }) ? 0 : 1;
}
