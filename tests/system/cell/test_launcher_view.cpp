// SPDX-License-Identifier: GPL-3.0-or-later
//
// The launcher of private cells. What a command sees and may touch in its view, and what goes
// through to it.
#include <QtTest>

#include <QDir>
#include <QFile>
#include <QLocalServer>
#include <QProcess>
#include <QTemporaryDir>

#include "launcher.h"
#include "support/testmain.h"

namespace
{
const QString BUS = "DBUS_SESSION_BUS_ADDRESS";
} // namespace

class LauncherView : public QObject
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
    void session_bus_data();
    void session_bus();
    void arguments_go_through();
    void input_goes_through();
    void launcher_within_a_view();

private:
    Launcher m_launcher;
};

void LauncherView::initTestCase()
{
    if (!Launcher::has_namespaces())
        QSKIP("this machine refuses name spaces");
}

void LauncherView::status_data()
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

void LauncherView::status()
{
    QFETCH(QStringList, options);
    QFETCH(QString, script);
    const LauncherRun done = m_launcher.shell(options, script);
    QTEST(done.status, "status");
    QCOMPARE(done.error, QString());
}

void LauncherView::wrong_use_data()
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

void LauncherView::wrong_use()
{
    QFETCH(QStringList, arguments);
    QFETCH(QString, says);
    const LauncherRun done = m_launcher.run(arguments);
    QCOMPARE(done.status, CANNOT_RUN);
    QVERIFY2(done.error.contains("privatecell: " + says + '\n'), qPrintable(done.error));
}

void LauncherView::folders_without_a_cell()
{
    const LauncherRun done = m_launcher.shell(
        {"--no-cell"}, "ls -A /cell /specs /ram /dev/shm /vornax/bin && "
                       "readlink /vornax/bin/bld_tables && "
                       "touch /cell/a /specs/a /ram/a /vornax/a /tmp/a /dev/shm/a");
    QCOMPARE(done.status, 0);
    QCOMPARE(done.output, QString("/cell:\n\n/dev/shm:\n\n/ram:\n\n/specs:\n\n/vornax/bin:\n"
                                  "bld_tables\n" PROJECT_BINARY_DIR "/bin/bld_tables\n"));
}

void LauncherView::everything_else_is_read_only()
{
    const LauncherRun done =
        m_launcher.shell({"--no-cell"}, "for d in / /etc /usr /var \"$HOME\" " PROJECT_BINARY_DIR
                                        "; do ! touch \"$d/.written\" || exit 1; done 2>/dev/null");
    QCOMPARE(done.status, 0);
    QVERIFY(!QFile::exists("/etc/.written"));
}

void LauncherView::writable_folder_data()
{
    QTest::addColumn<bool>("by_option");
    QTest::newRow("by the option") << true;
    QTest::newRow("by the environment") << false;
}

void LauncherView::writable_folder()
{
    QFETCH(bool, by_option);
    const QTemporaryDir folder(QDir::tempPath() + "/it's a folder XXXXXX");
    const QTemporaryDir second;
    QStringList options{"--no-cell"};
    if (by_option)
        options << "--writable" << folder.path() << "--writable" << second.path();
    else
        m_launcher.environment.insert("ZERL_WRITABLE", folder.path());
    const LauncherRun done =
        m_launcher.shell(options, "echo here >\"" + folder.filePath("a") + '"');
    m_launcher.environment.remove("ZERL_WRITABLE");
    QCOMPARE(done.error, QString());
    QCOMPARE(done.status, 0);
    QVERIFY(QFile::exists(folder.filePath("a")));
}

void LauncherView::runs_do_not_meet()
{
    QProcess first;
    first.setProcessEnvironment(m_launcher.environment);
    first.start(LAUNCHER, {"--no-cell", "--", "sh", "-c",
                           "touch /cell/mine /dev/shm/vornax.mine /tmp/mine; echo up; read line"});
    QTRY_VERIFY_WITH_TIMEOUT(first.bytesAvailable() > 0, DEADLINE_MS);
    const LauncherRun second = m_launcher.shell({"--no-cell"}, "ls /cell /dev/shm /tmp/mine");
    QCOMPARE(second.output, QString("/cell:\n\n/dev/shm:\n"));
    first.write("\n");
    QVERIFY(first.waitForFinished(DEADLINE_MS));
    QVERIFY(!QFile::exists("/dev/shm/vornax.mine"));
}

void LauncherView::environment_goes_through()
{
    m_launcher.environment.insert("ASAN_OPTIONS", "detect_leaks=1");
    const LauncherRun done =
        m_launcher.shell({"--no-cell"}, "echo \"$ASAN_OPTIONS $ZERL_PRIVATE_CELL ${TMPDIR-none}\"");
    m_launcher.environment.remove("ASAN_OPTIONS");
    QCOMPARE(done.output, QString("detect_leaks=1 1 none\n"));
}

void LauncherView::session_bus_data()
{
    QTest::addColumn<QString>("named");
    QTest::addColumn<bool>("goes_through");
    // SOCKET and PLAIN: a socket and a file under /tmp. A null text: not named.
    QTest::newRow("none is named") << QString() << false;
    QTest::newRow("empty") << "" << false;
    QTest::newRow("to be started when needed") << "autolaunch:" << false;
    QTest::newRow("off already") << "disabled:" << false;
    QTest::newRow("a socket under /tmp") << "unix:path=SOCKET" << true;
    QTest::newRow("with an identity") << "unix:path=SOCKET,guid=0123456789abcdef" << true;
    QTest::newRow("behind an identity") << "unix:guid=0123456789abcdef,path=SOCKET" << true;
    QTest::newRow("the first of two") << "unix:path=SOCKET;unix:path=/none" << true;
    QTest::newRow("gone") << "unix:path=/tmp/none" << false;
    QTest::newRow("no socket") << "unix:path=PLAIN" << false;
    QTest::newRow("of the network") << "unix:abstract=/tmp/dbus-1" << true;
    QTest::newRow("of another machine") << "tcp:host=localhost,port=1" << true;
}

// A program whose bus is not told starts one, and waits for it in vain.
void LauncherView::session_bus()
{
    QFETCH(QString, named);
    QFETCH(bool, goes_through);
    const QTemporaryDir folder("/tmp/a bus' folder XXXXXX");
    const QString path = folder.filePath("bus");
    QLocalServer bus;
    QVERIFY(bus.listen(path));
    QFile plain(folder.filePath("plain"));
    QVERIFY(plain.open(QIODevice::WriteOnly));
    const auto escaped = [](QString text) { return text.replace(' ', "%20").replace('\'', "%27"); };
    if (named.isNull())
        m_launcher.environment.remove(BUS);
    else
        m_launcher.environment.insert(
            BUS,
            named.replace("SOCKET", escaped(path)).replace("PLAIN", escaped(plain.fileName())));
    const QString script = "echo \"$" + BUS + "\"; test -S \"" + path + "\" && echo there";
    const bool seen = named.contains(escaped(path));
    const LauncherRun done = m_launcher.shell({"--no-cell"}, script);
    const LauncherRun within =
        m_launcher.run({"--no-cell", "--", LAUNCHER, "--no-cell", "--", "sh", "-c", script});
    m_launcher.environment.remove(BUS);
    const QString expected =
        (goes_through ? named : QString("disabled:")) + (seen ? "\nthere\n" : "\n");
    QCOMPARE(done.error, QString());
    QCOMPARE(done.output, expected);
    QCOMPARE(within.output, expected);
}

void LauncherView::arguments_go_through()
{
    const QStringList words{"a b", "it's", "\"$HOME\"", "", "*", "--start", "\\n"};
    for (const QStringList &options : {QStringList{"--no-cell"}, QStringList{"--start"}}) {
        const LauncherRun done = m_launcher.run(
            options + QStringList{"--", "sh", "-c", "printf '<%s>' \"$@\"", "sh"} + words);
        QCOMPARE(done.output, '<' + words.join("><") + '>');
    }
}

void LauncherView::input_goes_through()
{
    for (const QStringList &options : {QStringList{"--no-cell"}, QStringList{"--start"}}) {
        QProcess process;
        process.setProcessEnvironment(m_launcher.environment);
        process.start(LAUNCHER, options + QStringList{"--", "cat"});
        process.write("a line\n");
        process.closeWriteChannel();
        QVERIFY(process.waitForFinished(DEADLINE_MS));
        QCOMPARE(process.readAllStandardOutput(), QByteArray("a line\n"));
    }
}

void LauncherView::launcher_within_a_view()
{
    const LauncherRun done = m_launcher.shell(
        {"--no-cell"}, "touch /cell/here; " + LAUNCHER + " --start -- sh -c '" + CELLCTL +
                           " list | wc -l; ls /cell/here; exit 5'; "
                           "echo $?; ls -A /dev/shm; "
                           "ls -d /tmp/privatecell.* 2>/dev/null");
    QCOMPARE(done.error, QString());
    QCOMPARE(done.output, QString("27\n/cell/here\n5\n"));
}

LOOP_TEST(LauncherView);
#include "test_launcher_view.moc"
