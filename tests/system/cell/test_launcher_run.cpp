// SPDX-License-Identifier: GPL-3.0-or-later
//
// The launcher of private cells, with or without name spaces, as the machine has
// them: what a user starts with it.
#include <QtTest>

#include <QDir>
#include <QProcess>
#include <QTemporaryDir>

#include "launcher.h"
#include "support/testmain.h"

class LauncherRunsTheTool : public QObject
{
    Q_OBJECT

private slots:
    void tool_beside_cell_and_panel();
};

void LauncherRunsTheTool::tool_beside_cell_and_panel()
{
    const QTemporaryDir folder;
    Launcher launcher;
    launcher.environment.insert("QT_QPA_PLATFORM", "offscreen");
    // A sanitizer that is linked as a library stands behind the hook.
    launcher.environment.insert("ASAN_OPTIONS", launcher.environment.value("ASAN_OPTIONS") +
                                                    ":verify_asan_link_order=0");
    QProcess process;
    process.setProcessEnvironment(launcher.environment);
    process.start(LAUNCHER, {"--cell", folder.path(), "--start", "--panel", "--", "env",
                             "LD_PRELOAD=" HOOK_PATH, PROGRAM_PATH});
    QByteArray told;
    QTRY_VERIFY_WITH_TIMEOUT((told += process.readAllStandardOutput()).contains("\"window\""),
                             DEADLINE_MS);
    QVERIFY(QFile::exists(folder.filePath("cell/cell.sock")));
    process.write("[\"pick\",\"0\"]\n[\"get\",\"lblTableName\",\"text\"]\n");
    QTRY_VERIFY_WITH_TIMEOUT((told += process.readAllStandardOutput()).contains("oil_pressure"),
                             DEADLINE_MS);
    process.write("[\"close\"]\n");
    QVERIFY(process.waitForFinished(DEADLINE_MS));
    QCOMPARE(process.exitCode(), 0);
    const QByteArray said = process.readAllStandardError(); // the toolkit's own words among it
    QVERIFY2(!said.contains("privatecell:"), said);
    QVERIFY(!QFile::exists(folder.filePath("cell/cell.sock")));
}

LOOP_TEST(LauncherRunsTheTool);
#include "test_launcher_run.moc"
