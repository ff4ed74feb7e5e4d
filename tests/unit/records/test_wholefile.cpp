// SPDX-License-Identifier: GPL-3.0-or-later
//
// A small text file is replaced as a whole, or stays as it was.
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstring>

#include <fcntl.h>
#include <linux/capability.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <QDir>
#include <QtTest>

#include "records/specsfile.h"
#include "records/wholefile.h"
#include "records/workingstandard.h"
#include "support/cellfiles.h"
#include "support/testmain.h"

namespace
{

const QString FOLDER = "/specs/working_standards/";
const QString PATH = FOLDER + "DW-12.txt";
const QByteArray FORMER = "# the former text, 32 bytes long\n";

// No file of this process can grow beyond that many bytes while this lives.
class SmallDisc
{
public:
    explicit SmallDisc(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_former);
        const rlimit small = {bytes, m_former.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisc() { setrlimit(RLIMIT_FSIZE, &m_former); }

private:
    rlimit m_former = {};
};

// Root too is held to the rights of files while this lives.
class OrdinaryUser
{
public:
    OrdinaryUser()
    {
        call(SYS_capget, m_former);
        __user_cap_data_struct none[2];
        std::memcpy(none, m_former, sizeof none);
        none[0].effective = none[1].effective = 0;
        call(SYS_capset, none);
    }
    ~OrdinaryUser() { call(SYS_capset, m_former); }

private:
    static void call(long number, __user_cap_data_struct *data)
    {
        __user_cap_header_struct header = {_LINUX_CAPABILITY_VERSION_3, 0};
        if (syscall(number, &header, data) != 0)
            qFatal("the capabilities of this process cannot be set");
    }
    __user_cap_data_struct m_former[2] = {};
};

mode_t rights_of(const QString &path)
{
    struct stat status = {};
    return stat(qPrintable(path), &status) == 0 ? status.st_mode & 07777 : 0;
}

ino_t inode_of(const QString &path)
{
    struct stat status = {};
    return stat(qPrintable(path), &status) == 0 ? status.st_ino : 0;
}

QStringList names_in(const QString &folder)
{
    return QDir(folder).entryList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                  QDir::NoDotAndDotDot);
}

bool replace(const QString &path, const QByteArray &text)
{
    return replace_file(path.toUtf8(), text);
}

bool interrupting = false;
int interruptions = 0;

// Every call is interrupted once and then goes through.
bool interrupted(bool *was)
{
    *was = interrupting && !*was;
    interruptions += *was ? 1 : 0;
    return *was;
}

bool replace_interrupted(const QString &path, const QByteArray &text)
{
    interruptions = 0;
    interrupting = true;
    const bool done = replace(path, text);
    interrupting = false;
    return done;
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
    if (!interrupted(&was))
        return static_cast<int>(syscall(SYS_openat, AT_FDCWD, path, flags, mode));
    errno = EINTR;
    return -1;
}

int posix_fallocate(int fd, off_t offset, off_t size)
{
    static bool was = false;
    if (interrupted(&was))
        return EINTR; // errno stays as it was
    return syscall(SYS_fallocate, fd, 0, offset, size) == 0 ? 0 : errno;
}
}

class WholeFile : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init();
    void full_disc_leaves_the_former_working_standard();
    void full_disc_leaves_the_former_specs_file();
    void new_file_on_a_full_disc_is_not_there();
    void replaced_and_nothing_else_left();
    void rights_stay_data();
    void rights_stay();
    void new_file_has_the_umasks_rights();
    void link_goes_on_pointing_to_the_file();
    void link_to_nothing_makes_the_file();
    void second_name_stays_the_same_file();
    void write_protected_file_is_not_replaced();
    void folder_that_is_not_writable();
    void folder_that_is_not_writable_on_a_full_disc();
    void another_users_file_stays_that_users();
    void left_by_a_dead_process_of_the_same_number();
    void longest_name();
    void interrupted_calls_are_made_again();
    void name_is_bytes_whatever_the_locale();
};

void WholeFile::init()
{
    clear_cell();
    write_file(PATH, FORMER);
    umask(022);
}

void WholeFile::full_disc_leaves_the_former_working_standard()
{
    {
        const SmallDisc full(0); // for the host's log too
        write_working_standard({"DW-12", "make", "model", "date", "serial", "range"});
    }
    QCOMPARE(read_file(PATH), FORMER);
    QCOMPARE(names_in(FOLDER), QStringList("DW-12.txt"));
}

void WholeFile::full_disc_leaves_the_former_specs_file()
{
    write_file(SPECS_PATH, FORMER);
    {
        const SmallDisc full(10);
        write_specs({"TEMP", "BARO", "HUM", {"a@b.c"}});
    }
    QCOMPARE(read_file(SPECS_PATH), FORMER);
    QCOMPARE(names_in("/cell").filter("zerl_util"), QStringList("zerl_util_specs.ini"));
}

void WholeFile::new_file_on_a_full_disc_is_not_there()
{
    const SmallDisc full(5);
    QVERIFY(!replace(FOLDER + "new.txt", "too long for it\n"));
    QCOMPARE(errno, EFBIG);
    QCOMPARE(names_in(FOLDER), QStringList("DW-12.txt"));
}

void WholeFile::replaced_and_nothing_else_left()
{
    for (const QByteArray &text : {QByteArray(1000000, 'x'), QByteArray("short\n"), QByteArray()}) {
        QVERIFY(replace(PATH, text));
        QCOMPARE(read_file(PATH), text);
        QCOMPARE(names_in(FOLDER), QStringList("DW-12.txt"));
    }
}

void WholeFile::rights_stay_data()
{
    QTest::addColumn<int>("rights");
    for (const int rights : {0600, 0644, 0664, 0666, 02660})
        QTest::newRow(qPrintable(QString::number(rights, 8))) << rights;
}

void WholeFile::rights_stay()
{
    QFETCH(int, rights);
    QCOMPARE(chmod(qPrintable(PATH), static_cast<mode_t>(rights)), 0);
    QVERIFY(replace(PATH, "new\n"));
    QCOMPARE(rights_of(PATH), static_cast<mode_t>(rights));
    QCOMPARE(read_file(PATH), QByteArray("new\n"));
}

void WholeFile::new_file_has_the_umasks_rights()
{
    umask(027);
    QVERIFY(replace(FOLDER + "new.txt", "new\n"));
    QCOMPARE(rights_of(FOLDER + "new.txt"), mode_t(0640));
}

void WholeFile::link_goes_on_pointing_to_the_file()
{
    write_file("/specs/elsewhere/real.txt", FORMER);
    const QString link = FOLDER + "link.txt";
    QVERIFY(QFile::link("../elsewhere/real.txt", link));
    QVERIFY(replace(link, "new\n"));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(read_file("/specs/elsewhere/real.txt"), QByteArray("new\n"));
    QCOMPARE(names_in("/specs/elsewhere"), QStringList("real.txt"));
}

void WholeFile::link_to_nothing_makes_the_file()
{
    const QString link = FOLDER + "link.txt";
    QVERIFY(QFile::link("/specs/made.txt", link));
    QVERIFY(replace(link, "new\n"));
    QVERIFY(QFileInfo(link).isSymLink());
    QCOMPARE(read_file("/specs/made.txt"), QByteArray("new\n"));
}

void WholeFile::second_name_stays_the_same_file()
{
    const QString second = FOLDER + "second.txt";
    QCOMPARE(link(qPrintable(PATH), qPrintable(second)), 0);
    QVERIFY(replace(PATH, "new\n"));
    QCOMPARE(read_file(second), QByteArray("new\n"));
    QCOMPARE(inode_of(second), inode_of(PATH));
}

void WholeFile::write_protected_file_is_not_replaced()
{
    QCOMPARE(chmod(qPrintable(PATH), 0444), 0);
    const OrdinaryUser user;
    QVERIFY(!replace(PATH, "new\n"));
    QCOMPARE(errno, EACCES);
    QCOMPARE(read_file(PATH), FORMER);
}

void WholeFile::folder_that_is_not_writable()
{
    QCOMPARE(chmod(qPrintable(FOLDER), 0555), 0);
    for (const QByteArray &text : {QByteArray(100000, 'x'), QByteArray("short\n")}) {
        const OrdinaryUser user;
        QVERIFY(replace(PATH, text));
        QCOMPARE(read_file(PATH), text);
    }
    const OrdinaryUser user;
    QVERIFY(!replace(FOLDER + "new.txt", "new\n"));
    QCOMPARE(errno, EACCES);
}

void WholeFile::folder_that_is_not_writable_on_a_full_disc()
{
    QCOMPARE(chmod(qPrintable(FOLDER), 0555), 0);
    const OrdinaryUser user;
    const SmallDisc full(static_cast<rlim_t>(FORMER.size()) + 10);
    QVERIFY(!replace(PATH, QByteArray(100000, 'x')));
    QCOMPARE(errno, EFBIG);
    QCOMPARE(read_file(PATH), FORMER);
}

void WholeFile::another_users_file_stays_that_users()
{
    if (chown(qPrintable(PATH), 1, 1) != 0)
        QSKIP("this machine gives the test no second user");
    QCOMPARE(chmod(qPrintable(PATH), 0666), 0);
    const OrdinaryUser user;
    QVERIFY(replace(PATH, "new\n"));
    QCOMPARE(read_file(PATH), QByteArray("new\n"));
    QCOMPARE(QFileInfo(PATH).ownerId(), 1u);
    QCOMPARE(names_in(FOLDER), QStringList("DW-12.txt"));
}

void WholeFile::left_by_a_dead_process_of_the_same_number()
{
    write_file(FOLDER + QString(".zerl_util.%1.tmp").arg(getpid()), QByteArray(1000, 'x'));
    QVERIFY(replace(PATH, "new\n"));
    QCOMPARE(read_file(PATH), QByteArray("new\n"));
    QCOMPARE(names_in(FOLDER), QStringList("DW-12.txt"));
}

void WholeFile::longest_name()
{
    const QString path = FOLDER + QString(251, 'n') + ".txt";
    QVERIFY(replace(path, FORMER));
    QVERIFY(replace(path, "new\n"));
    QCOMPARE(read_file(path), QByteArray("new\n"));
    QVERIFY(!replace(FOLDER + QString(252, 'n') + ".txt", "new\n"));
    QCOMPARE(errno, ENAMETOOLONG);
}

// Beside the file, and in place where it has a second name.
void WholeFile::interrupted_calls_are_made_again()
{
    QVERIFY(replace_interrupted(PATH, "beside\n"));
    QCOMPARE(read_file(PATH), QByteArray("beside\n"));
    QCOMPARE(interruptions, 2); // the file and its folder
    QCOMPARE(link(qPrintable(PATH), qPrintable(FOLDER + "second.txt")), 0);
    QVERIFY(replace_interrupted(PATH, "in place, and longer\n"));
    QCOMPARE(read_file(PATH), QByteArray("in place, and longer\n"));
    QCOMPARE(interruptions, 2); // the file and the room for it
}

void WholeFile::name_is_bytes_whatever_the_locale()
{
    const QByteArray path = FOLDER.toUtf8() + "Zelle \xc3\xa4 \xff.txt";
    QVERIFY(replace_file(path, "new\n"));
    struct stat status = {};
    QCOMPARE(stat(path.constData(), &status), 0);
}

LOOP_TEST(WholeFile);
#include "test_wholefile.moc"
