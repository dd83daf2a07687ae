// SPDX-FileCopyrightText: Nightjar contributors
// SPDX-License-Identifier: Apache-2.0
#include "core/base/AtomicFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace nightjar {
namespace {

class Descriptor {
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor() { close(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    [[nodiscard]] int get() const { return m_fd; }
    bool close() {
        const int fd = m_fd;
        m_fd = -1;
        return fd < 0 || ::close(fd) == 0;
    }

private:
    int m_fd;
};

std::unexpected<std::string> failure(std::string_view what, const std::filesystem::path& path, int error) {
    return std::unexpected("The file “" + path.filename().string() + "” couldn’t be " + std::string(what) + ": " +
                           std::system_category().message(error) + ".");
}

bool writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        const auto written = ::write(fd, bytes.data(), bytes.size());
        if (written < 0 && errno == EINTR) continue;
        if (written < 0) return false;
        bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

/// The rename itself is kept only once the folder is on the disk too.
void syncFolder(const std::filesystem::path& folder) {
    const Descriptor fd(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (fd.get() >= 0) ::fsync(fd.get());
}

} // namespace

std::expected<std::string, std::string> readWholeFile(const std::filesystem::path& path) {
    const Descriptor fd(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (fd.get() < 0) return failure("opened", path, errno);
    struct stat info {};
    if (::fstat(fd.get(), &info) != 0) return failure("read", path, errno);
    if (!S_ISREG(info.st_mode)) return failure("read", path, EINVAL);

    std::string bytes(static_cast<std::size_t>(info.st_size), '\0');
    std::size_t length = 0;
    for (;;) {
        if (length == bytes.size()) bytes.resize(bytes.size() + 4096);
        const auto count = ::read(fd.get(), bytes.data() + length, bytes.size() - length);
        if (count < 0 && errno == EINTR) continue;
        if (count < 0) return failure("read", path, errno);
        if (count == 0) break;
        length += static_cast<std::size_t>(count);
    }
    bytes.resize(length);
    return bytes;
}

std::expected<void, std::string> replaceFile(const std::filesystem::path& path, std::string_view bytes) {
    const auto folder = path.parent_path();
    std::error_code folderError;
    std::filesystem::create_directories(folder, folderError);
    if (folderError) return failure("saved", path, folderError.value());

    std::string temporary = path.string() + ".XXXXXX";
    Descriptor fd(::mkostemp(temporary.data(), O_CLOEXEC));
    if (fd.get() < 0) return failure("saved", path, errno);
    const auto giveUp = [&](int error) {
        fd.close();
        ::unlink(temporary.c_str());
        return failure("saved", path, error);
    };
    if (!writeAll(fd.get(), bytes)) return giveUp(errno);
    if (::fsync(fd.get()) != 0) return giveUp(errno);
    if (!fd.close()) return giveUp(errno);
    if (::rename(temporary.c_str(), path.c_str()) != 0) return giveUp(errno);
    syncFolder(folder);
    return {};
}

} // namespace nightjar
