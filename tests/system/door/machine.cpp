// SPDX-License-Identifier: GPL-3.0-or-later
#include "machine.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QProcessEnvironment>
#include <QStandardPaths>

namespace
{

// What a bare Debian has and ./zerl calls.
const QStringList TOOLS{"sh",   "cat",   "chmod", "dirname", "env",   "find", "grep",     "head",
                        "kill", "ls",    "mkdir", "mktemp",  "nproc", "pwd",  "readlink", "rm",
                        "sed",  "sleep", "sort",  "timeout", "tr",    "true", "xargs"};

void write_file(const QString &path, const QString &text)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(text.toUtf8()) < 0)
        qFatal("cannot write %s", qPrintable(path));
}

} // namespace

Machine::Machine()
{
    QDir().mkpath(tree());
    QDir().mkpath(m_folder.filePath("bin"));
    copy_from_project("zerl");
    for (const QString &name :
         QDir(QString(PROJECT_SOURCE_DIR) + "/tools/door").entryList({"*.sh"}))
        copy_from_project("tools/door/" + name);
    for (const QString &tool : TOOLS) {
        const QString place = QStandardPaths::findExecutable(tool);
        if (!place.isEmpty())
            QFile::link(place, m_folder.filePath("bin/" + tool));
    }
    command("id", "echo 0");
    command("apt-get", "if [ \"$1\" = indextargets ]; then echo some_Packages; fi");
    command("sudo", "if [ \"$1\" = -n ]; then shift; fi; exec \"$@\"");
    command("bwrap", "");
    command("cmake", "mkdir -p build; touch build/configured");
    command("ctest", "echo '100% tests passed, 0 tests failed out of 1'");
    command("Xvfb", "echo 42 >&3; exec sleep 600");
    command("touch", ": >\"$1\"");
    not_installed({});
    environment("PATH", m_folder.filePath("bin"));
    environment("CI", "true");
    environment("HOME", m_folder.filePath("home"));
    environment("TMPDIR", m_folder.path());
}

void Machine::copy_from_project(const QString &name) const
{
    QDir().mkpath(QFileInfo(path(name)).path());
    if (!QFile::copy(QString(PROJECT_SOURCE_DIR) + '/' + name, path(name)))
        qFatal("no ./%s", qPrintable(name));
}

QString Machine::tree() const
{
    return m_folder.filePath("tree");
}

QString Machine::path(const QString &name) const
{
    return tree() + '/' + name;
}

void Machine::command(const QString &name, const QString &body)
{
    const QString place = m_folder.filePath("bin/" + name);
    QFile::remove(place);
    write_file(place, QString("#!/bin/sh\nprintf '%s\\n' \"%1 $*\" >>'%2'\n%3\n")
                          .arg(name, m_folder.filePath("calls"), body));
    QFile::setPermissions(place, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void Machine::without(const QString &name)
{
    QFile::remove(m_folder.filePath("bin/" + name));
}

void Machine::not_installed(const QStringList &packages)
{
    const QString named = packages.isEmpty() ? "none" : packages.join('|');
    command("dpkg-query", "for last; do :; done\n"
                          "case $last in\n" +
                              named + ") exit 1 ;;\n*) echo installed ;;\nesac");
}

void Machine::ordinary_user()
{
    command("id", "echo 1000");
}

void Machine::environment(const QString &name, const QString &value)
{
    m_environment.erase(
        std::remove_if(m_environment.begin(), m_environment.end(),
                       [&](const QString &entry) { return entry.startsWith(name + '='); }),
        m_environment.end());
    if (!value.isNull())
        m_environment.append(name + '=' + value);
}

void Machine::write(const QString &name, const QString &text) const
{
    write_file(path(name), text);
}

bool Machine::exists(const QString &name) const
{
    return QFileInfo::exists(path(name));
}

Outcome Machine::zerl(const QStringList &arguments, const QString &input)
{
    return start(path("zerl"), arguments, input);
}

Outcome Machine::zerl_by_link(const QStringList &arguments)
{
    const QString link = m_folder.filePath("link");
    QFile::link(path("zerl"), link);
    return start(link, arguments, {});
}

Outcome Machine::start(const QString &script, const QStringList &arguments, const QString &input)
{
    QProcess process;
    process.setEnvironment(m_environment);
    process.setWorkingDirectory(m_folder.path());
    process.start("/bin/sh", QStringList{script} + arguments);
    process.write(input.toUtf8());
    process.closeWriteChannel();
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit)
        return {-1, {}, {}};
    return {process.exitCode(), QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QStringList Machine::calls(const QString &beginning) const
{
    QFile file(m_folder.filePath("calls"));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    QStringList found;
    for (const QString &line : QString::fromUtf8(file.readAll()).split('\n')) {
        if (line.startsWith(beginning))
            found.append(line);
    }
    return found;
}
