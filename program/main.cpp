// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "app/headless/CommandLine.h"
#include "platform/linux/BackgroundThread.h"
#include "platform/linux/LinuxPlatform.h"
#include "program/DemoPlatform.h"
#include "program/DemoScenario.h"
#include "program/DemoUser.h"
#include "program/EndSignals.h"
#include "program/HeadlessProgram.h"
#include "program/WindowProgram.h"
#include "radio/MeshRadio.h"

#include <QApplication>
#include <QStandardPaths>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <malloc.h>
#include <sysexits.h>
#include <unistd.h>

namespace nightjar {
namespace {

using headless::CommandLine;

/// A program that was started with a closed standard stream would otherwise open some file of its own in its
/// place.
void openClosedStandardStreams() {
    while (true) {
        const int descriptor = ::open("/dev/null", O_RDWR);
        if (descriptor <= STDERR_FILENO && descriptor >= 0)
            continue;
        if (descriptor >= 0)
            ::close(descriptor);
        return;
    }
}

/// Pictures of the window's size come and go. From the heap their room would not go back to the system as
/// long as anything small lies behind it.
void giveLargeBlocksBack() {
#ifdef M_MMAP_THRESHOLD
    constexpr int largeBlock = 128 * 1024;
    ::mallopt(M_MMAP_THRESHOLD, largeBlock);
#endif
}

int run(HeadlessProgram& program) {
    const EndSignals signals;
    QObject::connect(&signals, &EndSignals::endRequested, QCoreApplication::instance(),
                     &QCoreApplication::quit);
    program.start();
    QCoreApplication::exec();
    return program.finish();
}

int runReal(const CommandLine& commandLine) {
    LinuxPlatform platform;
    if (const auto problem = platform.problem())
        std::cerr << *problem << std::endl;
    if (commandLine.headless) {
        HeadlessProgram program(commandLine, platform.services(), Desktop::used);
        return run(program);
    }
    const QString caches = QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    WindowProgram program({.platform = platform.services(),
                           .appearance = platform.appearance(),
                           .cacheFolder = caches.isEmpty() ? QString() : caches + QStringLiteral("/tiles")});
    program.run();
    return EX_OK;
}

/// The bridge that was built or installed with this program, else the one that the user has.
std::optional<std::filesystem::path> demoBridge() {
    const LinuxHostEnvironment host;
    const auto beside =
        std::filesystem::path(QCoreApplication::applicationDirPath().toStdString()) / NIGHTJAR_BRIDGE_NAME;
    return host.isExecutableFile(beside) ? beside : MeshRadio::installedBridgeURL(host);
}

int runDemo(const CommandLine& commandLine) {
    auto profile = DemoProfile::make(demoScenario, demoBridge());
    if (!profile) {
        std::cerr << profile.error() << std::endl;
        return EX_CANTCREAT;
    }
    DemoPlatform platform(*std::move(profile));
    // What happens in the made-up world must not alarm anyone on the real desktop.
    if (commandLine.headless) {
        HeadlessProgram program(commandLine, platform.services(), Desktop::leftAlone);
        DemoUser user(program.model());
        user.begin();
        platform.begin();
        return run(program);
    }
    WindowProgram program({.platform = platform.services(),
                           .appearance = platform.appearance(),
                           .cacheFolder = {},
                           .showsNotifications = true});
    // Which watches run is up to whoever sits before the window.
    DemoUser user(program.model());
    platform.begin();
    program.run();
    return EX_OK;
}

bool isSet(const char* variable) {
    const char* value = std::getenv(variable);
    return value && *value;
}

/// Without a screen the watch goes on without a window.
bool hasScreen() {
    return isSet("DISPLAY") || isSet("WAYLAND_DISPLAY") || isSet("QT_QPA_PLATFORM");
}

bool isWaylandPreferred() {
    const auto says = [](const char* variable, std::string_view word) {
        return isSet(variable) &&
               std::string_view(std::getenv(variable)).find(word) != std::string_view::npos;
    };
    return says("XDG_SESSION_TYPE", "wayland") && !says("XDG_CURRENT_DESKTOP", "GNOME");
}

/// The command line, with what the framework is to do where the screen that the environment names does not
/// answer. It would abort. A choice of the user's stands.
std::vector<char*> withFallback(int argc, char** argv) {
    static char option[] = "-platform";
    static std::string platforms;
    std::vector<char*> arguments(argv, argv + argc);
    if (!isSet("QT_QPA_PLATFORM")) {
        const std::string x11 = isSet("DISPLAY") ? "xcb;" : "";
        const std::string wayland = isSet("WAYLAND_DISPLAY") ? "wayland;" : "";
        platforms = (isWaylandPreferred() ? wayland + x11 : x11 + wayland) + "offscreen";
        arguments.insert(arguments.end(), {option, platforms.data()});
    }
    arguments.push_back(nullptr);
    return arguments;
}

/// The screen that the environment names did not answer.
bool lacksScreen() {
    return !isSet("QT_QPA_PLATFORM") && QGuiApplication::platformName() == QLatin1String("offscreen");
}

int runProgram(const CommandLine& commandLine) {
    const int status = commandLine.demo ? runDemo(commandLine) : runReal(commandLine);
    // Everything is on the disk. What such a thread waits for would hold up the end of the libraries too.
    if (BackgroundThread::wasOneLeftBehind())
        std::_Exit(status);
    return status;
}

} // namespace
} // namespace nightjar

int main(int argc, char** argv) {
    using namespace nightjar;
    openClosedStandardStreams();
    giveLargeBlocksBack();
    std::signal(SIGPIPE, SIG_IGN);

    const std::vector<std::string_view> arguments(argv + std::min(argc, 1), argv + argc);
    auto commandLine = CommandLine::parse(arguments);
    if (!commandLine) {
        std::cerr << "nightjar: " << commandLine.error() << std::endl;
        return EX_USAGE;
    }
    if (commandLine->help) {
        std::cout << CommandLine::helpText();
        return EX_OK;
    }
    if (commandLine->version) {
        std::cout << "nightjar " NIGHTJAR_VERSION "\n";
        return EX_OK;
    }
    QCoreApplication::setApplicationName(QStringLiteral("nightjar"));
    if (!commandLine->headless && !hasScreen()) {
        std::cerr << "There is no screen here; going on as with --headless." << std::endl;
        commandLine->headless = true;
    }
    if (commandLine->headless) {
        const QCoreApplication application(argc, argv);
        return runProgram(*commandLine);
    }
    auto guiArguments = withFallback(argc, argv);
    auto count = static_cast<int>(guiArguments.size()) - 1;
    const QApplication application(count, guiArguments.data());
    if (lacksScreen()) {
        std::cerr << "The screen does not answer; going on as with --headless." << std::endl;
        commandLine->headless = true;
    } else {
        WindowProgram::dress();
    }
    return runProgram(*commandLine);
}
