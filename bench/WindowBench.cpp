// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// What the window costs: its first frame beside that of a bare Qt window, a mesh of 500 nodes that all change
// ten times a second, and the longest frame while a list of 2,000 Bluetooth devices is scrolled. No screen is
// needed.

#include "platform/simulated/FakeDesktopAppearance.h"
#include "platform/simulated/SimulatedComputer.h"
#include "tests/support/Builders.h"
#include "tests/support/FakeRadioLink.h"
#include "tests/support/TemporaryFolder.h"
#include "ui/common/ViewContext.h"
#include "ui/rows/SidebarList.h"
#include "ui/style/NightjarStyle.h"
#include "ui/window/MainWindow.h"
#include "ui/window/NightjarApp.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QProcess>
#include <QScrollBar>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <ctime>
#include <memory>
#include <string_view>
#include <vector>

namespace nightjar {
namespace {

using testing::node;

constexpr const char* port = "/dev/cu.usbserial-0001";

struct Computer : SimulatedComputer {
    Computer() {
        host.setApplicationSupportFolder(folder.path());
        host.plugIn("cu.usbserial-0001");
    }
    testing::TemporaryFolder folder;
};

double milliseconds(const timespec& time) {
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

double clockMilliseconds(clockid_t clock) {
    timespec time{};
    ::clock_gettime(clock, &time);
    return milliseconds(time);
}

/// Ends the program once a window has been painted, and prints the processor time it took until then. That is
/// what can be compared on a machine that has other things to do.
class FirstFrame final : public QObject {
protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::UpdateRequest)
            QTimer::singleShot(0, this, [] {
                std::printf("%.2f\n", clockMilliseconds(CLOCK_PROCESS_CPUTIME_ID));
                std::fflush(stdout);
                QApplication::quit();
            });
        return false;
    }
};

int firstFrame(bool isBare) {
    FirstFrame first;
    if (isBare) {
        QWidget window;
        window.resize(1320, 820);
        window.installEventFilter(&first);
        window.show();
        return QApplication::exec();
    }
    Computer rig;
    FakeDesktopAppearance appearance;
    QApplication::setStyle(new NightjarStyle);
    NightjarApp app({.platform = rig.services(),
                     .appearance = appearance,
                     .version = QStringLiteral("0"),
                     .cacheFolder = {}},
                    std::make_unique<testing::FakeRadioLink>());
    app.mainWindow().installEventFilter(&first);
    app.start();
    return QApplication::exec();
}

double medianFirstFrame(const QString& program, const QString& mode) {
    std::vector<double> times;
    for (int run = 0; run < 9; ++run) {
        QProcess process;
        process.start(program, {mode});
        process.waitForFinished();
        times.push_back(process.readAllStandardOutput().trimmed().toDouble());
    }
    std::ranges::nth_element(times, times.begin() + 4);
    return times[4];
}

void runFor(std::chrono::milliseconds time) {
    QTimer::singleShot(time, qApp, &QCoreApplication::quit);
    QApplication::exec();
}

void benchNodes(NightjarApp& app, Computer& rig, testing::FakeRadioLink& radio) {
    int tick = 0;
    const auto hearAll = [&] {
        ++tick;
        for (std::uint32_t number = 1; number <= 500; ++number) {
            const double angle = number * 0.7 + tick * 0.05;
            const MeshNode heard =
                node(number + 100)
                    .named("Node " + std::to_string(number))
                    .hops(number % 4)
                    .seen(rig.scheduler.now() -
                          Seconds{static_cast<double>((number + static_cast<unsigned>(tick)) % 59)})
                    .at(50.88 + 0.02 * std::sin(number * 1.3) + 2e-6 * std::sin(angle),
                        4.71 + 0.03 * std::cos(number * 2.1) + 3e-6 * std::cos(angle));
            radio.connects.back().listener.onEvent({.event = MeshtasticBridgeEvent::node, .node = heard});
        }
    };
    hearAll();
    runFor(std::chrono::seconds(2));
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, &app, hearAll);
    timer.start(100);
    const double before = clockMilliseconds(CLOCK_PROCESS_CPUTIME_ID);
    QElapsedTimer elapsed;
    elapsed.start();
    runFor(std::chrono::seconds(6));
    const double used = clockMilliseconds(CLOCK_PROCESS_CPUTIME_ID) - before;
    std::printf("500 nodes, 10 changes of each a second: %.1f %% of a core (wanted < 20)\n",
                100 * used / static_cast<double>(elapsed.elapsed()));
}

void benchRows(NightjarApp& app, Computer& rig) {
    app.mainWindow().setNetwork(NetworkSection::bluetooth);
    rig.bluetooth.setState(BluetoothRadioState::poweredOn);
    runFor(std::chrono::milliseconds(200));
    for (int number = 0; number < 2000; ++number)
        rig.bluetooth.hear({.peripheral = Uuid::random(),
                            .localName = "Device " + std::to_string(number),
                            .rssi = -40 - number % 50});
    runFor(std::chrono::seconds(2));
    SidebarList* list = nullptr;
    for (auto* candidate : app.mainWindow().findChildren<SidebarList*>()) {
        if (candidate->isVisible())
            list = candidate;
    }
    if (!list) {
        std::printf("no list of Bluetooth devices on screen\n");
        return;
    }
    auto& bar = *list->verticalScrollBar();
    std::vector<double> frames;
    for (int step = 0; step < 400; ++step) {
        bar.setValue(bar.maximum() * step / 400);
        const double before = clockMilliseconds(CLOCK_THREAD_CPUTIME_ID);
        list->viewport()->repaint();
        QApplication::processEvents();
        frames.push_back(clockMilliseconds(CLOCK_THREAD_CPUTIME_ID) - before);
    }
    std::ranges::sort(frames);
    std::printf("scrolling %d rows: median frame %.2f ms, longest %.2f ms (wanted <= 16)\n",
                list->rows().rowCount(), frames[frames.size() / 2], frames.back());
}

int benchAll(const QString& program) {
    const double bare = medianFirstFrame(program, QStringLiteral("--bare"));
    const double ours = medianFirstFrame(program, QStringLiteral("--app"));
    std::printf("first frame: %.1f ms of processor time, bare window %.1f ms, ratio %.2f (wanted <= 1.5)\n",
                ours, bare, ours / bare);

    Computer rig;
    rig.preferences.setString("serialPort", port);
    auto link = std::make_unique<testing::FakeRadioLink>();
    auto& radio = *link;
    FakeDesktopAppearance appearance;
    QApplication::setStyle(new NightjarStyle);
    NightjarApp app({.platform = rig.services(),
                     .appearance = appearance,
                     .version = QStringLiteral("0"),
                     .cacheFolder = {}},
                    std::move(link));
    static_cast<void>(rig.mainThread.runUntil([&radio] { return !radio.connects.empty(); }));
    radio.connects.back().done(port);
    QTimer time;
    QObject::connect(&time, &QTimer::timeout, &app,
                     [&rig] { rig.scheduler.advance(std::chrono::milliseconds(50)); });
    time.start(50);
    app.start();
    benchNodes(app, rig, radio);
    benchRows(app, rig);
    return 0;
}

} // namespace
} // namespace nightjar

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    const std::string_view mode = argc > 1 ? argv[1] : "";
    if (mode == "--bare" || mode == "--app")
        return nightjar::firstFrame(mode == "--bare");
    return nightjar::benchAll(QCoreApplication::applicationFilePath());
}
