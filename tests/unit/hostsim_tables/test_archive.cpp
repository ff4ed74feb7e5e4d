// SPDX-License-Identifier: GPL-3.0-or-later
//
// read_archive_file_poly: which record of an archive is the table in force, and
// what damage costs.
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QtTest>

#include "hostsim/runtime/archivesearch.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testmain.h"
#include "tablefixture.h"

using namespace hostsim;
using namespace tablefixture;

static const char *const SAVE = "/cell/tables/torque_1.save";

class TestArchive : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { require_private_cell(); }
    void init() { clear_cell(); }
    void newest_in_force_data();
    void newest_in_force();
    void record_comes_whole();
    void memory_is_used_again();
    void only_the_first_pointer_is_set();
    void other_selectors_deliver_nothing();
    void missing_and_special_files_deliver_nothing();
    void unknown_type_is_delivered();
    void damage_is_passed_over_data();
    void damage_is_passed_over();
    void damage_is_logged_once_with_file_and_line();
    void other_damage_at_the_same_place_is_logged_too();
    void records_out_of_their_limits_are_passed_over();
    void damaged_evidence_is_logged();
    void every_truncation_keeps_the_records_before();
    void random_damage_costs_only_what_it_hits();
    void long_damage_is_crossed_data();
    void long_damage_is_crossed();
    void damage_far_behind_a_record_is_logged();
    void all_regions_are_found_at_every_size();
    void only_the_end_of_a_long_archive_is_read();
    void a_file_that_shrinks_meanwhile();
    void a_lock_that_is_kept_does_not_hang();
    void reading_while_another_process_adds();
};

// Comment of the record delivered; empty when there is none.
static QByteArray delivered()
{
    TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
    void *aux[ARCHIVE_POINTERS] = {};
    const int16_t count = read_archive_file_poly(1, SAVE, records, aux);
    if (count <= 0)
        return {};
    return count == 1 && records[0] != nullptr ? QByteArray(records[0]->cal_comment) : "?";
}

void TestArchive::newest_in_force_data()
{
    // expected: place in the archive, -1: none
    const auto row = test_columns<QVector<int>, int>("save_types", "expected");
    row("empty archive", QVector<int>{}, -1);
    row("one adjustment", QVector<int>{7}, 0);
    row("the later of two adjustments", QVector<int>{7, 7}, 1);
    row("re-use puts a table in force", QVector<int>{7, 8}, 1);
    row("new correlation puts a table in force", QVector<int>{7, 9}, 1);
    row("no type puts a table in force", QVector<int>{7, 0}, 1);
    row("as-found is evidence", QVector<int>{7, 3}, 0);
    row("after-service is evidence", QVector<int>{7, 5}, 0);
    row("verification is evidence", QVector<int>{7, 6}, 0);
    row("a type that does not exist", QVector<int>{7, 4, 10, 65535}, 0);
    row("evidence alone", QVector<int>{3, 5, 6}, -1);
    row("a whole calibration", QVector<int>{9, 3, 7, 6, 3, 5, 6}, 2);
    row("much evidence behind the table", (QVector<int>{7} + QVector<int>(500, 6)), 0);
}

void TestArchive::newest_in_force()
{
    QFETCH(QVector<int>, save_types);
    QFETCH(int, expected);
    QByteArray archive;
    for (int i = 0; i < save_types.size(); ++i)
        archive += archived(save_types.at(i), QByteArray::number(i));
    write_file(SAVE, archive);
    const HostLog log;
    QCOMPARE(delivered(), expected < 0 ? QByteArray() : QByteArray::number(expected));
    QCOMPARE(log.texts(), QStringList());
}

void TestArchive::record_comes_whole()
{
    std::mt19937_64 random(20260309);
    for (int i = 0; i < 20; ++i) {
        TABLE_RECORD record = random_record(random);
        record.table_type = TABLE_POLY;
        mend_record(&record);
        QCOMPARE(save_table_files_poly(SAVE, &record, SAVE_REUSED), 0);
        TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
        QCOMPARE(int(read_archive_file_poly(1, SAVE, records, nullptr)), 1);
        record.last_save_type = SAVE_REUSED;
        QVERIFY(same(*records[0], record));
    }
}

void TestArchive::memory_is_used_again()
{
    write_file(SAVE, archived(7, "one"));
    TABLE_RECORD *first[ARCHIVE_POINTERS] = {};
    TABLE_RECORD *second[ARCHIVE_POINTERS] = {};
    QCOMPARE(int(read_archive_file_poly(1, SAVE, first, nullptr)), 1);
    write_file(SAVE, archived(7, "two"));
    QCOMPARE(int(read_archive_file_poly(1, SAVE, second, nullptr)), 1);
    QCOMPARE(first[0], second[0]);
    QCOMPARE(QByteArray(first[0]->cal_comment), QByteArray("two"));
}

void TestArchive::only_the_first_pointer_is_set()
{
    write_file(SAVE, archived(7, "one") + archived(7, "two"));
    TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
    void *aux[ARCHIVE_POINTERS] = {};
    QCOMPARE(int(read_archive_file_poly(1, SAVE, records, aux)), 1);
    QVERIFY(records[1] == nullptr);
    QVERIFY(aux[0] == nullptr);
}

void TestArchive::other_selectors_deliver_nothing()
{
    write_file(SAVE, archived(7, "one"));
    TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
    const HostLog log;
    QCOMPARE(int(read_archive_file_poly(0, SAVE, records, nullptr)), 0);
    QVERIFY(records[0] == nullptr);
    QCOMPARE(log.texts(), QStringList(QString(SAVE) + ": selector 0 is not known"));
    QCOMPARE(int(read_archive_file_poly(1, nullptr, records, nullptr)), 0);
    QCOMPARE(int(read_archive_file_poly(1, SAVE, nullptr, nullptr)), 0);
}

void TestArchive::missing_and_special_files_deliver_nothing()
{
    const HostLog log;
    QCOMPARE(delivered(), QByteArray());
    QCOMPARE(log.texts(), QStringList());
    QCOMPARE(mkfifo(SAVE, 0600), 0);
    QCOMPARE(delivered(), QByteArray());
    QVERIFY(QFile::remove(SAVE));
    QVERIFY(QDir().mkpath(SAVE));
    QCOMPARE(delivered(), QByteArray());
    QCOMPARE(log.count_containing(QString(SAVE) + ": cannot be read: "), 2);
}

void TestArchive::unknown_type_is_delivered()
{
    write_file(SAVE, altered(archived(7, "one"), "table_type 0 (INTERP)", "table_type 65535"));
    TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
    QCOMPARE(int(read_archive_file_poly(1, SAVE, records, nullptr)), 1);
    QCOMPARE(records[0]->table_type, std::uint16_t(TABLE_TYPE_UNKNOWN));
}

void TestArchive::damage_is_passed_over_data()
{
    const auto row = test_columns<QByteArray, QByteArray, int>("archive", "expected", "entries");
    const QByteArray one = archived(7, "one");
    const QByteArray two = archived(7, "two");
    QByteArray changed = two;
    changed.replace("100.1", "100.3");
    row("torn tail", one + two.left(500), QByteArray("one"), 1);
    row("torn tail and a record behind it", one + archived(7, "torn").left(500) + "\n" + two,
        QByteArray("two"), 0);
    row("torn tail with a record joined to it", one + archived(7, "torn").left(500) + two,
        QByteArray("two"), 0);
    row("value changed", one + changed, QByteArray("one"), 1);
    row("two damaged",
        one + QByteArray(changed).replace("100.3", "100.5") +
            QByteArray(changed).replace("100.3", "100.5"),
        QByteArray("one"), 2);
    row("rubbish behind", one + two + "rubbish", QByteArray("two"), 1);
    row("zeros behind", one + two + QByteArray(4096, '\0'), QByteArray("two"), 1);
    row("rubbish alone", QByteArray("rubbish\nrubbish\n"), QByteArray(), 1);
    row("blank lines", "\n\n" + one + "\n\n\n", QByteArray("one"), 0);
    row("last line feed missing", one + two.chopped(1), QByteArray("two"), 0);
    row("opening line damaged", one + QByteArray(two).replace(0, 6, "VARNAX"), QByteArray("one"),
        1);
    row("later form", one + altered(two, "TABLE 1", "TABLE 2"), QByteArray("one"), 1);
    row("a table file's block counts by its record", one + block_of(sound_record()), QByteArray(""),
        0);
}

void TestArchive::damage_is_passed_over()
{
    QFETCH(QByteArray, archive);
    write_file(SAVE, archive);
    const HostLog log;
    QTEST(delivered(), "expected");
    QTEST(log.texts().size(), "entries");
}

void TestArchive::damage_is_logged_once_with_file_and_line()
{
    const QByteArray one = archived(7, "one");
    const QByteArray torn = archived(7, "logged once").left(500);
    write_file(SAVE, one + torn);
    const HostLog log;
    QCOMPARE(delivered(), QByteArray("one"));
    QCOMPARE(delivered(), QByteArray("one"));
    const QString line = QString::number(one.count('\n') + 1);
    QCOMPARE(log.texts(), QStringList(QString(SAVE) + ":" + line +
                                      ": damaged record passed over: the block is cut short"));
    QCOMPARE(log.entries().first().severity, 1);
}

// Some file systems hand a freed inode number out again at once, so a new file
// may stand at the former's path with all its numbers.
void TestArchive::other_damage_at_the_same_place_is_logged_too()
{
    const QByteArray one = archived(7, "one");
    QByteArray first = archived(7, "another");
    first.replace("100.1", "100.3");
    QByteArray second = archived(7, "another");
    second.replace("100.1", "100.4");
    const HostLog log;
    write_file(SAVE, one + first);
    QCOMPARE(delivered(), QByteArray("one"));
    QCOMPARE(log.texts().size(), 1);
    write_file(SAVE, one + second);
    QCOMPARE(delivered(), QByteArray("one"));
    QCOMPARE(log.texts().size(), 2);
    // Neither is told of once more.
    for (const QByteArray &damaged : {first, second}) {
        write_file(SAVE, one + damaged);
        QCOMPARE(delivered(), QByteArray("one"));
    }
    QCOMPARE(log.texts().size(), 2);
}

void TestArchive::records_out_of_their_limits_are_passed_over()
{
    const QByteArray one = archived(7, "one");
    write_file(SAVE, one + altered(archived(7, "two"), "num_points 3", "num_points 65"));
    const HostLog log;
    QCOMPARE(delivered(), QByteArray("one"));
    QCOMPARE(log.count_containing("poly 0 num_points is 65, outside 0 to 64"), 1);
}

void TestArchive::damaged_evidence_is_logged()
{
    QByteArray evidence = archived(6, "two");
    evidence.replace("100.1", "100.4");
    write_file(SAVE, archived(7, "one") + evidence);
    const HostLog log;
    QCOMPARE(delivered(), QByteArray("one"));
    QCOMPARE(log.count_containing("the check sum does not agree"), 1);
}

void TestArchive::every_truncation_keeps_the_records_before()
{
    const QByteArray first = archived(7, "one");
    const QByteArray archive = first + archived(7, "two");
    for (int size = 0; size <= archive.size(); ++size) {
        write_file(SAVE, archive.left(size));
        const QByteArray expected = size >= archive.size() - 1 ? "two"
                                    : size >= first.size() - 1 ? "one"
                                                               : "";
        if (delivered() != expected)
            QFAIL(qPrintable(QString("wrong record of %1 bytes").arg(size)));
    }
}

void TestArchive::random_damage_costs_only_what_it_hits()
{
    std::mt19937_64 random(20260310);
    QVector<QByteArray> blocks;
    for (int i = 0; i < 20; ++i)
        blocks += archived(7, QByteArray::number(i));
    for (int round = 0; round < 100; ++round) {
        QByteArray archive;
        int newest = -1;
        for (int i = 0; i < blocks.size(); ++i) {
            QByteArray block = blocks.at(i);
            if (random() % 4 != 0) {
                // The closing line feed carries nothing; all before it does.
                const int at = static_cast<int>(random() % static_cast<unsigned>(block.size() - 1));
                block[at] = static_cast<char>(block.at(at) ^ (1 << (random() % 8)));
            } else {
                newest = i;
            }
            archive += block;
        }
        write_file(SAVE, archive);
        QCOMPARE(delivered(), newest < 0 ? QByteArray() : QByteArray::number(newest));
    }
}

void TestArchive::long_damage_is_crossed_data()
{
    const auto row = test_columns<int, char>("bytes", "with");
    for (const int bytes : {10000, 16384, 200000, 262144, 524288, 3000000}) {
        row(qPrintable(QString("%1 zeros").arg(bytes)), bytes, '\0');
        row(qPrintable(QString("%1 letters").arg(bytes)), bytes, 'x');
        row(qPrintable(QString("%1 line feeds").arg(bytes)), bytes, '\n');
    }
}

void TestArchive::long_damage_is_crossed()
{
    QFETCH(int, bytes);
    QFETCH(char, with);
    const HostLog log;
    for (int shift = 0; shift < 3; ++shift) {
        write_file(SAVE, archived(7, "one") + QByteArray(bytes + shift * 700, with));
        QCOMPARE(delivered(), QByteArray("one"));
    }
    QCOMPARE(log.texts().size() > 0, with != '\n');
}

// Blank lines enough that it is not read along with the record.
void TestArchive::damage_far_behind_a_record_is_logged()
{
    const HostLog log;
    write_file(SAVE, archived(7, "one") + QByteArray(3000000, '\n') + "x");
    QCOMPARE(delivered(), QByteArray("one"));
    QCOMPARE(log.texts().size(), 1);
}

void TestArchive::all_regions_are_found_at_every_size()
{
    // Opening lines at every place relative to the edges of the pieces read.
    const QByteArray small = archived(7, "one");
    QByteArray archive = "some damage at the beginning\n";
    for (int i = 0; i < 400; ++i)
        archive += small + QByteArray(i * 37 % 411, 'x');
    write_file(SAVE, archive);
    QFile file(SAVE);
    QVERIFY(file.open(QIODevice::ReadOnly));
    for (int cut = 0; cut < 300; ++cut) {
        ArchiveSearch search(file.handle(), static_cast<std::uint64_t>(archive.size() - cut));
        Region region;
        std::uint64_t end = static_cast<std::uint64_t>(archive.size() - cut);
        int opened = 0;
        while (search.previous(&region)) {
            QCOMPARE(region.offset + region.text.size(), end);
            end = region.offset;
            opened += region.opened ? 1 : 0;
        }
        QCOMPARE(end, std::uint64_t(0));
        QCOMPARE(opened, 400);
    }
}

void TestArchive::only_the_end_of_a_long_archive_is_read()
{
    // A hole of a terabyte: reading it would take hours.
    write_file(SAVE, archived(7, "old"));
    const off_t hole = off_t(1) << 40;
    if (truncate(SAVE, hole) != 0)
        QSKIP("this file system takes no file of a terabyte");
    QFile file(SAVE);
    QVERIFY(file.open(QIODevice::Append));
    const QByteArray tail = "\n" + archived(7, "new") + archived(6, "evidence");
    QCOMPARE(file.write(tail), qint64(tail.size()));
    file.close();
    QCOMPARE(delivered(), QByteArray("new"));
}

void TestArchive::a_file_that_shrinks_meanwhile()
{
    const QByteArray one = archived(7, "one");
    QByteArray archive = one;
    for (int i = 0; i < 50; ++i)
        archive += archived(6, "evidence");
    write_file(SAVE, archive);
    QFile file(SAVE);
    QVERIFY(file.open(QIODevice::ReadOnly));
    ArchiveSearch search(file.handle(), static_cast<std::uint64_t>(archive.size()));
    Region region;
    QVERIFY(search.previous(&region));
    QCOMPARE(truncate(SAVE, one.size()), 0);
    std::uint64_t last = 0;
    while (search.previous(&region))
        last = region.opened ? region.offset + region.text.size() : last;
    QVERIFY(!search.failed());
    QVERIFY(last >= static_cast<std::uint64_t>(one.size()));

    ArchiveSearch beyond(file.handle(), static_cast<std::uint64_t>(archive.size()) * 1000);
    int opened = 0;
    while (beyond.previous(&region))
        opened += region.opened ? 1 : 0;
    QCOMPARE(opened, 1);
}

void TestArchive::a_lock_that_is_kept_does_not_hang()
{
    write_file(SAVE, archived(7, "one"));
    QFile file(SAVE);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(flock(file.handle(), LOCK_EX), 0);
    const HostLog log;
    QCOMPARE(delivered(), QByteArray("one"));
    QCOMPARE(log.count(QString(SAVE) + ": read without a lock: "
                                       "another process keeps the archive locked"),
             1);
}

void TestArchive::reading_while_another_process_adds()
{
    write_file(SAVE, archived(7, "first"));
    const pid_t pid = fork();
    QVERIFY(pid >= 0);
    if (pid == 0) {
        TABLE_RECORD record = sound_record();
        int failures = 0;
        for (int i = 0; i < 300; ++i)
            failures += save_table_files_poly(SAVE, &record, i % 2 == 0 ? 7 : 3) == 0 ? 0 : 1;
        _exit(failures == 0 ? 0 : 1);
    }
    const HostLog log;
    int status = 0;
    while (waitpid(pid, &status, WNOHANG) == 0) {
        TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
        QCOMPARE(int(read_archive_file_poly(1, SAVE, records, nullptr)), 1);
    }
    QCOMPARE(status, 0);
    QCOMPARE(log.texts(), QStringList());
}

PLAIN_TEST(TestArchive);
#include "test_archive.moc"
