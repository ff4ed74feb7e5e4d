// SPDX-License-Identifier: GPL-3.0-or-later
//
// Files as the table operations need them: nothing that a folder may hold
// (a FIFO, a device, a folder) can hang or mislead a reader.
#ifndef HOSTSIM_RUNTIME_FILEACCESS_H
#define HOSTSIM_RUNTIME_FILEACCESS_H

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace hostsim
{

// A file descriptor that closes itself.
class Descriptor
{
public:
    explicit Descriptor(int fd = -1) : m_fd(fd) {}
    Descriptor(Descriptor &&other) noexcept : m_fd(other.m_fd) { other.m_fd = -1; }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;
    Descriptor &operator=(Descriptor &&) = delete;
    ~Descriptor();

    bool valid() const { return m_fd >= 0; }
    int get() const { return m_fd; }

private:
    int m_fd;
};

// The result of the call, made again for as long as a signal interrupts it.
template <typename Call> auto retry_interrupted(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

// Opens without ever waiting, with the close-on-exec flag; invalid, with errno,
// for what is not a regular file.
Descriptor open_regular(const char *path, int flags, unsigned mode = 0);

// Size in bytes, -1 with errno.
std::int64_t file_size(int fd);

// Up to size bytes from the offset on, fewer at the end of the file; false with
// errno when reading fails.
bool read_at(int fd, std::uint64_t offset, std::size_t size, std::string *data);

// False with errno unless all of it was written.
bool write_all(int fd, std::string_view data);

// Takes a lock on the file (flock's operation); false with errno, EWOULDBLOCK
// when someone else keeps it. The window waits meanwhile: for less than a second.
bool lock_within(int fd, int operation);

// What to say of a lock that was not had, by errno; of: "archive" or "folder".
std::string lock_fault(const char *of);

// Folder of the path, "." when it names none.
std::string folder_of(const std::string &path);

// Makes a file's contents, or a folder's names, safe on disc; false with errno.
bool sync_file(int fd);
bool sync_folder(const std::string &folder);

// Open for a lock and for sync_file; invalid with errno.
Descriptor open_folder(const std::string &folder);

// Text of errno.
std::string error_text();

} // namespace hostsim

#endif
