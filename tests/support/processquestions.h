// SPDX-License-Identifier: GPL-3.0-or-later
//
// The questions of the calibration process as the technician meets them, word
// for word and apart from the program's own table.
#ifndef SUPPORT_PROCESSQUESTIONS_H
#define SUPPORT_PROCESSQUESTIONS_H

#include <cstring>

#include <QString>
#include <QStringList>

// The buttons, the one that goes on first and the default last.
struct AskedQuestion {
    const char *mark;
    const char *when;
    const char *title;
    const char *text;
    const char *buttons;

    QStringList button_texts() const
    {
        return QString::fromLatin1(buttons).split(QLatin1Char(' '));
    }
    QString button(bool goes_on) const
    {
        return goes_on ? button_texts().first() : button_texts().last();
    }
};

constexpr AskedQuestion PROCESS_QUESTIONS[] = {
    {"R1", "no technician or working standard", "Information",
     "Please enter the Technician Name and Working Standard before Recording data.", "OK"},
    {"R2", "not all points captured", "Warning",
     "You have attempted to Record Data without all points being captured\n\n"
     "Are you sure you want to Record the data?",
     "Yes No"},
    {"R3", "second As-Found without description", "Duplicate As-Found Data",
     "Please describe why As-Found data is being\ncollected again in the description box", "OK"},
    {"R4", "After-Service without description", "Service Description",
     "Please describe the service\nperformed in the description box", "OK"},
    {"D1", "As-Found after service and adjustment", "Warning",
     "This channel has already been serviced or adjusted.\n\n"
     "Are you sure you want to record this as As-Found data?",
     "Yes No"},
    {"D2", "After-Service after adjustment, with OK and Cancel", "Warning",
     "This channel has already been adjusted.\n\n"
     "Are you sure you want to record this as After-Service data?",
     "OK Cancel"},
    {"D3", "Verification without adjustment", "Warning",
     "No adjustment has been made.\n\n"
     "Are you sure you want to record this as Verification data?",
     "Yes No"},
    {"Q1", "Adjust, none required", "Adjust Calibration?",
     "Data shows that this channel does not require adjustment.\n\n"
     "Do you want to adjust anyway?",
     "Yes No"},
    {"Q2", "Adjust, needs service", "Adjust Calibration?",
     "Data shows that this channel needs service.\n\n"
     "Do you want to adjust the calibration anyway?",
     "Yes No"},
    {"Q3", "Re-Use, needs adjustment", "Re-Use Calibration?",
     "Data shows that this channel needs to be adjusted.\n\n"
     "Do you want to re-use last calibration anyway?",
     "Yes No"},
    {"Q4", "Re-Use, needs service", "Re-Use Calibration?",
     "Data shows that this channel needs service.\n\n"
     "Do you want to re-use last calibration anyway?",
     "Yes No"},
    {"Q5", "verification data", "Adjust Calibration?",
     "This data was collected as verification, not for calibration.\n\n"
     "Do you want to adjust anyway?",
     "Yes No"},
    {"Q6", "verification data, Re-Use, with the title of Adjust", "Adjust Calibration?",
     "This data was collected as verification, not for calibration.\n\n"
     "Do you want to update cal anyway?",
     "Yes No"},
    {"G1", "exit with captured points", "Captured Points Not Recorded",
     "Captured points have not been recorded.\n\n"
     "Click OK to exit anyway or Cancel to return and record data.",
     "OK Cancel"},
    {"G2", "exit in mid-process", "Incomplete Calibration",
     "The calibration is incomplete.\n\n"
     "Click OK to exit anyway or Cancel to return and complete the calibration.",
     "OK Cancel"},
    {"G3", "exit with a modified table", "Table Information Modified",
     "The table information has been modified and will not be saved without updating the "
     "calibration table.\n\n"
     "Click OK to exit anyway or Cancel to return and update the calibration.",
     "OK Cancel"},
    {"L1", "leaving with captured points", "Captured Points Not Recorded",
     "Captured points have not been recorded.\n\n"
     "Click OK to leave this channel anyway or Cancel to return and record data.",
     "OK Cancel"},
    {"L2", "leaving in mid-process", "Incomplete Calibration",
     "The calibration is incomplete.\n\n"
     "Click OK to leave this channel anyway or Cancel to return and complete the calibration.",
     "OK Cancel"},
    {"L3", "leaving with a modified table", "Table Information Modified",
     "The table information has been modified and will not be saved without updating the "
     "calibration table.\n\n"
     "Click OK to leave this channel anyway or Cancel to return and update the calibration.",
     "OK Cancel"},
};

// The advice that a recording gives, N1 to N6.
constexpr const char *PROCESS_ADVICE[] = {
    "<font color='red'>Channel is out of tolerance,<br>perform service and capture new data</font>",
    "<font color='red'>If channel or sensor hardware was changed,<br>adjust calibration rather "
    "than re-use.</font>",
    "<font color='red'>If shift in calibration is expected due to<br>service performed, adjust "
    "calibration</font>",
    "<font color='red'>Channel is within expected range</font>",
    "<font color='red'>Channel is outside of expected range</font>",
    "<font color='red'>Channel is out of tolerance,<br>perform service and capture new "
    "data.</font>",
};

inline const AskedQuestion &asked_question(const char *mark)
{
    for (const AskedQuestion &question : PROCESS_QUESTIONS) {
        if (std::strcmp(question.mark, mark) == 0)
            return question;
    }
    qFatal("no question %s", mark);
}

#endif
