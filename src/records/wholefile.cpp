// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/wholefile.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace
{

constexpr mode_t NEW_FILE = 0666; // less the umask
constexpr mode_t RIGHTS = 07777;

class Descriptor
{
public:
    explicit Descriptor(int fd) : m_fd(fd) {}
    ~Descriptor()
    {
        const int kept = errno;
        if (m_fd >= 0)
            close(m_fd);
        errno = kept;
    }
    Descriptor(const Descriptor &) = delete;
    Descriptor &operator=(const Descriptor &) = delete;

    bool valid() const { return m_fd >= 0; }
    int get() const { return m_fd; }

private:
    int m_fd;
};

enum class Result { Done, Failed, NotPossible };

// Again for as long as a signal interrupts it: that of a rebuild that has ended,
// for one.
template <typename Call> auto retried(Call call)
{
    auto result = call();
    while (result < 0 && errno == EINTR)
        result = call();
    return result;
}

int open_file(const QByteArray &path, int flags)
{
    return retried([&] { return open(path.constData(), flags | O_CLOEXEC, NEW_FILE); });
}

bool write_all(int fd, const QByteArray &text)
{
    const char *rest = text.constData();
    auto left = static_cast<std::size_t>(text.size());
    while (left > 0) {
        const ssize_t done = retried([=] { return write(fd, rest, left); });
        if (done < 0)
            return false;
        rest += done;
        left -= static_cast<std::size_t>(done);
    }
    return true;
}

bool flush(int fd)
{
    return retried([=] { return fsync(fd); }) == 0;
}

QByteArray folder_of(const QByteArray &path)
{
    const int slash = path.lastIndexOf('/');
    return slash < 0 ? QByteArray("./") : path.left(slash + 1);
}

// The file behind the links; the path itself when there is none.
QByteArray resolved(const QByteArray &path)
{
    const std::unique_ptr<char, decltype(&std::free)> real(realpath(path.constData(), nullptr),
                                                           &std::free);
    return real != nullptr ? QByteArray(real.get()) : path;
}

// Short, so that the longest name that a folder takes has one too. One left by a
// process of the same number goes first.
int open_temporary(const QByteArray &name)
{
    constexpr int FLAGS = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW;
    const int fd = open_file(name, FLAGS);
    if (fd >= 0 || errno != EEXIST || unlink(name.constData()) != 0)
        return fd;
    return open_file(name, FLAGS);
}

// A mount point cannot be renamed over, and a folder may refuse new names while
// its files can be written.
Result refused()
{
    const bool in_place = errno == EACCES || errno == EPERM || errno == EROFS || errno == EBUSY;
    return in_place ? Result::NotPossible : Result::Failed;
}

Result fill_temporary(int fd, const struct stat *former, const QByteArray &text)
{
    if (former != nullptr && (fchown(fd, former->st_uid, former->st_gid) != 0 ||
                              fchmod(fd, former->st_mode & RIGHTS) != 0))
        return refused();
    return write_all(fd, text) && flush(fd) ? Result::Done : Result::Failed;
}

Result rename_over(const QByteArray &path, const struct stat *former, const QByteArray &text)
{
    const QByteArray target = resolved(path);
    const QByteArray folder = folder_of(target);
    const QByteArray name = folder + ".zerl_util." + QByteArray::number(getpid()) + ".tmp";
    const Descriptor file(open_temporary(name));
    if (!file.valid())
        return refused();
    Result result = fill_temporary(file.get(), former, text);
    if (result == Result::Done && std::rename(name.constData(), target.constData()) != 0)
        result = refused();
    if (result != Result::Done) {
        const int reason = errno;
        unlink(name.constData());
        errno = reason;
        return result;
    }
    // Without this a crash leaves one of the two files, and either is whole.
    const Descriptor parent(open_file(folder, O_RDONLY | O_DIRECTORY));
    if (parent.valid())
        flush(parent.get());
    return Result::Done;
}

Result put_beside(const QByteArray &path, const QByteArray &text)
{
    struct stat former = {};
    if (stat(path.constData(), &former) != 0) {
        // A link to nothing names the place of the new file.
        const bool link = lstat(path.constData(), &former) == 0;
        return link ? Result::NotPossible : rename_over(path, nullptr, text);
    }
    if (!S_ISREG(former.st_mode) || former.st_nlink > 1)
        return Result::NotPossible;
    // What may not be written is not replaced either.
    if (faccessat(AT_FDCWD, path.constData(), W_OK, AT_EACCESS) != 0)
        return Result::Failed;
    return rename_over(path, &former, text);
}

// The room for what the file grows by is taken before a byte of it is touched.
bool reserve(int fd, off_t former, off_t size)
{
    if (size <= former)
        return true;
    int reason = EINTR;
    while (reason == EINTR)
        reason = posix_fallocate(fd, former, size - former);
    if (reason == 0)
        return true;
    static_cast<void>(ftruncate(fd, former) == 0);
    errno = reason;
    return false;
}

bool write_in_place(const QByteArray &path, const QByteArray &text)
{
    const Descriptor file(open_file(path, O_WRONLY | O_CREAT));
    struct stat status = {};
    if (!file.valid() || fstat(file.get(), &status) != 0)
        return false;
    if (!S_ISREG(status.st_mode))
        return write_all(file.get(), text);
    return reserve(file.get(), status.st_size, text.size()) && write_all(file.get(), text) &&
           retried([&] { return ftruncate(file.get(), text.size()); }) == 0 && flush(file.get());
}

} // namespace

bool replace_file(const QByteArray &path, const QByteArray &text)
{
    const Result result = put_beside(path, text);
    if (result == Result::NotPossible)
        return write_in_place(path, text);
    return result == Result::Done;
}
