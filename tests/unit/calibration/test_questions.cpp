// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every question of the calibration process, word for word.
#include <QtTest>

#include "calibration/processtables.h"
#include "support/processquestions.h"
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

constexpr QUESTION_MARK MARKS[] = {QUESTION_R1, QUESTION_R2, QUESTION_R3, QUESTION_R4, QUESTION_D1,
                                   QUESTION_D2, QUESTION_D3, QUESTION_Q1, QUESTION_Q2, QUESTION_Q3,
                                   QUESTION_Q4, QUESTION_Q5, QUESTION_Q6, QUESTION_G1, QUESTION_G2,
                                   QUESTION_G3, QUESTION_L1, QUESTION_L2, QUESTION_L3};
static_assert(std::size(MARKS) == std::size(PROCESS_QUESTIONS));

int buttons_of(const AskedQuestion &asked)
{
    const QStringList texts = asked.button_texts();
    return texts.size() == 1        ? BUTTONS_OK
           : texts.first() == "Yes" ? BUTTONS_YES_NO
                                    : BUTTONS_OK_CANCEL;
}

} // namespace

void Questions::wording_data()
{
    const auto row = test_columns<int, QString, QString, int>("mark", "title", "text", "buttons");
    for (std::size_t i = 0; i < std::size(MARKS); ++i) {
        const AskedQuestion &asked = PROCESS_QUESTIONS[i];
        row(qPrintable(QStringLiteral("%1: %2").arg(asked.mark, asked.when)), MARKS[i], asked.title,
            asked.text, buttons_of(asked));
    }
    row("a number of points out of its range", QUESTION_INVALID_POINTS,
        "Invalid Calibration Points",
        "A invalid value for Calibration Points was entered\n\n"
        "Please reenter a Calibration Points value between 2 and 64",
        BUTTONS_OK);
    row("an averaging time out of its range", QUESTION_AVERAGING_TIME, "Wrong Value Entered",
        "The entered Averaging Time must be between 5 and 30 seconds", BUTTONS_OK);
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
    // Those of the process, the two of the entries, and that of no question.
    QCOMPARE(static_cast<int>(std::size(MARKS)) + 2, QUESTION_COUNT - 1);
}

LOOP_TEST(Questions);
#include "test_questions.moc"
