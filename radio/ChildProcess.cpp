// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "radio/ChildProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>

namespace nightjar {
namespace {

std::unexpected<std::error_code> failure(int error) {
    return std::unexpected(std::error_code(error, std::system_category()));
}

struct Pipe {
    FileDescriptor readEnd;
    FileDescriptor writeEnd;
};

/// A program that was started with closed standard streams gets their numbers for its pipes; connecting the
/// child's streams would then overwrite one pipe end with another.
bool liftAboveStandardStreams(FileDescriptor& end) {
    if (end.get() > STDERR_FILENO)
        return true;
    FileDescriptor lifted(::fcntl(end.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!lifted)
        return false;
    end = std::move(lifted);
    return true;
}

std::expected<Pipe, std::error_code> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0)
        return failure(errno);
    Pipe pipe{FileDescriptor(ends[0]), FileDescriptor(ends[1])};
    if (!liftAboveStandardStreams(pipe.readEnd) || !liftAboveStandardStreams(pipe.writeEnd))
        return failure(errno);
    return pipe;
}

bool makeNonBlocking(const FileDescriptor& end) {
    const int flags = ::fcntl(end.get(), F_GETFL);
    return flags >= 0 && ::fcntl(end.get(), F_SETFL, flags | O_NONBLOCK) == 0;
}

/// What the child finds when it starts: its standard streams and nothing else, default signals, its own
/// group.
class SpawnPlan {
public:
    SpawnPlan(const Pipe& input, const Pipe& output, const Pipe& errors) {
        ::posix_spawn_file_actions_init(&m_actions);
        ::posix_spawn_file_actions_adddup2(&m_actions, input.readEnd.get(), STDIN_FILENO);
        ::posix_spawn_file_actions_adddup2(&m_actions, output.writeEnd.get(), STDOUT_FILENO);
        ::posix_spawn_file_actions_adddup2(&m_actions, errors.writeEnd.get(), STDERR_FILENO);
        ::posix_spawn_file_actions_addclosefrom_np(&m_actions, STDERR_FILENO + 1);
        ::posix_spawnattr_init(&m_attributes);
        sigset_t signals;
        sigfillset(&signals);
        ::posix_spawnattr_setsigdefault(&m_attributes, &signals);
        sigemptyset(&signals);
        ::posix_spawnattr_setsigmask(&m_attributes, &signals);
        ::posix_spawnattr_setpgroup(&m_attributes, 0);
        ::posix_spawnattr_setflags(&m_attributes,
                                   POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETPGROUP);
    }
    ~SpawnPlan() {
        ::posix_spawn_file_actions_destroy(&m_actions);
        ::posix_spawnattr_destroy(&m_attributes);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;

    [[nodiscard]] int start(std::string program, pid_t& id) const {
        std::string serve = "serve";
        std::string jsonLines = "--jsonl";
        std::array<char*, 4> arguments{program.data(), serve.data(), jsonLines.data(), nullptr};
        return ::posix_spawn(&id, program.c_str(), &m_actions, &m_attributes, arguments.data(), environ);
    }

private:
    posix_spawn_file_actions_t m_actions{};
    posix_spawnattr_t m_attributes{};
};

} // namespace

std::expected<ChildProcess, std::error_code> ChildProcess::spawn(const std::filesystem::path& program) {
    auto input = makePipe();
    if (!input)
        return std::unexpected(input.error());
    auto output = makePipe();
    if (!output)
        return std::unexpected(output.error());
    auto errors = makePipe();
    if (!errors)
        return std::unexpected(errors.error());
    for (const auto* end : {&input->writeEnd, &output->readEnd, &errors->readEnd}) {
        if (!makeNonBlocking(*end))
            return failure(errno);
    }
    // A bridge that hangs and wakes up minutes later finds one page of old requests at most. Best effort.
    ::fcntl(input->writeEnd.get(), F_SETPIPE_SZ, 4096);

    ChildProcess child;
    if (const int error = SpawnPlan(*input, *output, *errors).start(program.string(), child.m_id))
        return failure(error);
    child.m_exit = FileDescriptor(static_cast<int>(::syscall(SYS_pidfd_open, child.m_id, 0)));
    if (!child.m_exit) {
        const int error = errno;
        ::kill(child.m_id, SIGKILL);
        ::waitpid(child.m_id, nullptr, 0);
        return failure(error);
    }
    child.input = std::move(input->writeEnd);
    child.output = std::move(output->readEnd);
    child.errors = std::move(errors->readEnd);
    return child;
}

bool ChildProcess::hasExited() {
    if (m_reaped)
        return true;
    siginfo_t info{};
    const int result = ::waitid(P_PIDFD, static_cast<id_t>(m_exit.get()), &info, WEXITED | WNOHANG);
    // No such child: someone else in this process has reaped it already.
    m_reaped = result == 0 ? info.si_pid != 0 : errno == ECHILD;
    return m_reaped;
}

bool ChildProcess::isGoing() {
    if (hasExited() || !output)
        return true;
    pollfd watched{output.get(), 0, 0};
    return ::poll(&watched, 1, 0) > 0 && (watched.revents & POLLHUP) != 0;
}

void ChildProcess::signal(int number) const {
    // By descriptor, never by number: a number may belong to a stranger once the child is reaped.
    ::syscall(SYS_pidfd_send_signal, m_exit.get(), number, nullptr, 0);
}

} // namespace nightjar
