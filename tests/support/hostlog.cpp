// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/hostlog.h"

#include <QFile>
#include <QFileInfo>

#include "hostsim/runtime/log.h"

void HostLog::mark()
{
    m_mark = QFileInfo(QString::fromLatin1(hostsim::LOG_FILE)).size();
}

QVector<LoggedEntry> HostLog::entries() const
{
    QVector<LoggedEntry> entries;
    QFile file(QString::fromLatin1(hostsim::LOG_FILE));
    if (!file.open(QIODevice::ReadOnly))
        return entries;
    // A log that is shorter than it was has been removed and begun anew.
    file.seek(file.size() < m_mark ? 0 : m_mark);
    while (!file.atEnd()) {
        hostsim::LogEntry entry;
        if (hostsim::parse_log_line(file.readLine().toStdString(), &entry))
            entries.append({entry.severity, entry.code, QString::fromStdString(entry.source),
                            entry.line, QString::fromStdString(entry.text)});
    }
    return entries;
}

QStringList HostLog::texts() const
{
    QStringList texts;
    for (const LoggedEntry &entry : entries())
        texts.append(entry.text);
    return texts;
}

int HostLog::count(const QString &text) const
{
    return texts().count(text);
}

int HostLog::count_containing(const QString &part) const
{
    return texts().filter(part).size();
}
