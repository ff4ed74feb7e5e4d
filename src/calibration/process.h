// SPDX-License-Identifier: GPL-3.0-or-later
//
// The state of the calibration process. There is no state variable: the state
// is what the five process boxes hold. GUI thread only.
#ifndef CALIBRATION_PROCESS_H
#define CALIBRATION_PROCESS_H

#include "frame/zerl_cfg.h"

// Empties the process panel; the 64 rows start afresh, or follow their states
// when clear_rows is false.
void reset_process_view(MainWindow *main, bool clear_rows);

// Shows whether all points are captured; after every capture and undo.
void update_record_ready(MainWindow *main);

// Caption "Capture" on all rows, nothing counted as captured.
void clear_row_captions(MainWindow *main);

// What would be lost by leaving now; the first that applies.
enum UNFINISHED {
    UNFINISHED_NOTHING,
    UNFINISHED_POINTS,      // captured and not recorded
    UNFINISHED_CALIBRATION, // recorded and neither adjusted nor kept
    UNFINISHED_TABLE        // changed and not saved
};
UNFINISHED first_unfinished(MainWindow *main, ZERL_CFG *cfg);

#endif
