// SPDX-License-Identifier: GPL-3.0-or-later
//
// The launcher of private cells. Cells that the launcher makes, keeps and starts.
#include <QtTest>

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "launcher.h"
#include "support/testmain.h"

class LauncherCell : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void described_cell();
    void description_by_file();
    void kept_folder();
    void touch_marker();
    void started_cell();
    void cell_that_does_not_start();
    void command_that_ends_the_cell();
    void running_cell_keeps_its_marker();

private:
    Launcher m_launcher;
};

void LauncherCell::initTestCase()
{
    if (!Launcher::has_namespaces())
        QSKIP("this machine refuses name spaces");
}

void LauncherCell::described_cell()
{
    const LauncherRun done =
        m_launcher.shell({}, "test -f /cell/cell.txt && test -f /cell/tables/oil_pressure.tbl && "
                             "test -d /cell/tables/reports && test -w /ram && "
                             "test -f /cell/zerl_util_specs.ini && "
                             "test -f /specs/working_standards/DWT-12.txt && "
                             "test ! -e /cell/cell.sock && ls /dev/shm");
    QCOMPARE(done.error, QString());
    QCOMPARE(done.status, 0);
    QCOMPARE(done.output, QString());
}

void LauncherCell::description_by_file()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("mine.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("cell Mine\nchannel 0\nlabel Only\n");
    file.close();
    const LauncherRun done =
        m_launcher.shell({"--describe", file.fileName(), "--start"}, CELLCTL + " list");
    QCOMPARE(done.status, 0);
    QVERIFY(done.output.contains("    0  active    Only "));
    QCOMPARE(done.output.count('\n'), 2);
}

void LauncherCell::kept_folder()
{
    const QTemporaryDir folder;
    const QStringList options{"--cell", folder.filePath("kept cell")};
    QCOMPARE(m_launcher.shell(options, "echo mine >/cell/tables/oil_pressure.tbl; echo x >/specs/x")
                 .status,
             0);
    QVERIFY(QFile::exists(folder.filePath("kept cell/cell/cell.txt")));
    const LauncherRun again = m_launcher.shell(options + QStringList{"--start"},
                                               "cat /cell/tables/oil_pressure.tbl /specs/x");
    QCOMPARE(again.error, QString());
    QCOMPARE(again.output, QString("mine\nx\n"));
    QVERIFY(!QFile::exists(folder.filePath("kept cell/cell/cell.sock")));
}

void LauncherCell::touch_marker()
{
    const QTemporaryDir folder;
    const QStringList options{"--cell", folder.path()};
    QCOMPARE(
        m_launcher.shell(options + QStringList{"--touch"}, "test -f /cell/vornax_ts.ini").status,
        0);
    QCOMPARE(m_launcher.shell(options, "test ! -e /cell/vornax_ts.ini").status, 0);
    QCOMPARE(m_launcher.shell({"--touch", "--no-cell"}, "test -f /cell/vornax_ts.ini").status, 0);
}

void LauncherCell::started_cell()
{
    const LauncherRun done =
        m_launcher.shell({"--start"}, CELLCTL + " apply --now 14 50 && " + CELLCTL +
                                          " show 14 && /vornax/bin/bld_tables");
    QCOMPARE(done.error, QString());
    QCOMPARE(done.status, 0);
    QVERIFY2(done.output.contains("Good Sensor"), qPrintable(done.output));
}

void LauncherCell::cell_that_does_not_start()
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("cell.txt"));
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("cell Mine\nwrong\n");
    file.close();
    const LauncherRun done = m_launcher.shell({"--describe", folder.path(), "--start"}, "echo ran");
    QCOMPARE(done.status, CANNOT_RUN);
    QCOMPARE(done.output, QString());
    QCOMPARE(done.error, QString("/cell/cell.txt:2: unknown keyword: wrong\n"
                                 "privatecell: the training cell did not start\n"));
}

void LauncherCell::command_that_ends_the_cell()
{
    const LauncherRun done =
        m_launcher.shell({"--start"}, CELLCTL + " quit; touch /dev/shm/vornax.77; exit 3");
    QCOMPARE(done.status, 3);
    QCOMPARE(done.error, QString("privatecell: shared memory left behind: /dev/shm/vornax.77\n"));
}

void LauncherCell::running_cell_keeps_its_marker()
{
    const QTemporaryDir folder;
    QProcess first;
    first.setProcessEnvironment(m_launcher.environment);
    first.start(LAUNCHER, {"--cell", folder.path(), "--start", "--touch", "--", "sh", "-c",
                           "echo up; read line; test -f /cell/vornax_ts.ini"});
    QTRY_VERIFY_WITH_TIMEOUT(first.bytesAvailable() > 0, DEADLINE_MS);
    QCOMPARE(m_launcher.shell({"--cell", folder.path(), "--start"}, "echo ran").status, CANNOT_RUN);
    QCOMPARE(m_launcher.shell({"--cell", folder.path()}, "echo ran").status, CANNOT_RUN);
    first.write("\n");
    QVERIFY(first.waitForFinished(DEADLINE_MS));
    QCOMPARE(first.exitCode(), 0);
}

LOOP_TEST(LauncherCell);
#include "test_launcher_cell.moc"
