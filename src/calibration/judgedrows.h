// SPDX-License-Identifier: GPL-3.0-or-later
//
// The judgement shown on the point rows. GUI thread, without the table mutex.
#ifndef CALIBRATION_JUDGEDROWS_H
#define CALIBRATION_JUDGEDROWS_H

#include <cstdint>

class MainWindow;
class QWidget;

// Judges point `index`, paints the widget and writes the status.
void classify_point(MainWindow *main, int32_t index, QWidget *widget, uint16_t *status_out);

// Judges all rows below g_num_points again.
void reclassify_rows(MainWindow *main);

// Sets table.worst_status from the rows below g_num_points; with none of them
// the field keeps its value.
void compute_worst_status(MainWindow *main);

#endif
