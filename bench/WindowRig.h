// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#pragma once

#include "platform/simulated/FakeDesktopAppearance.h"
#include "platform/simulated/SimulatedComputer.h"
#include "tests/support/FakeRadioLink.h"
#include "tests/support/TemporaryFolder.h"
#include "ui/style/NightjarStyle.h"
#include "ui/window/MainWindow.h"
#include "ui/window/NightjarApp.h"

#include <QApplication>
#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <ctime>
#include <memory>

namespace nightjar::bench {

inline double clockMilliseconds(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// The window on a computer of fakes, connected to a radio.
struct WindowRig {
    WindowRig() {
        QApplication::setStyle(new NightjarStyle);
        computer.host.setApplicationSupportFolder(folder.path());
        computer.host.plugIn("cu.usbserial-0001");
        computer.preferences.setString("serialPort", port);
        computer.bluetooth.setState(BluetoothRadioState::poweredOn);
        auto link = std::make_unique<testing::FakeRadioLink>();
        radio = link.get();
        app = std::make_unique<NightjarApp>(NightjarApp::Environment{.platform = computer.services(),
                                                                     .appearance = appearance,
                                                                     .version = QStringLiteral("0"),
                                                                     .cacheFolder = {}},
                                            std::move(link));
    }

    void connect() {
        static_cast<void>(computer.mainThread.runUntil([this] { return !radio->connects.empty(); }));
        radio->connects.back().done(port);
    }
    void hear(const MeshNode& node) {
        radio->connects.back().listener.onEvent({.event = MeshtasticBridgeEvent::node, .node = node});
    }

    static constexpr const char* port = "/dev/cu.usbserial-0001";
    testing::TemporaryFolder folder;
    SimulatedComputer computer;
    FakeDesktopAppearance appearance;
    testing::FakeRadioLink* radio = nullptr;
    std::unique_ptr<NightjarApp> app;
};

/// Not by ending the application, which would close the window.
inline void runFor(std::chrono::milliseconds time) {
    QEventLoop loop;
    QTimer::singleShot(time, &loop, &QEventLoop::quit);
    loop.exec();
}

} // namespace nightjar::bench
