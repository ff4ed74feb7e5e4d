// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the choice of another channel reads, resets and keeps.
#include <QMutexLocker>
#include <QSet>
#include <QtTest>

#include <qwt_plot.h>

#include "gui/frame/testwindow.h"
#include "host/operations.h"
#include "sensor/tolerances.h"
#include "support/testmain.h"
#include "window/styles.h"

class Binding : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void record_of_the_bound_channel();
    void three_points_bound_and_none_captured();
    void switch_resets();
    void switch_resets_the_form();
    void switch_keeps();
    void statistics_of_the_first_two_points_alone_are_reset();
    void channel_without_table_stays_selected();
    void damaged_table_counts_as_none();
    void names_come_from_the_file();
    void point_states_come_from_the_file();
    void both_axes_are_scaled_anew();
    void statistics_start_afresh();
    void units_with_a_degree();
    void table_is_read_and_published_under_the_mutex();

private:
    std::unique_ptr<TestWindow> m_it;
};

void Binding::record_of_the_bound_channel()
{
    m_it->bind_afresh(0);
    QCOMPARE(g_cfg->channel, int16_t(0));
    QCOMPARE(QString::fromUtf8(g_cfg->table.table_name), QStringLiteral("zero"));
    QCOMPARE(QString::fromUtf8(g_cfg->table.eng_units), QStringLiteral("kPa"));
    QCOMPARE(QString::fromUtf8(g_cfg->table_units), QStringLiteral("kPa"));
    QCOMPARE(QString::fromUtf8(g_cfg->tbl_path), QStringLiteral("/cell/tables/zero.tbl"));
    QCOMPARE(QString::fromUtf8(g_cfg->save_path), QStringLiteral("/cell/tables/zero.save"));
    QCOMPARE(QString::fromUtf8(g_cfg->old_path), QStringLiteral("/cell/tables/zero.old"));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(5));
    QCOMPARE(g_num_points, int16_t(5));
    QCOMPARE(g_cfg->table.worst_status, uint16_t(0));
    QCOMPARE(g_cfg->table.ooa_tol, 0.25);
    QCOMPARE(g_cfg->table.oot_tol, 1.0);
    QCOMPARE(g_cfg->table.soot_tol, 2.0);
}

// The menu stays grey and the recording idle.
void Binding::three_points_bound_and_none_captured()
{
    m_it->bind_afresh(1);
    QCOMPARE(g_num_points, int16_t(3));
    QVERIFY(!m_it->form->menuStatistics->isEnabled());
    QVERIFY(!m_it->form->actionCal_Statistics_Chart->isEnabled());
    QCOMPARE(m_it->form->btnRecordData->styleSheet(),
             QStringLiteral("background-color: rgb(238, 238,238)"));
    QVERIFY(m_it->form->btnRecordData->isEnabled());
}

void Binding::switch_resets()
{
    m_it->bind_afresh(0);
    QVERIFY(m_it->capture(0, 3.0, 1.0));
    QCOMPARE(g_captured_points, 1);
    QVERIFY(g_cfg->table_dirty != 0);
    g_cfg->table.worst_status = 3;
    mua_instance_index = 7;
    g_cfg->table_dirty = 0; // so that nothing is asked
    const BoxAnswerer answerer;
    m_it->pick(1);
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QCOMPARE(g_cfg->table.worst_status, uint16_t(0));
    QCOMPARE(mua_instance_index, uint16_t(0));
    QCOMPARE(g_num_points, int16_t(3));
    QCOMPARE(g_cfg->long_previous.x[1], 2500.0);
    QCOMPARE(g_cfg->long_current.x[0], 0.0);
}

void Binding::switch_resets_the_form()
{
    m_it->bind_afresh(0);
    QVERIFY(m_it->capture(0, 3.0, 1.0));
    g_cfg->table_dirty = 0;
    const QString time = QStringLiteral("01/02/2024 03:04:05");
    for (QLineEdit *box :
         {m_it->form->txtAsFound, m_it->form->txtAfterService, m_it->form->txtAdjustCalibration,
          m_it->form->txtVerificationData, m_it->form->txtNewCorrelation})
        box->setText(time); // updated: the calibration is complete
    m_it->form->menuStatistics->setEnabled(true);
    m_it->form->chk1065Verification->setChecked(true);
    m_it->form->lblNextStep->setText(QStringLiteral("advice"));
    m_it->form->lblNextStep->setStyleSheet(QLatin1String(STYLE_IDLE));
    m_it->form->btnAdjustCalibration->setEnabled(true);
    std::strcpy(g_ws_block->new_correlation_time, "kept");

    m_it->pick(1);
    for (const QLineEdit *box :
         {m_it->form->txtAsFound, m_it->form->txtAfterService, m_it->form->txtAdjustCalibration,
          m_it->form->txtVerificationData, m_it->form->txtNewCorrelation})
        QCOMPARE(box->text(), QString());
    QVERIFY(!m_it->form->menuStatistics->isEnabled());
    QVERIFY(!m_it->form->chk1065Verification->isChecked());
    QCOMPARE(m_it->form->lblNextStep->text(), QString());
    QCOMPARE(m_it->form->lblNextStep->styleSheet(),
             QStringLiteral("background-color: rgb(255,252,239)"));
    QVERIFY(!m_it->form->btnAdjustCalibration->isEnabled());
    QCOMPARE(m_it->window->row(0)->value_style(), QLatin1String(STYLE_WHITE));
    QCOMPARE(m_it->window->row(0)->caption(), QStringLiteral("Capture"));
    QCOMPARE(m_it->rows_shown(), 3);
    QCOMPARE(m_it->form->txtNumPoints->text(), QStringLiteral("3"));
    QCOMPARE(QString::fromUtf8(g_ws_block->new_correlation_time), QStringLiteral("kept"));
    QCOMPARE(QString::fromUtf8(g_ws_block->as_found_time), QString());
}

void Binding::switch_keeps()
{
    m_it->bind_afresh(0);
    m_it->form->txtCalibrationQIE->setText(QStringLiteral("DWT-12"));
    m_it->form->txtTechnicianName->setText(QStringLiteral("J. Doe"));
    m_it->form->txtAveragingTime->setText(QStringLiteral("5"));
    QVERIFY(QMetaObject::invokeMethod(m_it->window, "on_txtAveragingTime_editingFinished"));
    std::strcpy(g_cfg->value_units, "PSI");
    g_cfg->units_loaded = 1;
    g_env->min_expected_val = 4.5;
    std::strcpy(g_specs->temperature_var_name, "CELL_TEMP");
    m_it->pick(1);
    QCOMPARE(m_it->form->txtCalibrationQIE->text(), QStringLiteral("DWT-12"));
    QCOMPARE(m_it->form->txtTechnicianName->text(), QStringLiteral("J. Doe"));
    QCOMPARE(m_it->form->txtAveragingTime->text(), QStringLiteral("5"));
    QCOMPARE(relaxed_load(g_fifo_size), uint32_t(50));
    QCOMPARE(QString::fromUtf8(g_cfg->value_units), QStringLiteral("PSI"));
    QCOMPARE(g_cfg->units_loaded, uint16_t(1));
    QCOMPARE(g_env->min_expected_val, 4.5);
    QCOMPARE(QString::fromUtf8(g_specs->temperature_var_name), QStringLiteral("CELL_TEMP"));
    g_cfg->units_loaded = 0;
    m_it->form->txtAveragingTime->setText(QStringLiteral("10"));
    QVERIFY(QMetaObject::invokeMethod(m_it->window, "on_txtAveragingTime_editingFinished"));
}

void Binding::statistics_of_the_first_two_points_alone_are_reset()
{
    m_it->bind_afresh(0);
    for (int i = 0; i < MAX_POINTS; ++i) {
        double *const slots_of_point = &g_cfg->point_stats[i].mv_at_capture;
        std::fill_n(slots_of_point, 18, i + 0.5);
    }
    m_it->pick(1);
    for (int i = 0; i < 2; ++i) {
        const POINT_STATISTICS &point = g_cfg->point_stats[i];
        QCOMPARE(point.mv_at_capture, -999.0);
        QCOMPARE(point.eu_mean, -999.0);
        QCOMPARE(point.eu_std, -999.0);
        QCOMPARE(point.eu_min, 999.0);
        QCOMPARE(point.eu_max, -999.0);
        QCOMPARE(point.mv_mean, i + 0.5);
        QCOMPARE(point.eu_reference, i + 0.5);
    }
    for (int i = 2; i < MAX_POINTS; ++i) {
        const double *const slots_of_point = &g_cfg->point_stats[i].mv_at_capture;
        for (int slot = 0; slot < 18; ++slot)
            QCOMPARE(slots_of_point[slot], i + 0.5);
    }
}

// The session goes on: a table may be built from nothing.
void Binding::channel_without_table_stays_selected()
{
    m_it->bind_afresh(0);
    BoxAnswerer answerer;
    // An empty record has no sensor range; its repair is refused elsewhere.
    answerer.expect_title(QStringLiteral("Update Data"));
    QString description;
    int points = -1;
    int flags = -1;
    answerer.expect_dialog(QStringLiteral("Transducer Calibration Configuration"),
                           [&](QDialog *dialog) {
                               description = QString::fromUtf8(g_cfg->table.description);
                               points = g_cfg->long_current.num_points;
                               flags = g_cfg->long_current.flags;
                               dialog->done(QDialog::Accepted);
                           });
    m_it->pick(3);
    QCOMPARE(description, QStringLiteral("No Description"));
    QCOMPARE(points, 0);
    QCOMPARE(flags, 0);
    QCOMPARE(m_it->form->cboCurrentChannel->currentIndex(), m_it->item_of(3));
    QCOMPARE(g_cfg->channel, int16_t(3));
    QCOMPARE(g_num_points, int16_t(0));
    QCOMPARE(m_it->rows_shown(), 0);
    // All of no points count as captured, but nobody has asked.
    QCOMPARE(m_it->form->btnRecordData->styleSheet(), QLatin1String(STYLE_IDLE));
    QVERIFY(!m_it->form->menuStatistics->isEnabled());
    QCOMPARE(m_it->form->lblTableName->text(), QString()); // empty after a failed read
    QCOMPARE(m_it->form->btnUnits->text(), QString());
    QCOMPARE(m_it->form->txtNumPoints->text(), QStringLiteral("0"));
    QCOMPARE(m_it->window->row(0)->value_field()->text(), QStringLiteral("  0.0000"));
    QCOMPARE(QString::fromUtf8(g_cfg->tbl_path), QStringLiteral("/cell/tables/three.tbl"));
    // What the units were is not touched by a failed read.
    QCOMPARE(QString::fromUtf8(g_cfg->table_units), QStringLiteral("kPa"));
    QVERIFY(m_it->window->monitor()->isRunning());
}

void Binding::damaged_table_counts_as_none()
{
    m_it->bind_afresh(0);
    const QByteArray damaged = "this is no table\n";
    const QByteArray whole = read_file(QStringLiteral("/cell/tables/one.tbl"));
    write_file(QStringLiteral("/cell/tables/one.tbl"), damaged);
    const HostLog log;
    BoxAnswerer answerer;
    answerer.expect_title(QStringLiteral("Update Data"));
    answerer.expect_dialog(QStringLiteral("Transducer Calibration Configuration"),
                           [](QDialog *dialog) { dialog->done(QDialog::Accepted); });
    m_it->pick(1);
    QCOMPARE(QString::fromUtf8(g_cfg->table.description), QStringLiteral("No Description"));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(0));
    QVERIFY(log.count_containing(QStringLiteral("/cell/tables/one.tbl")) > 0);
    QCOMPARE(read_file(QStringLiteral("/cell/tables/one.tbl")), damaged);
    write_file(QStringLiteral("/cell/tables/one.tbl"), whole);
}

void Binding::names_come_from_the_file()
{
    TABLE_RECORD table = {};
    m_it->bind_afresh(0);
    QCOMPARE(read_table("/cell/tables/one.tbl", &table) & 0xffff, 0);
    std::strcpy(table.table_name, "other");
    std::strcpy(table.eng_units, "Pa");
    QCOMPARE(create_table("/cell/tables/one.tbl", &table), 0);
    m_it->pick(1);
    QCOMPARE(m_it->form->lblTableName->text(), QStringLiteral("other"));
    QCOMPARE(m_it->form->btnUnits->text(), QStringLiteral("Pa"));
    QCOMPARE(QString::fromUtf8(g_cfg->table_units), QStringLiteral("Pa"));
    QCOMPARE(QString::fromUtf8(g_cfg->tbl_path), QStringLiteral("/cell/tables/one.tbl"));
    m_it->restore_tables();
}

// The rows come up for a capture whatever the file says; their own state stays.
void Binding::point_states_come_from_the_file()
{
    m_it->bind_afresh(0);
    m_it->window->row(1)->state = POINT_NEW;
    m_it->pick(9);
    QCOMPARE(g_cfg->table.point_state[1], int32_t(POINT_CAPTURED));
    QCOMPARE(m_it->window->row(1)->state, int32_t(POINT_NEW));
    QCOMPARE(m_it->window->row(1)->caption(), QStringLiteral("Capture"));
    m_it->window->row(1)->state = POINT_AS_IN_TABLE;
}

void Binding::both_axes_are_scaled_anew()
{
    m_it->bind_afresh(0);
    QVERIFY(m_it->reading(2500.0));
    QTRY_COMPARE_WITH_TIMEOUT(g_cfg->redraw_all, uint16_t(0), DEADLINE_MS);
    m_it->form->dataPlot->setAxisScale(QwtPlot::xBottom, 0.0, 1.0);
    m_it->form->dataPlot->setAxisScale(QwtPlot::yLeft, 0.0, 1.0);
    m_it->pick(1);
    QTRY_VERIFY_WITH_TIMEOUT(m_it->form->dataPlot->axisAutoScale(QwtPlot::xBottom), DEADLINE_MS);
    QVERIFY(m_it->form->dataPlot->axisAutoScale(QwtPlot::yLeft));
    QCOMPARE(g_cfg->x_axis_range.changed, uint16_t(0));
    QCOMPARE(g_cfg->y_axis_range.changed, uint16_t(0));
}

// No reading between that of the old channel and that of the new one: the window
// is at once full of the present one.
void Binding::statistics_start_afresh()
{
    m_it->bind_afresh(0);
    QVERIFY(m_it->reading(1000.0));
    QVERIFY(m_it->cell.mv(1, 4321.125));
    struct Means {
        QMutex mutex;
        QSet<double> of_every_pass;
    };
    // Shared with the monitor thread, whose last call may outlast the connection.
    const auto means = std::make_shared<Means>();
    QObject probe;
    connect(
        m_it->window->monitor(), &monitorThread::plotInfo, &probe,
        [means](ZERL_CFG *cfg) {
            const QMutexLocker lock(&means->mutex);
            means->of_every_pass.insert(relaxed_load(cfg->live_mv));
        },
        Qt::DirectConnection);
    m_it->pick(1);
    QVERIFY(m_it->ticks(4));
    disconnect(m_it->window->monitor(), nullptr, &probe, nullptr);
    const QMutexLocker lock(&means->mutex);
    means->of_every_pass.remove(1000.0);
    QCOMPARE(means->of_every_pass, QSet<double>{4321.125});
    QCOMPARE(relaxed_load(g_sample.mv_std), 0.0);
    QCOMPARE(relaxed_load(g_sample.mv_min), 4321.125);
    QCOMPARE(relaxed_load(g_sample.mv_max), 4321.125);
}

void Binding::units_with_a_degree()
{
    m_it->bind_afresh(9);
    QCOMPARE(m_it->form->btnUnits->text(), QStringLiteral("DEG_C"));
    QTRY_COMPARE_WITH_TIMEOUT(m_it->form->dataPlot->axisTitle(QwtPlot::yLeft).text(),
                              QStringLiteral("DEG_C"), DEADLINE_MS);
}

// The menu goes grey between the read and the publication.
void Binding::table_is_read_and_published_under_the_mutex()
{
    m_it->bind_afresh(0);
    m_it->form->menuStatistics->setEnabled(true);
    int changes = 0;
    int free = 0;
    int16_t published = -1;
    QObject probe;
    connect(m_it->form->menuStatistics->menuAction(), &QAction::changed, &probe, [&] {
        ++changes;
        free += m_it->mutex_is_free() ? 1 : 0;
        published = g_cfg->channel;
    });
    m_it->pick(1);
    QVERIFY(changes > 0);
    QCOMPARE(free, 0);
    QCOMPARE(published, int16_t(0)); // not before the table is whole
    QCOMPARE(g_cfg->channel, int16_t(1));
    QVERIFY(m_it->mutex_is_free());
}

WINDOW_TEST(Binding);
#include "test_binding.moc"
