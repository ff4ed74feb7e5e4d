// SPDX-License-Identifier: GPL-3.0-or-later
//
// Breaks an Adjust's save off at each of its writes, in every way that a
// process, a disc or a machine fails, and looks at what is left. No recorded
// calibration may be lost and no torn table may be in force.
#include <algorithm>
#include <cstring>

#include <sys/wait.h>
#include <unistd.h>

#include <QtTest>

#include "calibration/tablestore.h"
#include "discstate.h"
#include "host/operations.h"
#include "hostsim/runtime/tablefile.h"
#include "support/cellfiles.h"
#include "support/recorder.h"
#include "support/testmain.h"

using hostsim::Stretch;

static const QString TABLES = QStringLiteral("/cell/tables");
static const char *const TBL = "/cell/tables/torque_1.tbl";
static const char *const SAVE = "/cell/tables/torque_1.save";
static const char *const OLD = "/cell/tables/torque_1.old";

// Exit status of the saving process.
enum { SAVED = 0, SAVED_WITH_A_BOX = 3 };

static ZERL_CFG *channel(const char *comment, double gain)
{
    static ZERL_CFG cfg;
    cfg = {};
    TABLE_RECORD &table = cfg.table;
    qstrncpy(table.table_name, "torque_1", sizeof table.table_name);
    qstrncpy(table.cal_comment, comment, sizeof table.cal_comment);
    qstrncpy(cfg.tbl_path, TBL, sizeof cfg.tbl_path);
    qstrncpy(cfg.save_path, SAVE, sizeof cfg.save_path);
    qstrncpy(cfg.old_path, OLD, sizeof cfg.old_path);
    table.table_type = TABLE_INTERP;
    table.poly[0].num_points = 5;
    cfg.long_current.num_points = 5;
    for (int i = 0; i < 5; ++i) {
        table.poly[0].x[i] = cfg.long_current.x[i] = i;
        table.poly[0].y[i] = cfg.long_current.y[i] = gain * i;
    }
    return &cfg;
}

// The process that is broken off.
static int save(int save_type)
{
    save_calibration(channel("new", 1.25), save_type);
    return information_texts().isEmpty() ? SAVED : SAVED_WITH_A_BOX;
}

// Comments of a file's whole records, in their order, and whether there is
// anything else in it.
struct Records {
    QStringList comments;
    bool damaged = false;
};

static Records records_in(const QString &path)
{
    Records found;
    const std::string data = read_file(path).toStdString();
    std::string_view rest = data;
    while (!rest.empty()) {
        std::size_t size = 0;
        const Stretch kind = hostsim::first_stretch(rest, &size);
        static TABLE_RECORD record;
        hostsim::BlockInfo info;
        hostsim::BlockFault fault;
        if (kind == Stretch::Block &&
            hostsim::parse_block(rest.substr(0, size), &record, &info, &fault))
            found.comments += record.cal_comment;
        else if (kind != Stretch::Blank)
            found.damaged = true;
        rest.remove_prefix(size);
    }
    return found;
}

// What a break leaves on the disc, and in which way.
struct Outcome {
    QString how;
    FolderContents left;
};

class TestSaveFaults : public QObject
{
    Q_OBJECT
private slots:
    void initTestCase() { require_private_cell(); }
    void every_write_breaks_off_data();
    void every_write_breaks_off();
    void undisturbed_save_data();
    void undisturbed_save();

private:
    void prepare(const QString &before);
    int run(const QString &mode, int at, int save_type = SAVE_ADJUSTED);
    quint32 calls() const;
    QVector<Outcome> outcomes(bool machine);
    void check_outcome(const Outcome &outcome, const QString &mode, int status);
    void check(const QString &mode, int status);
    void check_next_save();

    const QString m_counter = QDir::tempPath() + "/calls";
    const QString m_shadow = QDir::tempPath() + "/shadow";
    FolderContents m_start;
    QMap<QString, int> m_lost; // outcomes that lack a new file, by its name
    Records m_archive;         // before the save that is broken off
    Records m_history;
};

// What stands in the folder before the save that is broken off.
void TestSaveFaults::prepare(const QString &before)
{
    clear_cell();
    const bool delivered = before == "a cell as delivered";
    QCOMPARE(create_table(TBL, &channel(delivered ? "former" : "delivered", 1)->table), 0);
    if (!delivered) {
        save_calibration(channel("first", 0.5), SAVE_ADJUSTED);
        save_calibration(channel("evidence", 0.75), SAVE_AS_FOUND);
        save_calibration(channel("former", 1), SAVE_ADJUSTED);
        save_calibration(channel("as found", 1), SAVE_AS_FOUND);
    }
    if (before == "files torn by an earlier crash") {
        const QByteArray archive = read_file(SAVE);
        write_file(SAVE, archive + archive.left(500));
        const QByteArray history = read_file(OLD);
        write_file(OLD, history + history.left(500));
    }
    m_lost.clear();
    m_start = read_folder(TABLES);
    m_archive = records_in(SAVE);
    m_history = records_in(OLD);
}

quint32 TestSaveFaults::calls() const
{
    quint32 number = 0;
    const QByteArray bytes = read_file(m_counter);
    std::memcpy(&number, bytes.constData(), std::min<std::size_t>(4, std::size_t(bytes.size())));
    return number;
}

// Exit status of the save, -1 when it was killed.
int TestSaveFaults::run(const QString &mode, int at, int save_type)
{
    write_file(m_counter, QByteArray(4, '\0'));
    begin_shadow(TABLES, m_shadow);
    const pid_t pid = fork();
    if (pid == 0) {
        setpgid(0, 0);
        setenv("LD_PRELOAD", FAULTINJECT_LIBRARY, 1);
        setenv("FAULTINJECT_FOLDER", qPrintable(TABLES), 1);
        setenv("FAULTINJECT_COUNTER", qPrintable(m_counter), 1);
        setenv("FAULTINJECT_SHADOW", qPrintable(m_shadow), 1);
        setenv("FAULTINJECT_MODE", qPrintable(mode), 1);
        setenv("FAULTINJECT_AT", qPrintable(QString::number(at)), 1);
        const QByteArray asan = qgetenv("ASAN_OPTIONS");
        setenv("ASAN_OPTIONS",
               (asan + (asan.isEmpty() ? "" : ":") + "verify_asan_link_order=0").constData(), 1);
        execl("/proc/self/exe", "save", "--save", qPrintable(QString::number(save_type)), nullptr);
        _exit(99);
    }
    int status = 0;
    if (pid < 0 || waitpid(pid, &status, 0) != pid)
        qFatal("no process can be started");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

void TestSaveFaults::every_write_breaks_off_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("mode");
    for (const char *before :
         {"recorded data", "a cell as delivered", "files torn by an earlier crash"}) {
        for (const char *mode : {"kill", "torn", "crash", "torncrash", "enospc", "erofs", "full"})
            QTest::newRow(qPrintable(QString("%1, %2").arg(before, mode)))
                << QString(before) << QString(mode);
    }
}

// Everything that must hold however the save was broken off.
void TestSaveFaults::check(const QString &mode, int status)
{
    // The table in force is whole, and the former or the new one.
    TABLE_RECORD table = {};
    QCOMPARE(read_table(TBL, &table), 0);
    const QString in_force = table.cal_comment;
    QVERIFY2(in_force == "former" || in_force == "new", qPrintable(in_force));
    QCOMPARE(table.poly[0].y[4], in_force == "new" ? 5.0 : 4.0);

    // What was recorded is there, and at most the new record behind it.
    const Records archive = records_in(SAVE);
    const bool added = archive.comments == m_archive.comments + QStringList("new");
    QVERIFY2(added || archive.comments == m_archive.comments,
             qPrintable(archive.comments.join(", ")));
    QVERIFY2(status != SAVED || added, "a save that was acknowledged is lost");
    QVERIFY2(in_force != "new" || added, "a table is in force that was never recorded");
    if (mode == "full")
        QCOMPARE(archive.damaged, m_archive.damaged);

    const Records history = records_in(OLD);
    const bool kept = history.comments == m_history.comments + QStringList("former");
    QVERIFY2(kept || history.comments == m_history.comments,
             qPrintable(history.comments.join(", ")));
    // A cat that dies alone goes unnoticed; the former table is then in the
    // archive.
    const bool cat_alone = mode == "kill" || mode == "torn";
    QVERIFY2(in_force != "new" || kept || cat_alone, "the former table is lost");

    // Nothing that was half written passes for a table.
    const QStringList tables =
        QDir(TABLES).entryList({"*.tbl", "*.save", "*.old"}, QDir::Files | QDir::Hidden);
    for (const QString &name : tables)
        QVERIFY2(name.startsWith("torque_1."), qPrintable(name));

    TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
    const bool delivered = read_archive_file_poly(1, SAVE, records, nullptr) == 1;
    const QString newest = delivered ? QString(records[0]->cal_comment) : QString();
    QCOMPARE(newest, added                          ? QString("new")
                     : m_archive.comments.isEmpty() ? QString()
                                                    : QString("former"));
}

void TestSaveFaults::check_next_save()
{
    TABLE_RECORD before = {};
    QCOMPARE(read_table(TBL, &before), 0);
    const Records archive = records_in(SAVE);
    const Records history = records_in(OLD);
    clear_recorded();
    save_calibration(channel("after", 2), SAVE_ADJUSTED);
    QCOMPARE(information_texts(), QStringList());
    TABLE_RECORD table = {};
    QCOMPARE(read_table(TBL, &table), 0);
    QCOMPARE(QString(table.cal_comment), QString("after"));
    QCOMPARE(records_in(SAVE).comments, archive.comments + QStringList("after"));
    QCOMPARE(records_in(OLD).comments, history.comments + QStringList(before.cal_comment));
    TABLE_RECORD read = {};
    QCOMPARE(read_channel_table(TBL, &read), 0);
    QCOMPARE(QString(read.cal_comment), QString("after"));
    for (const QString &name : read_folder(TABLES).keys())
        QVERIFY2(QStringList({"torque_1.tbl", "torque_1.save", "torque_1.old"}).contains(name),
                 qPrintable(name));
}

// All that may be found after the save that has just been broken off.
QVector<Outcome> TestSaveFaults::outcomes(bool machine)
{
    QVector<Outcome> found = {{"all as written", read_folder(TABLES)}};
    if (!machine)
        return found;
    found += Outcome{"all names kept", kept_contents(TABLES, m_shadow)};
    found += Outcome{"only safe names kept", kept_names_and_contents(m_shadow)};
    const QMap<QString, FolderContents> lost = lost_new_names(TABLES, m_shadow);
    for (auto name = lost.begin(); name != lost.end(); ++name) {
        found += Outcome{"new name " + name.key() + " lost", name.value()};
        ++m_lost[name.key()];
    }
    return found;
}

void TestSaveFaults::check_outcome(const Outcome &outcome, const QString &mode, int status)
{
    restore_folder(TABLES, outcome.left);
    check(mode, status);
    if (!QTest::currentTestFailed())
        check_next_save();
}

void TestSaveFaults::every_write_breaks_off()
{
    QFETCH(QString, before);
    QFETCH(QString, mode);
    prepare(before);
    if (QTest::currentTestFailed())
        return;
    QCOMPARE(run(mode, 0), int(SAVED));
    const int count = static_cast<int>(calls());
    QVERIFY2(count >= 12, qPrintable(QString("only %1 calls were seen").arg(count)));
    const bool machine = mode == "crash" || mode == "torncrash";
    int checks = 0;
    for (int at = 1; at <= count; ++at) {
        restore_folder(TABLES, m_start);
        const int status = run(mode, at);
        QVERIFY2(calls() >= static_cast<quint32>(at), "the call was not reached");
        QVERIFY(!machine || status == -1);
        for (const Outcome &outcome : outcomes(machine)) {
            check_outcome(outcome, mode, status);
            if (QTest::currentTestFailed())
                QFAIL(
                    qPrintable(QString("broken off at call %1 of %2, %3")
                                   .arg(QString::number(at), QString::number(count), outcome.how)));
            ++checks;
        }
    }
    // A first save makes both files, and there is a time at which each is unsafe.
    if (machine && before == "a cell as delivered")
        QVERIFY(m_lost.contains("torque_1.save") && m_lost.contains("torque_1.old"));
    int lost = 0;
    for (const int number : m_lost)
        lost += number;
    qInfo("%d calls, %d outcomes, %d of them without a new name", count, checks, lost);
}

void TestSaveFaults::undisturbed_save_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<int>("save_type");
    for (const char *before : {"recorded data", "a cell as delivered"}) {
        for (const int save_type : {SAVE_AS_FOUND, SAVE_ADJUSTED, SAVE_NEW_CORRELATION})
            QTest::newRow(qPrintable(QString("%1, save type %2").arg(before).arg(save_type)))
                << QString(before) << save_type;
    }
}

// With nothing broken off all of it is safe on the disc when the save returns.
void TestSaveFaults::undisturbed_save()
{
    QFETCH(QString, before);
    QFETCH(int, save_type);
    prepare(before);
    QCOMPARE(run("crash", 0, save_type), int(SAVED));
    const FolderContents left = read_folder(TABLES);
    QCOMPARE(kept_names_and_contents(m_shadow), left);
    QCOMPARE(kept_contents(TABLES, m_shadow), left);
    QCOMPARE(records_in(SAVE).comments, m_archive.comments + QStringList("new"));
    const bool rewritten = save_type != SAVE_AS_FOUND;
    QCOMPARE(records_in(TBL).comments, QStringList(rewritten ? "new" : "former"));
    QCOMPARE(records_in(OLD).comments,
             m_history.comments + (rewritten ? QStringList("former") : QStringList()));
}

static int run(int argc, char **argv)
{
    if (argc == 3 && qstrcmp(argv[1], "--save") == 0)
        return save(atoi(argv[2]));
    QCoreApplication application(argc, argv);
    TestSaveFaults test;
    return QTest::qExec(&test, argc, argv);
}
TEST_WITH_MAIN(run);

#include "test_save_faults.moc"
