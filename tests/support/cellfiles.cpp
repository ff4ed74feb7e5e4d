// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/cellfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTest>

void require_private_cell()
{
    if (qgetenv("ZERL_PRIVATE_CELL") != "1")
        qFatal("this test runs in a private cell only: start it with bin/privatecell --no-cell");
}

void write_file(const QString &path, const QByteArray &bytes)
{
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        qFatal("%s: %s", qPrintable(path), qPrintable(file.errorString()));
}

QByteArray read_file(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void verify_tables()
{
    const QString vxtable = QString::fromLocal8Bit(qgetenv("ZERL_VERIFY"));
    if (vxtable.isEmpty())
        return;
    const auto files = QDir(QStringLiteral("/cell/tables"))
                           .entryInfoList({"*.tbl", "*.save", "*.old"}, QDir::Files);
    for (const QFileInfo &file : files) {
        QProcess process;
        process.start(vxtable, {QStringLiteral("verify"), file.filePath()});
        if (!process.waitForFinished(60000) || process.exitCode() != 0)
            QTest::qFail(qPrintable(QStringLiteral("damaged: ") + file.filePath()), __FILE__,
                         __LINE__);
    }
}

void clear_cell()
{
    require_private_cell();
    verify_tables();
    for (const char *place : {"/cell", "/specs", "/ram"}) {
        const QDir folder(QString::fromLatin1(place));
        const auto entries = folder.entryInfoList(QDir::AllEntries | QDir::System | QDir::Hidden |
                                                  QDir::NoDotAndDotDot);
        for (const QFileInfo &entry : entries) {
            if (entry.isDir() && !entry.isSymLink())
                QDir(entry.filePath()).removeRecursively();
            else
                QFile::remove(entry.filePath());
        }
    }
    QDir().mkpath(QStringLiteral("/cell/tables"));
}

QStringList published_memories()
{
    QStringList paths;
    const auto entries =
        QDir(QStringLiteral("/dev/shm"))
            .entryInfoList({QStringLiteral("vornax.*")}, QDir::Files | QDir::System);
    for (const QFileInfo &entry : entries)
        paths.append(entry.filePath());
    return paths;
}
