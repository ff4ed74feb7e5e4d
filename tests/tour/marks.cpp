// SPDX-License-Identifier: GPL-3.0-or-later
#include "tests/tour/marks.h"

namespace tour
{

namespace
{

struct Marked {
    const char *mark;
    const char *title;
    const char *text;
};

// clang-format off
constexpr Marked MARKED[] = {
    {"R1", "Information", "Please enter the Technician Name and Working Standard before Recording data."},
    {"R2", "Warning", "You have attempted to Record Data without all points being captured\n\nAre you sure you want to Record the data?"},
    {"R3", "Duplicate As-Found Data", "Please describe why As-Found data is being\ncollected again in the description box"},
    {"R4", "Service Description", "Please describe the service\nperformed in the description box"},
    {"D1", "Warning", "This channel has already been serviced or adjusted.\n\nAre you sure you want to record this as As-Found data?"},
    {"D2", "Warning", "This channel has already been adjusted.\n\nAre you sure you want to record this as After-Service data?"},
    {"D3", "Warning", "No adjustment has been made.\n\nAre you sure you want to record this as Verification data?"},
    {"Q1", "Adjust Calibration?", "Data shows that this channel does not require adjustment.\n\nDo you want to adjust anyway?"},
    {"Q2", "Adjust Calibration?", "Data shows that this channel needs service.\n\nDo you want to adjust the calibration anyway?"},
    {"Q3", "Re-Use Calibration?", "Data shows that this channel needs to be adjusted.\n\nDo you want to re-use last calibration anyway?"},
    {"Q4", "Re-Use Calibration?", "Data shows that this channel needs service.\n\nDo you want to re-use last calibration anyway?"},
    {"Q5", "Adjust Calibration?", "This data was collected as verification, not for calibration.\n\nDo you want to adjust anyway?"},
    {"Q6", "Adjust Calibration?", "This data was collected as verification, not for calibration.\n\nDo you want to update cal anyway?"},
    {"G1", "Captured Points Not Recorded", "Captured points have not been recorded.\n\nClick OK to exit anyway or Cancel to return and record data."},
    {"G2", "Incomplete Calibration", "The calibration is incomplete.\n\nClick OK to exit anyway or Cancel to return and complete the calibration."},
    {"G3", "Table Information Modified", "The table information has been modified and will not be saved without updating the calibration table.\n\nClick OK to exit anyway or Cancel to return and update the calibration."},
    {"L1", "Captured Points Not Recorded", "Captured points have not been recorded.\n\nClick OK to leave this channel anyway or Cancel to return and record data."},
    {"L2", "Incomplete Calibration", "The calibration is incomplete.\n\nClick OK to leave this channel anyway or Cancel to return and complete the calibration."},
    {"L3", "Table Information Modified", "The table information has been modified and will not be saved without updating the calibration table.\n\nClick OK to leave this channel anyway or Cancel to return and update the calibration."},
    {"point count", "Invalid Calibration Points", "A invalid value for Calibration Points was entered\n\nPlease reenter a Calibration Points value between 2 and 64"},
    {"averaging time", "Wrong Value Entered", "The entered Averaging Time must be between 5 and 30 seconds"},
};
// clang-format on

} // namespace

QString mark_of(const QString &title, const QString &text)
{
    for (const Marked &marked : MARKED) {
        if (title == QLatin1String(marked.title) && text == QLatin1String(marked.text))
            return QLatin1String(marked.mark);
    }
    return QStringLiteral("-");
}

} // namespace tour
