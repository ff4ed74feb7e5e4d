// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/runtime/fileaccess.h"

#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace hostsim
{

namespace
{

constexpr auto LOCK_PATIENCE = std::chrono::milliseconds(900);
// Short, so that a lock which others take again and again is met free.
constexpr auto LOCK_POLL = std::chrono::microseconds(300);

} // namespace

Descriptor::~Descriptor()
{
    if (m_fd < 0)
        return;
    const int kept = errno;
    close(m_fd);
    errno = kept;
}

Descriptor open_regular(const char *path, int flags, unsigned mode)
{
    Descriptor file(retry_interrupted(
        [=] { return open(path, flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, mode); }));
    struct stat status = {};
    if (!file.valid() || fstat(file.get(), &status) != 0)
        return Descriptor();
    if (S_ISREG(status.st_mode))
        return file;
    errno = S_ISDIR(status.st_mode) ? EISDIR : EINVAL;
    return Descriptor();
}

std::int64_t file_size(int fd)
{
    struct stat status = {};
    return fstat(fd, &status) == 0 ? status.st_size : -1;
}

bool read_at(int fd, std::uint64_t offset, std::size_t size, std::string *data)
{
    data->resize(size);
    std::size_t done = 0;
    while (done < size) {
        const ssize_t got = retry_interrupted([=] {
            return pread(fd, data->data() + done, size - done, static_cast<off_t>(offset + done));
        });
        if (got < 0)
            return false;
        if (got == 0)
            break;
        done += static_cast<std::size_t>(got);
    }
    data->resize(done);
    return true;
}

bool write_all(int fd, std::string_view data)
{
    while (!data.empty()) {
        const ssize_t written =
            retry_interrupted([=] { return write(fd, data.data(), data.size()); });
        if (written <= 0)
            return false;
        data.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool lock_within(int fd, int operation)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + LOCK_PATIENCE;
    for (;;) {
        if (flock(fd, operation | LOCK_NB) == 0)
            return true;
        if ((errno != EWOULDBLOCK && errno != EINTR) || Clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(LOCK_POLL);
    }
}

std::string lock_fault(const char *of)
{
    if (errno == EWOULDBLOCK)
        return std::string("another process keeps the ") + of + " locked";
    return std::string("the ") + of + " cannot be locked: " + error_text();
}

std::string folder_of(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool sync_file(int fd)
{
    return retry_interrupted([=] { return fsync(fd); }) == 0;
}

Descriptor open_folder(const std::string &folder)
{
    return Descriptor(retry_interrupted(
        [&folder] { return open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC); }));
}

bool sync_folder(const std::string &folder)
{
    const Descriptor file = open_folder(folder);
    return file.valid() && sync_file(file.get());
}

std::string error_text()
{
    return std::system_category().message(errno);
}

} // namespace hostsim
