// SPDX-License-Identifier: GPL-3.0-or-later
//
// The launcher of private cells as its tests run it.
#ifndef SYSTEM_CELL_LAUNCHER_H
#define SYSTEM_CELL_LAUNCHER_H

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>

const QString LAUNCHER = PROJECT_BINARY_DIR "/bin/privatecell";
const QString CELLCTL = PROJECT_BINARY_DIR "/bin/cellctl";
constexpr int DEADLINE_MS = 60000;
constexpr int CANNOT_RUN = 125;

// How a run ended; status -1 when it did not and was killed.
struct LauncherRun {
    int status;
    QString output;
    QString error;
};

class Launcher
{
public:
    Launcher();

    // Whether this machine lets the launcher make views at all.
    static bool has_namespaces();
    LauncherRun run(const QStringList &arguments) const;
    LauncherRun shell(const QStringList &options, const QString &script) const;
    // Runs any program in this environment.
    LauncherRun run_program(const QString &program, const QStringList &arguments) const;

    QProcessEnvironment environment;
};

#endif
