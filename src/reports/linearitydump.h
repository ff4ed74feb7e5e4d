// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dump of a linearity verification: plain text, laid out by the cells of
// the spreadsheet that the figures are checked against.
#ifndef REPORTS_LINEARITYDUMP_H
#define REPORTS_LINEARITYDUMP_H

#include <QByteArray>
#include <QDateTime>

#include "reports/linearityfigures.h"

// "/ram/", table_name (char[80]), the time to the second, and ".html", though
// it is plain text.
QByteArray linearity_dump_path(const char *table_name, const QDateTime &now);

QByteArray linearity_dump(const LinearityFigures &figures);

// Writes the file, replacing one of that name. When it cannot be opened or does
// not find room there is one log entry and no file.
void write_linearity_dump(const QByteArray &path, const QByteArray &text);

#endif
