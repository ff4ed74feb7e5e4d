// SPDX-License-Identifier: GPL-3.0-or-later
//
// The specs file: names of the host variables that hold the test cell's
// temperature, barometer and humidity, and the addresses that a report can go
// to. Keyword lines, each with its value on the line behind it, in UTF-8. GUI
// thread; takes no lock.
#ifndef RECORDS_SPECSFILE_H
#define RECORDS_SPECSFILE_H

#include <QByteArray>
#include <QString>
#include <QVector>

#include "frame/functions.h"
#include "frame/zerl_cfg.h"

constexpr char SPECS_PATH[] = "/cell/zerl_util_specs.ini";

// Bytes of an address that is typed in, with the terminator; the file may hold
// longer ones.
enum { TYPED_EMAIL_SIZE = 80 };

// The values of the file in the order of its lines, UTF-8.
struct SpecsLines {
    QByteArray temperature;
    QByteArray barometer;
    QByteArray humidity;
    QVector<QByteArray> emails;
};

// Fills the record from the file. False, with a log entry and the record
// untouched, when it cannot be opened; a missing keyword leaves its name empty.
// The addresses are those behind their keyword, at most 25; without the keyword
// the first one is what the line buffer held, the line behind the humidity's
// keyword or an empty text.
bool read_specs(SPECS_BLOCK *specs);

// Writes the file anew, for both that write it. A line break within a value
// becomes a blank. A failure is logged and not shown.
void write_specs(const SpecsLines &lines);

// The record's values as the file has them, without free slots.
SpecsLines specs_lines(const SPECS_BLOCK &specs);

// Number of slots that the record's count covers, 0 to 25 whatever it holds.
int specs_email_count(const SPECS_BLOCK &specs);

// A text of the record. What the file brought is UTF-8 and what the dialog of
// the names stored is Latin-1: bytes that are no UTF-8 are taken as Latin-1.
QString specs_text(const char *text, std::size_t size);
template <std::size_t Size> QString specs_text(const char (&text)[Size])
{
    return specs_text(text, Size);
}

#endif
