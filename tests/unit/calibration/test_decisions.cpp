// SPDX-License-Identifier: GPL-3.0-or-later
//
// The decision tables of Adjust and Re-Use and the advice of a recording, each
// cell: kind of data recorded last against the worst status of the points.
#include <QtTest>

#include "calibration/classification.h"
#include "calibration/processtables.h"
#include "support/processquestions.h"
#include "support/testmain.h"

namespace
{

constexpr const char *NOTHING = "-- ==";

// By status: question, and the colours of the boxes Table Updated and
// After-Service, where '=' leaves the box alone.
void add_line(int save_type, const char *name, const QVector<QByteArray> &by_status)
{
    for (int status = 0; status < 4; ++status)
        QTest::addRow("%d %s, status %d", save_type, name, status)
            << save_type << status << by_status[status];
}

void add_lines_without_a_decision()
{
    for (const int save_type : {0, 7, 8, 9})
        add_line(save_type, "decides nothing", QVector<QByteArray>(4, NOTHING));
}

int box_colour(char letter)
{
    return letter == 'g'   ? int(BoxColour::Green)
           : letter == 'y' ? int(BoxColour::Yellow)
           : letter == 'r' ? int(BoxColour::Red)
                           : int(BoxColour::Keeps);
}

void check_cell(const ProcessDecision &(*table)(uint16_t, uint16_t))
{
    QFETCH(int, save_type);
    QFETCH(int, status);
    QFETCH(QByteArray, cell);
    const ProcessDecision &row =
        table(static_cast<uint16_t>(save_type), static_cast<uint16_t>(status));
    QCOMPARE(int(row.asked),
             cell[0] == 'Q' ? int(QuestionMark::Q1) + (cell[1] - '1') : int(QuestionMark::None));
    QCOMPARE(int(row.table_updated), box_colour(cell[3]));
    QCOMPARE(int(row.after_service), box_colour(cell[4]));
}

const char *const READY = "background-color: rgb(126,232,255)";
const char *const IDLE = "background-color: rgb(238, 238,238)";
const char *const CAUTION = "background-color: yellow";

struct Advice {
    int save_type;
    int status;
    const char *name;
    const char *reuse;
    const char *adjust;
    const char *next_step; // empty: unchanged
};

const Advice ADVICE[] = {
    {3, 0, "As-Found, status 0", READY, IDLE, ""},
    {3, 1, "As-Found, status 1", IDLE, READY, ""},
    {3, 2, "As-Found, status 2", IDLE, IDLE, PROCESS_ADVICE[0]},
    {3, 3, "As-Found, status 3", IDLE, IDLE, PROCESS_ADVICE[0]},
    {5, 0, "After-Service, status 0", READY, CAUTION, PROCESS_ADVICE[1]},
    {5, 1, "After-Service, status 1", IDLE, READY, ""},
    {5, 2, "After-Service, status 2", IDLE, CAUTION, PROCESS_ADVICE[2]},
    {5, 3, "After-Service, status 3", IDLE, CAUTION, PROCESS_ADVICE[2]},
    {6, 0, "Verification, status 0", IDLE, IDLE, PROCESS_ADVICE[3]},
    {6, 1, "Verification, status 1", IDLE, IDLE, PROCESS_ADVICE[4]},
    {6, 2, "Verification, status 2, with a final point", IDLE, IDLE, PROCESS_ADVICE[5]},
    {6, 3, "Verification, status 3, with a final point", IDLE, IDLE, PROCESS_ADVICE[5]},
};

} // namespace

class Decisions : public QObject
{
    Q_OBJECT

private slots:
    void adjust_data();
    void adjust() { check_cell(adjust_decision); }
    void reuse_data();
    void reuse() { check_cell(reuse_decision); }
    void status_beyond_3_asks_nothing_data();
    void status_beyond_3_asks_nothing();
    void box_colours_are_those_of_the_judgement_data();
    void box_colours_are_those_of_the_judgement();
    void advice_of_a_recording_data();
    void advice_of_a_recording();
    void recordings_without_advice_data();
    void recordings_without_advice();
};

void Decisions::adjust_data()
{
    test_columns<int, int, QByteArray>("save_type", "status", "cell");
    add_line(SAVE_AS_FOUND, "As-Found", {"Q1 gg", "-- gg", "Q2 rg", "Q2 rg"});
    add_line(SAVE_AFTER_SERVICE, "After-Service", QVector<QByteArray>(4, "-- g="));
    add_line(SAVE_VERIFICATION, "Verification", QVector<QByteArray>(4, "Q5 g="));
    add_lines_without_a_decision();
}

void Decisions::reuse_data()
{
    test_columns<int, int, QByteArray>("save_type", "status", "cell");
    add_line(SAVE_AS_FOUND, "As-Found", {"-- gg", "Q3 yy", "Q4 rr", "Q4 rr"});
    add_line(SAVE_AFTER_SERVICE, "After-Service", {"-- g=", "Q3 y=", "Q4 r=", "Q4 r="});
    add_line(SAVE_VERIFICATION, "Verification", {"Q6 g=", "Q5 g=", "Q5 g=", "Q5 g="});
    add_lines_without_a_decision();
}

void Decisions::status_beyond_3_asks_nothing_data()
{
    QTest::addColumn<int>("save_type");
    for (const int save_type : {3, 5, 6, 9})
        QTest::addRow("save type %d", save_type) << save_type;
}

void Decisions::status_beyond_3_asks_nothing()
{
    QFETCH(int, save_type);
    for (const uint16_t status : {uint16_t{4}, uint16_t{65535}}) {
        for (const auto &table : {adjust_decision, reuse_decision})
            QCOMPARE(table(static_cast<uint16_t>(save_type), status).asked, QuestionMark::None);
    }
}

void Decisions::box_colours_are_those_of_the_judgement_data()
{
    const auto row = test_columns<int, QByteArray>("colour", "style");
    row("green", int(BoxColour::Green), QByteArray("background-color: rgb(0,255,0)"));
    row("yellow", int(BoxColour::Yellow), QByteArray("background-color: rgb(255, 255, 127)"));
    row("orange", int(BoxColour::Orange), QByteArray("background-color: rgb(255,170,0)"));
    row("red", int(BoxColour::Red), QByteArray("background-color: rgb(255, 78, 78)"));
}

void Decisions::box_colours_are_those_of_the_judgement()
{
    QFETCH(int, colour);
    QTEST(QByteArray(status_style(static_cast<uint16_t>(colour))), "style");
}

void Decisions::advice_of_a_recording_data()
{
    QTest::addColumn<int>("row");
    for (int i = 0; i < static_cast<int>(std::size(ADVICE)); ++i)
        QTest::newRow(ADVICE[i].name) << i;
}

void Decisions::advice_of_a_recording()
{
    QFETCH(int, row);
    const Advice &expected = ADVICE[row];
    const RecordingAdvice *advice =
        recording_advice(expected.save_type, static_cast<uint16_t>(expected.status));
    QVERIFY(advice != nullptr);
    QCOMPARE(QByteArray(advice->reuse_style), QByteArray(expected.reuse));
    QCOMPARE(QByteArray(advice->adjust_style), QByteArray(expected.adjust));
    QCOMPARE(QByteArray(advice->next_step), QByteArray(expected.next_step));
}

void Decisions::recordings_without_advice_data()
{
    QTest::addColumn<int>("save_type");
    QTest::newRow("9 New Correlation") << 9;
    QTest::newRow("7 adjustment") << 7;
    QTest::newRow("8 re-use") << 8;
    QTest::newRow("0 nothing") << 0;
}

void Decisions::recordings_without_advice()
{
    QFETCH(int, save_type);
    for (uint16_t status = 0; status < 4; ++status)
        QVERIFY(recording_advice(save_type, status) == nullptr);
}

LOOP_TEST(Decisions);
#include "test_decisions.moc"
