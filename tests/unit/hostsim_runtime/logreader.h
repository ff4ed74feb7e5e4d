// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reads the private cell's log.
#ifndef TESTS_HOSTSIM_RUNTIME_LOGREADER_H
#define TESTS_HOSTSIM_RUNTIME_LOGREADER_H

#include <QByteArray>
#include <QFile>
#include <QList>

#include "hostsim/runtime/log.h"

// Raw lines of a log file, each with its line feed if it has one.
inline QList<QByteArray> log_lines(const QString &path = QString::fromLatin1(hostsim::LOG_FILE))
{
    QList<QByteArray> lines;
    QFile file(path);
    if (file.open(QIODevice::ReadOnly)) {
        while (!file.atEnd())
            lines.append(file.readLine());
    }
    return lines;
}

// The entries of the log; a line that is none counts as an entry with code -1.
inline QList<hostsim::LogEntry> log_entries()
{
    QList<hostsim::LogEntry> entries;
    for (const QByteArray &line : log_lines()) {
        hostsim::LogEntry entry;
        if (!line.endsWith('\n') || !hostsim::parse_log_line(line.toStdString(), &entry))
            entry.code = -1;
        entries.append(entry);
    }
    return entries;
}

inline void clear_log()
{
    QFile::remove(QString::fromLatin1(hostsim::LOG_FILE));
}

#endif
