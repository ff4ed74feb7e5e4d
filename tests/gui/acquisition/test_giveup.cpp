// SPDX-License-Identifier: GPL-3.0-or-later
//
// A channel whose sensor range is wrong: repaired, refused, and what the window
// shows when the channel is given up. The steps follow one another.
#include <thread>

#include <QtTest>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>

#include "gui/frame/testwindow.h"
#include "sensor/configdialog2.h"
#include "support/testmain.h"
#include "window/styles.h"

namespace
{
const QString UPDATE = QStringLiteral("Update Data");
const QString DIALOG = QStringLiteral("Transducer Calibration Configuration");
const QString EQUAL_LIMITS = QStringLiteral("The Sensor Lower and Upper Range Values are the same."
                                            "\n\nPress OK to update Table Information");
const QString NO_CHANNEL = QStringLiteral("Please select a valid channel number and name");

// A channel of ranges whose limits are equal, beside those of every test.
QByteArray with_ranges_to_refuse()
{
    return TestWindow::description() + R"(
channel 10
  label "Channel Ten"
  units kPa
  table ten
  record POLY_RANGE
  range 2
  points 0:0 1000:20 2000:40
  fit 1
  range 5
  points 2000:40 3000:60 4000:80 5000:100
  fit 1
  sensor kPa 100 100 MODEL10 SERIAL10
)";
}
} // namespace

class GiveUp : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(with_ranges_to_refuse()); }
    void cleanupTestCase() { m_it.reset(); }
    void refused_dialog_gives_the_channel_up();
    void fresh_rows_are_appended_and_never_used();
    void fresh_rows_are_tabbed_through_behind_the_old_ones();
    void curves_are_gone_and_queued_ticks_do_nothing();
    void given_up_channel_is_still_sampled();
    void next_choice_rebuilds_the_curves();
    void first_pick_of_no_channel_is_quiet_again();
    void refused_with_a_message_and_the_dialog_again();
    void repaired_range_keeps_the_channel();
    void channel_with_ranges_is_given_up_whole();
    void dialog_accepted_with_a_reason_gives_the_channel_up();

private:
    void check_given_up() const;
    static void refuse(QDialog *dialog) { dialog->reject(); }
    static void repair(QDialog *dialog);
    int attached_curves() const
    {
        return m_it->form->dataPlot->itemList(QwtPlotItem::Rtti_PlotCurve).size();
    }

    std::unique_ptr<TestWindow> m_it;
};

void GiveUp::repair(QDialog *dialog)
{
    dialog->findChild<QLineEdit *>(QStringLiteral("txtLowerRangeLimit"))->setText("0");
    dialog->findChild<QLineEdit *>(QStringLiteral("txtUpperRangeLimit"))->setText("100");
    dialog->findChild<QPushButton *>(QStringLiteral("btnOk"))->click();
}

void GiveUp::check_given_up() const
{
    QCOMPARE(m_it->form->cboCurrentChannel->currentText(), QStringLiteral("Select A Channel"));
    QCOMPARE(attached_curves(), 0);
    QVERIFY(m_it->window->curves_are_removed());
    QCOMPARE(m_it->form->dataPlot->title().text(), QString());
    QCOMPARE(m_it->form->dataPlot->axisTitle(QwtPlot::yLeft).text(), QString());
    QVERIFY(!m_it->form->btnAdjustCalibration->isEnabled());
    QVERIFY(!m_it->form->btnReuseCalibration->isEnabled());
    QVERIFY(!m_it->form->btnGenerateLineRpt->isEnabled());
    QCOMPARE(m_it->form->lblSerialNumber->text(), QString());
    QCOMPARE(m_it->form->btnUnits->text(), QString());
    QCOMPARE(m_it->form->lblTableName->text(), QString());
    QCOMPARE(m_it->form->txtNumPoints->text(), QString());
    QVERIFY(m_it->form->coeffFrame->isHidden());
    QCOMPARE(m_it->form->cboCalType->currentIndex(), 0);
    QVERIFY(!m_it->form->cboCalType->isEnabled());
    QCOMPARE(m_it->form->cboPolyRangeIndex->currentIndex(), 0);
    QVERIFY(!m_it->form->cboPolyRangeIndex->isEnabled());
    QCOMPARE(m_it->rows_shown(), 0);
    QCOMPARE(g_first_select, int16_t(1));
}

void GiveUp::refused_dialog_gives_the_channel_up()
{
    m_it->bind_afresh(4); // POLY: coefficients and degree are on show
    QVERIFY(!m_it->form->coeffFrame->isHidden());
    QVERIFY(m_it->ticks(1));
    QVERIFY(!m_it->form->dataPlot->title().text().isEmpty());
    g_first_select = 1;

    BoxAnswerer answerer;
    answerer.expect(UPDATE, EQUAL_LIMITS);
    bool locked = false;
    answerer.expect_dialog(DIALOG, [&](QDialog *dialog) {
        // The monitor thread is held off while the dialog may change the record.
        QMutex *const mutex = m_it->window->table_mutex();
        std::thread([&] {
            locked = !mutex->tryLock();
            if (!locked)
                mutex->unlock();
        }).join();
        // None of it shows or is enabled for such a channel.
        m_it->form->coeffFrame->show();
        m_it->form->btnAdjustCalibration->setEnabled(true);
        m_it->form->btnReuseCalibration->setEnabled(true);
        m_it->form->btnGenerateLineRpt->setEnabled(true);
        refuse(dialog);
    });
    m_it->pick(6);
    QCOMPARE(answerer.met().size(), 2);
    QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met().at(1)));
    QVERIFY(locked);
    check_given_up();
}

void GiveUp::fresh_rows_are_appended_and_never_used()
{
    QCOMPARE(m_it->form->verticalLayout_4->count(), 128);
    const auto rows = m_it->form->scrollAreaWidgetContents->findChildren<PointInfo *>();
    QCOMPARE(rows.size(), 128);
    QCOMPARE(m_it->form->verticalLayout_4->itemAt(64)->widget(), m_it->window->row(64));
    QCOMPARE(m_it->number_label(64)->text(), QStringLiteral("1"));
    QCOMPARE(m_it->number_label(127)->text(), QStringLiteral("64"));
    // Hiding covers the first 64 of the list alone.
    QVERIFY(m_it->window->row(64)->children_visible());
    QVERIFY(m_it->window->row(127)->children_visible());
}

// As they stand in the column, and the buttons of the process behind them all.
void GiveUp::fresh_rows_are_tabbed_through_behind_the_old_ones()
{
    QVector<const QWidget *> expected;
    for (int i = 0; i < 2 * MAX_POINTS; ++i)
        expected << m_it->window->row(i)->value_field() << m_it->button(i);
    expected << m_it->form->btnRecordData;
    QVector<const QWidget *> met;
    const QWidget *stop = m_it->form->scrollArea;
    while (met.size() < expected.size()) {
        stop = stop->nextInFocusChain();
        QVERIFY(stop != m_it->form->scrollArea);
        if (expected.contains(stop))
            met << stop;
    }
    QCOMPARE(met, expected);
}

void GiveUp::curves_are_gone_and_queued_ticks_do_nothing()
{
    // As a tick that was on its way when the curves went.
    g_cfg->redraw_all = 1;
    QVERIFY(QMetaObject::invokeMethod(m_it->window, "draw_plots_info", Q_ARG(ZERL_CFG *, g_cfg)));
    QCOMPARE(g_cfg->redraw_all, uint16_t(1));
    QCOMPARE(m_it->form->dataPlot->title().text(), QString());
    QVERIFY(m_it->ticks(3));
    QCOMPARE(g_cfg->redraw_all, uint16_t(1));
    QCOMPARE(m_it->form->dataPlot->title().text(), QString());
    QCOMPARE(attached_curves(), 0);
    QCOMPARE(m_it->window->curve(CURVE_CAPTURED), nullptr);
}

void GiveUp::given_up_channel_is_still_sampled()
{
    QVERIFY(m_it->window->monitor()->isRunning());
    QCOMPARE(g_cfg->channel, int16_t(6));
    QVERIFY(m_it->reading(777.0));
}

void GiveUp::next_choice_rebuilds_the_curves()
{
    const BoxAnswerer answerer;
    m_it->pick(0);
    QVERIFY(answerer.met().isEmpty());
    QVERIFY(!m_it->window->curves_are_removed());
    for (int i = 0; i < CURVE_COUNT; ++i)
        QVERIFY(m_it->window->curve(i) != nullptr);
    QTRY_COMPARE_WITH_TIMEOUT(attached_curves(), 4, DEADLINE_MS);
    QTRY_COMPARE_WITH_TIMEOUT(m_it->form->dataPlot->axisTitle(QwtPlot::yLeft).text(),
                              QStringLiteral("kPa"), DEADLINE_MS);
    QVERIFY(!m_it->form->dataPlot->isHidden());
    QVERIFY(m_it->form->dataPlot->title().text().startsWith(QLatin1String("Current Point: ")));
    QVERIFY(m_it->form->cboCalType->isEnabled());
    QCOMPARE(m_it->rows_shown(), 5);
    QCOMPARE(m_it->window->row(2)->value_field()->text(), QStringLiteral(" 50.0000"));
    QVERIFY(m_it->capture(0, 1.0, 0.02)); // the old rows work as before
    QCOMPARE(m_it->window->row(0)->caption(), QStringLiteral("Undo"));
    QCOMPARE(m_it->window->row(64)->caption(), QStringLiteral("Capture"));
    m_it->forget_work();
}

void GiveUp::first_pick_of_no_channel_is_quiet_again()
{
    const BoxAnswerer answerer;
    m_it->pick_none();
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(g_first_select, int16_t(0));
}

// The flag is 0: the nested slot says its message and goes back to the channel,
// whose range fails again. Repaired there, the first refusal still gives up.
void GiveUp::refused_with_a_message_and_the_dialog_again()
{
    QCOMPARE(g_first_select, int16_t(0));
    BoxAnswerer answerer;
    answerer.expect(UPDATE, EQUAL_LIMITS);
    answerer.expect_dialog(DIALOG, refuse);
    answerer.expect(QString(), NO_CHANNEL);
    answerer.expect(UPDATE, EQUAL_LIMITS);
    answerer.expect_dialog(DIALOG, repair);
    answerer.expect_title(QStringLiteral("Clearing Calibration Data"));
    m_it->pick(6);
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), m_it->item_of(6));
    QCOMPARE(g_first_select, int16_t(1));
    QVERIFY(m_it->window->curves_are_removed());
    QCOMPARE(attached_curves(), 0);
    QCOMPARE(m_it->form->verticalLayout_4->count(), 192);
    QCOMPARE(m_it->rows_shown(), 0);
    QCOMPARE(m_it->form->lblTableName->text(), QString());
}

void GiveUp::repaired_range_keeps_the_channel()
{
    m_it->bind_afresh(0);
    m_it->form->lblSerialNumber->setText(QStringLiteral("none of it"));
    BoxAnswerer answerer;
    answerer.expect(UPDATE, EQUAL_LIMITS);
    answerer.expect_dialog(DIALOG, [](QDialog *dialog) {
        g_main_window->row(0)->set_value_style(QLatin1String(STYLE_READY));
        dialog->findChild<QLineEdit *>(QStringLiteral("txtSerialNumber"))->setText("NEW-1");
        repair(dialog);
    });
    answerer.expect_title(QStringLiteral("Clearing Calibration Data"));
    m_it->pick(6);
    QCOMPARE(answerer.remaining(), 0);
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), m_it->item_of(6));
    QCOMPARE(m_it->form->lblSerialNumber->text(), QStringLiteral("NEW-1"));
    QCOMPARE(g_cfg->table.sensor_range_min, 0.0);
    QCOMPARE(m_it->window->row(0)->value_style(), QLatin1String(STYLE_WHITE)); // reset
    QVERIFY(!m_it->window->curves_are_removed());
    QCOMPARE(m_it->rows_shown(), 2);
}

// What the combos' slots show of the table on their way to the first item goes too.
void GiveUp::channel_with_ranges_is_given_up_whole()
{
    m_it->bind_afresh(5);
    m_it->form->cboPolyRangeIndex->setCurrentIndex(5);
    QVERIFY(m_it->ticks(1));
    g_first_select = 1;
    BoxAnswerer answerer;
    answerer.expect(UPDATE, EQUAL_LIMITS);
    bool frame_shown = false;
    int type = -1;
    int range = -1;
    answerer.expect_dialog(DIALOG, [&](QDialog *dialog) {
        frame_shown = !m_it->form->coeffFrame->isHidden();
        type = m_it->form->cboCalType->currentIndex();
        range = m_it->form->cboPolyRangeIndex->currentIndex();
        m_it->form->btnAdjustCalibration->setEnabled(true);
        m_it->form->btnReuseCalibration->setEnabled(true);
        m_it->form->btnGenerateLineRpt->setEnabled(true);
        refuse(dialog);
    });
    m_it->pick(10);
    QCOMPARE(answerer.met().size(), 2);
    QVERIFY(frame_shown);
    QCOMPARE(type, 2);
    QCOMPARE(range, 5);
    check_given_up();
}

void GiveUp::dialog_accepted_with_a_reason_gives_the_channel_up()
{
    m_it->bind_afresh(0);
    g_first_select = 1;
    BoxAnswerer answerer;
    answerer.expect(UPDATE, EQUAL_LIMITS);
    answerer.expect_dialog(DIALOG, [](QDialog *dialog) {
        static_cast<ConfigDialog2 *>(dialog)->reason_code = 3;
        dialog->done(QDialog::Accepted);
    });
    m_it->pick(6);
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), 0);
    QVERIFY(m_it->window->curves_are_removed());
}

WINDOW_TEST(GiveUp);
#include "test_giveup.moc"
