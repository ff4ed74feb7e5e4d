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
    QuestionMark mark;
    const char *title;
    const char *text;
    QuestionButtons buttons;
};

const Row RECORDING[] = {
    {"R1: no technician or working standard", QuestionMark::R1, "Information",
     "Please enter the Technician Name and Working Standard before Recording data.",
     QuestionButtons::Ok},
    {"R2: not all points captured", QuestionMark::R2, "Warning",
     "You have attempted to Record Data without all points being captured\n\nAre you sure you want "
     "to Record the data?",
     QuestionButtons::YesNo},
    {"R3: second As-Found without description", QuestionMark::R3, "Duplicate As-Found Data",
     "Please describe why As-Found data is being\ncollected again in the description box",
     QuestionButtons::Ok},
    {"R4: After-Service without description", QuestionMark::R4, "Service Description",
     "Please describe the service\nperformed in the description box", QuestionButtons::Ok},
    {"D1: As-Found after service and adjustment", QuestionMark::D1, "Warning",
     "This channel has already been serviced or adjusted.\n\nAre you sure you want to record this "
     "as As-Found data?",
     QuestionButtons::YesNo},
    {"D2: After-Service after adjustment, with OK and Cancel", QuestionMark::D2, "Warning",
     "This channel has already been adjusted.\n\nAre you sure you want to record this as "
     "After-Service data?",
     QuestionButtons::OkCancel},
    {"D3: Verification without adjustment", QuestionMark::D3, "Warning",
     "No adjustment has been made.\n\nAre you sure you want to record this as Verification data?",
     QuestionButtons::YesNo},
};

const Row DECISIONS[] = {
    {"Q1: Adjust, none required", QuestionMark::Q1, "Adjust Calibration?",
     "Data shows that this channel does not require adjustment.\n\nDo you want to adjust anyway?",
     QuestionButtons::YesNo},
    {"Q2: Adjust, needs service", QuestionMark::Q2, "Adjust Calibration?",
     "Data shows that this channel needs service.\n\nDo you want to adjust the calibration anyway?",
     QuestionButtons::YesNo},
    {"Q3: Re-Use, needs adjustment", QuestionMark::Q3, "Re-Use Calibration?",
     "Data shows that this channel needs to be adjusted.\n\nDo you want to re-use last calibration "
     "anyway?",
     QuestionButtons::YesNo},
    {"Q4: Re-Use, needs service", QuestionMark::Q4, "Re-Use Calibration?",
     "Data shows that this channel needs service.\n\nDo you want to re-use last calibration "
     "anyway?",
     QuestionButtons::YesNo},
    {"Q5: verification data", QuestionMark::Q5, "Adjust Calibration?",
     "This data was collected as verification, not for calibration.\n\nDo you want to adjust "
     "anyway?",
     QuestionButtons::YesNo},
    {"Q6: verification data, Re-Use, with the title of Adjust", QuestionMark::Q6,
     "Adjust Calibration?",
     "This data was collected as verification, not for calibration.\n\nDo you want to update cal "
     "anyway?",
     QuestionButtons::YesNo},
};

const Row GUARDS[] = {
    {"G1: exit with captured points", QuestionMark::G1, "Captured Points Not Recorded",
     "Captured points have not been recorded.\n\nClick OK to exit anyway or Cancel to return and "
     "record data.",
     QuestionButtons::OkCancel},
    {"G2: exit in mid-process", QuestionMark::G2, "Incomplete Calibration",
     "The calibration is incomplete.\n\nClick OK to exit anyway or Cancel to return and complete "
     "the calibration.",
     QuestionButtons::OkCancel},
    {"G3: exit with a modified table", QuestionMark::G3, "Table Information Modified",
     "The table information has been modified and will not be saved without updating the "
     "calibration table.\n\nClick OK to exit anyway or Cancel to return and update the "
     "calibration.",
     QuestionButtons::OkCancel},
    {"L1: leaving with captured points", QuestionMark::L1, "Captured Points Not Recorded",
     "Captured points have not been recorded.\n\nClick OK to leave this channel anyway or Cancel "
     "to return and record data.",
     QuestionButtons::OkCancel},
    {"L2: leaving in mid-process", QuestionMark::L2, "Incomplete Calibration",
     "The calibration is incomplete.\n\nClick OK to leave this channel anyway or Cancel to return "
     "and complete the calibration.",
     QuestionButtons::OkCancel},
    {"L3: leaving with a modified table", QuestionMark::L3, "Table Information Modified",
     "The table information has been modified and will not be saved without updating the "
     "calibration table.\n\nClick OK to leave this channel anyway or Cancel to return and update "
     "the calibration.",
     QuestionButtons::OkCancel},
};

const Row ENTRIES[] = {
    {"a number of points out of its range", QuestionMark::InvalidPoints,
     "Invalid Calibration Points",
     "A invalid value for Calibration Points was entered\n\nPlease reenter a Calibration Points "
     "value between 2 and 64",
     QuestionButtons::Ok},
    {"an averaging time out of its range", QuestionMark::AveragingTime, "Wrong Value Entered",
     "The entered Averaging Time must be between 5 and 30 seconds", QuestionButtons::Ok},
};

template <std::size_t Count> void add_rows(const Row (&rows)[Count])
{
    for (const Row &row : rows)
        QTest::newRow(row.name) << int(row.mark) << QString(row.title) << QString(row.text)
                                << int(row.buttons);
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
    const ProcessQuestion &asked = question(static_cast<QuestionMark>(mark));
    QCOMPARE(int(asked.mark), mark);
    QTEST(QString(asked.title), "title");
    QTEST(QString(asked.text), "text");
    QTEST(int(asked.buttons), "buttons");
}

void Questions::every_question_is_worded_here()
{
    const std::size_t worded =
        std::size(RECORDING) + std::size(DECISIONS) + std::size(GUARDS) + std::size(ENTRIES);
    QCOMPARE(static_cast<int>(worded), int(QuestionMark::Count) - 1); // without that of no question
}

LOOP_TEST(Questions);
#include "test_questions.moc"
