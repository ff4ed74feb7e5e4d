// SPDX-License-Identifier: GPL-3.0-or-later
//
// Preloaded into a program and all that it starts, counts the calls that change
// files under one folder and breaks off at one of them. Told by the environment:
//
//   FAULTINJECT_FOLDER   the folder; calls on anything else pass untouched
//   FAULTINJECT_COUNTER  file of 4 bytes, shared by all the processes: the calls
//                        so far
//   FAULTINJECT_AT       number of the call to break off at; 0: only count
//   FAULTINJECT_MODE     what happens there:
//       kill      the process is killed before the call
//       torn      the same, but of a write the first half is done
//       crash     the whole process group is killed before the call
//       torncrash the same, but of a write the first half is done
//       enospc    this call and every later one fails: no space left
//       erofs     this call and every later one fails: read-only
//       full      the disc is full from here on: the first write is cut to its
//                 half, what needs no space succeeds
//   FAULTINJECT_SHADOW   folder that keeps what has been made safe: the contents
//                        of a file at its last fsync, named by the inode number,
//                        and in "names" the folder's names at its last fsync
//
// Every call goes to the kernel itself, so nothing else needs to be loaded.
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <dirent.h>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace
{

enum class Mode { Count, Kill, Torn, Crash, TornCrash, NoSpace, ReadOnly, Full };
enum class Call { Data, NeedsSpace, Other };
enum class Verdict { Pass, Fail, Half };

struct Settings {
    char folder[1024] = "";
    char shadow[1024] = "";
    std::atomic<std::uint32_t> *counter = nullptr;
    std::uint32_t at = 0;
    Mode mode = Mode::Count;
};
Settings settings;

struct ModeName {
    const char *name;
    Mode mode;
};
constexpr ModeName MODES[] = {
    {"kill", Mode::Kill},           {"torn", Mode::Torn},      {"crash", Mode::Crash},
    {"torncrash", Mode::TornCrash}, {"enospc", Mode::NoSpace}, {"erofs", Mode::ReadOnly},
    {"full", Mode::Full},
};

void copy_setting(char *target, std::size_t size, const char *name)
{
    const char *const value = getenv(name);
    std::snprintf(target, size, "%s", value != nullptr ? value : "");
}

__attribute__((constructor)) void read_settings()
{
    const char *const counter = getenv("FAULTINJECT_COUNTER");
    if (counter == nullptr)
        return;
    const int fd = static_cast<int>(syscall(SYS_openat, AT_FDCWD, counter, O_RDWR | O_CLOEXEC, 0));
    if (fd < 0)
        return;
    void *const shared = mmap(nullptr, 4, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    close(fd);
    if (shared == MAP_FAILED)
        return;
    copy_setting(settings.folder, sizeof settings.folder, "FAULTINJECT_FOLDER");
    copy_setting(settings.shadow, sizeof settings.shadow, "FAULTINJECT_SHADOW");
    const char *const at = getenv("FAULTINJECT_AT");
    settings.at = at != nullptr ? static_cast<std::uint32_t>(std::strtoul(at, nullptr, 10)) : 0;
    const char *const mode = getenv("FAULTINJECT_MODE");
    for (const ModeName &known : MODES) {
        if (mode != nullptr && std::strcmp(mode, known.name) == 0)
            settings.mode = known.mode;
    }
    settings.counter = static_cast<std::atomic<std::uint32_t> *>(shared);
}

// ---- Which calls count -------------------------------------------------------

bool under_folder(const char *path)
{
    const std::size_t length = std::strlen(settings.folder);
    return length > 0 && std::strncmp(path, settings.folder, length) == 0 &&
           (path[length] == '/' || path[length] == '\0');
}

bool path_of(int fd, char *path, std::size_t size)
{
    char link[64];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const long length = syscall(SYS_readlinkat, AT_FDCWD, link, path, size - 1);
    if (length < 0)
        return false;
    path[length] = '\0';
    return true;
}

bool counts(int fd)
{
    char path[2048];
    const int kept = errno;
    const bool result =
        settings.counter != nullptr && path_of(fd, path, sizeof path) && under_folder(path);
    errno = kept;
    return result;
}

bool counts(int folder, const char *path)
{
    if (settings.counter == nullptr)
        return false;
    return path[0] == '/' ? under_folder(path) : folder != AT_FDCWD && counts(folder);
}

// ---- What happens to them ----------------------------------------------------

[[noreturn]] void die(bool all)
{
    for (;;)
        syscall(SYS_kill, all ? 0 : getpid(), SIGKILL);
}

Verdict verdict(Call call)
{
    const std::uint32_t number = ++*settings.counter;
    if (settings.at == 0 || number < settings.at)
        return Verdict::Pass;
    const bool here = number == settings.at;
    const bool torn = settings.mode == Mode::Torn || settings.mode == Mode::TornCrash;
    switch (settings.mode) {
    case Mode::Count:
        return Verdict::Pass;
    case Mode::NoSpace:
    case Mode::ReadOnly:
        errno = settings.mode == Mode::NoSpace ? ENOSPC : EROFS;
        return Verdict::Fail;
    case Mode::Full:
        errno = ENOSPC;
        if (call == Call::Other)
            return Verdict::Pass;
        return here && call == Call::Data ? Verdict::Half : Verdict::Fail;
    case Mode::Kill:
    case Mode::Torn:
    case Mode::Crash:
    case Mode::TornCrash:
        if (here && torn && call == Call::Data)
            return Verdict::Half;
        if (here)
            die(settings.mode == Mode::Crash || settings.mode == Mode::TornCrash);
        return Verdict::Pass;
    }
    return Verdict::Pass;
}

// Behind a write that was cut to its half.
long after_half(long done)
{
    if (settings.mode == Mode::Full)
        return done;
    die(settings.mode == Mode::TornCrash);
}

// ---- What has been made safe -------------------------------------------------

void shadow_file(int fd, std::uint64_t inode)
{
    char name[1100];
    std::snprintf(name, sizeof name, "%s/%llu", settings.shadow,
                  static_cast<unsigned long long>(inode));
    char link[64];
    std::snprintf(link, sizeof link, "/proc/self/fd/%d", fd);
    const long from = syscall(SYS_openat, AT_FDCWD, link, O_RDONLY | O_CLOEXEC, 0);
    const long to =
        syscall(SYS_openat, AT_FDCWD, name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    char data[8192];
    for (long got = 1; from >= 0 && to >= 0 && got > 0;) {
        got = syscall(SYS_read, from, data, sizeof data);
        if (got > 0 && syscall(SYS_write, to, data, got) != got)
            die(true);
    }
    syscall(SYS_close, from);
    syscall(SYS_close, to);
}

void shadow_names()
{
    char name[1100];
    std::snprintf(name, sizeof name, "%s/names", settings.shadow);
    const long to =
        syscall(SYS_openat, AT_FDCWD, name, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    DIR *const folder = opendir(settings.folder);
    if (to < 0 || folder == nullptr)
        die(true);
    for (const dirent *entry = readdir(folder); entry != nullptr; entry = readdir(folder)) {
        char line[400];
        const int size =
            std::snprintf(line, sizeof line, "%llu %s\n",
                          static_cast<unsigned long long>(entry->d_ino), entry->d_name);
        if (entry->d_type == DT_REG && syscall(SYS_write, to, line, size) != size)
            die(true);
    }
    closedir(folder);
    syscall(SYS_close, to);
}

int synchronise(long number, int fd)
{
    const bool counted = counts(fd);
    if (counted && verdict(Call::Other) == Verdict::Fail)
        return -1;
    const int result = static_cast<int>(syscall(number, fd));
    struct stat status = {};
    if (counted && result == 0 && settings.shadow[0] != '\0' && fstat(fd, &status) == 0) {
        if (S_ISDIR(status.st_mode))
            shadow_names();
        else
            shadow_file(fd, status.st_ino);
    }
    return result;
}

int open_at(int folder, const char *path, int flags, mode_t mode)
{
    const bool changes = (flags & O_ACCMODE) != O_RDONLY || (flags & O_CREAT) != 0;
    const Call call = (flags & O_CREAT) != 0 ? Call::NeedsSpace : Call::Other;
    if (changes && counts(folder, path) && verdict(call) == Verdict::Fail)
        return -1;
    return static_cast<int>(syscall(SYS_openat, folder, path, flags, mode));
}

mode_t mode_argument(int flags, va_list arguments)
{
    const bool given = (flags & O_CREAT) != 0 || (flags & O_TMPFILE) == O_TMPFILE;
    return given ? va_arg(arguments, mode_t) : 0;
}

int rename_at(int from_folder, const char *from, int to_folder, const char *to, unsigned flags)
{
    if ((counts(from_folder, from) || counts(to_folder, to)) &&
        verdict(Call::NeedsSpace) == Verdict::Fail)
        return -1;
    return static_cast<int>(syscall(SYS_renameat2, from_folder, from, to_folder, to, flags));
}

int truncate_to(int fd, off_t size)
{
    if (counts(fd) && verdict(Call::Other) == Verdict::Fail)
        return -1;
    return static_cast<int>(syscall(SYS_ftruncate, fd, size));
}

int unlink_at(int folder, const char *path, int flags)
{
    if (counts(folder, path) && verdict(Call::Other) == Verdict::Fail)
        return -1;
    return static_cast<int>(syscall(SYS_unlinkat, folder, path, flags));
}

ssize_t write_at(int fd, const void *data, size_t size, off_t offset)
{
    const Verdict what = counts(fd) ? verdict(Call::Data) : Verdict::Pass;
    if (what == Verdict::Fail)
        return -1;
    const long done =
        syscall(SYS_pwrite64, fd, data, what == Verdict::Half ? size / 2 : size, offset);
    return what == Verdict::Half ? after_half(done) : done;
}

} // namespace

extern "C" {

ssize_t write(int fd, const void *data, size_t size)
{
    const Verdict what = counts(fd) ? verdict(Call::Data) : Verdict::Pass;
    if (what == Verdict::Fail)
        return -1;
    const long done = syscall(SYS_write, fd, data, what == Verdict::Half ? size / 2 : size);
    return what == Verdict::Half ? after_half(done) : done;
}

ssize_t pwrite(int fd, const void *data, size_t size, off_t offset)
{
    return write_at(fd, data, size, offset);
}

ssize_t pwrite64(int fd, const void *data, size_t size, off64_t offset)
{
    return write_at(fd, data, size, offset);
}

ssize_t copy_file_range(int from, off64_t *from_offset, int to, off64_t *to_offset, size_t size,
                        unsigned flags)
{
    const Verdict what = counts(to) ? verdict(Call::Data) : Verdict::Pass;
    if (what == Verdict::Fail)
        return -1;
    const long done = syscall(SYS_copy_file_range, from, from_offset, to, to_offset,
                              what == Verdict::Half ? size / 2 : size, flags);
    return what == Verdict::Half ? after_half(done) : done;
}

int fsync(int fd)
{
    return synchronise(SYS_fsync, fd);
}
int fdatasync(int fd)
{
    return synchronise(SYS_fdatasync, fd);
}

int ftruncate(int fd, off_t size) noexcept
{
    return truncate_to(fd, size);
}
int ftruncate64(int fd, off64_t size) noexcept
{
    return truncate_to(fd, size);
}

int rename(const char *from, const char *to) noexcept
{
    return rename_at(AT_FDCWD, from, AT_FDCWD, to, 0);
}

int renameat(int from_folder, const char *from, int to_folder, const char *to) noexcept
{
    return rename_at(from_folder, from, to_folder, to, 0);
}

int renameat2(int from_folder, const char *from, int to_folder, const char *to,
              unsigned flags) noexcept
{
    return rename_at(from_folder, from, to_folder, to, flags);
}

int unlink(const char *path) noexcept
{
    return unlink_at(AT_FDCWD, path, 0);
}
int unlinkat(int folder, const char *path, int flags) noexcept
{
    return unlink_at(folder, path, flags);
}

int open(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_argument(flags, arguments);
    va_end(arguments);
    return open_at(AT_FDCWD, path, flags, mode);
}

int open64(const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_argument(flags, arguments);
    va_end(arguments);
    return open_at(AT_FDCWD, path, flags, mode);
}

int openat(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_argument(flags, arguments);
    va_end(arguments);
    return open_at(folder, path, flags, mode);
}

int openat64(int folder, const char *path, int flags, ...)
{
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = mode_argument(flags, arguments);
    va_end(arguments);
    return open_at(folder, path, flags, mode);
}

int creat(const char *path, mode_t mode)
{
    return open_at(AT_FDCWD, path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}

int creat64(const char *path, mode_t mode)
{
    return open_at(AT_FDCWD, path, O_CREAT | O_WRONLY | O_TRUNC, mode);
}
}
