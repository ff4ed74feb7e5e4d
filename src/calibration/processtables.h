// SPDX-License-Identifier: GPL-3.0-or-later
//
// The rules of the calibration process as data: the questions, the decision
// tables of Adjust and Re-Use, and the colours of a recording.
#ifndef CALIBRATION_PROCESSTABLES_H
#define CALIBRATION_PROCESSTABLES_H

#include <cstdint>

enum QUESTION_MARK {
    QUESTION_NONE,
    QUESTION_R1,
    QUESTION_R2,
    QUESTION_R3,
    QUESTION_R4,
    QUESTION_D1,
    QUESTION_D2,
    QUESTION_D3,
    QUESTION_Q1,
    QUESTION_Q2,
    QUESTION_Q3,
    QUESTION_Q4,
    QUESTION_Q5,
    QUESTION_Q6,
    QUESTION_G1,
    QUESTION_G2,
    QUESTION_G3,
    QUESTION_L1,
    QUESTION_L2,
    QUESTION_L3,
    QUESTION_INVALID_POINTS,
    QUESTION_AVERAGING_TIME,
    QUESTION_COUNT
};

// OK alone; Yes and No with No as default; OK and Cancel with Cancel as default.
enum QUESTION_BUTTONS { BUTTONS_OK, BUTTONS_YES_NO, BUTTONS_OK_CANCEL };

struct QUESTION {
    QUESTION_MARK mark;
    const char *title;
    const char *text;
    QUESTION_BUTTONS buttons;
};

const QUESTION &question(QUESTION_MARK mark);

// Colour of a process box; BOX_KEEPS leaves the box alone, its text too.
enum BOX_COLOUR { BOX_KEEPS = -1, BOX_GREEN = 0, BOX_YELLOW = 1, BOX_ORANGE = 2, BOX_RED = 3 };

// One row of a decision table: it applies to records of that save type with a
// worst status from lowest to highest.
struct DECISION {
    uint16_t last_save_type;
    uint16_t lowest;
    uint16_t highest;
    QUESTION_MARK asked;
    BOX_COLOUR table_updated; // txtAdjustCalibration
    BOX_COLOUR after_service; // txtAfterService, which then reads "N/A"
};

// Rows that no save type meets: no question, no change of colour.
const DECISION &adjust_decision(uint16_t last_save_type, uint16_t worst_status);
const DECISION &reuse_decision(uint16_t last_save_type, uint16_t worst_status);

// What a recording suggests: styles of the two decision buttons, and the advice
// as rich text or null.
struct RECORDING_ADVICE {
    int32_t save_type;
    uint16_t lowest;
    uint16_t highest;
    const char *reuse_style;
    const char *adjust_style;
    const char *next_step;
};

// Null when the save type has no colours (New Correlation).
const RECORDING_ADVICE *recording_advice(int32_t save_type, uint16_t worst_status);

#endif
