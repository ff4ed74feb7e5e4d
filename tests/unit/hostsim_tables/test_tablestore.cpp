// SPDX-License-Identifier: GPL-3.0-or-later
//
// read_table, create_table and save_table_files_poly on real files.
#include <fcntl.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>

#include <QtTest>

#include "host/exports.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testmain.h"
#include "tablefixture.h"

using namespace hostsim;
using namespace tablefixture;

const char *VORNAX_VER = "9.8.7 test";

static const QString TABLES = QStringLiteral("/cell/tables/");
static const char *const TBL = "/cell/tables/torque_1.tbl";
static const char *const SAVE = "/cell/tables/torque_1.save";

class TestTableStore : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { require_private_cell(); }
    void init() { clear_cell(); }
    void a_table_reads_back_data();
    void a_table_reads_back();
    void random_tables_read_back();
    void unreadable_tables_data();
    void unreadable_tables();
    void missing_table_is_logged();
    void special_files_do_not_hang();
    void a_huge_file_is_refused();
    void truncated_tables_are_refused();
    void flipped_bits_are_refused();
    void create_leaves_nothing_beside_the_table();
    void create_keeps_the_former_mode();
    void create_takes_no_notice_of_a_stale_temporary();
    void failed_create_keeps_the_former_table_data();
    void failed_create_keeps_the_former_table();
    void create_refuses_an_unknown_type();
    void counts_and_texts_are_brought_within_limits();
    void save_refuses_a_type_that_is_not_archived_data();
    void save_refuses_a_type_that_is_not_archived();
    void save_adds_one_block();
    void saved_block_tells_who_when_and_program();
    void save_stays_apart_from_a_torn_tail();
    void save_on_a_full_disc_leaves_the_archive_whole();
    void save_into_special_files_fails();
    void two_processes_keep_every_record_whole();
};

static bool zeroed_failure(const char *path)
{
    TABLE_RECORD record = sound_record();
    return static_cast<std::uint16_t>(read_table(path, &record)) == 65535 && is_zero(record);
}

void TestTableStore::a_table_reads_back_data()
{
    QTest::addColumn<int>("type");
    QTest::newRow("INTERP") << int(TABLE_INTERP);
    QTest::newRow("POLY") << int(TABLE_POLY);
    QTest::newRow("SCALED") << int(TABLE_SCALED);
    QTest::newRow("POLY_RANGE") << int(TABLE_POLY_RANGE);
}

void TestTableStore::a_table_reads_back()
{
    QFETCH(int, type);
    TABLE_RECORD record = sound_record();
    record.table_type = static_cast<std::uint16_t>(type);
    const HostLog log;
    QCOMPARE(create_table(TBL, &record), 0);
    TABLE_RECORD back = {};
    QCOMPARE(read_table(TBL, &back), 0);
    QVERIFY(same(back, record));
    QCOMPARE(log.texts(), QStringList());
}

void TestTableStore::random_tables_read_back()
{
    std::mt19937_64 random(20260307);
    for (int i = 0; i < 40; ++i) {
        TABLE_RECORD record = random_record(random);
        record.table_type = TABLE_POLY_RANGE;
        mend_record(&record);
        QCOMPARE(create_table(TBL, &record), 0);
        TABLE_RECORD back = {};
        QCOMPARE(read_table(TBL, &back), 0);
        QVERIFY(same(back, record));
    }
}

void TestTableStore::unreadable_tables_data()
{
    const auto row = test_columns<QByteArray, QString>("content", "entry");
    const QByteArray block = block_of(sound_record());
    const QString lines = QString::number(block.count('\n'));
    row("empty", QByteArray(), ":1: the file is empty");
    row("foreign", QByteArray("channel 3\n1 2 3\n"), ":1: not a table file");
    row("binary", QByteArray(21992, '\0'), ":1: not a table file");
    row("blank lines", QByteArray("\n\n"), ":1: not a table file");
    row("rubbish before the block", "x\n" + block, ":1: not a table file");
    row("cut short", block.left(300), ":1: the block is cut short");
    row("later form", altered(block, "TABLE 1", "TABLE 2"), ":1: form \"2\" is not known");
    row("a value changed by hand", QByteArray(block).replace("100.1", "100.2"),
        ":" + lines + ": the check sum does not agree");
    row("two records", block + block,
        ":" + QString::number(block.count('\n') + 1) + ": more than one record");
    row("rubbish behind the block", block + "x",
        ":" + QString::number(block.count('\n') + 1) + ": more than one record");
    row("65 points", altered(block, "num_points 3", "num_points 65"),
        ":32: poly 0 num_points is 65, outside 0 to 64");
    row("-1 points", altered(block, "num_points 3", "num_points -1"),
        ":32: poly 0 num_points is -1, outside 0 to 64");
    row("65 coefficients in a point table", altered(block, "num_coeffs 2", "num_coeffs 65"),
        ":30: poly 0 num_coeffs is 65, outside 0 to 64");
    row("range 8", altered(block, "range_index 0", "range_index 8"),
        ":8: poly_range_index is 8, outside 0 to 7");
    row("type 3", altered(block, "table_type 0", "table_type 3"),
        ":7: table_type is 3, which is not known");
    row("type not known", altered(block, "table_type 0", "table_type 65535"),
        ":7: table_type is 65535, which is not known");
    row("text not terminated",
        altered(block, "eng_units \"LB-FT\"", "eng_units \"0123456789abcdef\""),
        ":9: eng_units is not terminated");
}

void TestTableStore::unreadable_tables()
{
    QFETCH(QByteArray, content);
    QFETCH(QString, entry);
    write_file(TBL, content);
    const HostLog log;
    QVERIFY(zeroed_failure(TBL));
    QCOMPARE(log.texts(), QStringList(TBL + entry));
}

void TestTableStore::missing_table_is_logged()
{
    const HostLog log;
    QVERIFY(zeroed_failure(TBL));
    QCOMPARE(log.texts(),
             QStringList(QString(TBL) + ":1: cannot be read: No such file or directory"));
    QCOMPARE(log.entries().first().severity, 1);
}

void TestTableStore::special_files_do_not_hang()
{
    QVERIFY(QDir().mkpath(TABLES + "folder.tbl"));
    QVERIFY(zeroed_failure("/cell/tables/folder.tbl"));
    QCOMPARE(mkfifo("/cell/tables/fifo.tbl", 0600), 0);
    QVERIFY(zeroed_failure("/cell/tables/fifo.tbl"));
    QVERIFY(zeroed_failure("/dev/zero"));
    QVERIFY(zeroed_failure(""));
    QVERIFY(zeroed_failure(nullptr));
    QCOMPARE(symlink("loop.tbl", "/cell/tables/loop.tbl"), 0);
    QVERIFY(zeroed_failure("/cell/tables/loop.tbl"));
}

void TestTableStore::a_huge_file_is_refused()
{
    write_file(TBL, block_of(sound_record()));
    QCOMPARE(truncate(TBL, qint64(1) << 40), 0);
    QVERIFY(zeroed_failure(TBL));
    write_file(TBL, "VORNAX-TABLE 1\n" + QByteArray(5000000, 'a'));
    QVERIFY(zeroed_failure(TBL));
}

void TestTableStore::truncated_tables_are_refused()
{
    const QByteArray text = block_of(sound_record());
    for (int size = 0; size < text.size() - 1; ++size) {
        write_file(TBL, text.left(size));
        if (!zeroed_failure(TBL))
            QFAIL(qPrintable(QString("%1 bytes are read").arg(size)));
    }
}

void TestTableStore::flipped_bits_are_refused()
{
    std::mt19937_64 random(20260308);
    const QByteArray text = block_of(sound_record());
    for (int i = 0; i < 2000; ++i) {
        QByteArray damaged = text;
        const int at = static_cast<int>(random() % static_cast<unsigned>(text.size() - 1));
        damaged[at] = static_cast<char>(damaged.at(at) ^ (1 << (random() % 8)));
        write_file(TBL, damaged);
        if (!zeroed_failure(TBL))
            QFAIL(qPrintable(QString("a change at %1 goes unnoticed").arg(at)));
    }
}

void TestTableStore::create_leaves_nothing_beside_the_table()
{
    const TABLE_RECORD record = sound_record();
    QCOMPARE(create_table(TBL, &record), 0);
    QCOMPARE(create_table(TBL, &record), 0);
    const QStringList names =
        QDir(TABLES).entryList(QDir::Files | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    QCOMPARE(names, QStringList("torque_1.tbl"));
    QVERIFY(!read_file(TBL).contains("\nsave_type"));
}

void TestTableStore::create_keeps_the_former_mode()
{
    const TABLE_RECORD record = sound_record();
    QCOMPARE(create_table(TBL, &record), 0);
    QCOMPARE(chmod(TBL, 0640), 0);
    QCOMPARE(create_table(TBL, &record), 0);
    struct stat status = {};
    QCOMPARE(stat(TBL, &status), 0);
    QCOMPARE(status.st_mode & 07777, mode_t(0640));
}

void TestTableStore::create_takes_no_notice_of_a_stale_temporary()
{
    write_file(TABLES + ".torque_1.tbl.tmp", "half a tab");
    const TABLE_RECORD record = sound_record();
    QCOMPARE(create_table(TBL, &record), 0);
    TABLE_RECORD back = {};
    QCOMPARE(read_table(TBL, &back), 0);
    QVERIFY(!QFile::exists(TABLES + ".torque_1.tbl.tmp"));
}

void TestTableStore::failed_create_keeps_the_former_table_data()
{
    QTest::addColumn<QString>("obstacle");
    QTest::newRow("no room on the disc") << "full";
    QTest::newRow("the history cannot be made safe") << "history";
    QTest::newRow("another process keeps the temporary name") << "folder";
}

void TestTableStore::failed_create_keeps_the_former_table()
{
    QFETCH(QString, obstacle);
    TABLE_RECORD record = sound_record();
    QCOMPARE(create_table(TBL, &record), 0);
    const QByteArray before = read_file(TBL);
    struct rlimit former = {};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &former), 0);
    if (obstacle == "history")
        QVERIFY(QDir().mkpath(TABLES + "torque_1.old"));
    if (obstacle == "folder")
        QVERIFY(QDir().mkpath(TABLES + ".torque_1.tbl.tmp"));
    record.y_max = 5;
    const HostLog log;
    if (obstacle == "full") {
        std::signal(SIGXFSZ, SIG_IGN);
        const struct rlimit small = {300, former.rlim_max};
        QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    }
    const int32_t result = create_table(TBL, &record);
    setrlimit(RLIMIT_FSIZE, &former);
    QCOMPARE(result, -1);
    QCOMPARE(read_file(TBL), before);
    QVERIFY(obstacle == "folder" || !QFile::exists(TABLES + ".torque_1.tbl.tmp"));
    if (obstacle != "full") // the limit keeps the log's file from growing, too
        QCOMPARE(log.count_containing("/cell/tables/torque_1."), 1);
}

void TestTableStore::create_refuses_an_unknown_type()
{
    TABLE_RECORD record = sound_record();
    QCOMPARE(create_table(TBL, &record), 0);
    const QByteArray before = read_file(TBL);
    record.table_type = TABLE_TYPE_UNKNOWN;
    const HostLog log;
    QCOMPARE(create_table(TBL, &record), -1);
    QCOMPARE(read_file(TBL), before);
    QCOMPARE(log.texts(), QStringList(QString(TBL) + ": not written, table_type is 65535, which is "
                                                     "not known"));
    QCOMPARE(create_table("/cell/nowhere/x.tbl", &record), -1);
    record.table_type = TABLE_INTERP;
    QCOMPARE(create_table("/cell/nowhere/x.tbl", &record), -1);
    QCOMPARE(create_table("/cell/tables", &record), -1);
    QCOMPARE(create_table(nullptr, &record), -1);
    QCOMPARE(create_table(TBL, nullptr), -1);
}

void TestTableStore::counts_and_texts_are_brought_within_limits()
{
    TABLE_RECORD record = sound_record();
    record.poly[0].num_points = 100;
    record.poly[0].x[63] = 1;
    record.poly[0].num_coeffs = -3;
    record.poly_range_index = 9;
    std::memset(record.qie, 'q', sizeof record.qie);
    const HostLog log;
    QCOMPARE(create_table(TBL, &record), 0);
    QCOMPARE(log.texts(),
             QStringList(QString(TBL) + ": stored within limits: poly 0 num_coeffs is -3, outside "
                                        "0 to 64; poly 0 num_points is 100, outside 0 to 64; "
                                        "poly_range_index is 9, outside 0 to 7; qie is not "
                                        "terminated"));
    TABLE_RECORD expected = record;
    expected.poly[0].num_points = 64;
    expected.poly[0].num_coeffs = 0;
    expected.poly_range_index = 7;
    expected.qie[31] = 0;
    TABLE_RECORD back = {};
    QCOMPARE(read_table(TBL, &back), 0);
    QVERIFY(same(back, expected));
}

void TestTableStore::save_refuses_a_type_that_is_not_archived_data()
{
    const auto row = test_columns<int, bool>("type", "saved");
    row("INTERP", 0, true);
    row("POLY", 1, true);
    row("POLY_RANGE", 7, true);
    row("SCALED", 2, false);
    row("6", 6, false);
    row("8", 8, false);
    row("65535", 65535, false);
}

void TestTableStore::save_refuses_a_type_that_is_not_archived()
{
    QFETCH(int, type);
    QFETCH(bool, saved);
    TABLE_RECORD record = sound_record();
    record.table_type = static_cast<std::uint16_t>(type);
    const HostLog log;
    QCOMPARE(save_table_files_poly(SAVE, &record, SAVE_VERIFICATION) == 0, saved);
    QCOMPARE(QFile::exists(SAVE), saved);
    QCOMPARE(log.texts().size(), saved ? 0 : 1);
}

void TestTableStore::save_adds_one_block()
{
    TABLE_RECORD record = sound_record();
    record.last_save_type = 0;
    QCOMPARE(save_table_files_poly(SAVE, &record, SAVE_AS_FOUND), 0);
    const QByteArray first = read_file(SAVE);
    record.cal_comment[0] = 'x';
    QCOMPARE(save_table_files_poly(SAVE, &record, SAVE_VERIFICATION), 0);
    const QByteArray both = read_file(SAVE);
    QVERIFY(both.startsWith(first));
    const QByteArray second = both.mid(first.size());
    TABLE_RECORD back = {};
    BlockInfo info;
    BlockFault fault;
    QVERIFY(parse_block(second.toStdString(), &back, &info, &fault));
    QCOMPARE(info.save_type, int(SAVE_VERIFICATION));
    TABLE_RECORD expected = record;
    expected.last_save_type = SAVE_VERIFICATION;
    QVERIFY(same(back, expected));
    QCOMPARE(record.last_save_type, std::uint16_t(0));
}

void TestTableStore::saved_block_tells_who_when_and_program()
{
    TABLE_RECORD record = sound_record();
    const QDateTime before = QDateTime::currentDateTimeUtc().addMSecs(-1000);
    QCOMPARE(save_table_files_poly(SAVE, &record, SAVE_ADJUSTED), 0);
    TABLE_RECORD back = {};
    BlockInfo info;
    BlockFault fault;
    QVERIFY(parse_block(read_file(SAVE).toStdString(), &back, &info, &fault));
    QCOMPARE(QString::fromStdString(info.who), QString("J. Müller"));
    QCOMPARE(QString::fromStdString(info.program), QString("9.8.7 test"));
    const QDateTime when = QDateTime::fromString(QString::fromStdString(info.when), Qt::ISODate);
    QCOMPARE(when.timeSpec(), Qt::UTC);
    QVERIFY(when >= before && when <= QDateTime::currentDateTimeUtc());
}

void TestTableStore::save_stays_apart_from_a_torn_tail()
{
    const QByteArray torn = archived(SAVE_ADJUSTED, "torn").left(400);
    write_file(SAVE, torn);
    TABLE_RECORD record = sound_record();
    QCOMPARE(save_table_files_poly(SAVE, &record, SAVE_ADJUSTED), 0);
    QVERIFY(read_file(SAVE).startsWith(torn + "\nVORNAX-TABLE 1\n"));
    QCOMPARE(save_table_files_poly(SAVE, &record, SAVE_ADJUSTED), 0);
    QVERIFY(!read_file(SAVE).contains("\n\n"));
}

void TestTableStore::save_on_a_full_disc_leaves_the_archive_whole()
{
    TABLE_RECORD record = sound_record();
    QCOMPARE(save_table_files_poly(SAVE, &record, SAVE_ADJUSTED), 0);
    const QByteArray before = read_file(SAVE);
    struct rlimit former = {};
    QCOMPARE(getrlimit(RLIMIT_FSIZE, &former), 0);
    std::signal(SIGXFSZ, SIG_IGN);
    const struct rlimit small = {static_cast<rlim_t>(before.size()) + 100, former.rlim_max};
    QCOMPARE(setrlimit(RLIMIT_FSIZE, &small), 0);
    const int32_t result = save_table_files_poly(SAVE, &record, SAVE_ADJUSTED);
    setrlimit(RLIMIT_FSIZE, &former);
    QVERIFY(result != 0);
    QCOMPARE(read_file(SAVE), before);
    QCOMPARE(save_table_files_poly(SAVE, &record, SAVE_ADJUSTED), 0);
}

void TestTableStore::save_into_special_files_fails()
{
    const TABLE_RECORD record = sound_record();
    QVERIFY(QDir().mkpath(SAVE));
    QVERIFY(save_table_files_poly(SAVE, &record, SAVE_ADJUSTED) != 0);
    QCOMPARE(mkfifo("/cell/tables/fifo.save", 0600), 0);
    QVERIFY(save_table_files_poly("/cell/tables/fifo.save", &record, SAVE_ADJUSTED) != 0);
    QVERIFY(save_table_files_poly("/cell/nowhere/x.save", &record, SAVE_ADJUSTED) != 0);
    QVERIFY(save_table_files_poly(nullptr, &record, SAVE_ADJUSTED) != 0);
    QVERIFY(save_table_files_poly(SAVE, nullptr, SAVE_ADJUSTED) != 0);
}

void TestTableStore::two_processes_keep_every_record_whole()
{
    constexpr int each = 100;
    QList<pid_t> children;
    for (int child = 0; child < 2; ++child) {
        const pid_t pid = fork();
        QVERIFY(pid >= 0);
        if (pid == 0) {
            TABLE_RECORD record = sound_record();
            int failures = 0;
            for (int i = 0; i < each; ++i) {
                set_text(record.cal_comment, sizeof record.cal_comment,
                         QByteArray(child == 0 ? "a" : "b") + QByteArray::number(i));
                failures += save_table_files_poly(SAVE, &record, SAVE_VERIFICATION) == 0 ? 0 : 1;
            }
            _exit(failures == 0 ? 0 : 1);
        }
        children += pid;
    }
    for (const pid_t pid : children) {
        int status = 0;
        QCOMPARE(waitpid(pid, &status, 0), pid);
        QCOMPARE(status, 0);
    }
    const std::string data = read_file(SAVE).toStdString();
    std::string_view rest = data;
    QSet<QByteArray> comments;
    while (!rest.empty()) {
        std::size_t size = 0;
        QVERIFY(first_stretch(rest, &size) == Stretch::Block);
        TABLE_RECORD record = {};
        BlockInfo info;
        BlockFault fault;
        QVERIFY2(parse_block(rest.substr(0, size), &record, &info, &fault), fault.what.c_str());
        comments += QByteArray(record.cal_comment);
        rest.remove_prefix(size);
    }
    QCOMPARE(comments.size(), 2 * each);
}

PLAIN_TEST(TestTableStore);
#include "test_tablestore.moc"
