// SPDX-License-Identifier: GPL-3.0-or-later
//
// Corners of the process that no table of rows holds.
#include <QtTest>

#include "calibration/zerl_util.h"
#include "gui/calibration/processpanel.h"
#include "support/testmain.h"

class ProcessEdges : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<ProcessPanel>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init() { m_it->bind(); }
    void after_any_recording_both_buttons_work_even_in_the_idle_colour_data();
    void after_any_recording_both_buttons_work_even_in_the_idle_colour();
    void point_count_change_in_mid_process_empties_the_panel_and_spares_the_disc();
    void reset_keeps_the_last_save_type_data();
    void reset_keeps_the_last_save_type();
    void working_standard_empty_brings_no_dialog();
    void five_of_seven_points_captured_data();
    void five_of_seven_points_captured();
    void same_points_can_be_recorded_again();
    void refused_save_leaves_stamp_and_colours_data();
    void refused_save_leaves_stamp_and_colours();
    void names_with_quotes_and_line_feeds_read_back();
    void sampling_goes_on_through_a_question();
    void two_decisions_look_alike_and_differ_in_the_archive();

private:
    std::unique_ptr<ProcessPanel> m_it;
};

void ProcessEdges::after_any_recording_both_buttons_work_even_in_the_idle_colour_data()
{
    const auto row = test_columns<QByteArray, int, QByteArray>("path", "event", "question");
    row("As-Found, Adjust", QByteArray("A3"), int(ADJUST), QByteArray("Q2"));
    row("As-Found, Re-Use", QByteArray("A3"), int(REUSE), QByteArray("Q4"));
    row("After-Service, Re-Use", QByteArray("A1 S3"), int(REUSE), QByteArray("Q4"));
    row("Verification, Adjust", QByteArray("A1 V3?D3"), int(ADJUST), QByteArray("Q5"));
    row("Verification, Re-Use", QByteArray("A1 V3?D3"), int(REUSE), QByteArray("Q5"));
}

void ProcessEdges::after_any_recording_both_buttons_work_even_in_the_idle_colour()
{
    QFETCH(QByteArray, path);
    QFETCH(int, event);
    QFETCH(QByteArray, question);
    m_it->walk(path.constData());
    const QPushButton *const button =
        event == ADJUST ? m_it->it.form->btnAdjustCalibration : m_it->it.form->btnReuseCalibration;
    QCOMPARE(button->styleSheet(), QStringLiteral("background-color: rgb(238, 238,238)"));
    m_it->press(static_cast<char>(event), question.constData(), true);
    QVERIFY(!m_it->it.form->txtAdjustCalibration->text().isEmpty());
}

void ProcessEdges::point_count_change_in_mid_process_empties_the_panel_and_spares_the_disc()
{
    m_it->walk("A1 J1 V0 N0");
    m_it->age();
    m_it->captured(1);
    const PanelLook before = m_it->look();
    m_it->it.form->txtNumPoints->setText(QStringLiteral("2"));
    QTest::keyClick(m_it->it.form->txtNumPoints, Qt::Key_Return);
    const PanelLook after = m_it->look();
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(after.texts[i], QString());
        // The last box has no colour, and its time outlives the reset.
        QCOMPARE(after.copies[i], i == 4 ? ProcessPanel::former_time(4) : QString());
        QCOMPARE(after.colours[i], i == 4 ? QString() : QStringLiteral("background-color: white"));
    }
    for (int i = 0; i < 2; ++i) {
        QVERIFY(!after.enabled[i]);
        QCOMPARE(after.button_colours[i], QStringLiteral("background-color: rgb(238, 238,238)"));
    }
    QCOMPARE(after.record_colour, QStringLiteral("background-color: rgb(238, 238,238)"));
    QCOMPARE(after.tbl, before.tbl);
    QCOMPARE(after.old, before.old);
    QCOMPARE(after.save, before.save);
    QCOMPARE(g_cfg->table.worst_status, uint16_t(0));
    QCOMPARE(int(g_cfg->table.last_save_type), int(SAVE_NEW_CORRELATION));
}

void ProcessEdges::reset_keeps_the_last_save_type_data()
{
    QTest::addColumn<bool>("clear_rows");
    QTest::newRow("rows afresh") << true;
    QTest::newRow("rows by their states") << false;
}

void ProcessEdges::reset_keeps_the_last_save_type()
{
    QFETCH(bool, clear_rows);
    m_it->walk("A1");
    reset_process_view(m_it->it.window, clear_rows);
    QCOMPARE(int(g_cfg->table.last_save_type), int(SAVE_AS_FOUND));
    QVERIFY(!m_it->it.form->btnAdjustCalibration->isEnabled());
}

void ProcessEdges::working_standard_empty_brings_no_dialog()
{
    m_it->set_boxes("11111");
    m_it->set_buttons(true, false);
    m_it->captured(2);
    m_it->it.form->txtCalibrationQIE->clear();
    g_captured_points = 17; // not even counted
    const PanelLook before = m_it->look();
    BoxAnswerer answerer;
    ProcessPanel::expect(&answerer, "R1", true);
    m_it->it.form->btnRecordData->click();
    QCOMPARE(answerer.met().size(), 1);
    ProcessPanel::check_box(answerer.met().first(), "R1");
    m_it->check(before, AS_FOUND, {"=====", "=====", "==", "==", "-", 0});
    QCOMPARE(g_captured_points, 17);
    QCOMPARE(int(g_cfg->table.worst_status), 3); // stale as before
}

void ProcessEdges::five_of_seven_points_captured_data()
{
    QTest::addColumn<bool>("goes_on");
    QTest::newRow("Yes: the dialog opens, and the two not captured count as status 0") << true;
    QTest::newRow("No: nothing") << false;
}

void ProcessEdges::five_of_seven_points_captured()
{
    QFETCH(bool, goes_on);
    m_it->it.form->txtNumPoints->setText(QStringLiteral("7"));
    QTest::keyClick(m_it->it.form->txtNumPoints, Qt::Key_Return);
    QCOMPARE(g_num_points, int16_t(7));
    for (int i = 0; i < 5; ++i) {
        m_it->it.window->row(i)->set_caption(QStringLiteral("Undo"));
        m_it->it.window->row(i)->status = i == 3 ? 1 : 0;
    }
    QCOMPARE(m_it->it.window->row(5)->caption(), QStringLiteral("Capture New"));
    m_it->it.window->row(6)->set_caption(QStringLiteral("undo")); // capitals count
    g_captured_points = 7;
    g_cfg->table.worst_status = 3;
    const PanelLook before = m_it->look();
    BoxAnswerer answerer;
    ProcessPanel::expect(&answerer, "R2", goes_on);
    if (goes_on)
        ProcessPanel::expect_recording(&answerer, AS_FOUND, QString());
    m_it->it.form->btnRecordData->click();
    QCOMPARE(answerer.met().size(), goes_on ? 2 : 1);
    ProcessPanel::check_box(answerer.met().first(), "R2");
    if (goes_on) {
        m_it->check(before, AS_FOUND, {"t====", "y====", "ir", "11", "-", 3});
        QCOMPARE(int(g_cfg->table.worst_status), 1);
    } else {
        m_it->check(before, AS_FOUND, {"=====", "=====", "==", "00", "-", 0});
        QCOMPARE(g_captured_points, 5); // counted from the captions
        QCOMPARE(int(g_cfg->table.worst_status), 3);
    }
}

// The rows read "Capture" again, so the press says that points are missing.
void ProcessEdges::same_points_can_be_recorded_again()
{
    m_it->walk("A2");
    m_it->age();
    const PanelLook before = m_it->look();
    BoxAnswerer answerer;
    ProcessPanel::expect(&answerer, "R2", true);
    ProcessPanel::expect_recording(&answerer, AS_FOUND, QStringLiteral("once more"));
    m_it->it.form->btnRecordData->click();
    QCOMPARE(answerer.met().size(), 2);
    m_it->check(before, AS_FOUND, {"t====", "o====", "ii", "11", "N1", 3});
    QCOMPARE(ProcessPanel::last_record().poly[0].y[2], 100.125);
}

void ProcessEdges::refused_save_leaves_stamp_and_colours_data()
{
    const auto row = test_columns<int, QByteArray, QByteArray, QByteArray>("kind", "texts",
                                                                           "colours", "buttons");
    row("As-Found", int(AS_FOUND), QByteArray("t===="), QByteArray("y===="), QByteArray("ir"));
    row("After-Service", int(AFTER_SERVICE), QByteArray("Nt==="), QByteArray("ry==="),
        QByteArray("ir"));
}

void ProcessEdges::refused_save_leaves_stamp_and_colours()
{
    QFETCH(int, kind);
    QFETCH(QByteArray, texts);
    QFETCH(QByteArray, colours);
    QFETCH(QByteArray, buttons);
    m_it->captured(1);
    g_cfg->table.table_type = 5; // no such type
    const PanelLook before = m_it->look();
    BoxAnswerer answerer;
    ProcessPanel::expect_recording(&answerer, static_cast<char>(kind), QStringLiteral("why"));
    answerer.expect(QStringLiteral("Information"),
                    QStringLiteral("Unable to update the /cell/tables/one.save file - due to an "
                                   "invalid calibration table type"));
    m_it->it.form->btnRecordData->click();
    QCOMPARE(answerer.met().size(), 2);
    PanelLook shown = before;
    shown.record_colour = QStringLiteral("background-color: rgb(238, 238,238)");
    m_it->check(shown, static_cast<char>(kind),
                {texts.constData(), colours.constData(), buttons.constData(), "11", "-", 0});
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
}

void ProcessEdges::names_with_quotes_and_line_feeds_read_back()
{
    const QString technician = QStringLiteral("Jo \"Q\"\nO'Neil\r\n\\n;");
    const QString standard = QStringLiteral("DWT\n\"12\" $(x)");
    m_it->it.form->txtTechnicianName->setText(technician);
    m_it->it.form->txtCalibrationQIE->setText(standard);
    m_it->captured(0);
    m_it->press(AS_FOUND, "", true);
    const TABLE_RECORD record = ProcessPanel::last_record();
    QCOMPARE(QString::fromUtf8(record.verified_by), technician);
    QCOMPARE(QString::fromUtf8(record.qie), standard);
}

void ProcessEdges::sampling_goes_on_through_a_question()
{
    m_it->set_boxes("11100");
    m_it->set_buttons(true, true);
    m_it->captured(0);
    g_cfg->table.last_save_type = SAVE_VERIFICATION;
    BoxAnswerer answerer;
    bool sampled = false;
    answerer.expect_dialog(QStringLiteral("Adjust Calibration?"), [&sampled](QDialog *) {
        relaxed_store(g_cfg->monitor_pass_done, uint16_t(0));
        sampled = QTest::qWaitFor([] { return relaxed_load(g_cfg->monitor_pass_done) == 1; },
                                  DEADLINE_MS);
    });
    m_it->it.form->btnAdjustCalibration->click();
    QVERIFY(sampled);
}

// The panel does not tell whether the table was adjusted or kept; the archive
// does.
void ProcessEdges::two_decisions_look_alike_and_differ_in_the_archive()
{
    PanelLook looks[2];
    int types[2];
    for (int i = 0; i < 2; ++i) {
        m_it->bind();
        m_it->walk(i == 0 ? "A1 S0 J0" : "A1 S0 R0");
        m_it->age();
        looks[i] = m_it->look();
        types[i] = ProcessPanel::last_record().last_save_type;
    }
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(looks[0].texts[i], looks[1].texts[i]);
        QCOMPARE(looks[0].colours[i], looks[1].colours[i]);
    }
    QCOMPARE(m_it->it.form->label_11->text(), QStringLiteral("Table Updated"));
    QCOMPARE(types[0], int(SAVE_ADJUSTED));
    QCOMPARE(types[1], int(SAVE_REUSED));
}

WINDOW_TEST(ProcessEdges);
#include "test_processedges.moc"
