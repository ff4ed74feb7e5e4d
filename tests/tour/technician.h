// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a technician does over and over, for the stops of the tour.
#ifndef TOUR_TECHNICIAN_H
#define TOUR_TECHNICIAN_H

#include <QLabel>
#include <QList>

#include "tests/tour/driver.h"

namespace tour
{

// A row of the form: reference, millivolts, button.
struct Row {
    QLineEdit *value;
    QLabel *mv;
    QPushButton *button;
};

QList<Row> visible_rows(Driver &driver);
// "green", "yellow", "orange" or "red" for the style sheet of a judgement, the
// style sheet itself for any other.
QString colour_name(const QString &style);
// The millivolts that the plot's title shows.
double shown_mv(Driver &driver);
// The item of that channel in the list.
int channel_item(Driver &driver, int channel);

// Picks the channel and waits for its reading. Asks nothing, or the stop before
// has left something unfinished.
void pick_channel(Driver &driver, int channel);
// Applies a reference, in the sensor's units, and has the averaging start
// afresh, as leaving the field of the averaging time does, until the plot shows
// the reading.
void apply_reference(Driver &driver, int channel, double value);
// Applies the reference that stands in the row and presses Capture.
void capture_point(Driver &driver, int channel, int point);
void capture_all(Driver &driver, int channel);

// A kind of recording: radio button of the dialog, the box it stamps.
struct Kind {
    const char *name;
    const char *radio;
    const char *box;
};
extern const Kind AS_FOUND;
extern const Kind AFTER_SERVICE;
extern const Kind VERIFICATION;
extern const Kind NEW_CORRELATION;

// In the open dialog: picks the kind, types the description.
void fill_recording(Driver &driver, QWidget *dialog, const Kind &kind, const QString &description);
// Record Data with that kind and description, no question asked.
void record(Driver &driver, const Kind &kind, const QString &description = QString());

} // namespace tour

#endif
