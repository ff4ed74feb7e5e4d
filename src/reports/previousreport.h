// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the report of a former calibration stands, and how it is shown.
#ifndef REPORTS_PREVIOUSREPORT_H
#define REPORTS_PREVIOUSREPORT_H

#include <QByteArray>

#include "host/tablerecord.h"

// The permanent report of the day of the table's last calibration. The writer
// names it after the day of writing, so only one of that very day is found.
QByteArray previous_report_path(const TABLE_RECORD &table);

// "firefox PATH" for the shell, at most 199 bytes; a path that a shell would
// interpret is quoted, and whole.
QByteArray browser_command(const QByteArray &path);

#endif
