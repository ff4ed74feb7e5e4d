// SPDX-License-Identifier: GPL-3.0-or-later
#include "launcher.h"

#include <QProcess>

Launcher::Launcher() : environment(QProcessEnvironment::systemEnvironment())
{
    environment.remove("ZERL_PRIVATE_CELL");
    environment.remove("ZERL_WRITABLE");
}

bool Launcher::has_namespaces()
{
    QProcess probe;
    probe.start("bwrap", {"--ro-bind", "/", "/", "true"});
    return probe.waitForFinished(DEADLINE_MS) && probe.exitCode() == 0;
}

LauncherRun Launcher::run_program(const QString &program, const QStringList &arguments) const
{
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(program, arguments);
    const bool ended = process.waitForFinished(DEADLINE_MS);
    if (!ended)
        process.kill();
    return {ended ? process.exitCode() : -1, QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

LauncherRun Launcher::run(const QStringList &arguments) const
{
    return run_program(LAUNCHER, arguments);
}

LauncherRun Launcher::shell(const QStringList &options, const QString &script) const
{
    return run(options + QStringList{"--", "sh", "-c", script});
}
