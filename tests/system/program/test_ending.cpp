// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every way out of the program ends it with status 0 and leaves nothing behind;
// the end of the host does not end it.
#include <QDir>
#include <QtTest>

#include "support/cellfiles.h"
#include "support/testcell.h"
#include "support/testmain.h"
#include "system/program/testprogram.h"

namespace
{
const QByteArray EQUAL_LIMITS = R"(
channel 4
  label "Equal Limits"
  units kPa
  table equal
  record INTERP
  points 0:0 5000:100
  sensor kPa 100 100 MODEL4 SERIAL4
)";
} // namespace

class ProgramEnding : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void sigterm_while_idle();
    void sigterm_while_the_monitor_runs();
    void sigterm_with_the_focus_in_a_row();
    void sigterm_with_a_refused_time_in_the_field_data();
    void sigterm_with_a_refused_time_in_the_field();
    void sigterm_while_a_refused_time_is_told();
    void sigterm_while_a_refused_count_is_told();
    void sigterm_during_a_message_box();
    void sigterm_during_a_question_changes_nothing();
    void sigterm_during_a_dialog();
    void sigterm_while_a_refused_range_would_come_back();
    void sigterm_during_the_first_failure_box();
    void second_sigterm_does_no_harm();
    void window_closed_while_idle();
    void window_closed_while_the_monitor_runs();
    void window_closed_with_points_not_recorded_asks_nothing();
    void closed_with_a_refused_time_in_the_field_data();
    void closed_with_a_refused_time_in_the_field();
    void exit_action();
    void exit_action_asks_first();
    void host_dies_while_the_program_runs();
    void host_ends_while_the_program_runs();

private:
    bool sampling(TestProgram *program);
    // The field has the focus and holds the text, which nobody has judged yet.
    bool time_typed(TestProgram *program, const QString &text);

    std::unique_ptr<TestCell> m_cell;
};

void ProgramEnding::init()
{
    clear_cell();
    m_cell = std::make_unique<TestCell>(TestCell::simple_description() + EQUAL_LIMITS);
    QVERIFY2(m_cell->start(), qPrintable(m_cell->error()));
}

void ProgramEnding::cleanup()
{
    if (m_cell != nullptr && m_cell->is_running())
        QVERIFY2(m_cell->stop(), qPrintable(m_cell->error()));
    m_cell.reset();
    TestCell::tidy();
    QCOMPARE(QDir(QStringLiteral("/dev/shm")).entryList(QDir::Files | QDir::System | QDir::Hidden),
             QStringList());
}

// Binds channel 0 at millivolts that none of its points has.
bool ProgramEnding::sampling(TestProgram *program)
{
    if (!m_cell->mv(0, 2510.0) || !program->start() || !program->wait_for_window() ||
        !program->send({"pick", "0"}))
        return false;
    // The first reading is that of the first pass: until then it is 0.
    return QTest::qWaitFor(
        [program] {
            return program->get(QStringLiteral("lblTableName")) == QLatin1String("zero") &&
                   program->ask({"title"}).contains(QLatin1String("2510.0000"));
        },
        120000);
}

void ProgramEnding::sigterm_while_idle()
{
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.wait_for_window());
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramEnding::sigterm_while_the_monitor_runs()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

// The field that loses the focus at the end still works on a whole window.
void ProgramEnding::sigterm_with_the_focus_in_a_row()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(program.send({"focus", "txtCurrentValue"}));
    QVERIFY(QTest::qWaitFor(
        [&program] { return program.get("txtCurrentValue", "focus") == QLatin1String("true"); },
        60000));
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

bool ProgramEnding::time_typed(TestProgram *program, const QString &text)
{
    const QString field = QStringLiteral("txtAveragingTime");
    return program->send({"focus", field}) &&
           QTest::qWaitFor([&] { return program->get(field, "focus") == QLatin1String("true"); },
                           60000) &&
           program->send({"type", field, text}) && program->get(field) == text;
}

void ProgramEnding::sigterm_with_a_refused_time_in_the_field_data()
{
    QTest::addColumn<QString>("text");
    QTest::newRow("99") << "99";
    QTest::newRow("empty") << "";
}

// Nobody is left to press the OK of a box.
void ProgramEnding::sigterm_with_a_refused_time_in_the_field()
{
    QFETCH(QString, text);
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(time_typed(&program, text));
    program.terminate();
    QCOMPARE(program.wait_for_end(30000), 0);
    QVERIFY(!program.box_seen());
}

void ProgramEnding::sigterm_while_a_refused_time_is_told()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(time_typed(&program, QStringLiteral("99")));
    QVERIFY(program.send({"focus", "txtTechnicianName"}));
    QVERIFY(program.next_box().startsWith(QLatin1String("Wrong Value Entered|")));
    program.terminate();
    QCOMPARE(program.wait_for_end(30000), 0);
}

// On a touch screen cell the field that is emptied would be refused once more.
void ProgramEnding::sigterm_while_a_refused_count_is_told()
{
    write_file(QStringLiteral("/cell/vornax_ts.ini"), QByteArray());
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(program.send({"type", "txtNumPoints", "65"}));
    QVERIFY(program.next_box().startsWith(QLatin1String("Invalid Calibration Points|")));
    program.terminate();
    QCOMPARE(program.wait_for_end(30000), 0);
    QVERIFY(!program.box_seen());
}

void ProgramEnding::sigterm_during_a_message_box()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(program.send({"click", "btnRecordData"}));
    QCOMPARE(program.next_box(), QStringLiteral("Information|Please enter the Technician Name and "
                                                "Working Standard before Recording data."));
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramEnding::sigterm_during_a_question_changes_nothing()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(program.send({"type", "txtTechnicianName", "J. Doe"}));
    QVERIFY(program.send({"type", "txtCalibrationQIE", "DWT-12"}));
    const QByteArray table = read_file(QStringLiteral("/cell/tables/zero.tbl"));
    QVERIFY(program.send({"click", "btnRecordData"}));
    QVERIFY(program.next_box().startsWith(QLatin1String("Warning|You have attempted to Record")));
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
    QCOMPARE(read_file(QStringLiteral("/cell/tables/zero.tbl")), table);
    QVERIFY(!QFile::exists(QStringLiteral("/cell/tables/zero.save")));
}

// Under the table mutex, with the monitor thread waiting for it.
void ProgramEnding::sigterm_during_a_dialog()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(program.send({"trigger", "actionTable_Info"}));
    QCOMPARE(program.next_box(), QStringLiteral("Transducer Calibration Configuration|"));
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

// With the list's first line taken once, a refusal brings the dialog back: at
// the end nobody is there to accept it.
void ProgramEnding::sigterm_while_a_refused_range_would_come_back()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(program.send({"pick", ""}));
    QVERIFY(program.send({"pick", "4"}));
    QVERIFY(program.next_box().startsWith(QLatin1String("Update Data|")));
    program.terminate();
    QCOMPARE(program.wait_for_end(30000), 0); // one that comes back never ends
}

void ProgramEnding::sigterm_during_the_first_failure_box()
{
    QVERIFY2(m_cell->stop(), qPrintable(m_cell->error()));
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.next_box().contains(QLatin1String("Unable to get AI_REAL memory")));
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
    QVERIFY(!program.window_seen());
}

void ProgramEnding::second_sigterm_does_no_harm()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    program.terminate();
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramEnding::window_closed_while_idle()
{
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.wait_for_window());
    QVERIFY(program.send({"close"}));
    QCOMPARE(program.wait_for_end(), 0);
}

// Nobody joins the thread, so there is nothing to hang on.
void ProgramEnding::window_closed_while_the_monitor_runs()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(program.send({"close"}));
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramEnding::window_closed_with_points_not_recorded_asks_nothing()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(program.send({"click", "btnCapture"})); // the first row's
    QVERIFY(QTest::qWaitFor(
        [&program] { return program.get(QStringLiteral("btnCapture")) == QLatin1String("Undo"); },
        120000));
    QVERIFY(program.send({"close"}));
    QCOMPARE(program.wait_for_end(), 0);
    QVERIFY(!QFile::exists(QStringLiteral("/cell/tables/zero.save")));
}

void ProgramEnding::closed_with_a_refused_time_in_the_field_data()
{
    QTest::addColumn<QStringList>("command");
    QTest::addColumn<QString>("text");
    for (const char *text : {"99", ""}) {
        QTest::addRow("close button, \"%s\"", text) << QStringList{"close"} << text;
        QTest::addRow("Exit, \"%s\"", text) << QStringList{"trigger", "actionExit"} << text;
    }
}

void ProgramEnding::closed_with_a_refused_time_in_the_field()
{
    QFETCH(QStringList, command);
    QFETCH(QString, text);
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(time_typed(&program, text));
    QVERIFY(program.send(command));
    QCOMPARE(program.wait_for_end(30000), 0);
    QVERIFY(!program.box_seen());
}

void ProgramEnding::exit_action()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(program.send({"trigger", "actionExit"}));
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramEnding::exit_action_asks_first()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY(program.send({"click", "btnCapture"}));
    QVERIFY(program.send({"trigger", "actionExit"}));
    QVERIFY(program.next_box().startsWith(QLatin1String("Captured Points Not Recorded|")));
    QVERIFY(program.press(QStringLiteral("OK")));
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramEnding::host_dies_while_the_program_runs()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    m_cell->kill();
    QVERIFY(program.send({"pick", "1"})); // what was mapped is still there
    QCOMPARE(program.get(QStringLiteral("lblTableName")), QStringLiteral("one"));
    QVERIFY(program.is_running());
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramEnding::host_ends_while_the_program_runs()
{
    TestProgram program;
    QVERIFY(sampling(&program));
    QVERIFY2(m_cell->stop(), qPrintable(m_cell->error()));
    QVERIFY(published_memories().isEmpty());
    QVERIFY(program.send({"pick", "1"}));
    QCOMPARE(program.get(QStringLiteral("lblTableName")), QStringLiteral("one"));
    QVERIFY(program.is_running());
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

LOOP_TEST(ProgramEnding);
#include "test_ending.moc"
