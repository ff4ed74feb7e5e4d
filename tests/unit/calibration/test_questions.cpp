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

constexpr QuestionMark MARKS[] = {
    QuestionMark::R1, QuestionMark::R2, QuestionMark::R3, QuestionMark::R4, QuestionMark::D1,
    QuestionMark::D2, QuestionMark::D3, QuestionMark::Q1, QuestionMark::Q2, QuestionMark::Q3,
    QuestionMark::Q4, QuestionMark::Q5, QuestionMark::Q6, QuestionMark::G1, QuestionMark::G2,
    QuestionMark::G3, QuestionMark::L1, QuestionMark::L2, QuestionMark::L3};
static_assert(std::size(MARKS) == std::size(PROCESS_QUESTIONS));

int buttons_of(const AskedQuestion &asked)
{
    const QStringList texts = asked.button_texts();
    return texts.size() == 1        ? int(QuestionButtons::Ok)
           : texts.first() == "Yes" ? int(QuestionButtons::YesNo)
                                    : int(QuestionButtons::OkCancel);
}

} // namespace

void Questions::wording_data()
{
    const auto row = test_columns<int, QString, QString, int>("mark", "title", "text", "buttons");
    for (std::size_t i = 0; i < std::size(MARKS); ++i) {
        const AskedQuestion &asked = PROCESS_QUESTIONS[i];
        row(qPrintable(QStringLiteral("%1: %2").arg(asked.mark, asked.when)), int(MARKS[i]),
            asked.title, asked.text, buttons_of(asked));
    }
    row("a number of points out of its range", int(QuestionMark::InvalidPoints),
        "Invalid Calibration Points",
        "A invalid value for Calibration Points was entered\n\n"
        "Please reenter a Calibration Points value between 2 and 64",
        int(QuestionButtons::Ok));
    row("an averaging time out of its range", int(QuestionMark::AveragingTime),
        "Wrong Value Entered", "The entered Averaging Time must be between 5 and 30 seconds",
        int(QuestionButtons::Ok));
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
    // Those of the process, the two of the entries, and that of no question.
    QCOMPARE(static_cast<int>(std::size(MARKS)) + 2, int(QuestionMark::Count) - 1);
}

LOOP_TEST(Questions);
#include "test_questions.moc"
