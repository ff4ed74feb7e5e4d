// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reads the host's log from a mark on, so that a test sees its own entries.
#ifndef SUPPORT_HOSTLOG_H
#define SUPPORT_HOSTLOG_H

#include <QString>
#include <QStringList>
#include <QVector>

struct LoggedEntry {
    int severity;
    int code;
    QString source; // file name without folders
    int line;
    QString text; // as it was logged, line feeds and all
};

class HostLog
{
public:
    // Marks the present end of the log.
    HostLog() { mark(); }
    void mark();

    // Whole entries since the mark.
    QVector<LoggedEntry> entries() const;
    QStringList texts() const;
    // Number of entries since the mark whose text is, or contains, the text.
    int count(const QString &text) const;
    int count_containing(const QString &part) const;

private:
    qint64 m_mark = 0;
};

#endif
