// SPDX-License-Identifier: GPL-3.0-or-later
//
// The launcher of private cells: what a command sees and may touch in its view,
// what stays of a run, and what happens where name spaces are refused.
#include <csignal>

#include <QtTest>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

class Launcher : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void status_data();
    void status();
    void wrong_use_data();
    void wrong_use();
    void folders_without_a_cell();
    void everything_else_is_read_only();
    void writable_folder_data();
    void writable_folder();
    void runs_do_not_meet();
    void environment_goes_through();
    void arguments_go_through();
    void described_cell();
    void description_by_file();
    void kept_folder();
    void touch_marker();
    void started_cell();
    void cell_that_does_not_start();
    void command_that_ends_the_cell();
    void launcher_within_a_view();
    void terminated_launcher_leaves_nothing_data();
    void terminated_launcher_leaves_nothing();
    void killed_launcher_takes_the_cell_along();
    void terminated_while_the_cell_starts();
    void running_cell_keeps_its_marker();
    void input_goes_through();
    void places_themselves_data();
    void places_themselves();
    void places_that_belong_to_someone();
    void places_of_a_killed_run();

private:
    struct Run {
        int status;
        QString output;
        QString error;
    };
    Run run(const QStringList &arguments);
    Run shell(const QStringList &options, const QString &script);
    Run without_namespaces(const QString &before, const QStringList &arguments);

    QProcessEnvironment m_environment;
};

namespace
{

const QString LAUNCHER = PROJECT_BINARY_DIR "/bin/privatecell";
constexpr int DEADLINE_MS = 60000;
constexpr int CANNOT_RUN = 125;
const QString CELLCTL = PROJECT_BINARY_DIR "/bin/cellctl";

} // namespace

void Launcher::initTestCase()
{
    m_environment = QProcessEnvironment::systemEnvironment();
    m_environment.remove("ZERL_PRIVATE_CELL");
    m_environment.remove("ZERL_WRITABLE");
    QProcess probe;
    probe.start("bwrap", {"--ro-bind", "/", "/", "true"});
    if (!probe.waitForFinished(DEADLINE_MS) || probe.exitCode() != 0)
        QSKIP("this machine refuses name spaces");
}

Launcher::Run Launcher::run(const QStringList &arguments)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(LAUNCHER, arguments);
    const bool ended = process.waitForFinished(DEADLINE_MS);
    if (!ended)
        process.kill();
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

Launcher::Run Launcher::shell(const QStringList &options, const QString &script)
{
    return run(options + QStringList{"--", "sh", "-c", script});
}

void Launcher::status_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("status");
    QTest::newRow("0") << QStringList{"--no-cell"} << "exit 0" << 0;
    QTest::newRow("7") << QStringList{"--no-cell"} << "exit 7" << 7;
    QTest::newRow("killed by a signal") << QStringList{"--no-cell"} << "kill -KILL $$" << 137;
    QTest::newRow("with a cell's files") << QStringList{} << "exit 7" << 7;
    QTest::newRow("beside a cell") << QStringList{"--start"} << "exit 7" << 7;
    QTest::newRow("beside a cell, killed") << QStringList{"--start"} << "kill -TERM $$" << 143;
}

void Launcher::status()
{
    QFETCH(QStringList, options);
    QFETCH(QString, script);
    const Run done = shell(options, script);
    QTEST(done.status, "status");
    QCOMPARE(done.error, QString());
}

void Launcher::wrong_use_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<QString>("says");
    QTest::newRow("no command") << QStringList{"--no-cell"} << "no command was given";
    QTest::newRow("unknown option") << QStringList{"--fast", "true"} << "unknown option: --fast";
    QTest::newRow("option without value") << QStringList{"--cell"} << "--cell needs a value";
    QTest::newRow("no such description")
        << QStringList{"--describe", "nothing", "true"} << "no description of a cell: nothing";
    QTest::newRow("no such folder")
        << QStringList{"--writable", "/nowhere", "true"} << "no such folder: /nowhere";
    QTest::newRow("start of no cell") << QStringList{"--no-cell", "--start", "true"}
                                      << "--no-cell and --start exclude each other";
}

void Launcher::wrong_use()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, says);
    const Run done = run(arguments);
    QCOMPARE(done.status, CANNOT_RUN);
    QVERIFY2(done.error.contains("privatecell: " + says + '\n'), qPrintable(done.error));
}

void Launcher::folders_without_a_cell()
{
    const Run done =
        shell({"--no-cell"}, "ls -A /cell /specs /ram /dev/shm /vornax/bin && "
                             "readlink /vornax/bin/bld_tables && "
                             "touch /cell/a /specs/a /ram/a /vornax/a /tmp/a /dev/shm/a");
    QCOMPARE(done.status, 0);
    QCOMPARE(done.output, QString("/cell:\n\n/dev/shm:\n\n/ram:\n\n/specs:\n\n/vornax/bin:\n"
                                  "bld_tables\n" PROJECT_BINARY_DIR "/bin/bld_tables\n"));
}

void Launcher::everything_else_is_read_only()
{
    const Run done =
        shell({"--no-cell"}, "for d in / /etc /usr /var \"$HOME\" " PROJECT_BINARY_DIR
                             "; do ! touch \"$d/.written\" || exit 1; done 2>/dev/null");
    QCOMPARE(done.status, 0);
    QVERIFY(!QFile::exists("/etc/.written"));
}

void Launcher::writable_folder_data()
{
    QTest::addColumn<bool>("by_option");
    QTest::newRow("by the option") << true;
    QTest::newRow("by the environment") << false;
}

void Launcher::writable_folder()
{
    QFETCH(bool, by_option);
    const QTemporaryDir folder(QDir::tempPath() + "/it's a folder XXXXXX");
    const QTemporaryDir second;
    QStringList options{"--no-cell"};
    if (by_option)
        options << "--writable" << folder.path() << "--writable" << second.path();
    else
        m_environment.insert("ZERL_WRITABLE", folder.path());
    const Run done = shell(options, "echo here >\"" + folder.filePath("a") + '"');
    m_environment.remove("ZERL_WRITABLE");
    QCOMPARE(done.error, QString());
    QCOMPARE(done.status, 0);
    QVERIFY(QFile::exists(folder.filePath("a")));
}

void Launcher::runs_do_not_meet()
{
    QProcess first;
    first.setProcessEnvironment(m_environment);
    first.start(LAUNCHER, {"--no-cell", "--", "sh", "-c",
                           "touch /cell/mine /dev/shm/vornax.mine /tmp/mine; echo up; read line"});
    QTRY_VERIFY_WITH_TIMEOUT(first.bytesAvailable() > 0, DEADLINE_MS);
    const Run second = shell({"--no-cell"}, "ls /cell /dev/shm /tmp/mine");
    QCOMPARE(second.output, QString("/cell:\n\n/dev/shm:\n"));
    first.write("\n");
    QVERIFY(first.waitForFinished(DEADLINE_MS));
    QVERIFY(!QFile::exists("/dev/shm/vornax.mine"));
}

void Launcher::environment_goes_through()
{
    m_environment.insert("ASAN_OPTIONS", "detect_leaks=1");
    const Run done =
        shell({"--no-cell"}, "echo \"$ASAN_OPTIONS $ZERL_PRIVATE_CELL ${TMPDIR-none}\"");
    m_environment.remove("ASAN_OPTIONS");
    QCOMPARE(done.output, QString("detect_leaks=1 1 none\n"));
}

void Launcher::arguments_go_through()
{
    const QStringList words{"a b", "it's", "\"$HOME\"", "", "*", "--start", "\\n"};
    for (const QStringList &options : {QStringList{"--no-cell"}, QStringList{"--start"}}) {
        const Run done =
            run(options + QStringList{"--", "sh", "-c", "printf '<%s>' \"$@\"", "sh"} + words);
        QCOMPARE(done.output, '<' + words.join("><") + '>');
    }
}

void Launcher::described_cell()
{
    const Run done = shell({}, "test -f /cell/cell.txt && test -f /cell/tables/oil_pressure.tbl && "
                               "test -d /cell/tables/reports && test -w /ram && "
                               "test -f /cell/zerl_util_specs.ini && "
                               "test -f /specs/working_standards/DWT-12.txt && "
                               "test ! -e /cell/cell.sock && ls /dev/shm");
    QCOMPARE(done.error, QString());
    QCOMPARE(done.status, 0);
    QCOMPARE(done.output, QString());
}

void Launcher::description_by_file()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("mine.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("cell Mine\nchannel 0\nlabel Only\n");
    file.close();
    const Run done = shell({"--describe", file.fileName(), "--start"}, CELLCTL + " list");
    QCOMPARE(done.status, 0);
    QVERIFY(done.output.contains("    0  active    Only "));
    QCOMPARE(done.output.count('\n'), 2);
}

void Launcher::kept_folder()
{
    const QTemporaryDir folder;
    const QStringList options{"--cell", folder.filePath("kept cell")};
    QCOMPARE(shell(options, "echo mine >/cell/tables/oil_pressure.tbl; echo x >/specs/x").status,
             0);
    QVERIFY(QFile::exists(folder.filePath("kept cell/cell/cell.txt")));
    const Run again =
        shell(options + QStringList{"--start"}, "cat /cell/tables/oil_pressure.tbl /specs/x");
    QCOMPARE(again.error, QString());
    QCOMPARE(again.output, QString("mine\nx\n"));
    QVERIFY(!QFile::exists(folder.filePath("kept cell/cell/cell.sock")));
}

void Launcher::touch_marker()
{
    const QTemporaryDir folder;
    const QStringList options{"--cell", folder.path()};
    QCOMPARE(shell(options + QStringList{"--touch"}, "test -f /cell/vornax_ts.ini").status, 0);
    QCOMPARE(shell(options, "test ! -e /cell/vornax_ts.ini").status, 0);
    QCOMPARE(shell({"--touch", "--no-cell"}, "test -f /cell/vornax_ts.ini").status, 0);
}

void Launcher::started_cell()
{
    const Run done = shell({"--start"}, CELLCTL + " apply --now 14 50 && " + CELLCTL +
                                            " show 14 && /vornax/bin/bld_tables");
    QCOMPARE(done.error, QString());
    QCOMPARE(done.status, 0);
    QVERIFY2(done.output.contains("Good Sensor"), qPrintable(done.output));
}

void Launcher::cell_that_does_not_start()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("cell.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("cell Mine\nwrong\n");
    file.close();
    const Run done = shell({"--describe", folder.path(), "--start"}, "echo ran");
    QCOMPARE(done.status, CANNOT_RUN);
    QCOMPARE(done.output, QString());
    QCOMPARE(done.error, QString("/cell/cell.txt:2: unknown keyword: wrong\n"
                                 "privatecell: the training cell did not start\n"));
}

void Launcher::command_that_ends_the_cell()
{
    const Run done = shell({"--start"}, CELLCTL + " quit; touch /dev/shm/vornax.77; exit 3");
    QCOMPARE(done.status, 3);
    QCOMPARE(done.error, QString("privatecell: shared memory left behind: /dev/shm/vornax.77\n"));
}

void Launcher::launcher_within_a_view()
{
    const Run done =
        shell({"--no-cell"}, "touch /cell/here; " + LAUNCHER + " --start -- sh -c '" + CELLCTL +
                                 " list | wc -l; ls /cell/here; exit 5'; "
                                 "echo $?; ls -A /dev/shm; "
                                 "ls -d /tmp/privatecell.* 2>/dev/null");
    QCOMPARE(done.error, QString());
    QCOMPARE(done.output, QString("27\n/cell/here\n5\n"));
}

namespace
{

// The cell of a kept folder holds a lock on it as long as it lives.
bool lock_comes_free(const QTemporaryDir &folder)
{
    QProcess lock;
    lock.start("flock", {"--timeout", "60", folder.filePath("cell"), "true"});
    return lock.waitForFinished(DEADLINE_MS + 10000) && lock.exitCode() == 0;
}

// The environment with a bubblewrap that refuses process ids of its own.
QProcessEnvironment without_process_ids(QProcessEnvironment environment, const QTemporaryDir &tools)
{
    QFile refusing(tools.filePath("bwrap"));
    if (!refusing.open(QIODevice::WriteOnly))
        qFatal("no bwrap can be made");
    refusing.write("#!/bin/sh\ncase \" $* \" in *' --unshare-pid '*) exit 1 ;; esac\n"
                   "PATH=${PATH#*:}\nexec bwrap \"$@\"\n");
    refusing.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    environment.insert("PATH", tools.path() + ':' + environment.value("PATH"));
    return environment;
}

} // namespace

void Launcher::terminated_launcher_leaves_nothing_data()
{
    QTest::addColumn<bool>("own_ids");
    QTest::addColumn<int>("signal");
    QTest::newRow("terminated") << true << SIGTERM;
    QTest::newRow("interrupted") << true << SIGINT;
    QTest::newRow("hung up") << true << SIGHUP;
    QTest::newRow("without process ids of its own") << false << SIGTERM;
}

void Launcher::terminated_launcher_leaves_nothing()
{
    QFETCH(bool, own_ids);
    QFETCH(int, signal);
    const QTemporaryDir folder;
    const QTemporaryDir tools;
    QProcess process;
    process.setProcessEnvironment(own_ids ? m_environment
                                          : without_process_ids(m_environment, tools));
    process.start(LAUNCHER,
                  {"--cell", folder.path(), "--start", "--", "sh", "-c",
                   "trap 'echo ends; kill $!; exit 9' INT TERM HUP; sleep 1000 & echo up; wait"});
    QTRY_VERIFY_WITH_TIMEOUT(process.bytesAvailable() > 0, DEADLINE_MS);
    QVERIFY(QFile::exists(folder.filePath("cell/cell.sock")));
    kill(static_cast<pid_t>(process.processId()), signal);
    QVERIFY(process.waitForFinished(DEADLINE_MS));
    QCOMPARE(process.exitCode(), 9);
    QCOMPARE(process.readAllStandardOutput(), QByteArray("up\nends\n"));
    QCOMPARE(process.readAllStandardError(), QByteArray());
    QVERIFY(!QFile::exists(folder.filePath("cell/cell.sock")));
    QVERIFY(lock_comes_free(folder));
    QCOMPARE(shell({"--cell", folder.path(), "--start"}, CELLCTL + " list >/dev/null").status, 0);
}

void Launcher::killed_launcher_takes_the_cell_along()
{
    const QTemporaryDir folder;
    const QTemporaryDir tools;
    QProcess process;
    process.setProcessEnvironment(without_process_ids(m_environment, tools));
    process.start(LAUNCHER, {"--cell", folder.path(), "--start", "--", "sh", "-c",
                             "echo up; exec sleep 1000"});
    QTRY_VERIFY_WITH_TIMEOUT(process.bytesAvailable() > 0, DEADLINE_MS);
    process.kill();
    QVERIFY(process.waitForFinished(DEADLINE_MS));
    QVERIFY(lock_comes_free(folder));
}

// Wherever on the way to a running cell the signal meets it.
void Launcher::terminated_while_the_cell_starts()
{
    const QTemporaryDir folder;
    for (int round = 0; round < 8; ++round) {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.start(LAUNCHER,
                      {"--cell", folder.path(), "--start", "--", "sh", "-c", "exec sleep 1000"});
        QVERIFY(process.waitForStarted(DEADLINE_MS));
        process.waitForReadyRead(round * 40);
        process.terminate();
        QVERIFY(process.waitForFinished(DEADLINE_MS));
        QVERIFY2(process.exitStatus() == QProcess::CrashExit || process.exitCode() == 143,
                 qPrintable(QString::number(process.exitCode())));
        QVERIFY(!QDir(folder.filePath("cell")).exists() || lock_comes_free(folder));
        QVERIFY(!QFile::exists(folder.filePath("cell/cell.sock")));
    }
}

void Launcher::running_cell_keeps_its_marker()
{
    const QTemporaryDir folder;
    QProcess first;
    first.setProcessEnvironment(m_environment);
    first.start(LAUNCHER, {"--cell", folder.path(), "--start", "--touch", "--", "sh", "-c",
                           "echo up; read line; test -f /cell/vornax_ts.ini"});
    QTRY_VERIFY_WITH_TIMEOUT(first.bytesAvailable() > 0, DEADLINE_MS);
    QCOMPARE(shell({"--cell", folder.path(), "--start"}, "echo ran").status, CANNOT_RUN);
    QCOMPARE(shell({"--cell", folder.path()}, "echo ran").status, CANNOT_RUN);
    first.write("\n");
    QVERIFY(first.waitForFinished(DEADLINE_MS));
    QCOMPARE(first.exitCode(), 0);
}

void Launcher::input_goes_through()
{
    for (const QStringList &options : {QStringList{"--no-cell"}, QStringList{"--start"}}) {
        QProcess process;
        process.setProcessEnvironment(m_environment);
        process.start(LAUNCHER, options + QStringList{"--", "cat"});
        process.write("a line\n");
        process.closeWriteChannel();
        QVERIFY(process.waitForFinished(DEADLINE_MS));
        QCOMPARE(process.readAllStandardOutput(), QByteArray("a line\n"));
    }
}

// Runs the launcher under a root that can be written and has none of the four
// places, with a bubblewrap that refuses. The script "before" runs first.
Launcher::Run Launcher::without_namespaces(const QString &before, const QStringList &arguments)
{
    QStringList words{"--die-with-parent"};
    const auto entries = QDir("/").entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                                 QDir::NoDotAndDotDot);
    const QStringList apart{"cell", "specs", "ram", "vornax", "tmp", "dev", "proc"};
    for (const QFileInfo &entry : entries) {
        if (apart.contains(entry.fileName()))
            continue;
        if (entry.isSymLink())
            words << "--symlink" << QFile::symLinkTarget(entry.filePath()) << entry.filePath();
        else
            words << "--ro-bind-try" << entry.filePath() << entry.filePath();
    }
    words << "--dev-bind"
          << "/dev"
          << "/dev"
          << "--perms"
          << "1777"
          << "--tmpfs"
          << "/dev/shm"
          << "--perms"
          << "1777"
          << "--tmpfs"
          << "/tmp"
          << "--dev-bind"
          << "/proc"
          << "/proc";
    if (QString(PROJECT_BINARY_DIR).startsWith("/tmp/"))
        words << "--ro-bind" << PROJECT_BINARY_DIR << PROJECT_BINARY_DIR;
    words << "--"
          << "sh"
          << "-c"
          << "mkdir /tmp/bin; printf '#!/bin/sh\\nexit 1\\n' >/tmp/bin/bwrap; "
             "chmod +x /tmp/bin/bwrap; PATH=/tmp/bin:$PATH; export PATH; " +
                 before + "\n" + LAUNCHER +
                 " \"$@\"; status=$?; ls -d /cell /specs /ram /vornax /dev/shm/* 2>/dev/null; "
                 "exit $status"
          << "sh" << arguments;
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start("bwrap", words);
    const bool ended = process.waitForFinished(DEADLINE_MS);
    if (!ended)
        process.kill();
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

void Launcher::places_themselves_data()
{
    QTest::addColumn<QStringList>("options");
    QTest::addColumn<QString>("script");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("output");
    QTest::newRow("empty") << QStringList{"--no-cell"}
                           << "ls -A /cell /specs /ram; test -x /vornax/bin/bld_tables; exit 4" << 4
                           << "/cell:\n\n/ram:\n\n/specs:\n";
    QTest::newRow("described") << QStringList{} << "ls /cell/tables/oil_pressure.tbl; exit 4" << 4
                               << "/cell/tables/oil_pressure.tbl\n";
    QTest::newRow("started") << QStringList{"--start"} << CELLCTL + " list | wc -l" << 0 << "27\n";
    QTest::newRow("kept") << QStringList{"--cell", "/tmp/kept", "--start"}
                          << "ls /tmp/kept/cell/cell.sock" << 0 << "/tmp/kept/cell/cell.sock\n";
    QTest::newRow("terminated") << QStringList{"--start"} << "kill -TERM $PPID; exec sleep 1000"
                                << 143 << "";
}

void Launcher::places_themselves()
{
    QFETCH(QStringList, options);
    QFETCH(QString, script);
    const Run done = without_namespaces("", options + QStringList{"--", "sh", "-c", script});
    QCOMPARE(done.error, QString());
    QTEST(done.output, "output");
    QTEST(done.status, "status");
}

void Launcher::places_that_belong_to_someone()
{
    for (const QString &place : QStringList{"cell", "specs", "ram", "vornax"}) {
        const Run done = without_namespaces("mkdir /" + place + "; touch /" + place + "/theirs",
                                            {"--no-cell", "true"});
        QCOMPARE(done.status, CANNOT_RUN);
        QCOMPARE(done.output, '/' + place + '\n');
        QVERIFY2(done.error.contains("cannot be made here"), qPrintable(done.error));
        QVERIFY2(done.error.contains("and /" + place + " exists"), qPrintable(done.error));
    }
}

void Launcher::places_of_a_killed_run()
{
    const Run done = without_namespaces("mkdir /cell /vornax; touch /cell/old /vornax/.privatecell "
                                        "/dev/shm/vornax.6",
                                        {"--no-cell", "ls", "-A", "/cell"});
    QCOMPARE(done.error, QString());
    QCOMPARE(done.status, 0);
    QCOMPARE(done.output, QString());
}

QTEST_GUILESS_MAIN(Launcher)
#include "test_launcher.moc"
