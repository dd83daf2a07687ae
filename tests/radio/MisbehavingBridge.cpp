// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0

// A bridge program for tests. Its behaviours stand in the name under which it is started, joined by plus
// signs, as in "silent+ignores-end"; without one that says otherwise it answers as a bridge should. Its first
// line tells its number.

#include "core/bridge/BridgeJson.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <string>
#include <unistd.h>
#include <utility>

using namespace nightjar;
using enum MeshtasticBridgeEvent;

namespace {

std::string behaviours;

bool behaves(std::string_view name) {
    return ("+" + behaviours + "+").find("+" + std::string(name) + "+") != std::string::npos;
}

void write(int descriptor, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = ::write(descriptor, bytes.data(), bytes.size());
        if (count <= 0)
            std::_Exit(1);
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

void writePiecemeal(std::string_view bytes) {
    for (const char byte : bytes) {
        write(STDOUT_FILENO, {&byte, 1});
        ::usleep(50);
    }
}

void say(const MeshtasticBridgeResponse& response) {
    const auto line = encodeLine(response).value();
    behaves("half-lines") ? writePiecemeal(line) : write(STDOUT_FILENO, line);
}

MeshtasticBridgeResponse withStatus(std::string text) {
    MeshtasticBridgeResponse response;
    response.event = status;
    response.status = std::move(text);
    return response;
}

void tell(std::string text) {
    say(withStatus(std::move(text)));
}

[[noreturn]] void hang() {
    for (;;)
        ::pause();
}

/// The open descriptors and the signal state that a started bridge finds, except the folder handle that looks
/// at them.
void tellSurroundings() {
    std::string text = "descriptors";
    for (int number = 0; number < 256; ++number) {
        if (::access(("/proc/self/fd/" + std::to_string(number)).c_str(), F_OK) == 0)
            text += " " + std::to_string(number);
    }
    struct sigaction action {};
    sigset_t blocked;
    ::sigprocmask(SIG_BLOCK, nullptr, &blocked);
    for (int number = 1; number < SIGRTMIN; ++number) {
        ::sigaction(number, nullptr, &action);
        if (action.sa_handler == SIG_IGN)
            text += " ignored " + std::to_string(number);
        if (sigismember(&blocked, number) == 1)
            text += " blocked " + std::to_string(number);
    }
    tell(text);
}

void atStart() {
    if (behaves("ignores-end"))
        std::signal(SIGTERM, SIG_IGN);
    if (behaves("exits-at-once"))
        std::_Exit(3);
    if (behaves("version-2-at-start")) {
        MeshtasticBridgeResponse response;
        response.protocolVersion = 2;
        say(response);
    }
    if (behaves("errors-flood")) {
        const std::string block(65536, 'e');
        for (int i = 0; i < 512; ++i)
            write(STDERR_FILENO, block);
    }
    if (behaves("surroundings"))
        tellSurroundings();
    tell("pid " + std::to_string(::getpid()));
}

/// A process that outlives the bridge, holds its pipes open and may keep writing.
void leaveGrandchild() {
    if (const pid_t pid = ::fork(); pid != 0)
        return tell("grandchild " + std::to_string(pid));
    std::signal(SIGPIPE, SIG_DFL);
    if (!behaves("chatty-grandchild"))
        hang();
    for (;;)
        write(STDOUT_FILENO, "{}\n");
}

void sayGarbage() {
    write(STDOUT_FILENO,
          "\n\nnot json\n{\"event\":\"status\",\"status\":\"no version\"}\n\xff\xfe\n"
          "{\"protocolVersion\":1,\"event\":\"wedding\"}\n"
          "{\"protocolVersion\":1,\"event\":\"localNode\",\"localNodeID\":-1}\n"
          "{\"protocolVersion\":1,\"event\":\"status\",\"status\":\"with carriage return\"}\r\n");
}

void flood(std::size_t lines) {
    std::string block;
    for (std::size_t i = 0; i < lines; ++i) {
        block += encodeLine(withStatus("flood " + std::to_string(i))).value();
        if (block.size() > 60000 || i + 1 == lines)
            write(STDOUT_FILENO, std::exchange(block, {}));
    }
}

void afterConnect() {
    if (behaves("huge-line")) {
        const auto line = encodeLine(withStatus(std::string(std::size_t{8} << 20, 'x'))).value();
        write(STDOUT_FILENO, line);
        tell("after the huge line");
    }
    if (behaves("garbage"))
        sayGarbage();
    if (behaves("flood"))
        flood(50000);
    if (behaves("grandchild"))
        leaveGrandchild();
    // More than one read takes, less than the pipe holds beyond that.
    if (behaves("words-then-exit")) {
        flood(1500);
        std::_Exit(0);
    }
    if (behaves("words-then-closed-pipes")) {
        flood(1500);
        ::close(STDIN_FILENO);
        ::close(STDOUT_FILENO);
        hang();
    }
    if (behaves("closes-input")) {
        ::close(STDIN_FILENO);
        tell("input closed");
        hang();
    }
    if (behaves("closes-output")) {
        ::close(STDOUT_FILENO);
        hang();
    }
    if (behaves("stops-reading")) {
        sigset_t wanted;
        sigemptyset(&wanted);
        sigaddset(&wanted, SIGUSR1);
        ::sigprocmask(SIG_BLOCK, &wanted, nullptr);
        int number = 0;
        tell("reading no more");
        ::sigwait(&wanted, &number);
    }
}

void answerConnect(MeshtasticBridgeResponse answer, const MeshtasticBridgeRequest& request) {
    if (behaves("exits-on-connect"))
        std::_Exit(3);
    answer.event = connected;
    answer.port = request.port;
    if (behaves("error-on-connect") || behaves("bare-error-on-connect"))
        answer.event = error;
    if (behaves("error-on-connect"))
        answer.error = "No such radio.";
    if (behaves("wrong-answer-on-connect"))
        answer.event = ready;
    if (behaves("no-port-on-connect"))
        answer.port.reset();
    if (behaves("version-2-on-connect"))
        answer.protocolVersion = 2;
    // One write, so that the answer and what lies round it are read together.
    write(STDOUT_FILENO, encodeLine(withStatus("before the answer")).value() + encodeLine(answer).value() +
                             encodeLine(withStatus("after the answer")).value());
    afterConnect();
}

void answerSendText(MeshtasticBridgeResponse answer, const MeshtasticBridgeRequest& request) {
    static std::uint32_t packet = 100;
    static std::optional<MeshtasticBridgeResponse> kept;
    tell("got " + *request.text + (request.recipient ? " for " + std::to_string(*request.recipient) : ""));
    if (behaves("exits-on-send"))
        std::_Exit(3);
    answer.event = sent;
    answer.packetID = ++packet;
    if (behaves("error-on-send")) {
        answer.event = error;
        answer.error = "Radio is busy.";
    }
    if (behaves("no-packet-on-send"))
        answer.packetID.reset();
    if (behaves("version-2-on-send"))
        answer.protocolVersion = 2;
    if (behaves("floods-on-send"))
        flood(50000);
    if (behaves("answers-one-late")) {
        const auto previous = std::exchange(kept, answer);
        if (previous)
            say(*previous);
        return;
    }
    say(answer);
    if (behaves("answers-twice"))
        say(answer);
    if (behaves("answers-then-exits"))
        std::_Exit(0);
}

void answer(const MeshtasticBridgeRequest& request) {
    MeshtasticBridgeResponse response;
    response.requestID = request.requestID;
    using enum MeshtasticBridgeCommand;
    switch (request.command) {
    case connect:
        if (!behaves("silent-on-connect"))
            answerConnect(response, request);
        break;
    case sendText:
        if (!behaves("silent-on-send"))
            answerSendText(response, request);
        break;
    case disconnect:
        if (behaves("silent-on-disconnect"))
            break;
        response.event = disconnected;
        say(response);
        break;
    case readRadioSettings:
    case applyRadioSettings:
        response.event = radioSettings;
        response.settings = request.settings.value_or(MeshtasticRadioSettings{});
        say(response);
        break;
    }
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3 || std::string_view(arguments[1]) != "serve" ||
        std::string_view(arguments[2]) != "--jsonl")
        return 64;
    behaviours = std::filesystem::path(arguments[0]).filename().string();
    atStart();
    auto decoder = makeBridgeDecoder();
    for (std::string line; std::getline(std::cin, line);) {
        if (const auto request = decoder.decode<MeshtasticBridgeRequest>(line))
            answer(*request);
    }
    if (behaves("ignores-end"))
        hang();
    return 0;
}
