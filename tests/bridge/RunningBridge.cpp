// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "tests/bridge/RunningBridge.h"

#include <array>
#include <csignal>
#include <fstream>
#include <sstream>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace nightjar::bridge {
namespace {

constexpr int limitMilliseconds = 10'000;

struct Pipe {
    Pipe() {
        if (::pipe2(ends.data(), O_CLOEXEC) != 0)
            throw std::runtime_error("no pipe");
    }
    std::array<int, 2> ends{};
};

void close(int& descriptor) {
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

} // namespace

RunningBridge::RunningBridge(std::vector<std::string> arguments) {
    std::signal(SIGPIPE, SIG_IGN);
    Pipe input;
    Pipe output;
    Pipe errors;
    arguments.insert(arguments.begin(), NIGHTJAR_BRIDGE);
    std::vector<char*> raw;
    for (auto& argument : arguments)
        raw.push_back(argument.data());
    raw.push_back(nullptr);
    m_process = ::fork();
    if (m_process == 0) {
        ::prctl(PR_SET_PDEATHSIG, SIGKILL);
        ::dup2(input.ends[0], STDIN_FILENO);
        ::dup2(output.ends[1], STDOUT_FILENO);
        ::dup2(errors.ends[1], STDERR_FILENO);
        ::execv(raw[0], raw.data());
        ::_exit(127);
    }
    close(input.ends[0]);
    close(output.ends[1]);
    close(errors.ends[1]);
    m_input = input.ends[1];
    m_output = output.ends[0];
    m_errors = errors.ends[0];
}

RunningBridge::~RunningBridge() {
    closeInput();
    closeOutput();
    closeErrors();
    if (m_process <= 0)
        return;
    ::kill(m_process, SIGKILL);
    ::waitpid(m_process, nullptr, 0);
}

void RunningBridge::closeInput() {
    close(m_input);
}
void RunningBridge::closeOutput() {
    close(m_output);
}
void RunningBridge::closeErrors() {
    close(m_errors);
}

void RunningBridge::signal(int number) const {
    ::kill(m_process, number);
}

void RunningBridge::write(std::string_view bytes) {
    while (!bytes.empty()) {
        const auto count = ::write(m_input, bytes.data(), bytes.size());
        if (count <= 0)
            return;
        bytes.remove_prefix(static_cast<std::size_t>(count));
    }
}

std::size_t RunningBridge::writeUntilFull(std::string_view line) {
    ::fcntl(m_input, F_SETFL, O_NONBLOCK);
    std::size_t count = 0;
    pollfd descriptor{m_input, POLLOUT, 0};
    while (::poll(&descriptor, 1, 200) > 0 && ::write(m_input, line.data(), line.size()) > 0)
        ++count;
    return count;
}

Uuid RunningBridge::send(MeshtasticBridgeRequest request) {
    request.requestID = Uuid::random();
    write(encodeLine(request).value());
    return request.requestID;
}

Uuid RunningBridge::connect(const std::string& scenario) {
    MeshtasticBridgeRequest request;
    request.port = std::string(NIGHTJAR_SCENARIOS "/") + scenario + ".json";
    return send(request);
}

std::optional<std::string> RunningBridge::line() {
    std::size_t searched = m_start;
    for (;;) {
        if (const auto end = m_buffer.find('\n', searched); end != std::string::npos) {
            std::string text = m_buffer.substr(m_start, end - m_start);
            m_start = end + 1;
            return text;
        }
        m_buffer.erase(0, m_start);
        m_start = 0;
        searched = m_buffer.size();
        pollfd descriptor{m_output, POLLIN, 0};
        if (::poll(&descriptor, 1, limitMilliseconds) <= 0)
            return std::nullopt;
        std::array<char, 65536> chunk;
        const auto count = ::read(m_output, chunk.data(), chunk.size());
        if (count <= 0)
            return std::nullopt;
        m_buffer.append(chunk.data(), static_cast<std::size_t>(count));
    }
}

std::optional<MeshtasticBridgeResponse> RunningBridge::response() {
    while (const auto text = line()) {
        if (auto found = m_decoder.decode<MeshtasticBridgeResponse>(*text))
            return found;
    }
    return std::nullopt;
}

std::optional<MeshtasticBridgeResponse> RunningBridge::answer(const Uuid& request) {
    while (auto found = response()) {
        if (found->requestID == request)
            return found;
    }
    return std::nullopt;
}

std::optional<MeshtasticBridgeResponse> RunningBridge::event(MeshtasticBridgeEvent event) {
    while (auto found = response()) {
        if (found->event == event)
            return found;
    }
    return std::nullopt;
}

std::optional<int> RunningBridge::wait() {
    int status = 0;
    if (!eventually([&] { return ::waitpid(m_process, &status, WNOHANG) == m_process; }))
        return std::nullopt;
    m_process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
}

std::string RunningBridge::standardError() {
    std::string text;
    std::array<char, 4096> chunk;
    for (ssize_t count = 0; (count = ::read(m_errors, chunk.data(), chunk.size())) > 0;)
        text.append(chunk.data(), static_cast<std::size_t>(count));
    return text;
}

long RunningBridge::status(const std::string& key) const {
    std::ifstream file("/proc/" + std::to_string(m_process) + "/status");
    for (std::string text; std::getline(file, text);) {
        if (text.starts_with(key + ":"))
            return std::stol(text.substr(key.size() + 1));
    }
    return -1;
}

char RunningBridge::state() const {
    std::ifstream file("/proc/" + std::to_string(m_process) + "/stat");
    std::stringstream text;
    text << file.rdbuf();
    const auto end = text.str().rfind(") ");
    return end == std::string::npos ? '?' : text.str().at(end + 2);
}

bool eventually(const std::function<bool()>& condition) {
    const auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(limitMilliseconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > until)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    return true;
}

} // namespace nightjar::bridge
