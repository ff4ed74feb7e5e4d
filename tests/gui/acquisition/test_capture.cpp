// SPDX-License-Identifier: GPL-3.0-or-later
//
// The life of a point: capture, refusal, undo, and what each leaves behind.
#include <QtTest>

#include "frame/tablelock.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"
#include "window/styles.h"

namespace
{
const QString INFORMATION = QStringLiteral("Information");
const QString UNDO = QStringLiteral("Undo Action");

QString duplicate_text(int position, const char *mv, int other)
{
    return QStringLiteral(
               "The new Mv value for position #%1 of '%2'\nis the same as the current Mv "
               "value in position #%3.\n\nDuplicate Mv values are not allowed.\n\n"
               "Please try a different table value.")
        .arg(QString::number(position), QString::fromLatin1(mv), QString::number(other));
}
} // namespace

class Capture : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void capture_takes_reading_and_reference();
    void capture_of_the_same_reference_at_the_same_millivolts();
    void capture_without_a_change_of_signal_is_refused();
    void refused_capture_can_be_pressed_again();
    void reference_that_is_no_number_is_taken_as_zero();
    void reference_typed_and_not_left_is_taken();
    void statistics_of_the_point();
    void statistics_are_those_of_the_last_pass();
    void all_points_captured_makes_the_recording_ready();
    void capture_of_a_new_point_grows_the_count();
    void refused_capture_of_a_new_point_has_grown_the_count();
    void row_64_can_be_captured();
    void capture_on_a_channel_without_table();

    void undo_reverts_the_millivolts_and_keeps_the_reference();
    void undo_of_a_new_point_lowers_the_count();
    void undo_sets_the_worst_status_to_the_rows_earlier_one();
    void cancelled_undo_overwrites_the_statistics_alone();
    void second_judgement_replaces_the_first();
    void captured_point_is_in_no_file();

private:
    PointInfo *row(int i) const { return m_it->window->row(i); }
    void type_count(const QString &count);
    static void answer_undo(BoxAnswerer *answerer, const char *button);

    std::unique_ptr<TestWindow> m_it;
};

// Five points from 0 to 5000 mV, none captured, as a fresh table has them.
void Capture::init()
{
    m_it->bind_afresh(0);
    for (int i = 0; i < MAX_POINTS; ++i) {
        g_cfg->table.point_state[i] = POINT_AS_IN_TABLE;
        row(i)->state = POINT_AS_IN_TABLE;
        row(i)->previous_state = POINT_AS_IN_TABLE;
        row(i)->previous_status = 0;
    }
}

void Capture::type_count(const QString &count)
{
    m_it->form->txtNumPoints->setText(count);
    QTest::keyClick(m_it->form->txtNumPoints, Qt::Key_Return);
}

void Capture::answer_undo(BoxAnswerer *answerer, const char *button)
{
    answerer->expect_dialog(UNDO, [button](QDialog *dialog) {
        dialog->findChild<QPushButton *>(QLatin1String(button))->click();
    });
}

void Capture::capture_takes_reading_and_reference()
{
    m_it->form->lblNextStep->setText(QStringLiteral("advice"));
    m_it->form->lblNextStep->setStyleSheet(QLatin1String(STYLE_READY));
    m_it->form->btnAdjustCalibration->setStyleSheet(QLatin1String(STYLE_READY));
    m_it->form->btnReuseCalibration->setStyleSheet(QLatin1String(STYLE_READY));
    m_it->form->btnAdjustCalibration->setEnabled(true);
    QVERIFY(m_it->capture(1, 1265.0, 25.0));
    QCOMPARE(g_cfg->long_current.x[1], 1265.0);
    QCOMPARE(g_cfg->long_current.y[1], 25.0);
    QCOMPARE(g_cfg->table.point_state[1], int32_t(POINT_CAPTURED));
    QCOMPARE(row(1)->state, int32_t(POINT_CAPTURED));
    QCOMPARE(row(1)->previous_state, int32_t(POINT_AS_IN_TABLE));
    QCOMPARE(row(1)->previous_mv, 1250.0);
    QCOMPARE(row(1)->saved_style, QLatin1String(STYLE_WHITE));
    QCOMPARE(row(1)->caption(), QStringLiteral("Undo"));
    QCOMPARE(row(1)->caption_style(), QLatin1String(STYLE_IDLE));
    // 1265 mV read 25.3 kPa before: 0.3 off, out of adjustment.
    QCOMPARE(row(1)->status, uint16_t(1));
    QCOMPARE(row(1)->value_style(), QStringLiteral("background-color: rgb(255, 255, 127)"));
    QCOMPARE(g_captured_points, 1);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    QCOMPARE(m_it->form->lblNextStep->text(), QString());
    QCOMPARE(m_it->form->lblNextStep->styleSheet(), QLatin1String(STYLE_READY)); // the text alone
    QCOMPARE(m_it->form->btnAdjustCalibration->styleSheet(), QLatin1String(STYLE_IDLE));
    QCOMPARE(m_it->form->btnReuseCalibration->styleSheet(), QLatin1String(STYLE_IDLE));
    QVERIFY(m_it->form->btnAdjustCalibration->isEnabled()); // the flag is left alone
    QCOMPARE(m_it->form->btnRecordData->styleSheet(), QLatin1String(STYLE_IDLE));
    m_it->form->btnAdjustCalibration->setEnabled(false);
}

void Capture::capture_of_the_same_reference_at_the_same_millivolts()
{
    g_cfg->table_dirty = 0;
    const LONG_TABLE before = g_cfg->long_current;
    QVERIFY(m_it->capture(1, 1250.0, 25.0));
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QVERIFY(std::memcmp(&before, &g_cfg->long_current, sizeof before) == 0);
    QCOMPARE(g_captured_points, 1);
    QCOMPARE(row(1)->caption(), QStringLiteral("Undo"));
    QCOMPARE(row(1)->status, uint16_t(0));
    QCOMPARE(row(1)->value_style(), QStringLiteral("background-color: rgb(0,255,0)"));
}

// x alone decides.
void Capture::capture_without_a_change_of_signal_is_refused()
{
    QVERIFY(m_it->capture(1, 1300.0, 26.0));
    row(2)->value_field()->setText(QStringLiteral("50"));
    BoxAnswerer answerer;
    answerer.expect(INFORMATION, duplicate_text(3, "1300.0000", 2));
    m_it->button(2)->click();
    QCOMPARE(row(2)->state, int32_t(POINT_CAPTURED));
    QCOMPARE(g_cfg->table.point_state[2], int32_t(POINT_CAPTURED));
    QCOMPARE(row(2)->caption(), QStringLiteral("Capture"));
    QCOMPARE(row(2)->value_style(), QLatin1String(STYLE_WHITE));
    QCOMPARE(g_captured_points, 1);
    QCOMPARE(g_cfg->long_current.x[2], 2500.0);
}

void Capture::refused_capture_can_be_pressed_again()
{
    QVERIFY(m_it->capture(1, 1300.0, 26.0));
    {
        BoxAnswerer answerer;
        answerer.expect(INFORMATION, duplicate_text(3, "1300.0000", 2));
        m_it->button(2)->click();
    }
    QVERIFY(m_it->capture(2, 2510.0, 50.0));
    QCOMPARE(row(2)->caption(), QStringLiteral("Undo"));
    QCOMPARE(row(2)->previous_state, int32_t(POINT_CAPTURED)); // what the refusal left
    QCOMPARE(g_captured_points, 2);
    QCOMPARE(g_cfg->long_current.x[2], 2510.0);
}

void Capture::reference_that_is_no_number_is_taken_as_zero()
{
    const BoxAnswerer answerer;
    QVERIFY(m_it->capture(1, 1300.0, QStringLiteral("twenty")));
    QCOMPARE(g_cfg->long_current.y[1], 0.0);
    QCOMPARE(g_cfg->table.poly[0].y[1], 0.0);
    QCOMPARE(row(1)->value_field()->text(), QStringLiteral("  0.0000"));
    QCOMPARE(row(1)->caption(), QStringLiteral("Undo"));
    QVERIFY(answerer.met().isEmpty());
}

void Capture::reference_typed_and_not_left_is_taken()
{
    QVERIFY(m_it->reading(1300.0));
    row(1)->value_field()->setFocus();
    row(1)->value_field()->selectAll();
    QTest::keyClicks(row(1)->value_field(), QStringLiteral("26.5"));
    m_it->button(1)->click();
    QCOMPARE(g_cfg->long_current.y[1], 26.5);
}

void Capture::statistics_of_the_point()
{
    QVERIFY(m_it->reading(1300.0));
    {
        const TableLock hold(m_it->window->table_mutex()); // no pass within the click
        row(1)->value_field()->setText(QStringLiteral("26.5"));
        m_it->button(1)->click();
    }
    const POINT_STATISTICS &point = g_cfg->point_stats[1];
    QCOMPARE(point.mv_at_capture, 1300.0);
    QCOMPARE(point.mv_mean, 1300.0);
    QCOMPARE(point.mv_std, 0.0);
    QCOMPARE(point.mv_min, 1300.0);
    QCOMPARE(point.mv_max, 1300.0);
    QCOMPARE(point.eu_reference, 26.5);
    QCOMPARE(point.eu_mean, 26.0);
    QCOMPARE(point.eu_std, 0.0);
    QCOMPARE(point.eu_min, 26.0);
    QCOMPARE(point.eu_max, 26.0);
    for (const double behind : point.reserved_10)
        QCOMPARE(behind, 0.0);
}

void Capture::statistics_are_those_of_the_last_pass()
{
    QVERIFY(m_it->reading(1300.0));
    const TableLock hold(m_it->window->table_mutex()); // no pass meanwhile
    g_sample.mv_mean = 1.0;
    g_sample.mv_std = 2.0;
    g_sample.mv_min = 3.0;
    g_sample.mv_max = 4.0;
    g_sample.eu_mean = 5.0;
    g_sample.eu_std = 6.0;
    g_sample.eu_min = 7.0;
    g_sample.eu_max = 8.0;
    row(1)->value_field()->setText(QStringLiteral("26.5"));
    m_it->button(1)->click();
    const POINT_STATISTICS &point = g_cfg->point_stats[1];
    QCOMPARE(point.mv_mean, 1.0);
    QCOMPARE(point.mv_std, 2.0);
    QCOMPARE(point.mv_min, 3.0);
    QCOMPARE(point.mv_max, 4.0);
    QCOMPARE(point.eu_mean, 5.0);
    QCOMPARE(point.eu_std, 6.0);
    QCOMPARE(point.eu_min, 7.0);
    QCOMPARE(point.eu_max, 8.0);
}

void Capture::all_points_captured_makes_the_recording_ready()
{
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(m_it->form->btnRecordData->styleSheet(), QLatin1String(STYLE_IDLE));
        QVERIFY(!m_it->form->menuStatistics->isEnabled());
        QVERIFY(!m_it->form->btnGenerateLineRpt->isEnabled());
        QVERIFY(m_it->capture(i, 1250.0 * i + 2.0, 25.0 * i));
    }
    QCOMPARE(m_it->form->btnRecordData->styleSheet(), QLatin1String(STYLE_READY));
    QVERIFY(m_it->form->menuStatistics->isEnabled());
    QVERIFY(m_it->form->btnGenerateLineRpt->isEnabled());
    QVERIFY(m_it->form->actionPoint_Statistics->isEnabled());
    QVERIFY(!m_it->form->actionCal_Statistics_Chart->isEnabled()); // of POLY alone
    BoxAnswerer answerer;
    answer_undo(&answerer, "btnRevert");
    m_it->button(4)->click();
    QCOMPARE(m_it->form->btnRecordData->styleSheet(), QLatin1String(STYLE_IDLE));
    QVERIFY(!m_it->form->menuStatistics->isEnabled());
    QVERIFY(m_it->form->actionPoint_Statistics->isEnabled()); // never disabled
}

void Capture::capture_of_a_new_point_grows_the_count()
{
    type_count(QStringLiteral("7"));
    QCOMPARE(m_it->rows_shown(), 7);
    QCOMPARE(row(5)->caption(), QStringLiteral("Capture New"));
    QCOMPARE(row(5)->state, int32_t(POINT_NEW));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(5));
    QVERIFY(m_it->capture(5, 5500.0, 110.0));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(6));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(6));
    QCOMPARE(row(5)->previous_state, int32_t(POINT_NEW));
    QCOMPARE(row(5)->state, int32_t(POINT_CAPTURED));
    QCOMPARE(row(5)->caption(), QStringLiteral("Undo"));
    // Built anew from the record: the last segment reaches the new point.
    QCOMPARE(g_cfg->long_current.slope[4], (110.0 - 100.0) / 500.0);
    QCOMPARE(m_it->form->cboOrderOfPolynomial->count(), 5); // one degree more
    QCOMPARE(m_it->form->txtNumPoints->text(), QStringLiteral("6"));
}

void Capture::refused_capture_of_a_new_point_has_grown_the_count()
{
    type_count(QStringLiteral("6"));
    QVERIFY(m_it->reading(2500.0));
    BoxAnswerer answerer;
    answerer.expect(INFORMATION, duplicate_text(6, "2500.0000", 3));
    m_it->button(5)->click();
    QCOMPARE(g_cfg->long_current.num_points, int16_t(6));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(6));
    QCOMPARE(row(5)->state, int32_t(POINT_CAPTURED));
    QCOMPARE(row(5)->caption(), QStringLiteral("Capture New"));
    QCOMPARE(g_captured_points, 0);
}

void Capture::row_64_can_be_captured()
{
    m_it->bind_afresh(8);
    QCOMPARE(m_it->rows_shown(), 64);
    QVERIFY(m_it->capture(63, 6310.0, 126.1));
    QCOMPARE(g_cfg->long_current.x[63], 6310.0);
    QCOMPARE(g_cfg->long_current.y[63], 126.1);
    QCOMPARE(g_cfg->table.poly[0].x[63], 6310.0);
    QCOMPARE(g_cfg->long_current.num_points, int16_t(64));
    QCOMPARE(g_cfg->point_stats[63].mv_at_capture, 6310.0);
    QCOMPARE(row(63)->caption(), QStringLiteral("Undo"));
    QCOMPARE(m_it->number_label(63)->text(), QStringLiteral("64"));
    // There is no 65th: a new point beyond the 64 has no row to come from.
    m_it->form->txtNumPoints->setText(QStringLiteral("65"));
    QVERIFY(!m_it->window->check_num_points());
}

void Capture::capture_on_a_channel_without_table()
{
    {
        BoxAnswerer answerer;
        answerer.expect_title(QStringLiteral("Update Data"));
        answerer.expect_dialog(QStringLiteral("Transducer Calibration Configuration"),
                               [](QDialog *dialog) { dialog->done(QDialog::Accepted); });
        m_it->pick(3);
    }
    // As a technician fills the sensor's data in.
    g_cfg->table.sensor_range_max = 100.0;
    std::strcpy(g_cfg->table.sensor_units, "kPa");
    std::strcpy(g_cfg->table.eng_units, "kPa");
    QCOMPARE(g_cfg->long_current.num_points, int16_t(0));
    const BoxAnswerer answerer;
    QVERIFY(m_it->capture(0, 10.0, 0.2));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(1));
    QCOMPARE(g_cfg->long_current.x[0], 10.0);
    QCOMPARE(row(0)->caption(), QStringLiteral("Undo"));
    QVERIFY(answerer.met().isEmpty());
}

void Capture::undo_reverts_the_millivolts_and_keeps_the_reference()
{
    QVERIFY(m_it->capture(1, 1300.0, 26.5));
    m_it->form->btnAdjustCalibration->setStyleSheet(QLatin1String(STYLE_READY));
    BoxAnswerer answerer;
    answer_undo(&answerer, "btnRevert");
    m_it->button(1)->click();
    QCOMPARE(g_cfg->redraw_all, uint16_t(0)); // drawn at once
    QCOMPARE(g_cfg->long_current.slope[1], (50.0 - 26.5) / 1250.0);
    QCOMPARE(g_cfg->long_current.x[1], 1250.0);
    QCOMPARE(g_cfg->table.poly[0].x[1], 1250.0);
    QCOMPARE(g_cfg->long_current.y[1], 26.5);
    QCOMPARE(g_cfg->table.poly[0].y[1], 26.5);
    QCOMPARE(row(1)->mv_label()->text(), QStringLiteral("1250.0000"));
    QCOMPARE(row(1)->value_field()->text(), QStringLiteral(" 26.5000"));
    QCOMPARE(g_cfg->table.point_state[1], int32_t(POINT_AS_IN_TABLE));
    QCOMPARE(row(1)->state, int32_t(POINT_AS_IN_TABLE));
    QCOMPARE(row(1)->caption(), QStringLiteral("Capture"));
    QCOMPARE(row(1)->caption_style(), QLatin1String(STYLE_READY));
    QCOMPARE(row(1)->value_style(), QLatin1String(STYLE_WHITE));
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(m_it->form->btnAdjustCalibration->styleSheet(), QLatin1String(STYLE_IDLE));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(5));
    // A later capture does not need the reference again.
    QVERIFY(m_it->reading(1310.0));
    m_it->button(1)->click();
    QCOMPARE(g_cfg->long_current.y[1], 26.5);
    QCOMPARE(g_cfg->long_current.x[1], 1310.0);
}

void Capture::undo_of_a_new_point_lowers_the_count()
{
    type_count(QStringLiteral("6"));
    QVERIFY(m_it->capture(5, 5500.0, 110.0));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(6));
    BoxAnswerer answerer;
    answer_undo(&answerer, "btnRevert");
    m_it->button(5)->click();
    QCOMPARE(g_cfg->long_current.num_points, int16_t(5));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(5));
    QCOMPARE(row(5)->caption(), QStringLiteral("Capture New"));
    QCOMPARE(row(5)->state, int32_t(POINT_NEW));
    QCOMPARE(g_cfg->table.point_state[5], int32_t(POINT_NEW));
    QCOMPARE(g_cfg->table.poly[0].y[5], 110.0);
    QCOMPARE(g_captured_points, 0);
}

void Capture::undo_sets_the_worst_status_to_the_rows_earlier_one()
{
    row(1)->status = 2;
    QVERIFY(m_it->capture(1, 1300.0, 26.0));
    QCOMPARE(row(1)->previous_status, uint16_t(2));
    QCOMPARE(row(1)->status, uint16_t(0));
    g_cfg->table.worst_status = 0;
    BoxAnswerer answerer;
    answer_undo(&answerer, "btnRevert");
    m_it->button(1)->click();
    QCOMPARE(g_cfg->table.worst_status, uint16_t(2));
}

void Capture::cancelled_undo_overwrites_the_statistics_alone()
{
    QVERIFY(m_it->capture(1, 1300.0, 26.5));
    const QString style = row(1)->value_style();
    const LONG_TABLE before = g_cfg->long_current;
    QVERIFY(m_it->reading(1400.0));
    m_it->form->btnReuseCalibration->setStyleSheet(QLatin1String(STYLE_READY));
    BoxAnswerer answerer;
    answer_undo(&answerer, "btnCancelUndo");
    m_it->button(1)->click();
    const POINT_STATISTICS &point = g_cfg->point_stats[1];
    QCOMPARE(point.mv_mean, 1400.0);
    QCOMPARE(point.mv_min, 1400.0);
    QCOMPARE(point.mv_max, 1400.0);
    QCOMPARE(point.mv_at_capture, 1300.0);
    QCOMPARE(point.eu_reference, 26.5);
    QVERIFY(std::memcmp(&before, &g_cfg->long_current, sizeof before) == 0);
    QCOMPARE(row(1)->caption(), QStringLiteral("Undo"));
    QCOMPARE(row(1)->state, int32_t(POINT_CAPTURED));
    QCOMPARE(row(1)->value_style(), style);
    QCOMPARE(g_captured_points, 1);
    QCOMPARE(m_it->form->btnReuseCalibration->styleSheet(), QLatin1String(STYLE_IDLE));
}

void Capture::second_judgement_replaces_the_first()
{
    QVERIFY(m_it->capture(1, 1250.0, 27.5)); // 2.5 off
    QCOMPARE(row(1)->status, uint16_t(3));
    row(1)->set_caption(QStringLiteral("Capture"));
    QVERIFY(m_it->capture(1, 1251.0, 25.52)); // 0.5 off
    QCOMPARE(row(1)->status, uint16_t(1));
    QCOMPARE(row(1)->previous_status, uint16_t(3));
    QCOMPARE(row(1)->saved_style, QStringLiteral("background-color: rgb(255, 78, 78)"));
}

void Capture::captured_point_is_in_no_file()
{
    const QByteArray table = read_file(QStringLiteral("/cell/tables/zero.tbl"));
    QVERIFY(!table.isEmpty());
    QVERIFY(m_it->capture(1, 1300.0, 26.5));
    QCOMPARE(read_file(QStringLiteral("/cell/tables/zero.tbl")), table);
    QVERIFY(!QFile::exists(QStringLiteral("/cell/tables/zero.save")));
}

WINDOW_TEST(Capture);
#include "test_capture.moc"
