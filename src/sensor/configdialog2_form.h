// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the table information dialog decides from its fields and the record.
// No widget takes part: the dialog reads its form into a SensorForm first.
#ifndef SENSOR_CONFIGDIALOG2_FORM_H
#define SENSOR_CONFIGDIALOG2_FORM_H

#include <QByteArray>

#include "host/tablerecord.h"

// The sensor data of the form; texts as bytes of the record, limits in the units shown. A
// limit that cannot be read is 0, one too large to read infinite.
struct SensorForm {
    QByteArray description;
    QByteArray serial_number;
    QByteArray model;
    QByteArray units;
    double lower;
    double upper;
};

// True when the form differs from the record in anything: any edit, even of the
// description, counts as a change of the calibration.
bool change_affects_calibration(const SensorForm &form, const TABLE_RECORD &table);

// True when Cancel warns of lost changes. The upper limit is looked at only
// when a lower one is NaN: a change of the upper limit alone brings no warning.
bool cancel_loses_changes(const SensorForm &form, const TABLE_RECORD &table);

// Writes the six values into the record, texts cut to their fields and
// trimmed; true when one of them differed. Limits that are nearly equal count as
// the same, and are written all the same.
bool store_sensor_form(const SensorForm &form, TABLE_RECORD *table);

#endif
