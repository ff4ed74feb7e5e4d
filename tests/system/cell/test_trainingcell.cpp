// SPDX-License-Identifier: GPL-3.0-or-later
//
// The training cell as a process: up, moving, and gone without a trace.
#include <csignal>

#include <QtTest>

#include "host/operations.h"
#include "hostsim/runtime/memoryheader.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testcell.h"
#include "support/testmain.h"

class TrainingCell : public QObject
{
    Q_OBJECT

private slots:
    void init() { clear_cell(); }
    void cleanup() { QCOMPARE(published_memories(), QStringList()); }
    void signals_move_by_themselves();
    void signal_ends_it_data();
    void signal_ends_it();
    void announces_itself_in_the_log();
    void second_cell_is_refused();
    void killed_cell_is_followed_by_another();
    void killed_cell_is_no_running_host();
    void refusal_of_tasks_data();
    void refusal_of_tasks();
    void wrong_description_data();
    void wrong_description();
    void wrong_options_data();
    void wrong_options();
    void init_only_makes_files();
    void calibrations_last();
    void full_cell();
};

namespace
{

const QString PROGRAM = PROJECT_BINARY_DIR "/bin/trainingcell";
constexpr int DEADLINE_MS = 60000;

struct Run {
    int status;
    QString error;
};

Run run(const QStringList &arguments)
{
    QProcess process;
    process.start(PROGRAM, arguments);
    const bool ended = process.waitForFinished(DEADLINE_MS);
    if (!ended)
        process.kill();
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardError())};
}

double reading(int channel)
{
    const auto *mv = static_cast<const MV_RECORD *>(get_shrd_mem(MEMORY_MILLIVOLTS, 0));
    double value = 0.0;
    __atomic_load(&mv[channel].mv, &value, __ATOMIC_RELAXED);
    return value;
}

} // namespace

void TrainingCell::signals_move_by_themselves()
{
    TestCell cell("channel 0\ninput kPa 0 100\nresponse linear 50\nlag 5\nnoise 1\n");
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    QVERIFY(get_shrd_mem(MEMORY_MILLIVOLTS, 0) != nullptr);
    QVERIFY(cell.client().apply(0, 100.0));
    QTRY_VERIFY_WITH_TIMEOUT(reading(0) > 500.0, DEADLINE_MS);
    const double first = reading(0);
    QTRY_VERIFY_WITH_TIMEOUT(reading(0) != first, DEADLINE_MS);
    QVERIFY(cell.apply(0, 100.0));
    QVERIFY(reading(0) > 4980.0 && reading(0) < 5020.0);
    QVERIFY(cell.mv(0, 1.25));
    QCOMPARE(reading(0), 1.25);
    QVERIFY2(cell.stop(), qPrintable(cell.error()));
}

void TrainingCell::signal_ends_it_data()
{
    QTest::addColumn<int>("number");
    QTest::newRow("SIGTERM") << SIGTERM;
    QTest::newRow("SIGINT") << SIGINT;
}

void TrainingCell::signal_ends_it()
{
    QFETCH(int, number);
    write_file("/cell/cell.txt", TestCell::simple_description());
    QProcess process;
    process.start(PROGRAM, {"--ready-fd", "1"});
    QTRY_VERIFY_WITH_TIMEOUT(process.bytesAvailable() > 0, DEADLINE_MS);
    QVERIFY(published_memories().contains("/dev/shm/vornax.6"));
    ::kill(static_cast<pid_t>(process.processId()), number);
    QVERIFY(process.waitForFinished(DEADLINE_MS));
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
    QCOMPARE(process.exitCode(), 0);
    QCOMPARE(published_memories(), QStringList());
    QVERIFY(!QFile::exists(cell::CELL_SOCKET));
}

void TrainingCell::announces_itself_in_the_log()
{
    const HostLog log;
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    QCOMPARE(log.count("training cell \"Test Cell\" is up: a simulation, no test cell"), 1);
    QVERIFY2(cell.stop(), qPrintable(cell.error()));
    QCOMPARE(log.count("training cell \"Test Cell\" ends"), 1);
}

void TrainingCell::second_cell_is_refused()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    for (const QStringList &options :
         {QStringList(), QStringList{"--socket", "/cell/other.sock"}}) {
        const Run second = run(options);
        QCOMPARE(second.status, 1);
        QCOMPARE(second.error, QString("trainingcell: a cell already runs here\n"));
    }
    QVERIFY(cell.apply(0, 10.0));
    QVERIFY2(cell.stop(), qPrintable(cell.error()));
}

void TrainingCell::killed_cell_is_followed_by_another()
{
    TestCell first(TestCell::simple_description());
    QVERIFY2(first.start(), qPrintable(first.error()));
    first.kill();
    QVERIFY(!published_memories().isEmpty());
    QVERIFY(QFile::exists(cell::CELL_SOCKET));
    write_file("/dev/shm/vornax.6.new.1.1", "of a cell that died while it published");
    TestCell second(TestCell::simple_description());
    QVERIFY2(second.start(), qPrintable(second.error()));
    QVERIFY(second.apply(0, 10.0));
    QCOMPARE(reading(0), 500.0);
    QVERIFY2(second.stop(), qPrintable(second.error()));
}

// What it left behind is there for everyone to see, and counts for nothing.
void TrainingCell::killed_cell_is_no_running_host()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    const auto *mv = static_cast<const MV_RECORD *>(get_shrd_mem(MEMORY_MILLIVOLTS, 0));
    QVERIFY(cell.mv(0, 7.5));
    cell.kill();
    for (const int id : {1, 3, 5, 6, 31, 35, 60})
        QVERIFY2(get_shrd_mem(id, 0) == nullptr, qPrintable(QString::number(id)));
    void *units = nullptr;
    QCOMPARE(link_to_memory(MEMORY_UNITS, &units), 0);
    QCOMPARE(mv[0].mv, 7.5);
    QVERIFY(!cell.client().apply(0, 1.0));
    cell::CellClient client;
    QVERIFY(!client.apply(0, 1.0));
    QCOMPARE(QString::fromStdString(client.error()),
             QString("/cell/cell.sock: the cell does not run any more"));
    TestCell::tidy();
}

void TrainingCell::refusal_of_tasks_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<int>("answer");
    QTest::newRow("admitted") << QByteArray() << 0;
    QTest::newRow("refused") << QByteArray("join 5000\n") << int(JOIN_REFUSED);
}

void TrainingCell::refusal_of_tasks()
{
    QFETCH(QByteArray, line);
    TestCell cell(line + TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    QTEST(join_layer(3), "answer");
    QVERIFY2(cell.stop(), qPrintable(cell.error()));
}

void TrainingCell::wrong_description_data()
{
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QString>("error");
    QTest::newRow("one fault") << QByteArray("cell A\nlag 1\n")
                               << "/cell/cell.txt:2: lag belongs behind a channel\n";
    QTest::newRow("every fault is told")
        << QByteArray("speed 9\nchannel 0\nnoise x\n")
        << "/cell/cell.txt:1: unknown keyword: speed\n/cell/cell.txt:3: not a number: x\n";
}

void TrainingCell::wrong_description()
{
    QFETCH(QByteArray, text);
    write_file("/cell/cell.txt", text);
    const Run cell = run({});
    QCOMPARE(cell.status, 2);
    QTEST(cell.error, "error");
}

void TrainingCell::wrong_options_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("begins");
    QTest::newRow("unknown option") << QStringList{"--fast"} << 2 << "usage: trainingcell";
    QTest::newRow("option without value")
        << QStringList{"--describe"} << 2 << "usage: trainingcell";
    QTest::newRow("word that is no option") << QStringList{"now"} << 2 << "usage: trainingcell";
    QTest::newRow("help beside a wrong option")
        << QStringList{"--help", "--fast"} << 2 << "usage: trainingcell";
    QTest::newRow("descriptor that is none")
        << QStringList{"--ready-fd", "x"} << 2 << "usage: trainingcell";
    QTest::newRow("no description") << QStringList{"--describe", "/cell/none.txt"} << 2
                                    << "/cell/none.txt: No such file or directory";
    QTest::newRow("descriptor that is not open")
        << QStringList{"--ready-fd", "77"} << 1 << "trainingcell: --ready-fd: Bad file descriptor";
    QTest::newRow("socket in no folder") << QStringList{"--socket", "/cell/no/cell.sock"} << 1
                                         << "trainingcell: /cell/no/cell.sock: No such file";
    QTest::newRow("socket where a file is") << QStringList{"--socket", "/cell/cell.txt"} << 1
                                            << "trainingcell: /cell/cell.txt: is there, and is no";
    QTest::newRow("parent that is gone")
        << QStringList{"--end-with", "1000000000"} << 1 << "trainingcell: whoever started it";
    QTest::newRow("socket with too long a name")
        << QStringList{"--socket", "/cell/" + QString(120, 'x')} << 1 << "trainingcell: /cell/xxx";
}

void TrainingCell::wrong_options()
{
    QFETCH(QStringList, options);
    QFETCH(QString, begins);
    write_file("/cell/cell.txt", TestCell::simple_description());
    const Run cell = run(options);
    QTEST(cell.status, "status");
    QVERIFY2(cell.error.startsWith(begins), qPrintable(cell.error));
}

void TrainingCell::init_only_makes_files()
{
    write_file("/cell/mine.txt", TestCell::simple_description());
    QCOMPARE(run({"--init-only", "--describe", "/cell/mine.txt"}).status, 0);
    QVERIFY(QFile::exists("/cell/tables/zero.tbl"));
    QVERIFY(!QFile::exists("/cell/tables/three.tbl"));
    QVERIFY(!QFile::exists(cell::CELL_SOCKET));
}

void TrainingCell::calibrations_last()
{
    const QByteArray description = TestCell::simple_description() +
                                   "channel 4\ntable both\nrecord INTERP\npoints 0:0 1:1\n"
                                   "archive INTERP\npoints 0:0 1:1 2:2\n";
    write_file("/cell/tables/zero.tbl", "a calibration");
    write_file("/cell/tables/one.save", "an archive");
    TestCell cell(description);
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    QVERIFY2(cell.stop(), qPrintable(cell.error()));
    QCOMPARE(read_file("/cell/tables/zero.tbl"), QByteArray("a calibration"));
    QCOMPARE(read_file("/cell/tables/one.save"), QByteArray("an archive"));
    TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
    void *aux[ARCHIVE_POINTERS] = {};
    QVERIFY(read_archive_file_poly(1, "/cell/tables/both.save", records, aux) > 0);
    QCOMPARE(int(records[0]->poly[0].num_points), 3);
    const QByteArray archive = read_file("/cell/tables/both.save");
    QFile::remove("/cell/tables/both.tbl");
    TestCell again(description);
    QVERIFY2(again.start(), qPrintable(again.error()));
    QVERIFY2(again.stop(), qPrintable(again.error()));
    QVERIFY(QFile::exists("/cell/tables/both.tbl"));
    QCOMPARE(read_file("/cell/tables/both.save"), archive);
}

void TrainingCell::full_cell()
{
    TestCell cell("fill 0 32766 active \"CH %d\"\n");
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    const auto *attributes = static_cast<const SYS_ATTR_RECORD *>(get_shrd_mem(MEMORY_SYS_ATTR, 0));
    const auto *channels = static_cast<const AI_REAL_RECORD *>(get_shrd_mem(MEMORY_AI_REAL, 0));
    QCOMPARE(int(attributes->channel_count), 32767);
    QCOMPARE(int(channels[32766].active), 1);
    QCOMPARE(static_cast<const char *>(channels[32766].label), "CH 32766");
    QVERIFY(cell.mv(32766, 5.0));
    QCOMPARE(reading(32766), 5.0);
    std::vector<cell::ChannelState> list;
    QVERIFY(cell.client().list(&list));
    QCOMPARE(list.size(), std::size_t(32767));
    QVERIFY2(cell.stop(), qPrintable(cell.error()));
}

LOOP_TEST(TrainingCell);
#include "test_trainingcell.moc"
