// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/processtables.h"

#include <cstddef>

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
constexpr ProcessQuestion QUESTIONS[static_cast<std::size_t>(QuestionMark::Count)] = {
    {QuestionMark::None, "", "", QuestionButtons::Ok},
    {QuestionMark::R1, "Information",
     "Please enter the Technician Name and Working Standard before Recording data.", QuestionButtons::Ok},
    {QuestionMark::R2, "Warning",
     "You have attempted to Record Data without all points being captured\n\n"
     "Are you sure you want to Record the data?", QuestionButtons::YesNo},
    {QuestionMark::R3, "Duplicate As-Found Data",
     "Please describe why As-Found data is being\ncollected again in the description box",
     QuestionButtons::Ok},
    {QuestionMark::R4, "Service Description",
     "Please describe the service\nperformed in the description box", QuestionButtons::Ok},
    {QuestionMark::D1, "Warning",
     "This channel has already been serviced or adjusted.\n\n"
     "Are you sure you want to record this as As-Found data?", QuestionButtons::YesNo},
    {QuestionMark::D2, "Warning",
     "This channel has already been adjusted.\n\n"
     "Are you sure you want to record this as After-Service data?", QuestionButtons::OkCancel},
    {QuestionMark::D3, "Warning",
     "No adjustment has been made.\n\n"
     "Are you sure you want to record this as Verification data?", QuestionButtons::YesNo},
    {QuestionMark::Q1, ADJUST_TITLE,
     "Data shows that this channel does not require adjustment.\n\n"
     "Do you want to adjust anyway?", QuestionButtons::YesNo},
    {QuestionMark::Q2, ADJUST_TITLE,
     "Data shows that this channel needs service.\n\n"
     "Do you want to adjust the calibration anyway?", QuestionButtons::YesNo},
    {QuestionMark::Q3, REUSE_TITLE,
     "Data shows that this channel needs to be adjusted.\n\n"
     "Do you want to re-use last calibration anyway?", QuestionButtons::YesNo},
    {QuestionMark::Q4, REUSE_TITLE,
     "Data shows that this channel needs service.\n\n"
     "Do you want to re-use last calibration anyway?", QuestionButtons::YesNo},
    {QuestionMark::Q5, ADJUST_TITLE,
     "This data was collected as verification, not for calibration.\n\n"
     "Do you want to adjust anyway?", QuestionButtons::YesNo},
    {QuestionMark::Q6, ADJUST_TITLE,
     "This data was collected as verification, not for calibration.\n\n"
     "Do you want to update cal anyway?", QuestionButtons::YesNo},
    {QuestionMark::G1, CAPTURED_NOT_RECORDED,
     "Captured points have not been recorded.\n\n"
     "Click OK to exit anyway or Cancel to return and record data.", QuestionButtons::OkCancel},
    {QuestionMark::G2, INCOMPLETE,
     "The calibration is incomplete.\n\n"
     "Click OK to exit anyway or Cancel to return and complete the calibration.",
     QuestionButtons::OkCancel},
    {QuestionMark::G3, MODIFIED,
     "The table information has been modified and will not be saved without updating the "
     "calibration table.\n\n"
     "Click OK to exit anyway or Cancel to return and update the calibration.",
     QuestionButtons::OkCancel},
    {QuestionMark::L1, CAPTURED_NOT_RECORDED,
     "Captured points have not been recorded.\n\n"
     "Click OK to leave this channel anyway or Cancel to return and record data.",
     QuestionButtons::OkCancel},
    {QuestionMark::L2, INCOMPLETE,
     "The calibration is incomplete.\n\n"
     "Click OK to leave this channel anyway or Cancel to return and complete the calibration.",
     QuestionButtons::OkCancel},
    {QuestionMark::L3, MODIFIED,
     "The table information has been modified and will not be saved without updating the "
     "calibration table.\n\n"
     "Click OK to leave this channel anyway or Cancel to return and update the calibration.",
     QuestionButtons::OkCancel},
    {QuestionMark::InvalidPoints, "Invalid Calibration Points",
     "A invalid value for Calibration Points was entered\n\n"
     "Please reenter a Calibration Points value between 2 and 64", QuestionButtons::Ok},
    {QuestionMark::AveragingTime, "Wrong Value Entered",
     "The entered Averaging Time must be between 5 and 30 seconds", QuestionButtons::Ok},
};

// The two tables are deliberately not mirror images.
constexpr ProcessDecision ADJUST_DECISIONS[] = {
    {SAVE_AS_FOUND,      0, 0, QuestionMark::Q1,   BoxColour::Green,  BoxColour::Green},
    {SAVE_AS_FOUND,      1, 1, QuestionMark::None, BoxColour::Green,  BoxColour::Green},
    {SAVE_AS_FOUND,      2, 3, QuestionMark::Q2,   BoxColour::Red,    BoxColour::Green},
    {SAVE_AFTER_SERVICE, 0, 3, QuestionMark::None, BoxColour::Green,  BoxColour::Keeps},
    {SAVE_VERIFICATION,  0, 3, QuestionMark::Q5,   BoxColour::Green,  BoxColour::Keeps},
};

constexpr ProcessDecision REUSE_DECISIONS[] = {
    {SAVE_AS_FOUND,      0, 0, QuestionMark::None, BoxColour::Green,  BoxColour::Green},
    {SAVE_AS_FOUND,      1, 1, QuestionMark::Q3,   BoxColour::Yellow, BoxColour::Yellow},
    {SAVE_AS_FOUND,      2, 3, QuestionMark::Q4,   BoxColour::Red,    BoxColour::Red},
    {SAVE_AFTER_SERVICE, 0, 0, QuestionMark::None, BoxColour::Green,  BoxColour::Keeps},
    {SAVE_AFTER_SERVICE, 1, 1, QuestionMark::Q3,   BoxColour::Yellow, BoxColour::Keeps},
    {SAVE_AFTER_SERVICE, 2, 3, QuestionMark::Q4,   BoxColour::Red,    BoxColour::Keeps},
    {SAVE_VERIFICATION,  0, 0, QuestionMark::Q6,   BoxColour::Green,  BoxColour::Keeps},
    {SAVE_VERIFICATION,  1, 3, QuestionMark::Q5,   BoxColour::Green,  BoxColour::Keeps},
};

constexpr ProcessDecision NO_DECISION = {0, 0, 0, QuestionMark::None, BoxColour::Keeps, BoxColour::Keeps};

constexpr RecordingAdvice RECORDING_ADVICES[] = {
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
    {SAVE_VERIFICATION,  2, 3, STYLE_IDLE,  STYLE_IDLE, // with a full stop, unlike As-Found
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

const ProcessQuestion &question(QuestionMark mark)
{
    return QUESTIONS[static_cast<std::size_t>(mark)];
}

const ProcessDecision &adjust_decision(uint16_t last_save_type, uint16_t worst_status)
{
    const ProcessDecision *row =
        find_row(ADJUST_DECISIONS, &ProcessDecision::last_save_type, last_save_type, worst_status);
    return row != nullptr ? *row : NO_DECISION;
}

const ProcessDecision &reuse_decision(uint16_t last_save_type, uint16_t worst_status)
{
    const ProcessDecision *row =
        find_row(REUSE_DECISIONS, &ProcessDecision::last_save_type, last_save_type, worst_status);
    return row != nullptr ? *row : NO_DECISION;
}

const RecordingAdvice *recording_advice(int32_t save_type, uint16_t worst_status)
{
    return find_row(RECORDING_ADVICES, &RecordingAdvice::save_type, save_type, worst_status);
}
