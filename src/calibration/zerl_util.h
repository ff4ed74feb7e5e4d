// SPDX-License-Identifier: GPL-3.0-or-later
//
// Operations on the window as a whole: the judgement of its rows, the state of
// the calibration process, the table on show. There is no state variable of the
// process: its state is what the five process boxes hold. GUI thread only,
// without the table mutex except where it is named.
#ifndef CALIBRATION_ZERL_UTIL_H
#define CALIBRATION_ZERL_UTIL_H

#include <cstdint>

#include "frame/zerl_cfg.h"

class QWidget;

// Judges point `index`, paints the widget and writes the status, 0 to 3.
void classify_point(MainWindow *main, int32_t index, QWidget *widget, uint16_t *status_out);

// Judges all rows below g_num_points again.
void reclassify_rows(MainWindow *main);

// Sets table.worst_status from the rows below g_num_points; with none of them
// the field keeps its value.
void compute_worst_status(MainWindow *main);

// Empties the process panel; the 64 rows start afresh, or follow their states
// when clear_rows is false.
void reset_process_view(MainWindow *main, bool clear_rows);

// Shows whether all points are captured; after every capture and undo.
void update_record_ready(MainWindow *main);

// Caption "Capture" on all rows, nothing counted as captured.
void clear_row_captions(MainWindow *main);

// What would be lost by leaving now; the first that applies.
enum class Unfinished {
    Nothing,
    Points,      // captured and not recorded
    Calibration, // recorded and neither adjusted nor kept
    Table        // changed and not saved
};
Unfinished first_unfinished(MainWindow *main, ZERL_CFG *cfg);

// Computes the table anew after the range in work changed, and shows it. Takes
// the table mutex for what the monitor pass reads.
void recompute_table_view(MainWindow *main);

#endif
