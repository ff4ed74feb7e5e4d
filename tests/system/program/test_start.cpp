// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the program starts, and how it ends when it cannot.
#include <sys/stat.h>

#include <QDir>
#include <QtTest>

#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testcell.h"
#include "support/testmain.h"
#include "system/program/testprogram.h"

namespace
{
const QString FATAL =
    QStringLiteral("Information|Failure initializing shared memory for task - exiting");
const QString LOST = QStringLiteral("the host is lost: ");
const QString MARKER = QStringLiteral("/cell/vornax_ts.ini");
} // namespace

class ProgramStart : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void no_host_tells_two_boxes_and_ends_with_0();
    void killed_cell_is_no_running_host();
    void cell_that_dies_meanwhile_changes_nothing_and_is_logged_once();
    void memory_cut_short_meanwhile_is_survived_data();
    void memory_cut_short_meanwhile_is_survived();
    void count_beyond_the_records_lists_the_channels_there_are();
    void missing_memory_is_named_data();
    void missing_memory_is_named();
    void units_that_cannot_be_read();
    void no_display_ends_with_1_in_silence();
    void task_is_joined_before_memory_is_unlocked_and_the_window_made();
    void refused_task_ends_with_1_and_no_window();
    void other_answers_of_the_host_admit_the_task();
    void comes_up_with_its_window();
    void marker_turns_touch_input_on_data();
    void marker_turns_touch_input_on();
    void arguments_are_left_to_the_toolkit();
};

void ProgramStart::init()
{
    clear_cell();
}

void ProgramStart::no_host_tells_two_boxes_and_ends_with_0()
{
    const HostLog log;
    TestProgram program;
    QVERIFY(program.start());
    QCOMPARE(program.next_box(),
             QStringLiteral("Information|Vornax must be running\nUnable to get AI_REAL memory"));
    QVERIFY(program.press(QStringLiteral("OK")));
    QCOMPARE(program.next_box(), FATAL);
    QVERIFY(program.press(QStringLiteral("OK")));
    QCOMPARE(program.wait_for_end(), 0);
    QVERIFY(!program.window_seen());
    QVERIFY(published_memories().isEmpty());
    bool logged = false;
    for (const LoggedEntry &entry : log.entries()) {
        if (entry.text == QLatin1String("Failure Initializing Shared Memory for zerl_util task")) {
            QCOMPARE(entry.severity, 1);
            QCOMPARE(entry.code & 0xffff, 0xffff);
            logged = true;
        }
    }
    QVERIFY(logged);
}

void ProgramStart::killed_cell_is_no_running_host()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    cell.kill();
    QVERIFY(!published_memories().isEmpty());
    const HostLog log;
    TestProgram program;
    QVERIFY(program.start());
    QCOMPARE(program.next_box(),
             QStringLiteral("Information|Vornax must be running\nUnable to get AI_REAL memory"));
    QVERIFY(program.press(QStringLiteral("OK")));
    QCOMPARE(program.next_box(), FATAL);
    QVERIFY(program.press(QStringLiteral("OK")));
    QCOMPARE(program.wait_for_end(), 0);
    QVERIFY(!program.window_seen());
    QCOMPARE(log.count(LOST + QStringLiteral("the cell that published the memories lives no more")),
             1);
    TestCell::tidy();
}

void ProgramStart::cell_that_dies_meanwhile_changes_nothing_and_is_logged_once()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.wait_for_window());
    QVERIFY(cell.mv(0, 1250.0));
    QVERIFY(program.send({"pick", "0"}));
    QTRY_VERIFY_WITH_TIMEOUT(program.ask({"title"}).contains(QStringLiteral("1250.0")),
                             DEADLINE_MS);
    const QString before = program.ask({"title"});
    const HostLog log;
    cell.kill();
    QTRY_VERIFY_WITH_TIMEOUT(log.count_containing(LOST) > 0, DEADLINE_MS);
    QCOMPARE(program.ask({"title"}), before);
    QCOMPARE(log.count_containing(LOST), 1);
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
    QCOMPARE(log.count_containing(LOST), 1);
    TestCell::tidy();
}

void ProgramStart::memory_cut_short_meanwhile_is_survived_data()
{
    QTest::addColumn<int>("number");
    for (const int number : {1, 3, 5, 6})
        QTest::addRow("memory %d", number) << number;
}

void ProgramStart::memory_cut_short_meanwhile_is_survived()
{
    QFETCH(int, number);
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.wait_for_window());
    QVERIFY(cell.mv(0, 1250.0));
    QVERIFY(program.send({"pick", "0"}));
    QTRY_VERIFY_WITH_TIMEOUT(program.ask({"title"}).contains(QStringLiteral("1250.0")),
                             DEADLINE_MS);
    const HostLog log;
    QFile memory(QStringLiteral("/dev/shm/vornax.%1").arg(number));
    QVERIFY(memory.resize(0));
    const QString text =
        LOST + QStringLiteral("shared memory /vornax.%1 was cut short").arg(number);
    QTRY_VERIFY_WITH_TIMEOUT(log.count(text) > 0, DEADLINE_MS);
    QVERIFY(program.send({"pick", "1"}));
    QTRY_VERIFY_WITH_TIMEOUT(
        program.get(QStringLiteral("lblTableName"), QStringLiteral("text")).contains("one"),
        DEADLINE_MS);
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramStart::count_beyond_the_records_lists_the_channels_there_are()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    QFile memory(QStringLiteral("/dev/shm/vornax.1"));
    QVERIFY(memory.open(QIODevice::ReadWrite));
    const int16_t count = 32767;
    QVERIFY(memory.seek(64 + 1400));
    QCOMPARE(memory.write(reinterpret_cast<const char *>(&count), sizeof count), 2);
    memory.close();
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.wait_for_window());
    QCOMPARE(program.get(QStringLiteral("cboCurrentChannel"), QStringLiteral("count")),
             QStringLiteral("4")); // three, and the line that is none
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramStart::missing_memory_is_named_data()
{
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("text");
    const QString head = QStringLiteral("Information|Vornax must be running\n");
    QTest::newRow("AI_REAL") << 6 << head + QStringLiteral("Unable to get AI_REAL memory");
    QTest::newRow("MILLIVOLTS") << 5 << head + QStringLiteral("Unable to get MILLIVOLTS memory");
    QTest::newRow("System Attributes")
        << 1 << head + QStringLiteral("Unable to get System Attributes memory");
    QTest::newRow("AI_TRANSFER, without a to")
        << 3 << head + QStringLiteral("Unable get AI_TRANSFER memory");
    QTest::newRow("SCHEDULER") << 60 << head + QStringLiteral("Unable to get SCHEDULER memory");
    QTest::newRow("DISPLAY_STRINGS")
        << 31 << head + QStringLiteral("Unable to get DISPLAY_STRINGS memory");
    QTest::newRow("CAL_TABLES") << 35 << head + QStringLiteral("Unable to get CAL_TABLES memory");
}

void ProgramStart::missing_memory_is_named()
{
    QFETCH(int, number);
    QFETCH(QString, text);
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    QVERIFY(QFile::remove(QStringLiteral("/dev/shm/vornax.%1").arg(number)));
    TestProgram program;
    QVERIFY(program.start());
    QCOMPARE(program.next_box(), text);
    QVERIFY(program.press(QStringLiteral("OK")));
    QCOMPARE(program.next_box(), FATAL);
    QVERIFY(program.press(QStringLiteral("OK")));
    QCOMPARE(program.wait_for_end(), 0);
    QVERIFY(!program.window_seen());
}

void ProgramStart::units_that_cannot_be_read()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    const HostLog log;
    TestProgram program;
    program.set(QStringLiteral("UDUNITS2_XML_PATH"), QStringLiteral("/cell/no such file.xml"));
    QVERIFY(program.start());
    QCOMPARE(program.next_box(),
             QStringLiteral("Information|Failure initializing units for task - exiting"));
    QVERIFY(program.press(QStringLiteral("OK")));
    QCOMPARE(program.wait_for_end(), 0);
    QVERIFY(!program.window_seen());
    // The comma is part of the text.
    QCOMPARE(log.count(QStringLiteral("Failure Initializing Units for zerl task,")), 1);
}

void ProgramStart::no_display_ends_with_1_in_silence()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    TestProgram program;
    program.without_hook();
    program.unset(QStringLiteral("QT_QPA_PLATFORM"));
    QVERIFY(program.start());
    QCOMPARE(program.wait_for_end(), 1);
    QCOMPARE(program.said(), QByteArray());
    QCOMPARE(program.complaints(), QByteArray());
}

// And none of it once more at the end.
void ProgramStart::task_is_joined_before_memory_is_unlocked_and_the_window_made()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.wait_for_window());
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
    QCOMPARE(program.said(), QByteArray("call is_display_env_var_empty\ncall join_layer 3\n"
                                        "call munlockall\ncall get_shrd_mem\n"));
}

void ProgramStart::refused_task_ends_with_1_and_no_window()
{
    TestCell cell("join 5000\n" + TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    TestProgram program;
    QVERIFY(program.start());
    QCOMPARE(program.wait_for_end(), 1);
    QVERIFY(!program.window_seen());
    QCOMPARE(program.next_box(), QStringLiteral("no box")); // no message of the program's own
    QCOMPARE(program.said(), QByteArray("call is_display_env_var_empty\ncall join_layer 3\n"
                                        "call exit_auth_failure\n"));
}

void ProgramStart::other_answers_of_the_host_admit_the_task()
{
    TestCell cell("join 5001\n" + TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.wait_for_window());
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramStart::comes_up_with_its_window()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.wait_for_window());
    QCOMPARE(program.get(QStringLiteral("cboCurrentChannel"), QStringLiteral("currentText")),
             QStringLiteral("Select A Channel"));
    QCOMPARE(program.get(QStringLiteral("txtAveragingTime")), QStringLiteral("10"));
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramStart::marker_turns_touch_input_on_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("marked");
    QTest::newRow("no marker: ordinary desktop") << "none"
                                                 << "";
    QTest::newRow("marker with content") << "content"
                                         << "true";
    QTest::newRow("marker present but empty") << "empty"
                                              << "true";
    QTest::newRow("marker present but unreadable") << "unreadable"
                                                   << "true";
}

// Only its existence counts.
void ProgramStart::marker_turns_touch_input_on()
{
    QFETCH(QString, kind);
    QFETCH(QString, marked);
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    if (kind == QLatin1String("unreadable")) {
        // A socket: root, who may read any file, cannot open it either.
        QCOMPARE(mknod(MARKER.toLatin1().constData(), S_IFSOCK, 0), 0);
        QVERIFY(!QFile(MARKER).open(QIODevice::ReadOnly));
    } else if (kind != QLatin1String("none")) {
        write_file(MARKER, kind == QLatin1String("content") ? "off\n" : "");
    }
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.wait_for_window());
    for (const char *field :
         {"txtCalibrationQIE", "txtTechnicianName", "txtNumPoints", "txtAveragingTime"})
        QCOMPARE(program.get(QLatin1String(field), QStringLiteral("keyboard")), marked);
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

void ProgramStart::arguments_are_left_to_the_toolkit()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    TestProgram program;
    QVERIFY(program.start({QStringLiteral("-style"), QStringLiteral("fusion"),
                           QStringLiteral("--no-such-option"), QStringLiteral("file")}));
    QVERIFY(program.wait_for_window());
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
}

LOOP_TEST(ProgramStart);
#include "test_start.moc"
