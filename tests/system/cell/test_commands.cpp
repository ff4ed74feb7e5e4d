// SPDX-License-Identifier: GPL-3.0-or-later
//
// What an operator does: the shell commands, the panel, and the rebuild program
// beside a running cell.
#include <QtTest>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "host/operations.h"
#include "hostsim/bld_tables/caltables.h"
#include "hostsim/runtime/memoryheader.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testcell.h"
#include "support/testmain.h"

class Commands : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void command_data();
    void command();
    void help_is_the_output();
    void list_shows_all();
    void show_tells_the_reading();
    void waits_until_settled();
    void does_not_wait_for_ever();
    void no_cell();
    void quit_ends_the_cell();
    void client_that_talks_nonsense();
    void client_learns_of_the_cells_end();
    void panel_shows_the_cell();
    void panel_without_a_display();
    void rebuild();
    void rebuild_with_a_damaged_table();
    void rebuild_without_a_host();

private:
    std::unique_ptr<TestCell> m_cell;
};

namespace
{

constexpr int DEADLINE_MS = 60000;

struct Run {
    int status;
    QString output;
    QString error;
};

Run run(const QString &program, const QStringList &arguments,
        const QProcessEnvironment &environment = QProcessEnvironment::systemEnvironment())
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(PROJECT_BINARY_DIR "/bin/" + program, arguments);
    const bool ended = process.waitForFinished(DEADLINE_MS);
    if (!ended)
        process.kill();
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

Run cellctl(const QString &line)
{
    return run("cellctl", line.split(' ', Qt::SkipEmptyParts));
}

} // namespace

void Commands::init()
{
    clear_cell();
    m_cell =
        std::make_unique<TestCell>(TestCell::simple_description() +
                                   "channel 4\ninput kPa 0 100\nresponse linear 50\nlag 0.02\n"
                                   "channel 5\ninput kPa 0 100\nresponse linear 50\nlag 1e6\n");
    QVERIFY2(m_cell->start(), qPrintable(m_cell->error()));
}

void Commands::cleanup()
{
    m_cell.reset();
    QCOMPARE(published_memories(), QStringList());
}

void Commands::command_data()
{
    QTest::addColumn<QString>("line");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("error"); // how it begins
    const QString usage = "usage: cellctl";
    QTest::newRow("apply") << "apply 0 50" << 0 << "";
    QTest::newRow("apply a negative value") << "apply 0 -50" << 0 << "";
    QTest::newRow("apply without lag") << "apply --now 5 50" << 0 << "";
    QTest::newRow("apply without lag, option last") << "apply 5 50 --now" << 0 << "";
    QTest::newRow("apply a negative value, option last") << "apply 5 -0.5 --now" << 0 << "";
    QTest::newRow("apply a negative value, option first") << "apply --now 5 -5" << 0 << "";
    QTest::newRow("apply behind the end of options") << "apply --now -- 5 -5e-1" << 0 << "";
    QTest::newRow("wait, option last") << "wait-settled 0 --timeout 60" << 0 << "";
    QTest::newRow("wait, option with its value") << "wait-settled --timeout=60 0" << 0 << "";
    QTest::newRow("hold") << "mv 0 1.5" << 0 << "";
    QTest::newRow("let go") << "mv 0 auto" << 0 << "";
    QTest::newRow("condition") << "condition 0 drifted2" << 0 << "";
    QTest::newRow("condition without its degree") << "condition 0 drifted" << 0 << "";
    QTest::newRow("set") << "set 0 label Other" << 0 << "";
    QTest::newRow("socket") << "--socket /cell/cell.sock show 0" << 0 << "";
    QTest::newRow("text that looks like an option") << "set 0 label --now" << 0 << "";
    QTest::newRow("socket with its value") << "--socket=/cell/cell.sock list" << 0 << "";
    QTest::newRow("short help") << "-h" << 0 << "";
    QTest::newRow("help") << "--help" << 0 << "";
    QTest::newRow("no such channel") << "apply 99 50" << 1 << "cellctl: no such channel: 99";
    QTest::newRow("no such condition")
        << "condition 0 odd" << 1 << "cellctl: not a condition of a sensor: odd";
    QTest::newRow("no such field")
        << "set 0 odd x" << 1 << "cellctl: not a field of a channel: odd";
    QTest::newRow("no sensor") << "apply 2 1" << 1 << "cellctl: channel 2 has no transducer";
    QTest::newRow("no cell at that socket")
        << "--socket /cell/none list" << 1 << "cellctl: /cell/none: No such file or directory";
    QTest::newRow("nothing") << "" << 2 << usage;
    QTest::newRow("unknown option") << "--fast list" << 2 << usage;
    QTest::newRow("option of another command") << "apply --timeout 1 0 5" << 2 << usage;
    QTest::newRow("option with too much") << "apply --now=1 0 5" << 2 << usage;
    QTest::newRow("option of no command") << "apply -x 0 5" << 2 << usage;
    QTest::newRow("option without its value") << "wait-settled 0 --timeout" << 2 << usage;
    QTest::newRow("socket missing") << "--socket" << 2 << usage;
    QTest::newRow("unknown") << "jump 0 1" << 2 << usage;
    QTest::newRow("value missing") << "apply 0" << 2 << usage;
    QTest::newRow("value that is none") << "apply 0 full" << 2 << usage;
    QTest::newRow("channel that is none") << "show oil" << 2 << usage;
    QTest::newRow("channel below 0") << "show -1" << 2 << usage;
    QTest::newRow("time that is none") << "wait-settled --timeout soon 0" << 2 << usage;
}

void Commands::command()
{
    QFETCH(QString, line);
    QFETCH(QString, error);
    const Run done = cellctl(line);
    QTEST(done.status, "status");
    QVERIFY2(error.isEmpty() ? done.error.isEmpty() : done.error.startsWith(error),
             qPrintable(done.error));
}

void Commands::help_is_the_output()
{
    for (const QString program : {"cellctl", "trainingcell"}) {
        const Run help = run(program, {"--help"});
        QCOMPARE(help.status, 0);
        QVERIFY2(help.output.startsWith("usage: " + program + " ["), qPrintable(help.output));
        QCOMPARE(help.error, QString());
    }
}

void Commands::list_shows_all()
{
    const QStringList lines = cellctl("list").output.split('\n', Qt::SkipEmptyParts);
    QCOMPARE(lines.size(), 7);
    QVERIFY(lines[0].startsWith("   CH  STATE     LABEL"));
    QVERIFY(lines[1].startsWith("    0  active    Channel Zero"));
    QVERIFY(lines[3].startsWith("    2  inactive  Channel Two"));
    QVERIFY(lines[1].endsWith("zero"));
}

void Commands::show_tells_the_reading()
{
    QCOMPARE(cellctl("apply 0 50").status, 0);
    QVERIFY(cellctl("show 0").output.contains(" 2500.000000  good       settled   zero"));
    QCOMPARE(cellctl("mv 0 -0.5").status, 0);
    QVERIFY(cellctl("show 0").output.contains(" -0.500000  good       held "));
    QCOMPARE(cellctl("apply 5 50").status, 0);
    QVERIFY(cellctl("show 5").output.contains(" moving "));
}

void Commands::waits_until_settled()
{
    QCOMPARE(cellctl("apply 4 80").status, 0);
    QCOMPARE(cellctl("wait-settled 4").status, 0);
    cell::ChannelState state;
    QVERIFY(m_cell->client().show(4, &state));
    QCOMPARE(state.mv, 4000.0);
    QVERIFY(state.settled);
}

void Commands::does_not_wait_for_ever()
{
    QCOMPARE(cellctl("apply 5 80").status, 0);
    const Run waited = cellctl("wait-settled --timeout 0.05 5");
    QCOMPARE(waited.status, 1);
    QCOMPARE(waited.error, QString("cellctl: channel 5 does not settle\n"));
}

void Commands::no_cell()
{
    m_cell.reset();
    const Run list = cellctl("list");
    QCOMPARE(list.status, 1);
    QCOMPARE(list.error, QString("cellctl: /cell/cell.sock: No such file or directory\n"));
}

void Commands::quit_ends_the_cell()
{
    QCOMPARE(cellctl("quit").status, 0);
    QTRY_VERIFY_WITH_TIMEOUT(!m_cell->is_running(), DEADLINE_MS);
    QCOMPARE(published_memories(), QStringList());
    QVERIFY(!QFile::exists(cell::CELL_SOCKET));
}

// Lines without end, nothing but noise, and a client that goes away in between
// do the cell no harm.
void Commands::client_that_talks_nonsense()
{
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    qstrcpy(address.sun_path, cell::CELL_SOCKET);
    for (const QByteArray &noise : {QByteArray(100000, 'x'), QByteArray("\0\xff\n\n\n", 5),
                                    QByteArray("list\n").repeated(200), QByteArray("apply 0")}) {
        const int file = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        QCOMPARE(::connect(file, reinterpret_cast<sockaddr *>(&address), sizeof address), 0);
        send(file, noise.constData(), static_cast<std::size_t>(noise.size()), MSG_NOSIGNAL);
        close(file);
        QVERIFY2(m_cell->apply(0, 10.0), m_cell->client().error().c_str());
    }
}

void Commands::client_learns_of_the_cells_end()
{
    QVERIFY(m_cell->apply(0, 10.0));
    QVERIFY2(m_cell->stop(), qPrintable(m_cell->error()));
    QVERIFY(!m_cell->apply(0, 20.0));
    QVERIFY(m_cell->client().unreachable());
    QVERIFY2(m_cell->start(), qPrintable(m_cell->error()));
    QVERIFY2(m_cell->apply(0, 30.0), m_cell->client().error().c_str());
    QVERIFY(!m_cell->apply(99, 30.0));
    QVERIFY(!m_cell->client().unreachable());
}

void Commands::panel_shows_the_cell()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    const Run there = run("cellpanel", {"--screenshot", "/ram/panel.png"}, environment);
    QVERIFY2(there.status == 0, qPrintable(there.error));
    QVERIFY(QFileInfo("/ram/panel.png").size() > 1000);
    m_cell.reset();
    QCOMPARE(run("cellpanel", {"--screenshot", "/ram/none.png"}, environment).status, 1);
    QVERIFY(QFileInfo("/ram/none.png").size() > 1000);
}

void Commands::panel_without_a_display()
{
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char *name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(name);
    for (const bool empty : {false, true}) {
        if (empty)
            environment.insert("DISPLAY", "");
        const Run panel = run("cellpanel", {}, environment);
        QCOMPARE(panel.status, 1);
        QCOMPARE(panel.error, QString("cellpanel: there is no display; use cellctl instead\n"));
    }
}

void Commands::rebuild()
{
    const HostLog log;
    const void *before = get_shrd_mem(MEMORY_CAL_TABLES, 0);
    QVERIFY(before != nullptr);
    const auto *header = static_cast<const caltables::CalTablesHeader *>(before);
    QCOMPARE(header->count, 2);
    QVERIFY(m_cell->set(1, "active", "0"));
    const Run done = run("bld_tables", {});
    QVERIFY2(done.status == 0, qPrintable(done.error));
    const void *after = get_shrd_mem(MEMORY_CAL_TABLES, 0);
    QVERIFY(after != nullptr && after != before);
    QCOMPARE(static_cast<const caltables::CalTablesHeader *>(after)->count, 1);
    // Who had the former tables attached keeps them.
    QCOMPARE(header->count, 2);
    QCOMPARE(log.count("1 tables rebuilt, 0 files cannot be read"), 1);
}

void Commands::rebuild_with_a_damaged_table()
{
    const HostLog log;
    write_file("/cell/tables/one.tbl", "no table");
    QCOMPARE(run("bld_tables", {}).status, 1);
    QCOMPARE(log.count("table of channel 1 cannot be read: /cell/tables/one.tbl"), 1);
    const auto *header =
        static_cast<const caltables::CalTablesHeader *>(get_shrd_mem(MEMORY_CAL_TABLES, 0));
    QCOMPARE(header->count, 1);
    QCOMPARE(header->failed, 1);
}

void Commands::rebuild_without_a_host()
{
    m_cell.reset();
    const HostLog log;
    const Run done = run("bld_tables", {});
    QCOMPARE(done.status, 1);
    QCOMPARE(done.error, QString("bld_tables: the host does not run\n"));
    QCOMPARE(log.count("tables not rebuilt: the host does not run"), 1);
}

LOOP_TEST(Commands);
#include "test_commands.moc"
