// SPDX-License-Identifier: GPL-3.0-or-later
//
// Working standards: the reference instruments that channels are verified
// against. Each has a small keyword text file that is named after it. GUI thread
// only; there is no lock.
#ifndef RECORDS_WORKINGSTANDARD_H
#define RECORDS_WORKINGSTANDARD_H

#include <optional>

#include <QByteArray>
#include <QString>

#include "frame/line_rpt.h"

constexpr char WORKING_STANDARD_FOLDER[] = "/specs/working_standards/";

// All free text; range and calibration date too.
struct WorkingStandard {
    QString name;
    QString make;
    QString model;
    QString cal_date;
    QString serial_no;
    QString range;
};

// True when none of the six is empty.
bool is_complete(const WorkingStandard &standard);

// Where the standard of that name is looked for, in UTF-8: at most 303 bytes, the
// rest is cut. A name may hold a path separator.
QByteArray working_standard_lookup_path(const QString &name);

// Where it is written, of any length. Differs from the above only for a name too
// long for that.
QByteArray working_standard_path(const QString &name);

// The standard of that name, each value at most as long as the host's reader
// delivers it; nothing when its file cannot be opened. A value whose keyword is
// missing is empty, and a keyword with nothing behind it is its own value. The
// file's first line is not looked at.
std::optional<WorkingStandard> read_working_standard(const QString &name);

// The eleven lines of its file.
QByteArray working_standard_text(const WorkingStandard &standard);

// Replaces its file. A write that fails is logged.
void write_working_standard(const WorkingStandard &standard);

// The report's copy of the six texts, in UTF-8; what is longer than its field is
// cut, which the host logs.
void store_working_standard(const WorkingStandard &standard, LINE_RPT *report);

#endif
