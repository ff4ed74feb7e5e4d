// SPDX-License-Identifier: GPL-3.0-or-later
#include "includescan.h"

#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>
#include <QSet>

namespace
{

const QString ROOF = QStringLiteral("src roof");

// A room may always include itself. What the rooms below it know is listed too:
// a header brings its own headers along.
const QHash<QString, QStringList> &rules()
{
    static const QStringList ground{"src/host", "src/frame", "src/window"};
    static const QStringList sensor = ground + QStringList{"src/sensor"};
    static const QStringList calibration = sensor + QStringList{"src/calibration"};
    static const QStringList reports = calibration + QStringList{"src/records", "src/reports"};
    static const QStringList all =
        reports + QStringList{"src/acquisition", "src/views", "src/input"};
    static const QStringList runtime{"src/host", "hostsim/runtime"};
    static const QHash<QString, QStringList> table{
        {"src/host", {}},
        {"src/frame", {"src/host"}},
        {"src/window", ground},
        {"src/input", ground},
        {"src/sensor", ground},
        {"src/calibration", sensor},
        {"src/acquisition", calibration},
        {"src/records", sensor},
        {"src/reports", reports},
        {"src/views", reports + QStringList{"src/acquisition"}},
        {ROOF, all},
        {"hostsim/runtime", {"src/host"}},
        {"hostsim/cell", runtime},
        {"hostsim/bld_tables", runtime},
        {"hostsim/tools", runtime},
    };
    return table;
}

bool of_the_roof(const QString &path)
{
    static const QRegularExpression names(
        R"(^src/(frame/main\.cpp|\w+/mainwindow(_\w+)?\.(h|cpp)|calibration/(zerl_util|savetypedialog)\.(h|cpp))$)");
    return names.match(path).hasMatch();
}

bool is_c_header(const QString &target)
{
    static const QStringList headers{"assert.h", "stddef.h", "stdint.h", "stdio.h"};
    return headers.contains(target);
}

// Made by the build from a form or from a class's own file.
bool is_generated(const QString &target)
{
    const QString name = QFileInfo(target).fileName();
    return (name.startsWith("ui_") && name.endsWith(".h")) || name.endsWith(".moc") ||
           (name.startsWith("moc_") && name.endsWith(".cpp"));
}

// Where a quoted include leads, as the compiler looks for it; empty: nowhere.
QString resolved(const QString &path, const QString &target, const ReadFile &read)
{
    for (const QString &place : {path.section('/', 0, -2), QStringLiteral("src"), QString()}) {
        const QString candidate = place.isEmpty() ? target : place + '/' + target;
        if (read(candidate).has_value())
            return candidate;
    }
    return {};
}

struct Include {
    int line;
    QString target;
    bool quoted;
};

QVector<Include> includes_of(const QString &text)
{
    static const QRegularExpression form(R"(^\s*#\s*include\s*(["<])([^">]+)[">])");
    QVector<Include> found;
    int line = 0;
    for (const QString &row : text.split('\n')) {
        ++line;
        const QRegularExpressionMatch match = form.match(row);
        if (match.hasMatch())
            found.append({line, match.captured(2), match.captured(1) == "\""});
    }
    return found;
}

class Walk
{
public:
    Walk(const QString &start, const ReadFile &read) : m_start(start), m_read(read) {}

    QStringList found;

    void visit(const QString &path)
    {
        m_seen.insert(path);
        for (const Include &include : includes_of(m_read(path).value_or(QString()))) {
            if (!include.quoted) {
                if (path == m_start && room_of(path) == "src/host" && !is_c_header(include.target))
                    tell(path, include);
                continue;
            }
            if (is_generated(include.target))
                continue;
            const QString file = resolved(path, include.target, m_read);
            if (file.isEmpty() || !allowed(room_of(file)))
                tell(path, include);
            else if (!m_seen.contains(file))
                visit(file);
        }
    }

private:
    bool allowed(const QString &other) const
    {
        const QString room = room_of(m_start);
        return other == room || rules().value(room).contains(other);
    }
    void tell(const QString &path, const Include &include)
    {
        QString line = QString("%1:%2 includes %3").arg(path).arg(include.line).arg(include.target);
        if (path != m_start)
            line += ", reached from " + m_start;
        found.append(line);
    }

    QString m_start;
    const ReadFile &m_read;
    QSet<QString> m_seen;
};

} // namespace

QString room_of(const QString &path)
{
    if (of_the_roof(path))
        return ROOF;
    const QStringList steps = path.split('/');
    if (steps.size() < 3 || (steps[0] != "src" && steps[0] != "hostsim"))
        return {};
    return steps[0] + '/' + steps[1];
}

QStringList violations(const QString &path, const ReadFile &read)
{
    if (!rules().contains(room_of(path)))
        return {path + " lives in a folder that no rule knows"};
    Walk walk(path, read);
    walk.visit(path);
    return walk.found;
}
