// SPDX-License-Identifier: GPL-3.0-or-later
//
// From the start of the program to the first channel, back to no channel, and
// on: the road in its order, since each step depends on those before.
#include <QtTest>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>

#include "gui/frame/testwindow.h"
#include "host/operations.h"
#include "support/testmain.h"
#include "window/styles.h"

class FirstSelection : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void first_choice_of_a_channel_asks_nothing_and_starts_the_monitor();
    void first_reading_is_the_present_one();
    void menu_stays_grey_and_record_idle_while_nothing_is_captured();
    void first_pick_of_no_channel_hides_the_rows_without_a_word();
    void record_and_monitor_go_on_with_the_channel();
    void next_channel_is_bound_as_usual();
    void later_pick_of_no_channel_is_refused_and_reads_the_channel_again();

private:
    std::unique_ptr<TestWindow> m_it;
};

void FirstSelection::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
    QVERIFY(m_it->cell.mv(0, 1234.5));
}

void FirstSelection::first_choice_of_a_channel_asks_nothing_and_starts_the_monitor()
{
    const BoxAnswerer answerer;
    QVERIFY(!m_it->window->monitor()->isRunning());
    m_it->pick(0);
    QVERIFY(answerer.met().isEmpty());
    QVERIFY(m_it->window->monitor()->isRunning());
    QCOMPARE(m_it->window->monitor()->priority(), QThread::InheritPriority);
    QCOMPARE(m_it->rows_shown(), 5);
    for (int i = 0; i < MAX_POINTS; ++i) {
        QCOMPARE(m_it->window->row(i)->value_style(), QStringLiteral("background-color: white"));
        QCOMPARE(m_it->window->row(i)->caption(), QStringLiteral("Capture"));
        QCOMPARE(m_it->window->row(i)->caption_style(),
                 QStringLiteral("background-color: rgb(126,232,255)"));
    }
    QCOMPARE(m_it->form->lblTableName->text(), QStringLiteral("zero"));
    QCOMPARE(m_it->form->lblSerialNumber->text(), QStringLiteral("SERIAL0"));
    QCOMPARE(m_it->form->btnUnits->text(), QStringLiteral("kPa"));
    QCOMPARE(m_it->form->txtNumPoints->text(), QStringLiteral("5"));
    QCOMPARE(m_it->window->row(1)->value_field()->text(), QStringLiteral(" 25.0000"));
    QCOMPARE(m_it->window->row(1)->mv_label()->text(), QStringLiteral("1250.0000"));
    QCOMPARE(g_first_select, int16_t(1)); // a channel leaves it as it is
}

// The window of the statistics starts full of the present reading.
void FirstSelection::first_reading_is_the_present_one()
{
    QTRY_COMPARE_WITH_TIMEOUT(relaxed_load(g_cfg->live_mv), 1234.5, DEADLINE_MS);
    QCOMPARE(relaxed_load(g_sample.mv_std), 0.0);
    QTRY_COMPARE_WITH_TIMEOUT(m_it->form->dataPlot->title().text(),
                              QStringLiteral("Current Point: 1234.5000 / 24.6900"), DEADLINE_MS);
}

void FirstSelection::menu_stays_grey_and_record_idle_while_nothing_is_captured()
{
    QVERIFY(!m_it->form->menuStatistics->isEnabled());
    QVERIFY(!m_it->form->actionCal_Statistics_Chart->isEnabled());
    QCOMPARE(m_it->form->btnRecordData->styleSheet(), QLatin1String(STYLE_IDLE));
    QVERIFY(m_it->form->btnRecordData->isEnabled());
    QVERIFY(!m_it->form->actionView_Previous_Calibration_Report->isVisible());
}

void FirstSelection::first_pick_of_no_channel_hides_the_rows_without_a_word()
{
    const BoxAnswerer answerer;
    m_it->form->btnAdjustCalibration->setEnabled(true);
    m_it->form->btnReuseCalibration->setEnabled(true);
    m_it->form->chk1065Verification->setChecked(true);
    g_cal_type_changed = 0;
    m_it->pick_none();
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), 0);
    QCOMPARE(m_it->rows_shown(), 0);
    QVERIFY(!m_it->form->btnAdjustCalibration->isEnabled());
    QVERIFY(!m_it->form->btnReuseCalibration->isEnabled());
    QCOMPARE(m_it->form->lblSerialNumber->text(), QString());
    QCOMPARE(m_it->form->btnUnits->text(), QString());
    QCOMPARE(g_first_select, int16_t(0));
    QVERIFY(!m_it->form->chk1065Verification->isChecked());
    QCOMPARE(g_cal_type_changed, int16_t(1));
}

void FirstSelection::record_and_monitor_go_on_with_the_channel()
{
    QCOMPARE(g_cfg->channel, int16_t(0));
    QCOMPARE(QString::fromUtf8(g_cfg->table.table_name), QStringLiteral("zero"));
    QCOMPARE(m_it->form->lblTableName->text(), QStringLiteral("zero"));
    QVERIFY(m_it->reading(2000.0));
    QTRY_COMPARE_WITH_TIMEOUT(m_it->form->dataPlot->title().text(),
                              QStringLiteral("Current Point: 2000.0000 / 40.0000"), DEADLINE_MS);
}

void FirstSelection::next_channel_is_bound_as_usual()
{
    const BoxAnswerer answerer;
    m_it->pick(1);
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(g_cfg->channel, int16_t(1));
    QCOMPARE(m_it->rows_shown(), 3);
    QCOMPARE(g_first_select, int16_t(0));
}

void FirstSelection::later_pick_of_no_channel_is_refused_and_reads_the_channel_again()
{
    // What stands on the disk meanwhile is what comes up.
    TABLE_RECORD table = {};
    QCOMPARE(read_table("/cell/tables/one.tbl", &table) & 0xffff, 0);
    table.poly[0].y[1] = 51.0;
    QCOMPARE(create_table("/cell/tables/one.tbl", &table), 0);
    m_it->window->row(0)->set_value_style(QLatin1String(STYLE_READY));

    BoxAnswerer answerer;
    answerer.expect(QString(), QStringLiteral("Please select a valid channel number and name"));
    m_it->pick_none();
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(answerer.met().first().buttons, QStringList{"OK"});
    QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met().first()));
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), m_it->item_of(1));
    QCOMPARE(g_cfg->channel, int16_t(1));
    QCOMPARE(m_it->window->row(1)->value_field()->text(), QStringLiteral(" 51.0000"));
    QCOMPARE(m_it->window->row(0)->saved_style, QLatin1String(STYLE_READY));
    QCOMPARE(m_it->window->row(0)->value_style(), QLatin1String(STYLE_WHITE));
    QCOMPARE(m_it->rows_shown(), 3);
}

WINDOW_TEST(FirstSelection);
#include "test_firstselection.moc"
