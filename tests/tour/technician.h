// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a technician does over and over, for the stops of the tour.
#ifndef TOUR_TECHNICIAN_H
#define TOUR_TECHNICIAN_H

#include "tests/tour/driver.h"
#include "tests/tour/looks.h"

namespace tour
{

void press(Driver &driver, const char *button);
void choose_exit(Driver &driver);

// Picks the channel in the list; what that asks is the caller's to answer.
void choose_channel(Driver &driver, int channel);
// Picks the channel and waits for its reading; asks nothing, or the stop before
// has left something unfinished.
void pick_channel(Driver &driver, int channel);
// Applies a reference, in the sensor's units, and has the averaging start
// afresh, as leaving the field of the averaging time does, until the plot shows
// the reading.
void apply_reference(Driver &driver, int channel, double value);
// Applies the reference that stands in the row and presses Capture; points
// count from 0.
void capture_point(Driver &driver, int channel, int point);
void capture_points(Driver &driver, int channel, int first, int last);
void capture_all(Driver &driver, int channel);

// A kind of recording: radio button of the dialog, the box it stamps, the step
// in the archive.
struct Kind {
    const char *step;
    const char *radio;
    const char *box;
};
extern const Kind AS_FOUND;
extern const Kind AFTER_SERVICE;
extern const Kind VERIFICATION;
extern const Kind NEW_CORRELATION;

// How a recording is asked about. Without marks nothing is asked.
struct Asked {
    QString mark;   // of the question behind the button Record
    QString button; // its answer
    QString picture;
    bool points_missing = false; // then R2 comes before the dialog, answered Yes
};

// Does what is to be done in the open dialog, which may leave it open.
void fill_recording(Driver &driver, QWidget *dialog, const Kind &kind, const QString &description);
// Record Data with that kind and description; the table gains a record unless
// the question is declined ("No" or "Cancel").
void record(Driver &driver, const char *table, const Kind &kind, const QString &description,
            const Asked &asked = Asked());
// Adjust and Re-Use; a question is answered Yes when a mark is named.
void adjust(Driver &driver, const char *table, const QString &mark = QString());
void reuse(Driver &driver, const char *table, const QString &mark = QString());

} // namespace tour

#endif
