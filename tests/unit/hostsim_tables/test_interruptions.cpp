// SPDX-License-Identifier: GPL-3.0-or-later
//
// Calls to the system that a signal interrupts, and locks that someone else
// keeps. The calls stand before the system's own in this program, and so does
// the clock: waiting moves it on and takes no time.
#include <cerrno>
#include <cstdarg>
#include <ctime>
#include <dlfcn.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QtTest>

#include "hostsim/runtime/unitcatalogue.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testmain.h"
#include "tablefixture.h"

using namespace hostsim;
using namespace tablefixture;

namespace
{

constexpr char TBL[] = "/cell/tables/torque_1.tbl";
constexpr char SAVE[] = "/cell/tables/torque_1.save";
constexpr char OLD[] = "/cell/tables/torque_1.old";
constexpr qint64 SECOND = 1000000000;

bool interrupting = false;
int interruptions = 0;
qint64 waited = 0; // nanoseconds

// Every call is interrupted once and then goes through.
bool interrupted(bool *was)
{
    *was = interrupting && !*was;
    if (!*was)
        return false;
    ++interruptions;
    errno = EINTR;
    return true;
}

int wait_for(const timespec *time)
{
    waited += qint64(time->tv_sec) * SECOND + time->tv_nsec;
    return 0;
}

// What the runtime does meanwhile; the test's own calls go through.
template <typename Action> auto with_interruptions(Action action)
{
    interrupting = true;
    const auto result = action();
    interrupting = false;
    return result;
}

} // namespace

extern "C" {

int open(const char *path, int flags, ...)
{
    static bool was = false;
    va_list arguments;
    va_start(arguments, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(arguments, mode_t) : 0;
    va_end(arguments);
    return interrupted(&was) ? -1
                             : static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
}

int fsync(int fd)
{
    static bool was = false;
    return interrupted(&was) ? -1 : static_cast<int>(syscall(SYS_fsync, fd));
}

int flock(int fd, int operation) noexcept
{
    static bool was = false;
    return interrupted(&was) ? -1 : static_cast<int>(syscall(SYS_flock, fd, operation));
}

ssize_t write(int fd, const void *data, size_t size)
{
    static bool was = false;
    return interrupted(&was) ? -1 : syscall(SYS_write, fd, data, size);
}

int nanosleep(const timespec *time, timespec *)
{
    return wait_for(time);
}

int clock_nanosleep(clockid_t, int, const timespec *time, timespec *)
{
    return wait_for(time);
}

int clock_gettime(clockid_t clock, timespec *time) noexcept
{
    const int result = static_cast<int>(syscall(SYS_clock_gettime, clock, time));
    const qint64 moved = time->tv_nsec + waited;
    time->tv_sec += static_cast<time_t>(moved / SECOND);
    time->tv_nsec = static_cast<long>(moved % SECOND);
    return result;
}
}

class Interruptions : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init();
    void archive_gains_its_record();
    void table_is_written();
    void table_and_archive_are_read();
    void catalogue_of_units_is_read();
    void entry_reaches_the_log();
    void locked_archive_is_given_up_within_a_second_and_named();
    void locked_folder_is_given_up_within_a_second_and_named();
    void locked_archive_is_read_within_a_second();
};

void Interruptions::init()
{
    clear_cell();
    interruptions = 0;
    waited = 0;
}

void Interruptions::archive_gains_its_record()
{
    const TABLE_RECORD record = sound_record();
    const HostLog log;
    QCOMPARE(with_interruptions([&] { return save_table_files_poly(SAVE, &record, 7); }), 0);
    QVERIFY2(interruptions >= 4, "open, lock, write, and both flushes");
    QCOMPARE(log.texts(), QStringList());
    QVERIFY(read_file(SAVE).startsWith("VORNAX-TABLE 1\n"));
}

void Interruptions::table_is_written()
{
    write_file(OLD, block_of(sound_record()));
    const TABLE_RECORD record = sound_record();
    const HostLog log;
    QCOMPARE(with_interruptions([&] { return create_table(TBL, &record); }), 0);
    QVERIFY(interruptions >= 6);
    QCOMPARE(log.texts(), QStringList());
    TABLE_RECORD back = {};
    QCOMPARE(read_table(TBL, &back), 0);
    QVERIFY(same(back, record));
}

void Interruptions::table_and_archive_are_read()
{
    const TABLE_RECORD record = sound_record();
    write_file(TBL, block_of(record));
    write_file(SAVE, archived(7, "one"));
    TABLE_RECORD back = {};
    QCOMPARE(with_interruptions([&] { return read_table(TBL, &back); }), 0);
    QVERIFY(same(back, record));
    TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
    const auto read = [&] { return int(read_archive_file_poly(1, SAVE, records, nullptr)); };
    QCOMPARE(with_interruptions(read), 1);
    QVERIFY(interruptions >= 3);
}

void Interruptions::catalogue_of_units_is_read()
{
    write_file("/cell/units.txt", "kPa 100 pressure 1000 Pa\n");
    std::string text;
    QVERIFY(with_interruptions([&] { return read_unit_catalogue_text("/cell/units.txt", &text); }));
    QCOMPARE(text, std::string("kPa 100 pressure 1000 Pa\n"));
    QVERIFY(interruptions >= 1);
}

void Interruptions::entry_reaches_the_log()
{
    const HostLog log;
    with_interruptions([] {
        log_error("here.cpp", 1, 1, 0, "told");
        return 0;
    });
    QVERIFY(interruptions >= 2);
    QCOMPARE(log.texts(), QStringList("told"));
}

// The window waits for as long as this takes.
void Interruptions::locked_archive_is_given_up_within_a_second_and_named()
{
    write_file(SAVE, archived(7, "one"));
    const QByteArray before = read_file(SAVE);
    QFile other(SAVE);
    QVERIFY(other.open(QIODevice::ReadOnly));
    QCOMPARE(flock(other.handle(), LOCK_EX), 0);
    const TABLE_RECORD record = sound_record();
    const HostLog log;
    QVERIFY(save_table_files_poly(SAVE, &record, 7) != 0);
    QVERIFY(waited > 0);
    QVERIFY(waited <= SECOND);
    QCOMPARE(log.texts(), QStringList(QString(SAVE) + ": nothing added, "
                                                      "another process keeps the archive locked"));
    QCOMPARE(read_file(SAVE), before);
}

void Interruptions::locked_folder_is_given_up_within_a_second_and_named()
{
    const int folder = open("/cell/tables", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    QVERIFY(folder >= 0);
    QCOMPARE(flock(folder, LOCK_EX), 0);
    const TABLE_RECORD record = sound_record();
    const HostLog log;
    const int32_t result = create_table(TBL, &record);
    close(folder);
    QVERIFY(result != 0);
    QVERIFY(waited > 0);
    QVERIFY(waited <= SECOND);
    QCOMPARE(log.texts(), QStringList(QString(TBL) + ": not written, "
                                                     "another process keeps the folder locked"));
    QVERIFY(!QFile::exists(TBL));
}

void Interruptions::locked_archive_is_read_within_a_second()
{
    write_file(SAVE, archived(7, "one"));
    QFile other(SAVE);
    QVERIFY(other.open(QIODevice::ReadOnly));
    QCOMPARE(flock(other.handle(), LOCK_EX), 0);
    TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
    QCOMPARE(int(read_archive_file_poly(1, SAVE, records, nullptr)), 1);
    QVERIFY(waited > 0);
    QVERIFY(waited <= SECOND);
}

PLAIN_TEST(Interruptions);
#include "test_interruptions.moc"
