// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// What the window costs: its first frame beside those of a bare Qt window and of one with a line of text, a
// mesh of 500 nodes that all change ten times a second, and the longest frame while a list of 2,000 Bluetooth
// devices is scrolled. No screen is needed.

#include "bench/WindowRig.h"
#include "tests/support/Builders.h"
#include "ui/rows/SidebarList.h"

#include <QElapsedTimer>
#include <QLabel>
#include <QProcess>
#include <QScrollBar>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <string_view>
#include <vector>

namespace nightjar::bench {
namespace {

using testing::node;

/// Ends the program once a window has been painted, and prints the processor time that took and when it was.
class FirstFrame final : public QObject {
protected:
    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            QMetaObject::invokeMethod(this, &FirstFrame::tell, Qt::QueuedConnection);
        return false;
    }

private:
    static void tell() {
        std::printf("%.2f %.2f\n", clockMilliseconds(CLOCK_PROCESS_CPUTIME_ID),
                    clockMilliseconds(CLOCK_MONOTONIC));
        std::fflush(stdout);
        std::_Exit(0);
    }
};

int firstFrame(std::string_view mode) {
    FirstFrame first;
    if (mode == "--app") {
        WindowRig rig;
        rig.app->mainWindow().installEventFilter(&first);
        rig.app->start();
        return QApplication::exec();
    }
    QLabel window(mode == "--text" ? QStringLiteral("Halvard Nightjar") : QString());
    window.resize(1320, 820);
    window.installEventFilter(&first);
    window.show();
    return QApplication::exec();
}

struct Medians {
    double processor = 0, wall = 0;
};

Medians medianOf(std::vector<Medians> runs) {
    const auto middle = [&runs](double Medians::*field) {
        std::ranges::nth_element(runs, runs.begin() + static_cast<std::ptrdiff_t>(runs.size() / 2), {},
                                 field);
        return runs[runs.size() / 2].*field;
    };
    return {middle(&Medians::processor), middle(&Medians::wall)};
}

/// The three windows in turn, so that what else the machine does meets them alike.
void benchFirstFrame(const QString& program) {
    constexpr std::array modes{"--bare", "--text", "--app"};
    constexpr int rounds = 11;
    std::array<std::vector<Medians>, modes.size()> runs;
    for (int round = 0; round < rounds; ++round) {
        for (std::size_t mode = 0; mode < modes.size(); ++mode) {
            QProcess process;
            const double start = clockMilliseconds(CLOCK_MONOTONIC);
            process.start(program, {QString::fromLatin1(modes[mode])});
            process.waitForFinished();
            const auto told = process.readAllStandardOutput().simplified().split(' ');
            if (told.size() == 2)
                runs[mode].push_back({told[0].toDouble(), told[1].toDouble() - start});
        }
    }
    if (std::ranges::any_of(runs, [](const auto& each) { return each.empty(); })) {
        std::printf("first frame: no window came up\n");
        return;
    }
    const Medians bare = medianOf(runs[0]);
    const Medians text = medianOf(runs[1]);
    const Medians ours = medianOf(runs[2]);
    std::printf("first frame, processor time: %.1f ms, bare window %.1f ms, ratio %.2f (wanted <= 1.5); "
                "with a line of text %.1f ms, ratio %.2f\n",
                ours.processor, bare.processor, ours.processor / bare.processor, text.processor,
                ours.processor / text.processor);
    std::printf("first frame, from start: %.1f ms, bare window %.1f ms, ratio %.2f; with a line of text %.1f "
                "ms, ratio %.2f\n",
                ours.wall, bare.wall, ours.wall / bare.wall, text.wall, ours.wall / text.wall);
}

/// All nodes as they are at one tick. The identities of their positions are a counter: drawing them at random
/// would take longer than all that is measured.
std::vector<MeshNode> nodesAt(int tick, Date now) {
    std::vector<MeshNode> nodes;
    for (std::uint32_t number = 1; number <= 500; ++number) {
        const double angle = number * 0.7 + tick * 0.05;
        Uuid id;
        id.bytes[0] = static_cast<std::uint8_t>(tick);
        id.bytes[1] = static_cast<std::uint8_t>(number);
        id.bytes[2] = static_cast<std::uint8_t>(number >> 8);
        const MeshPosition position{
            .id = id,
            .nodeNumber = number + 100,
            .latitude = 50.88 + 0.02 * std::sin(number * 1.3) + 2e-6 * std::sin(angle),
            .longitude = 4.71 + 0.03 * std::cos(number * 2.1) + 3e-6 * std::cos(angle),
            .altitude = {},
            .timestamp = now};
        nodes.push_back(node(number + 100)
                            .named("Node " + std::to_string(number))
                            .hops(number % 4)
                            .seen(now - Seconds{static_cast<double>((number + unsigned(tick)) % 59)})
                            .at(position));
    }
    return nodes;
}

void benchNodes(WindowRig& rig) {
    constexpr int ticks = 100;
    std::vector<std::vector<MeshNode>> world;
    for (int tick = 0; tick < ticks; ++tick)
        world.push_back(nodesAt(tick, rig.computer.scheduler.now()));
    std::size_t tick = 0;
    const auto hearAll = [&] {
        for (const MeshNode& heard : world[tick++ % world.size()])
            rig.hear(heard);
    };
    hearAll();
    runFor(std::chrono::seconds(2));
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, hearAll);
    timer.start(100);
    const double before = clockMilliseconds(CLOCK_PROCESS_CPUTIME_ID);
    const double mainBefore = clockMilliseconds(CLOCK_THREAD_CPUTIME_ID);
    QElapsedTimer elapsed;
    elapsed.start();
    runFor(std::chrono::seconds(6));
    const double share = 100 / static_cast<double>(elapsed.elapsed());
    std::printf("500 nodes, 10 changes of each a second: %.1f %% of a core (wanted < 20), of which the main "
                "thread %.1f %%\n",
                (clockMilliseconds(CLOCK_PROCESS_CPUTIME_ID) - before) * share,
                (clockMilliseconds(CLOCK_THREAD_CPUTIME_ID) - mainBefore) * share);
}

void benchRows(WindowRig& rig) {
    auto& window = rig.app->mainWindow();
    window.setNetwork(NetworkSection::bluetooth);
    for (int number = 0; number < 2000; ++number)
        rig.computer.bluetooth.hear({.peripheral = Uuid::random(),
                                     .localName = "Device " + std::to_string(number),
                                     .rssi = -40 - number % 50});
    runFor(std::chrono::seconds(2));
    const auto lists = window.findChildren<SidebarList*>();
    const auto found = std::ranges::find_if(lists, &QWidget::isVisible);
    if (found == lists.end()) {
        std::printf("no list of Bluetooth devices on screen\n");
        return;
    }
    SidebarList& list = **found;
    auto& bar = *list.verticalScrollBar();
    std::vector<double> frames;
    for (int step = 0; step < 400; ++step) {
        bar.setValue(bar.maximum() * step / 400);
        const double before = clockMilliseconds(CLOCK_THREAD_CPUTIME_ID);
        list.viewport()->repaint();
        QApplication::processEvents();
        frames.push_back(clockMilliseconds(CLOCK_THREAD_CPUTIME_ID) - before);
    }
    std::ranges::sort(frames);
    std::printf("scrolling %d rows: median frame %.2f ms, longest %.2f ms (wanted <= 16)\n",
                list.rows().rowCount(), frames[frames.size() / 2], frames.back());
}

void benchAll(const QString& program) {
    benchFirstFrame(program);
    WindowRig rig;
    rig.connect();
    QTimer time;
    QObject::connect(&time, &QTimer::timeout,
                     [&rig] { rig.computer.scheduler.advance(std::chrono::milliseconds(50)); });
    time.start(50);
    rig.app->start();
    benchNodes(rig);
    benchRows(rig);
}

} // namespace
} // namespace nightjar::bench

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication application(argc, argv);
    if (argc > 1)
        return nightjar::bench::firstFrame(argv[1]);
    nightjar::bench::benchAll(QCoreApplication::applicationFilePath());
}
