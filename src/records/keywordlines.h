// SPDX-License-Identifier: GPL-3.0-or-later
//
// Keyword text files: keyword lines that begin with "@", each followed by its
// value line. Every writer of such a file makes its lines here, so that what one
// writes another reads; the host's get_1st_line and get_next_line read them. Texts and paths are
// UTF-8.
#ifndef RECORDS_KEYWORDLINES_H
#define RECORDS_KEYWORDLINES_H

#include <QByteArray>
#include <QString>

// One line. A break or zero byte within it becomes a blank, so that it stays one
// line.
QByteArray text_line(QByteArray text);

// The keyword's line and its value's.
QByteArray keyword_lines(const char *keyword, const QByteArray &value);

// Text of a line that the host's readers delivered. Bytes that are no UTF-8 become
// replacement characters.
QString text_of_line(const char *line);

#endif
