// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/processtables.h"

#include "host/tablerecord.h"
#include "window/styles.h"

namespace
{

constexpr char CAPTURED_NOT_RECORDED[] = "Captured Points Not Recorded";
constexpr char INCOMPLETE[] = "Incomplete Calibration";
constexpr char MODIFIED[] = "Table Information Modified";
constexpr char ADJUST_TITLE[] = "Adjust Calibration?";
constexpr char REUSE_TITLE[] = "Re-Use Calibration?";

// clang-format off
constexpr QUESTION QUESTIONS[QUESTION_COUNT] = {
    {QUESTION_NONE, "", "", BUTTONS_OK},
    {QUESTION_R1, "Information",
     "Please enter the Technician Name and Working Standard before Recording data.", BUTTONS_OK},
    {QUESTION_R2, "Warning",
     "You have attempted to Record Data without all points being captured\n\n"
     "Are you sure you want to Record the data?", BUTTONS_YES_NO},
    {QUESTION_R3, "Duplicate As-Found Data",
     "Please describe why As-Found data is being\ncollected again in the description box",
     BUTTONS_OK},
    {QUESTION_R4, "Service Description",
     "Please describe the service\nperformed in the description box", BUTTONS_OK},
    {QUESTION_D1, "Warning",
     "This channel has already been serviced or adjusted.\n\n"
     "Are you sure you want to record this as As-Found data?", BUTTONS_YES_NO},
    {QUESTION_D2, "Warning",
     "This channel has already been adjusted.\n\n"
     "Are you sure you want to record this as After-Service data?", BUTTONS_OK_CANCEL},
    {QUESTION_D3, "Warning",
     "No adjustment has been made.\n\n"
     "Are you sure you want to record this as Verification data?", BUTTONS_YES_NO},
    {QUESTION_Q1, ADJUST_TITLE,
     "Data shows that this channel does not require adjustment.\n\n"
     "Do you want to adjust anyway?", BUTTONS_YES_NO},
    {QUESTION_Q2, ADJUST_TITLE,
     "Data shows that this channel needs service.\n\n"
     "Do you want to adjust the calibration anyway?", BUTTONS_YES_NO},
    {QUESTION_Q3, REUSE_TITLE,
     "Data shows that this channel needs to be adjusted.\n\n"
     "Do you want to re-use last calibration anyway?", BUTTONS_YES_NO},
    {QUESTION_Q4, REUSE_TITLE,
     "Data shows that this channel needs service.\n\n"
     "Do you want to re-use last calibration anyway?", BUTTONS_YES_NO},
    {QUESTION_Q5, ADJUST_TITLE,
     "This data was collected as verification, not for calibration.\n\n"
     "Do you want to adjust anyway?", BUTTONS_YES_NO},
    {QUESTION_Q6, ADJUST_TITLE,
     "This data was collected as verification, not for calibration.\n\n"
     "Do you want to update cal anyway?", BUTTONS_YES_NO},
    {QUESTION_G1, CAPTURED_NOT_RECORDED,
     "Captured points have not been recorded.\n\n"
     "Click OK to exit anyway or Cancel to return and record data.", BUTTONS_OK_CANCEL},
    {QUESTION_G2, INCOMPLETE,
     "The calibration is incomplete.\n\n"
     "Click OK to exit anyway or Cancel to return and complete the calibration.",
     BUTTONS_OK_CANCEL},
    {QUESTION_G3, MODIFIED,
     "The table information has been modified and will not be saved without updating the "
     "calibration table.\n\n"
     "Click OK to exit anyway or Cancel to return and update the calibration.",
     BUTTONS_OK_CANCEL},
    {QUESTION_L1, CAPTURED_NOT_RECORDED,
     "Captured points have not been recorded.\n\n"
     "Click OK to leave this channel anyway or Cancel to return and record data.",
     BUTTONS_OK_CANCEL},
    {QUESTION_L2, INCOMPLETE,
     "The calibration is incomplete.\n\n"
     "Click OK to leave this channel anyway or Cancel to return and complete the calibration.",
     BUTTONS_OK_CANCEL},
    {QUESTION_L3, MODIFIED,
     "The table information has been modified and will not be saved without updating the "
     "calibration table.\n\n"
     "Click OK to leave this channel anyway or Cancel to return and update the calibration.",
     BUTTONS_OK_CANCEL},
    {QUESTION_INVALID_POINTS, "Invalid Calibration Points",
     "A invalid value for Calibration Points was entered\n\n"
     "Please reenter a Calibration Points value between 2 and 64", BUTTONS_OK},
    {QUESTION_AVERAGING_TIME, "Wrong Value Entered",
     "The entered Averaging Time must be between 5 and 30 seconds", BUTTONS_OK},
};

// The two tables are deliberately not mirror images.
constexpr DECISION ADJUST_DECISIONS[] = {
    {SAVE_AS_FOUND,      0, 0, QUESTION_Q1,   BOX_GREEN,  BOX_GREEN},
    {SAVE_AS_FOUND,      1, 1, QUESTION_NONE, BOX_GREEN,  BOX_GREEN},
    {SAVE_AS_FOUND,      2, 3, QUESTION_Q2,   BOX_RED,    BOX_GREEN},
    {SAVE_AFTER_SERVICE, 0, 3, QUESTION_NONE, BOX_GREEN,  BOX_KEEPS},
    {SAVE_VERIFICATION,  0, 3, QUESTION_Q5,   BOX_GREEN,  BOX_KEEPS},
};

constexpr DECISION REUSE_DECISIONS[] = {
    {SAVE_AS_FOUND,      0, 0, QUESTION_NONE, BOX_GREEN,  BOX_GREEN},
    {SAVE_AS_FOUND,      1, 1, QUESTION_Q3,   BOX_YELLOW, BOX_YELLOW},
    {SAVE_AS_FOUND,      2, 3, QUESTION_Q4,   BOX_RED,    BOX_RED},
    {SAVE_AFTER_SERVICE, 0, 0, QUESTION_NONE, BOX_GREEN,  BOX_KEEPS},
    {SAVE_AFTER_SERVICE, 1, 1, QUESTION_Q3,   BOX_YELLOW, BOX_KEEPS},
    {SAVE_AFTER_SERVICE, 2, 3, QUESTION_Q4,   BOX_RED,    BOX_KEEPS},
    {SAVE_VERIFICATION,  0, 0, QUESTION_Q6,   BOX_GREEN,  BOX_KEEPS},
    {SAVE_VERIFICATION,  1, 3, QUESTION_Q5,   BOX_GREEN,  BOX_KEEPS},
};

constexpr DECISION NO_DECISION = {0, 0, 0, QUESTION_NONE, BOX_KEEPS, BOX_KEEPS};

constexpr RECORDING_ADVICE RECORDING_ADVICES[] = {
    {SAVE_AS_FOUND,      0, 0, STYLE_READY, STYLE_IDLE,    nullptr},
    {SAVE_AS_FOUND,      1, 1, STYLE_IDLE,  STYLE_READY,   nullptr},
    {SAVE_AS_FOUND,      2, 3, STYLE_IDLE,  STYLE_IDLE,
     "<font color='red'>Channel is out of tolerance,<br>perform service and capture new data</font>"},
    {SAVE_AFTER_SERVICE, 0, 0, STYLE_READY, STYLE_CAUTION,
     "<font color='red'>If channel or sensor hardware was changed,<br>adjust calibration rather than re-use.</font>"},
    {SAVE_AFTER_SERVICE, 1, 1, STYLE_IDLE,  STYLE_READY,   nullptr},
    {SAVE_AFTER_SERVICE, 2, 3, STYLE_IDLE,  STYLE_CAUTION,
     "<font color='red'>If shift in calibration is expected due to<br>service performed, adjust calibration</font>"},
    {SAVE_VERIFICATION,  0, 0, STYLE_IDLE,  STYLE_IDLE,
     "<font color='red'>Channel is within expected range</font>"},
    {SAVE_VERIFICATION,  1, 1, STYLE_IDLE,  STYLE_IDLE,
     "<font color='red'>Channel is outside of expected range</font>"},
    {SAVE_VERIFICATION,  2, 3, STYLE_IDLE,  STYLE_IDLE, // with a final point, unlike As-Found
     "<font color='red'>Channel is out of tolerance,<br>perform service and capture new data.</font>"},
};
// clang-format on

template <typename Row, std::size_t Count, typename Type>
const Row *find_row(const Row (&rows)[Count], Type Row::*type, Type wanted, uint16_t status)
{
    for (const Row &row : rows) {
        if (row.*type == wanted && row.lowest <= status && status <= row.highest)
            return &row;
    }
    return nullptr;
}

} // namespace

const QUESTION &question(QUESTION_MARK mark)
{
    return QUESTIONS[mark];
}

const DECISION &adjust_decision(uint16_t last_save_type, uint16_t worst_status)
{
    const DECISION *row =
        find_row(ADJUST_DECISIONS, &DECISION::last_save_type, last_save_type, worst_status);
    return row != nullptr ? *row : NO_DECISION;
}

const DECISION &reuse_decision(uint16_t last_save_type, uint16_t worst_status)
{
    const DECISION *row =
        find_row(REUSE_DECISIONS, &DECISION::last_save_type, last_save_type, worst_status);
    return row != nullptr ? *row : NO_DECISION;
}

const RECORDING_ADVICE *recording_advice(int32_t save_type, uint16_t worst_status)
{
    return find_row(RECORDING_ADVICES, &RECORDING_ADVICE::save_type, save_type, worst_status);
}
