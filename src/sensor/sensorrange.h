// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether a sensor's range can serve a calibration, and what the user is told
// when it cannot.
//
// The rule runs in two slightly different forms: sensor_range_reason judges the
// record, form_range_reason the texts of the table information dialog. Both
// take the first hit, in the order of the reasons; they differ in this alone:
//
//                         record                  form
//   limits the same       within 1e-6             exactly equal
//   not a number          a limit is NaN          a text holds "nan", lower case
//   unreadable            does not arise          a text that is no number
//   units none            the word, any case      the letters anywhere, any case
//
// So limits closer than 1e-6, and a limit typed as "NaN", pass the form and fail
// as a record. An empty field, read as 0, meets the comparison of the limits
// first.
#ifndef SENSOR_SENSORRANGE_H
#define SENSOR_SENSORRANGE_H

#include <cstdint>

#include <QByteArray>
#include <QString>

#include "host/tablerecord.h"

enum : uint32_t {
    RANGE_VALID = 0,
    RANGE_REVERSED = 1,
    RANGE_EMPTY = 2,
    RANGE_NOT_A_NUMBER = 3,
    RANGE_UNREADABLE = 4, // form only
    RANGE_UNITS_MISSING = 5,
    RANGE_UNITS_NONE = 6,
    RANGE_UNITS_UNLIKE = 7 // sensor and table units differ in dimension
};

// Reason code of a record.
uint32_t sensor_range_reason(const TABLE_RECORD &table);

// The range as the form shows it.
struct RangeForm {
    QString lower; // texts of the limits, in the units below
    QString upper;
    QByteArray units; // unit keyword
};

// Reason code of the form; eng_units are the table's engineering units.
uint32_t form_range_reason(const RangeForm &form, const char *eng_units);

// Text of the box titled "Update Data" that opens the dialog for a record's
// reason; empty for reasons that no record gives.
QString range_update_text(uint32_t reason, const TABLE_RECORD &table);

// Title and text of the box that refuses a form; units as on the form.
QString range_refusal_title(uint32_t reason);
QString range_refusal_text(uint32_t reason, const QString &units, const QString &eng_units);

#endif
