// SPDX-License-Identifier: GPL-3.0-or-later
//
// The decision tables of Adjust and Re-Use and the advice of a recording, each
// cell: kind of data recorded last against the worst status of the points.
#include <QtTest>

#include "calibration/classification.h"
#include "calibration/processtables.h"
#include "support/testmain.h"

namespace
{

constexpr QuestionMark NONE = QuestionMark::None;
constexpr BoxColour KEEPS = BoxColour::Keeps;
constexpr BoxColour GREEN = BoxColour::Green;
constexpr BoxColour YELLOW = BoxColour::Yellow;
constexpr BoxColour RED = BoxColour::Red;

// One cell: question, colours of the boxes Table Updated and After-Service.
struct Cell {
    QuestionMark question;
    BoxColour table_updated;
    BoxColour after_service;
};

struct Line {
    int save_type;
    const char *name;
    Cell by_status[4];
};

constexpr Cell NOTHING = {NONE, KEEPS, KEEPS};

const Line ADJUST[] = {
    {3,
     "As-Found",
     {{QuestionMark::Q1, GREEN, GREEN},
      {NONE, GREEN, GREEN},
      {QuestionMark::Q2, RED, GREEN},
      {QuestionMark::Q2, RED, GREEN}}},
    {5,
     "After-Service",
     {{NONE, GREEN, KEEPS}, {NONE, GREEN, KEEPS}, {NONE, GREEN, KEEPS}, {NONE, GREEN, KEEPS}}},
    {6,
     "Verification",
     {{QuestionMark::Q5, GREEN, KEEPS},
      {QuestionMark::Q5, GREEN, KEEPS},
      {QuestionMark::Q5, GREEN, KEEPS},
      {QuestionMark::Q5, GREEN, KEEPS}}},
    {0, "nothing yet", {NOTHING, NOTHING, NOTHING, NOTHING}},
    {7, "adjustment", {NOTHING, NOTHING, NOTHING, NOTHING}},
    {8, "re-use", {NOTHING, NOTHING, NOTHING, NOTHING}},
    {9, "New Correlation", {NOTHING, NOTHING, NOTHING, NOTHING}},
};

const Line REUSE[] = {
    {3,
     "As-Found",
     {{NONE, GREEN, GREEN},
      {QuestionMark::Q3, YELLOW, YELLOW},
      {QuestionMark::Q4, RED, RED},
      {QuestionMark::Q4, RED, RED}}},
    {5,
     "After-Service",
     {{NONE, GREEN, KEEPS},
      {QuestionMark::Q3, YELLOW, KEEPS},
      {QuestionMark::Q4, RED, KEEPS},
      {QuestionMark::Q4, RED, KEEPS}}},
    {6,
     "Verification",
     {{QuestionMark::Q6, GREEN, KEEPS},
      {QuestionMark::Q5, GREEN, KEEPS},
      {QuestionMark::Q5, GREEN, KEEPS},
      {QuestionMark::Q5, GREEN, KEEPS}}},
    {0, "nothing yet", {NOTHING, NOTHING, NOTHING, NOTHING}},
    {7, "adjustment", {NOTHING, NOTHING, NOTHING, NOTHING}},
    {8, "re-use", {NOTHING, NOTHING, NOTHING, NOTHING}},
    {9, "New Correlation", {NOTHING, NOTHING, NOTHING, NOTHING}},
};

template <std::size_t Count> void add_lines(const Line (&lines)[Count])
{
    QTest::addColumn<int>("save_type");
    QTest::addColumn<int>("status");
    QTest::addColumn<int>("question");
    QTest::addColumn<int>("table_updated");
    QTest::addColumn<int>("after_service");
    for (const Line &line : lines) {
        for (int status = 0; status < 4; ++status) {
            const Cell &cell = line.by_status[status];
            QTest::addRow("%d %s, status %d", line.save_type, line.name, status)
                << line.save_type << status << int(cell.question) << int(cell.table_updated)
                << int(cell.after_service);
        }
    }
}

void check_cell(const ProcessDecision &(*table)(uint16_t, uint16_t))
{
    QFETCH(int, save_type);
    QFETCH(int, status);
    const ProcessDecision &row =
        table(static_cast<uint16_t>(save_type), static_cast<uint16_t>(status));
    QTEST(int(row.asked), "question");
    QTEST(int(row.table_updated), "table_updated");
    QTEST(int(row.after_service), "after_service");
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

const char *const N1 = "<font color='red'>Channel is out of tolerance,<br>perform service and "
                       "capture new data</font>";
const char *const N2 = "<font color='red'>If channel or sensor hardware was changed,<br>adjust "
                       "calibration rather than re-use.</font>";
const char *const N3 = "<font color='red'>If shift in calibration is expected due to<br>service "
                       "performed, adjust calibration</font>";
const char *const N4 = "<font color='red'>Channel is within expected range</font>";
const char *const N5 = "<font color='red'>Channel is outside of expected range</font>";
const char *const N6 = "<font color='red'>Channel is out of tolerance,<br>perform service and "
                       "capture new data.</font>";

const Advice ADVICE[] = {
    {3, 0, "As-Found, status 0", READY, IDLE, ""},
    {3, 1, "As-Found, status 1", IDLE, READY, ""},
    {3, 2, "As-Found, status 2", IDLE, IDLE, N1},
    {3, 3, "As-Found, status 3", IDLE, IDLE, N1},
    {5, 0, "After-Service, status 0", READY, CAUTION, N2},
    {5, 1, "After-Service, status 1", IDLE, READY, ""},
    {5, 2, "After-Service, status 2", IDLE, CAUTION, N3},
    {5, 3, "After-Service, status 3", IDLE, CAUTION, N3},
    {6, 0, "Verification, status 0", IDLE, IDLE, N4},
    {6, 1, "Verification, status 1", IDLE, IDLE, N5},
    {6, 2, "Verification, status 2, with a final point", IDLE, IDLE, N6},
    {6, 3, "Verification, status 3, with a final point", IDLE, IDLE, N6},
};

} // namespace

class Decisions : public QObject
{
    Q_OBJECT

private slots:
    void adjust_data() { add_lines(ADJUST); }
    void adjust() { check_cell(adjust_decision); }
    void reuse_data() { add_lines(REUSE); }
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
    QTest::addColumn<int>("colour");
    QTest::addColumn<QByteArray>("style");
    QTest::newRow("green") << int(GREEN) << QByteArray("background-color: rgb(0,255,0)");
    QTest::newRow("yellow") << int(YELLOW) << QByteArray("background-color: rgb(255, 255, 127)");
    QTest::newRow("orange") << int(BoxColour::Orange)
                            << QByteArray("background-color: rgb(255,170,0)");
    QTest::newRow("red") << int(RED) << QByteArray("background-color: rgb(255, 78, 78)");
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
