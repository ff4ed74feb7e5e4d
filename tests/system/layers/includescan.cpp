// SPDX-License-Identifier: GPL-3.0-or-later
#include "includescan.h"

#include <QFileInfo>
#include <QHash>
#include <QRegularExpression>

namespace
{

const QString ANY = QStringLiteral("any");
const QString FRAME_WINDOWS = QStringLiteral("src/frame, windows");
const QString INPUT_ROUTING = QStringLiteral("src/input, routing");

// A room may always include itself.
const QHash<QString, QStringList> &rules()
{
    static const QHash<QString, QStringList> table{
        {"src/host", {}},
        {"src/frame", {"src/host"}},
        {FRAME_WINDOWS, {ANY}},
        {"src/acquisition",
         {"src/host", "src/frame", "src/calibration", "src/sensor", "src/input"}},
        {"src/calibration", {"src/host", "src/frame", "src/sensor"}},
        {"src/sensor", {"src/host", "src/frame", "src/calibration"}},
        {"src/reports", {"src/host", "src/frame", "src/calibration", "src/sensor", "src/records"}},
        {"src/records", {"src/host", "src/frame", "src/sensor", "src/reports"}},
        {"src/views", {"src/frame", "src/acquisition", "src/calibration", "src/reports"}},
        {"src/input", {}},
        {INPUT_ROUTING, {"src/frame"}},
        {"hostsim/runtime", {"src/host"}},
        {"hostsim/cell", {"src/host", "hostsim/runtime"}},
        {"hostsim/bld_tables", {"src/host", "hostsim/runtime"}},
        {"hostsim/tools", {"src/host", "hostsim/runtime"}},
    };
    return table;
}

// Two rooms hold files of two kinds, told apart by their names.
QString rule_of(const QString &path)
{
    const QString room = room_of(path);
    const QString stem = QFileInfo(path).baseName();
    if (room == "src/frame" && (stem == "main" || stem.startsWith("mainwindow")))
        return FRAME_WINDOWS;
    if (room == "src/input" && stem.startsWith("inputdevice"))
        return INPUT_ROUTING;
    return room;
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
QString resolved(const QString &path, const QString &target, const FileExists &exists)
{
    for (const QString &place : {path.section('/', 0, -2), QStringLiteral("src"), QString()}) {
        const QString candidate = place.isEmpty() ? target : place + '/' + target;
        if (exists(candidate))
            return candidate;
    }
    return {};
}

bool is_allowed(const QString &path, const QString &target, bool quoted, const FileExists &exists)
{
    const QString room = room_of(path);
    if (!quoted)
        return room != "src/host" || is_c_header(target);
    if (is_generated(target))
        return true;
    const QString file = resolved(path, target, exists);
    if (file.isEmpty())
        return false;
    const QStringList allowed = rules().value(rule_of(path));
    const QString other = room_of(file);
    return other == room || allowed.contains(other) || (allowed.contains(ANY) && !other.isEmpty());
}

} // namespace

QString room_of(const QString &path)
{
    const QStringList steps = path.split('/');
    if (steps.size() < 3 || (steps[0] != "src" && steps[0] != "hostsim"))
        return {};
    return steps[0] + '/' + steps[1];
}

QStringList violations(const QString &path, const QString &text, const FileExists &exists)
{
    if (!rules().contains(rule_of(path)))
        return {path + " lives in a folder that no rule knows"};
    static const QRegularExpression include(R"(^\s*#\s*include\s*(["<])([^">]+)[">])");
    QStringList found;
    int number = 0;
    for (const QString &line : text.split('\n')) {
        ++number;
        const QRegularExpressionMatch match = include.match(line);
        if (!match.hasMatch())
            continue;
        if (!is_allowed(path, match.captured(2), match.captured(1) == "\"", exists))
            found.append(QString("%1:%2 includes %3").arg(path).arg(number).arg(match.captured(2)));
    }
    return found;
}
