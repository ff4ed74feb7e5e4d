// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/previousreport.h"

#include <QDateTime>

#include "frame/functions.h"
#include "reports/linearityreport.h"

namespace
{

constexpr int COMMAND_SIZE = 200;

} // namespace

QByteArray previous_report_path(const TABLE_RECORD &table)
{
    // The time is taken as 32 bits without a sign.
    const auto seconds = static_cast<uint32_t>(table.last_cal_time);
    return permanent_report_path(table, QDateTime::fromSecsSinceEpoch(seconds).date());
}

// Quotes may take an odd name past the usual length; a cut one would lose the
// closing quote.
QByteArray browser_command(const QByteArray &path)
{
    const QByteArray command = "firefox " + for_shell(path.constData());
    return plain_for_shell(path.constData()) ? command.left(COMMAND_SIZE - 1) : command;
}
