// SPDX-License-Identifier: GPL-3.0-or-later
//
// The rules of the calibration process as data: the questions, the decision
// tables of Adjust and Re-Use, and the colours of a recording.
#ifndef CALIBRATION_PROCESSTABLES_H
#define CALIBRATION_PROCESSTABLES_H

#include <cstdint>

enum class QuestionMark {
    None,
    R1,
    R2,
    R3,
    R4,
    D1,
    D2,
    D3,
    Q1,
    Q2,
    Q3,
    Q4,
    Q5,
    Q6,
    G1,
    G2,
    G3,
    L1,
    L2,
    L3,
    InvalidPoints,
    AveragingTime,
    Count
};

// OK alone; Yes and No with No as default; OK and Cancel with Cancel as default.
enum class QuestionButtons { Ok, YesNo, OkCancel };

struct ProcessQuestion {
    QuestionMark mark;
    const char *title;
    const char *text;
    QuestionButtons buttons;
};

const ProcessQuestion &question(QuestionMark mark);

// Colour of a process box; BoxColour::Keeps leaves the box alone, its text too.
enum class BoxColour { Keeps = -1, Green = 0, Yellow = 1, Orange = 2, Red = 3 };

// One row of a decision table: it applies to records of that save type with a
// worst status from lowest to highest.
struct ProcessDecision {
    uint16_t last_save_type;
    uint16_t lowest;
    uint16_t highest;
    QuestionMark asked;
    BoxColour table_updated; // txtAdjustCalibration
    BoxColour after_service; // txtAfterService, which then reads "N/A"
};

// Rows that no save type meets: no question, no change of colour.
const ProcessDecision &adjust_decision(uint16_t last_save_type, uint16_t worst_status);
const ProcessDecision &reuse_decision(uint16_t last_save_type, uint16_t worst_status);

// What a recording suggests: styles of the two decision buttons, and the advice
// as rich text or null.
struct RecordingAdvice {
    int32_t save_type;
    uint16_t lowest;
    uint16_t highest;
    const char *reuse_style;
    const char *adjust_style;
    const char *next_step;
};

// Null when the save type has no colours (New Correlation).
const RecordingAdvice *recording_advice(int32_t save_type, uint16_t worst_status);

#endif
