// SPDX-License-Identifier: GPL-3.0-or-later
//
// The launcher of private cells. Where name spaces are refused: the places themselves.
#include <unistd.h>

#include <QtTest>

#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include "launcher.h"
#include "support/testmain.h"

namespace
{
// XDG_RUNTIME_DIR is the same folder in these tests.
const QString LOCK_FOLDER = "/run/lock/privatecell." + QString::number(geteuid());
} // namespace

class LauncherPlaces : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void places_themselves_data();
    void places_themselves();
    void places_that_belong_to_someone();
    void places_of_a_killed_run();
    void rest_of_a_run_that_is_someone_elses();
    void nothing_of_the_lock_is_in_tmp();
    void planted_names_are_not_used_data();
    void planted_names_are_not_used();
    void lock_that_is_held_data();
    void lock_that_is_held();
    void folder_of_the_description_is_its_own();

private:
    LauncherRun without_namespaces(const QString &before, const QStringList &arguments);

    Launcher m_launcher;
};

void LauncherPlaces::initTestCase()
{
    if (!Launcher::has_namespaces())
        QSKIP("this machine refuses name spaces");
}

// Runs the launcher under a root that can be written and has none of the four
// places, with a bubblewrap that refuses. The script "before" runs first.
LauncherRun LauncherPlaces::without_namespaces(const QString &before, const QStringList &arguments)
{
    QStringList words{"--die-with-parent"};
    const auto entries = QDir("/").entryInfoList(QDir::AllEntries | QDir::Hidden | QDir::System |
                                                 QDir::NoDotAndDotDot);
    const QStringList apart{"cell", "specs", "ram", "vornax", "tmp", "dev", "proc", "run"};
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
          << "/proc"
          << "--tmpfs"
          << "/run"
          << "--perms"
          << "1777"
          << "--dir"
          << "/run/lock"
          << "--setenv"
          << "XDG_RUNTIME_DIR"
          << "/run/lock";
    // Files of another owner are part of some cases.
    if (geteuid() == 0)
        words << "--cap-add"
              << "CAP_CHOWN";
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
    return m_launcher.run_program("bwrap", words);
}

void LauncherPlaces::places_themselves_data()
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

void LauncherPlaces::places_themselves()
{
    QFETCH(QStringList, options);
    QFETCH(QString, script);
    const LauncherRun done =
        without_namespaces("", options + QStringList{"--", "sh", "-c", script});
    QCOMPARE(done.error, QString());
    QTEST(done.output, "output");
    QTEST(done.status, "status");
}

void LauncherPlaces::places_that_belong_to_someone()
{
    for (const QString &place : QStringList{"cell", "specs", "ram", "vornax"}) {
        const LauncherRun done = without_namespaces(
            "mkdir /" + place + "; touch /" + place + "/theirs", {"--no-cell", "true"});
        QCOMPARE(done.status, CANNOT_RUN);
        QCOMPARE(done.output, '/' + place + '\n');
        QVERIFY2(done.error.contains("cannot be made here"), qPrintable(done.error));
        QVERIFY2(done.error.contains("and /" + place + " exists"), qPrintable(done.error));
    }
}

void LauncherPlaces::places_of_a_killed_run()
{
    const LauncherRun done =
        without_namespaces("mkdir /cell /vornax; touch /cell/old /vornax/.privatecell "
                           "/dev/shm/vornax.6",
                           {"--no-cell", "ls", "-A", "/cell"});
    QCOMPARE(done.error, QString());
    QCOMPARE(done.status, 0);
    QCOMPARE(done.output, QString());
}

void LauncherPlaces::rest_of_a_run_that_is_someone_elses()
{
    if (geteuid() != 0)
        QSKIP("only root can make a file of someone else's");
    const LauncherRun done =
        without_namespaces("mkdir /vornax; : >/vornax/.privatecell; chown 1 /vornax/.privatecell",
                           {"--no-cell", "true"});
    QCOMPARE(done.status, CANNOT_RUN);
    QCOMPARE(done.output, QString("/vornax\n"));
}

// Another user may write there: plant a link at the file's name, or hold its lock.
void LauncherPlaces::nothing_of_the_lock_is_in_tmp()
{
    const LauncherRun done = without_namespaces(
        "echo precious >/tmp/precious; ln -s precious /tmp/.privatecell.lock\n"
        "exec 8</tmp/precious; flock 8",
        {"--no-cell", "--", "sh", "-c", "cat /tmp/precious; stat -c %a " + LOCK_FOLDER});
    QCOMPARE(done.error, QString());
    QCOMPARE(done.status, 0);
    QCOMPARE(done.output, QString("precious\n700\n"));
}

void LauncherPlaces::planted_names_are_not_used_data()
{
    QTest::addColumn<QString>("before");
    QTest::addColumn<QString>("says");
    const QString folder = " is not a folder of yours alone";
    const QString file = "/lock is not a file of yours";
    const QString make = "mkdir -m 0700 " + LOCK_FOLDER + "; ";
    QTest::newRow("a link for the folder") << "ln -s /tmp " + LOCK_FOLDER << folder;
    QTest::newRow("a link to a folder that would do")
        << "mkdir -m 0700 /tmp/theirs; ln -s /tmp/theirs " + LOCK_FOLDER << folder;
    QTest::newRow("a link that leads nowhere") << "ln -s /tmp/nothing " + LOCK_FOLDER << folder;
    QTest::newRow("a file for the folder") << ": >" + LOCK_FOLDER << folder;
    QTest::newRow("a folder that others may write")
        << "mkdir " + LOCK_FOLDER + "; chmod 0777 " + LOCK_FOLDER << folder;
    QTest::newRow("a folder that others may read")
        << "mkdir " + LOCK_FOLDER + "; chmod 0755 " + LOCK_FOLDER << folder;
    QTest::newRow("a link for the file")
        << make + "ln -s /tmp/precious " + LOCK_FOLDER + "/lock" << file;
    QTest::newRow("a pipe for the file") << make + "mkfifo " + LOCK_FOLDER + "/lock" << file;
    if (geteuid() == 0) {
        QTest::newRow("someone else's folder") << make + "chown 1 " + LOCK_FOLDER << folder;
        QTest::newRow("someone else's file")
            << make + ": >" + LOCK_FOLDER + "/lock; chown 1 " + LOCK_FOLDER + "/lock" << file;
    }
}

void LauncherPlaces::planted_names_are_not_used()
{
    QFETCH(QString, before);
    QFETCH(QString, says);
    const LauncherRun done =
        without_namespaces("echo precious >/tmp/precious; trap 'cat /tmp/precious' EXIT; " + before,
                           {"--no-cell", "true"});
    QCOMPARE(done.status, CANNOT_RUN);
    QCOMPARE(done.output, QString("precious\n"));
    QVERIFY2(done.error.startsWith("privatecell: " + LOCK_FOLDER + says), qPrintable(done.error));
}

void LauncherPlaces::lock_that_is_held_data()
{
    QTest::addColumn<QString>("holder");
    QTest::addColumn<int>("status");
    QTest::addColumn<QString>("error");
    const QString waits = "privatecell: another run \\(process \\d+\\) uses /cell; "
                          "waiting for \\d+ s at most\n";
    // Each tells on the pipe that it has the lock.
    QTest::newRow("until the limit")
        << "ZERL_LOCK_WAIT=1; export ZERL_LOCK_WAIT; "
           "{ " +
               LAUNCHER + " --no-cell -- sh -c 'echo up >/tmp/up; read line </tmp/never'; } &"
        << CANNOT_RUN
        << waits + "privatecell: another run \\(process \\d+\\) still uses /cell; end it, or "
                   "try again later\n";
    QTest::newRow("and comes free")
        << "{ " + LAUNCHER +
               " --no-cell -- sh -c 'echo up >/tmp/up; exec sh -c \"until grep -q "
               "waiting /tmp/words; do sleep 0.05; done\"'; } &\n"
               "exec 2>/tmp/words"
        << 0 << waits;
}

void LauncherPlaces::lock_that_is_held()
{
    QFETCH(QString, holder);
    QFETCH(int, status);
    QFETCH(QString, error);
    const LauncherRun done =
        without_namespaces("mkfifo /tmp/up /tmp/never; exec 8<>/tmp/never; : >/tmp/words\n"
                           "trap 'cat /tmp/words >&3; echo >&8; wait' EXIT; exec 3>&2\n" +
                               holder + "\nread line </tmp/up",
                           {"--no-cell", "true"});
    QCOMPARE(done.status, status);
    const QRegularExpression whole("^" + error + "$");
    QVERIFY2(whole.match(done.error).hasMatch(), qPrintable(done.error));
}

// In the places themselves /tmp is everyone's, for a launcher within too.
void LauncherPlaces::folder_of_the_description_is_its_own()
{
    const LauncherRun done =
        without_namespaces("", {"--no-cell", "--", "sh", "-c",
                                "mkdir /tmp/theirs; "
                                "sh -c 'ln -s /tmp/theirs /tmp/privatecell.$$; exec " +
                                    LAUNCHER + " -- true'; ls -A /tmp/theirs"});
    QCOMPARE(done.error, QString());
    QCOMPARE(done.status, 0);
    QCOMPARE(done.output, QString());
}

LOOP_TEST(LauncherPlaces);
#include "test_launcher_places.moc"
