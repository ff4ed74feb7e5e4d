// SPDX-License-Identifier: GPL-3.0-or-later
//
// The linearity report as a file. GUI thread only; the session record is read
// without the table mutex.
#ifndef REPORTS_LINEARITYREPORT_H
#define REPORTS_LINEARITYREPORT_H

#include <QByteArray>
#include <QDate>

#include "host/tablerecord.h"

// Name of the report file last opened, also of one that could not be. Nothing
// in the program reads it.
extern QByteArray report_path;

// Computes the figures anew, with their dump, then writes the report on the
// session's channel: a permanent one to /cell/tables/reports, named after the
// table and the day, so that a second one on that day replaces the first;
// otherwise to /tmp/zerl_util_line_rpt.html. False, without a message,
// when the file cannot be opened; errors while writing are not noticed. The
// folder is not made here.
bool generate_line_rpt(bool permanent);

// Path of a table's permanent report of that day.
QByteArray permanent_report_path(const TABLE_RECORD &table, const QDate &day);

#endif
