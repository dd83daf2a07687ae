// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/AtomicFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace nightjar {
namespace {

class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    Descriptor& operator=(Descriptor&&) = delete;
    [[nodiscard]] int get() const { return m_fd; }
    bool close() {
        const int fd = std::exchange(m_fd, -1);
        return fd < 0 || ::close(fd) == 0;
    }

private:
    int m_fd;
};

/// No file of ours comes near this size; one that does was not written by us.
constexpr off_t largestFile = off_t{1} << 30;

std::unexpected<std::string> failure(std::string_view what, const std::filesystem::path& path, int error) {
    return std::unexpected("The file “" + path.filename().string() + "” couldn’t be " + std::string(what) +
                           ": " + std::system_category().message(error) + ".");
}

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

struct TemporaryFile {
    std::string path;
    Descriptor fd;
};

/// Whether the open file is a plain one and still has this name: whoever held it before may have renamed it.
bool isStillNamed(int fd, const std::string& path) {
    struct stat open {};
    struct stat named {};
    return ::fstat(fd, &open) == 0 && S_ISREG(open.st_mode) && ::lstat(path.c_str(), &named) == 0 &&
           open.st_dev == named.st_dev && open.st_ino == named.st_ino;
}

/// An empty file beside `path` that only we write to; its error number where there is none to be had. The
/// names are few and fixed, so that what a crash left behind is used again by the next one instead of piling
/// up; a lock tells that from a file which another thread or process is writing just now.
std::expected<TemporaryFile, int> openTemporary(const std::filesystem::path& path) {
    constexpr int names = 8;
    int error = EBUSY;
    for (int i = 0; i < names; ++i) {
        std::string name = path.string() + ".saving" + (i == 0 ? std::string() : "-" + std::to_string(i));
        Descriptor fd(::open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK, 0600));
        if (fd.get() < 0) {
            error = errno;
            continue;
        }
        // A file system without locks (some network ones) must not keep anything from being saved.
        const bool isInUse = ::flock(fd.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
        if (isInUse || !isStillNamed(fd.get(), name))
            continue;
        if (::ftruncate(fd.get(), 0) == 0)
            return TemporaryFile{std::move(name), std::move(fd)};
        error = errno;
    }
    return std::unexpected(error);
}

} // namespace

std::expected<std::string, std::string> readWholeFile(const std::filesystem::path& path) {
    // Opening must not wait, should somebody have put a pipe there.
    const Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    if (fd.get() < 0)
        return failure("opened", path, errno);
    struct stat info {};
    if (::fstat(fd.get(), &info) != 0)
        return failure("read", path, errno);
    if (!S_ISREG(info.st_mode))
        return failure("read", path, EINVAL);
    if (info.st_size > largestFile)
        return failure("read", path, EFBIG);

    // A little more than there should be: the end is seen without growing, and who adds to the text has room.
    constexpr std::size_t spare = 4096;
    std::string bytes(static_cast<std::size_t>(info.st_size) + spare, '\0');
    std::size_t length = 0;
    for (;;) {
        if (length == bytes.size())
            bytes.resize(bytes.size() * 2);
        const auto count = ::read(fd.get(), bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR)
            continue;
        if (count < 0)
            return failure("read", path, errno);
        if (count == 0)
            break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return bytes;
}

std::expected<void, std::string> replaceFile(const std::filesystem::path& path, std::string_view bytes) {
    const auto folder = path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
    std::error_code folderError;
    std::filesystem::create_directories(folder, folderError);
    if (folderError)
        return failure("saved", path, folderError.value());

    auto temporary = openTemporary(path);
    if (!temporary)
        return failure("saved", path, temporary.error());
    const auto giveUp = [&](int error) {
        ::unlink(temporary->path.c_str());
        return failure("saved", path, error);
    };
    const int fd = temporary->fd.get();
    if (!writeAll(fd, bytes) || ::fsync(fd) != 0)
        return giveUp(errno);
    // The lock is held until the name is the file's final one. The folder is not synced: that costs as much
    // as all the rest, and without it a power failure at worst brings the old file back.
    if (::rename(temporary->path.c_str(), path.c_str()) != 0)
        return giveUp(errno);
    return {};
}

} // namespace nightjar
