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
#include "radio/MeshRadio.h"

#include <QCoreApplication>

#include <csignal>
#include <cstdlib>
#include <iostream>
#include <optional>
#include <string_view>
#include <vector>

#include <fcntl.h>
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

int run(HeadlessProgram& program) {
    const EndSignals signals;
    QObject::connect(&signals, &EndSignals::endRequested, qApp, &QCoreApplication::quit);
    program.start();
    QCoreApplication::exec();
    return program.finish();
}

int runReal(const CommandLine& commandLine) {
    LinuxPlatform platform;
    if (const auto problem = platform.problem())
        std::cerr << *problem << std::endl;
    HeadlessProgram program(commandLine, platform.services(), Desktop::used);
    return run(program);
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
    HeadlessProgram program(commandLine, platform.services(), Desktop::leftAlone);
    DemoUser user(program.model());
    user.begin();
    platform.begin();
    return run(program);
}

} // namespace
} // namespace nightjar

int main(int argc, char** argv) {
    using namespace nightjar;
    openClosedStandardStreams();
    std::signal(SIGPIPE, SIG_IGN);

    const std::vector<std::string_view> arguments(argv + std::min(argc, 1), argv + argc);
    const auto commandLine = CommandLine::parse(arguments);
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
    if (!commandLine->headless) {
        std::cerr << "This build has no window yet; going on as with --headless." << std::endl;
    }
    const QCoreApplication application(argc, argv);
    const int status = commandLine->demo ? runDemo(*commandLine) : runReal(*commandLine);
    // Everything is on the disk. What such a thread waits for would hold up the end of the libraries too.
    if (BackgroundThread::wasOneLeftBehind())
        std::_Exit(status);
    return status;
}
