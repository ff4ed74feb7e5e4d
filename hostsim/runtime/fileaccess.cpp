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
    Descriptor file(open(path, flags | O_NONBLOCK | O_CLOEXEC | O_NOCTTY, mode));
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
        const ssize_t got =
            pread(fd, data->data() + done, size - done, static_cast<off_t>(offset + done));
        if (got < 0 && errno == EINTR)
            continue;
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
        const ssize_t written = write(fd, data.data(), data.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        data.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool lock_within(int fd, int operation, int milliseconds)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(milliseconds);
    for (;;) {
        if (flock(fd, operation | LOCK_NB) == 0)
            return true;
        if ((errno != EWOULDBLOCK && errno != EINTR) || Clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

std::string folder_of(const std::string &path)
{
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

bool sync_folder(const std::string &folder)
{
    const Descriptor file(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return file.valid() && fsync(file.get()) == 0;
}

std::string error_text()
{
    return std::system_category().message(errno);
}

} // namespace hostsim
