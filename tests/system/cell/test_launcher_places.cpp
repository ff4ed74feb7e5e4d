// SPDX-License-Identifier: GPL-3.0-or-later
//
// The launcher of private cells. Where name spaces are refused: the places themselves.
#include <QtTest>

#include <QDir>
#include <QFile>

#include "launcher.h"
#include "support/testmain.h"

class LauncherPlaces : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void places_themselves_data();
    void places_themselves();
    void places_that_belong_to_someone();
    void places_of_a_killed_run();

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

LOOP_TEST(LauncherPlaces);
#include "test_launcher_places.moc"
