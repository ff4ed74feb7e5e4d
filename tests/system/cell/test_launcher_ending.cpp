// SPDX-License-Identifier: GPL-3.0-or-later
//
// The launcher of private cells. What stays of a run that is terminated or killed.
#include <csignal>

#include <QtTest>

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

#include "launcher.h"
#include "support/testmain.h"

class LauncherEnding : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void terminated_launcher_leaves_nothing_data();
    void terminated_launcher_leaves_nothing();
    void killed_launcher_takes_the_cell_along();
    void terminated_while_the_cell_starts();

private:
    Launcher m_launcher;
};

void LauncherEnding::initTestCase()
{
    if (!Launcher::has_namespaces())
        QSKIP("this machine refuses name spaces");
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

void LauncherEnding::terminated_launcher_leaves_nothing_data()
{
    QTest::addColumn<bool>("own_ids");
    QTest::addColumn<int>("signal");
    QTest::newRow("terminated") << true << SIGTERM;
    QTest::newRow("interrupted") << true << SIGINT;
    QTest::newRow("hung up") << true << SIGHUP;
    QTest::newRow("without process ids of its own") << false << SIGTERM;
}

void LauncherEnding::terminated_launcher_leaves_nothing()
{
    QFETCH(bool, own_ids);
    QFETCH(int, signal);
    const QTemporaryDir folder;
    const QTemporaryDir tools;
    QProcess process;
    process.setProcessEnvironment(own_ids ? m_launcher.environment
                                          : without_process_ids(m_launcher.environment, tools));
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
    QCOMPARE(
        m_launcher.shell({"--cell", folder.path(), "--start"}, CELLCTL + " list >/dev/null").status,
        0);
}

void LauncherEnding::killed_launcher_takes_the_cell_along()
{
    const QTemporaryDir folder;
    const QTemporaryDir tools;
    QProcess process;
    process.setProcessEnvironment(without_process_ids(m_launcher.environment, tools));
    process.start(LAUNCHER, {"--cell", folder.path(), "--start", "--", "sh", "-c",
                             "echo up; exec sleep 1000"});
    QTRY_VERIFY_WITH_TIMEOUT(process.bytesAvailable() > 0, DEADLINE_MS);
    process.kill();
    QVERIFY(process.waitForFinished(DEADLINE_MS));
    QVERIFY(lock_comes_free(folder));
}

// Wherever on the way to a running cell the signal meets it.
void LauncherEnding::terminated_while_the_cell_starts()
{
    const QTemporaryDir folder;
    for (int round = 0; round < 8; ++round) {
        QProcess process;
        process.setProcessEnvironment(m_launcher.environment);
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

LOOP_TEST(LauncherEnding);
#include "test_launcher_ending.moc"
