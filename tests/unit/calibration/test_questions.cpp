// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every question of the calibration process, word for word.
#include <QtTest>

#include "calibration/processtables.h"
#include "support/testmain.h"

class Questions : public QObject
{
    Q_OBJECT

private slots:
    void wording_data();
    void wording();
    void every_question_is_worded_here();
};

namespace
{

struct Row {
    const char *name;
    QUESTION_MARK mark;
    const char *title;
    const char *text;
    QUESTION_BUTTONS buttons;
};

const Row RECORDING[] = {
    {"R1: no technician or working standard", QUESTION_R1, "Information",
     "Please enter the Technician Name and Working Standard before Recording data.", BUTTONS_OK},
    {"R2: not all points captured", QUESTION_R2, "Warning",
     "You have attempted to Record Data without all points being captured\n\nAre you sure you want "
     "to Record the data?",
     BUTTONS_YES_NO},
    {"R3: second As-Found without description", QUESTION_R3, "Duplicate As-Found Data",
     "Please describe why As-Found data is being\ncollected again in the description box",
     BUTTONS_OK},
    {"R4: After-Service without description", QUESTION_R4, "Service Description",
     "Please describe the service\nperformed in the description box", BUTTONS_OK},
    {"D1: As-Found after service and adjustment", QUESTION_D1, "Warning",
     "This channel has already been serviced or adjusted.\n\nAre you sure you want to record this "
     "as As-Found data?",
     BUTTONS_YES_NO},
    {"D2: After-Service after adjustment, with OK and Cancel", QUESTION_D2, "Warning",
     "This channel has already been adjusted.\n\nAre you sure you want to record this as "
     "After-Service data?",
     BUTTONS_OK_CANCEL},
    {"D3: Verification without adjustment", QUESTION_D3, "Warning",
     "No adjustment has been made.\n\nAre you sure you want to record this as Verification data?",
     BUTTONS_YES_NO},
};

const Row DECISIONS[] = {
    {"Q1: Adjust, none required", QUESTION_Q1, "Adjust Calibration?",
     "Data shows that this channel does not require adjustment.\n\nDo you want to adjust anyway?",
     BUTTONS_YES_NO},
    {"Q2: Adjust, needs service", QUESTION_Q2, "Adjust Calibration?",
     "Data shows that this channel needs service.\n\nDo you want to adjust the calibration anyway?",
     BUTTONS_YES_NO},
    {"Q3: Re-Use, needs adjustment", QUESTION_Q3, "Re-Use Calibration?",
     "Data shows that this channel needs to be adjusted.\n\nDo you want to re-use last calibration "
     "anyway?",
     BUTTONS_YES_NO},
    {"Q4: Re-Use, needs service", QUESTION_Q4, "Re-Use Calibration?",
     "Data shows that this channel needs service.\n\nDo you want to re-use last calibration "
     "anyway?",
     BUTTONS_YES_NO},
    {"Q5: verification data", QUESTION_Q5, "Adjust Calibration?",
     "This data was collected as verification, not for calibration.\n\nDo you want to adjust "
     "anyway?",
     BUTTONS_YES_NO},
    {"Q6: verification data, Re-Use, with the title of Adjust", QUESTION_Q6, "Adjust Calibration?",
     "This data was collected as verification, not for calibration.\n\nDo you want to update cal "
     "anyway?",
     BUTTONS_YES_NO},
};

const Row GUARDS[] = {
    {"G1: exit with captured points", QUESTION_G1, "Captured Points Not Recorded",
     "Captured points have not been recorded.\n\nClick OK to exit anyway or Cancel to return and "
     "record data.",
     BUTTONS_OK_CANCEL},
    {"G2: exit in mid-process", QUESTION_G2, "Incomplete Calibration",
     "The calibration is incomplete.\n\nClick OK to exit anyway or Cancel to return and complete "
     "the calibration.",
     BUTTONS_OK_CANCEL},
    {"G3: exit with a modified table", QUESTION_G3, "Table Information Modified",
     "The table information has been modified and will not be saved without updating the "
     "calibration table.\n\nClick OK to exit anyway or Cancel to return and update the "
     "calibration.",
     BUTTONS_OK_CANCEL},
    {"L1: leaving with captured points", QUESTION_L1, "Captured Points Not Recorded",
     "Captured points have not been recorded.\n\nClick OK to leave this channel anyway or Cancel "
     "to return and record data.",
     BUTTONS_OK_CANCEL},
    {"L2: leaving in mid-process", QUESTION_L2, "Incomplete Calibration",
     "The calibration is incomplete.\n\nClick OK to leave this channel anyway or Cancel to return "
     "and complete the calibration.",
     BUTTONS_OK_CANCEL},
    {"L3: leaving with a modified table", QUESTION_L3, "Table Information Modified",
     "The table information has been modified and will not be saved without updating the "
     "calibration table.\n\nClick OK to leave this channel anyway or Cancel to return and update "
     "the calibration.",
     BUTTONS_OK_CANCEL},
};

const Row ENTRIES[] = {
    {"a number of points out of its range", QUESTION_INVALID_POINTS, "Invalid Calibration Points",
     "A invalid value for Calibration Points was entered\n\nPlease reenter a Calibration Points "
     "value between 2 and 64",
     BUTTONS_OK},
    {"an averaging time out of its range", QUESTION_AVERAGING_TIME, "Wrong Value Entered",
     "The entered Averaging Time must be between 5 and 30 seconds", BUTTONS_OK},
};

template <std::size_t Count> void add_rows(const Row (&rows)[Count])
{
    for (const Row &row : rows)
        QTest::newRow(row.name) << int{row.mark} << QString(row.title) << QString(row.text)
                                << int{row.buttons};
}

} // namespace

void Questions::wording_data()
{
    QTest::addColumn<int>("mark");
    QTest::addColumn<QString>("title");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("buttons");
    add_rows(RECORDING);
    add_rows(DECISIONS);
    add_rows(GUARDS);
    add_rows(ENTRIES);
}

void Questions::wording()
{
    QFETCH(int, mark);
    const QUESTION &asked = question(static_cast<QUESTION_MARK>(mark));
    QCOMPARE(int{asked.mark}, mark);
    QTEST(QString(asked.title), "title");
    QTEST(QString(asked.text), "text");
    QTEST(int{asked.buttons}, "buttons");
}

void Questions::every_question_is_worded_here()
{
    const std::size_t worded =
        std::size(RECORDING) + std::size(DECISIONS) + std::size(GUARDS) + std::size(ENTRIES);
    QCOMPARE(static_cast<int>(worded), QUESTION_COUNT - 1); // without that of no question
}

LOOP_TEST(Questions);
#include "test_questions.moc"
