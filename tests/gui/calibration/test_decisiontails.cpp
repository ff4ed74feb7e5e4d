// SPDX-License-Identifier: GPL-3.0-or-later
//
// What Adjust and Re-Use do behind their questions, each step on its own: the
// record is set to what only that step puts right.
#include <dlfcn.h>

#include <QtTest>

#include <qwt_scale_div.h>

#include "calibration/classification.h"
#include "gui/calibration/processpanel.h"
#include "gui/frame/heldmutex.h"
#include "support/testmain.h"

namespace
{
bool units_lost = false;
bool memory_lost = false;

template <typename Function> Function *runtime_operation(const char *name)
{
    return reinterpret_cast<Function *>(dlsym(RTLD_NEXT, name));
}
} // namespace

// Both stand before the runtime's own.
extern "C" int32_t units_init_access(int32_t mode)
{
    static auto *const operation = runtime_operation<int32_t(int32_t)>("units_init_access");
    return units_lost ? -1 : operation(mode);
}

extern "C" void *get_shrd_mem(int32_t id, int32_t mode)
{
    static auto *const operation = runtime_operation<void *(int32_t, int32_t)>("get_shrd_mem");
    return memory_lost && id == MEMORY_CAL_TABLES ? nullptr : operation(id, mode);
}

class DecisionTails : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<ProcessPanel>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void worst_status_is_computed_at_the_press_data() { ProcessPanel::add_decisions(); }
    void worst_status_is_computed_at_the_press();
    void no_ends_with_nothing_changed_data() { ProcessPanel::add_decisions(); }
    void no_ends_with_nothing_changed();
    void captions_of_all_rows_are_cleared_data() { ProcessPanel::add_decisions(); }
    void captions_of_all_rows_are_cleared();
    void moment_of_the_step_is_kept_data() { ProcessPanel::add_decisions(); }
    void moment_of_the_step_is_kept();
    void names_go_into_the_record_data();
    void names_go_into_the_record();
    void plot_is_replotted_then_scaled_by_itself_data() { ProcessPanel::add_decisions(); }
    void plot_is_replotted_then_scaled_by_itself();
    void rows_are_judged_again_data() { ProcessPanel::add_decisions(); }
    void rows_are_judged_again();
    void rebuild_that_fails_keeps_the_stamp_and_judges_the_data_in_memory_data();
    void rebuild_that_fails_keeps_the_stamp_and_judges_the_data_in_memory();
    void monitor_thread_samples_on_during_the_rebuild_data() { ProcessPanel::add_decisions(); }
    void monitor_thread_samples_on_during_the_rebuild();
    void decision_takes_no_lock_but_for_the_binding_data() { ProcessPanel::add_decisions(); }
    void decision_takes_no_lock_but_for_the_binding();

private:
    void press(bool adjust)
    {
        (adjust ? m_it->it.form->btnAdjustCalibration : m_it->it.form->btnReuseCalibration)
            ->click();
    }

    std::unique_ptr<ProcessPanel> m_it;
};

void DecisionTails::init()
{
    units_lost = false;
    memory_lost = false;
    m_it->bind();
}

// The rows say 0 and the record still 3: the question is that of 0, or none.
void DecisionTails::worst_status_is_computed_at_the_press()
{
    QFETCH(bool, adjust);
    for (const bool rows_are_worse : {false, true}) {
        m_it->bind();
        m_it->set_buttons(true, true);
        m_it->captured(rows_are_worse ? 3 : 0);
        g_cfg->table.worst_status = rows_are_worse ? 0 : 3;
        g_cfg->table.last_save_type = SAVE_AS_FOUND;
        const char *const mark = rows_are_worse ? (adjust ? "Q2" : "Q4") : (adjust ? "Q1" : "");
        m_it->press(adjust ? ADJUST : REUSE, mark, false);
    }
}

void DecisionTails::no_ends_with_nothing_changed()
{
    QFETCH(bool, adjust);
    const char event = adjust ? ADJUST : REUSE;
    m_it->set_boxes("11101");
    m_it->set_buttons(true, true);
    m_it->captured(2);
    m_it->it.window->row(63)->set_caption(QStringLiteral("Undo"));
    g_cfg->table.last_save_type = SAVE_AS_FOUND;
    qstrncpy(g_cfg->table.qie, "former standard", sizeof g_cfg->table.qie);
    qstrncpy(g_cfg->table.verified_by, "former name", sizeof g_cfg->table.verified_by);
    const QDateTime moment = m_it->it.window->correlation_time();
    QVERIFY(m_it->it.ticks(3)); // what the binding has the plot do is done
    m_it->it.form->dataPlot->setAxisScale(QwtPlot::xBottom, 0.0, 1.0);
    m_it->it.form->dataPlot->setAxisScale(QwtPlot::yLeft, 0.0, 1.0);
    const auto record_before = std::make_unique<TABLE_RECORD>(g_cfg->table);
    record_before->worst_status = 2; // the press computes it, whatever the answer
    const auto long_before = std::make_unique<LONG_TABLE>(g_cfg->long_current);
    const PanelLook before = m_it->look();
    m_it->press(event, adjust ? "Q2" : "Q4", false);
    m_it->check(before, event, NOTHING_CHANGED);
    QVERIFY(std::memcmp(record_before.get(), &g_cfg->table, sizeof(TABLE_RECORD)) == 0);
    QVERIFY(std::memcmp(long_before.get(), &g_cfg->long_current, sizeof(LONG_TABLE)) == 0);
    QCOMPARE(m_it->it.window->correlation_time(), moment);
    QVERIFY(!m_it->it.form->dataPlot->axisAutoScale(QwtPlot::xBottom));
    QVERIFY(!m_it->it.form->dataPlot->axisAutoScale(QwtPlot::yLeft));
    QCOMPARE(g_captured_points, 3);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    for (const int i : {0, 1, 2, 63})
        QCOMPARE(m_it->it.window->row(i)->caption(), QStringLiteral("Undo"));
    QCOMPARE(m_it->it.window->row(0)->value_style(),
             QStringLiteral("background-color: rgb(9,9,9)"));
    QCOMPARE(m_it->it.window->row(1)->status, uint16_t(2));
}

void DecisionTails::captions_of_all_rows_are_cleared()
{
    QFETCH(bool, adjust);
    m_it->ready_without_question();
    for (int i = 0; i < MAX_POINTS; ++i)
        m_it->it.window->row(i)->set_caption(QStringLiteral("Undo"));
    press(adjust);
    for (int i = 0; i < MAX_POINTS; ++i) {
        QCOMPARE(m_it->it.window->row(i)->caption(), QStringLiteral("Capture"));
        QCOMPARE(m_it->it.window->row(i)->caption_style(),
                 QStringLiteral("background-color: rgb(126,232,255)"));
    }
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(m_it->it.form->btnRecordData->styleSheet(),
             QStringLiteral("background-color: rgb(238, 238,238)"));
}

void DecisionTails::moment_of_the_step_is_kept()
{
    QFETCH(bool, adjust);
    m_it->ready_without_question();
    const QDateTime start = QDateTime::currentDateTime();
    QVERIFY(!(m_it->it.window->correlation_time() >= start));
    press(adjust);
    const QDateTime moment = m_it->it.window->correlation_time();
    QVERIFY(moment >= start && moment <= QDateTime::currentDateTime());
    const QString text = moment.toString(QStringLiteral("MM/dd/yyyy hh:mm:ss"));
    QCOMPARE(m_it->it.form->txtAdjustCalibration->text(), text);
    QCOMPARE(QString::fromUtf8(g_ws_block->adjust_calibration_time), text);
}

void DecisionTails::names_go_into_the_record_data()
{
    test_columns<bool, QString, QString, QString, QString>("adjust", "standard", "technician",
                                                           "kept_standard", "kept_technician");
    for (const bool adjust : {true, false}) {
        const char *const button = adjust ? "Adjust" : "Re-Use";
        QTest::addRow("%s", button) << adjust << "DWT-13"
                                    << "A. Smith"
                                    << "DWT-13"
                                    << "A. Smith";
        QTest::addRow("%s, empty fields stop nothing", button) << adjust << ""
                                                               << ""
                                                               << ""
                                                               << "";
        QTest::addRow("%s, cut to their fields", button)
            << adjust << QString(40, QLatin1Char('s')) << QString(40, QLatin1Char('t'))
            << QString(31, QLatin1Char('s')) << QString(31, QLatin1Char('t'));
        QTest::addRow("%s, no half of a character is left", button)
            << adjust << QString(40, QChar(0x00e4)) << QString(40, QChar(0x20ac))
            << QString(15, QChar(0x00e4)) << QString(10, QChar(0x20ac));
        QTest::addRow("%s, quotes and back slashes", button) << adjust << R"("A" \n 'B')"
                                                             << R"(O'Neil "Jo" \)"
                                                             << R"("A" \n 'B')"
                                                             << R"(O'Neil "Jo" \)";
    }
}

void DecisionTails::names_go_into_the_record()
{
    QFETCH(bool, adjust);
    QFETCH(QString, standard);
    QFETCH(QString, technician);
    m_it->ready_without_question();
    qstrncpy(g_cfg->table.qie, "former standard", sizeof g_cfg->table.qie);
    qstrncpy(g_cfg->table.verified_by, "former name", sizeof g_cfg->table.verified_by);
    m_it->it.form->txtCalibrationQIE->setText(standard);
    m_it->it.form->txtTechnicianName->setText(technician);
    press(adjust);
    const TABLE_RECORD record = ProcessPanel::last_record();
    QCOMPARE(int(record.last_save_type), int(adjust ? SAVE_ADJUSTED : SAVE_REUSED));
    QTEST(QString::fromUtf8(record.qie), "kept_standard");
    QTEST(QString::fromUtf8(record.verified_by), "kept_technician");
    QCOMPARE(QByteArray(g_cfg->table.qie), QByteArray(record.qie)); // as read back
    QCOMPARE(QByteArray(g_cfg->table.verified_by), QByteArray(record.verified_by));
}

// The scale that was set takes effect with the replot, and is given up behind it.
// A tick that is worked off behind the decision would replot once more.
void DecisionTails::plot_is_replotted_then_scaled_by_itself()
{
    QFETCH(bool, adjust);
    m_it->ready_without_question();
    QwtPlot *const plot = m_it->it.form->dataPlot;
    plot->setAxisAutoScale(QwtPlot::xBottom);
    plot->setAxisAutoScale(QwtPlot::yLeft);
    plot->replot();
    for (const int axis : {int(QwtPlot::xBottom), int(QwtPlot::yLeft)}) {
        plot->setAxisScale(axis, -7.0, -6.0);
        QVERIFY(plot->axisScaleDiv(axis).lowerBound() != -7.0);
        QVERIFY(!plot->axisAutoScale(axis));
    }
    MainWindow *const window = m_it->it.window;
    disconnect(window->monitor(), &monitorThread::plotInfo, window, nullptr);
    QCoreApplication::removePostedEvents(window, QEvent::MetaCall);
    press(adjust);
    connect(window->monitor(), SIGNAL(plotInfo(ZERL_CFG *)), window,
            SLOT(draw_plots_info(ZERL_CFG *)));
    for (const int axis : {int(QwtPlot::xBottom), int(QwtPlot::yLeft)}) {
        QCOMPARE(plot->axisScaleDiv(axis).lowerBound(), -7.0);
        QVERIFY(plot->axisAutoScale(axis));
    }
}

// Against the table now in force, and only the rows in use.
void DecisionTails::rows_are_judged_again()
{
    QFETCH(bool, adjust);
    m_it->ready_without_question();
    for (const int i : {0, 1, 2, 3, 63})
        m_it->it.window->row(i)->status = 3;
    const QString odd = QStringLiteral("background-color: rgb(9,9,9)");
    m_it->it.window->row(3)->set_value_style(odd);
    g_cfg->long_previous.y[1] += 40.0; // a yardstick that is not to be used
    press(adjust);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(m_it->it.window->row(i)->status, uint16_t(0));
        QCOMPARE(m_it->it.window->row(i)->value_style(),
                 QStringLiteral("background-color: rgb(0,255,0)"));
    }
    QCOMPARE(m_it->it.window->row(3)->value_style(), odd);
    QCOMPARE(m_it->it.window->row(63)->status, uint16_t(3));
    QVERIFY(std::memcmp(&g_cfg->long_previous, &g_cfg->long_current, sizeof(LONG_TABLE)) == 0);
    m_it->it.window->row(63)->status = 0;
    m_it->it.window->row(3)->status = 0;
}

void DecisionTails::rebuild_that_fails_keeps_the_stamp_and_judges_the_data_in_memory_data()
{
    test_columns<bool, bool, QString>("adjust", "memory", "logged");
    for (const bool adjust : {true, false}) {
        const char *const button = adjust ? "Adjust" : "Re-Use";
        QTest::addRow("%s, memories lost", button)
            << adjust << true << "Failure Initializing Shared Memory after Table Rebuild";
        QTest::addRow("%s, units lost", button)
            << adjust << false << "Failure Re-initializing Units after Table Rebuild";
    }
}

void DecisionTails::rebuild_that_fails_keeps_the_stamp_and_judges_the_data_in_memory()
{
    QFETCH(bool, adjust);
    QFETCH(bool, memory);
    QFETCH(QString, logged);
    m_it->ready_without_question();
    for (int i = 0; i < 3; ++i)
        g_cfg->long_current.y[i] = 50.0 * i + 0.5; // out of adjustment by the former table
    m_it->it.window->row(1)->status = 3;
    const PanelLook before = m_it->look();
    (memory ? memory_lost : units_lost) = true;
    const HostLog log;
    BoxAnswerer answerer;
    if (memory)
        answerer.expect(QStringLiteral("Information"),
                        QStringLiteral("Vornax must be running\nUnable to get CAL_TABLES memory"));
    const int rebuilds = ProcessPanel::rebuilds;
    m_it->it.form->dataPlot->setAxisScale(QwtPlot::xBottom, -7.0, -6.0);
    press(adjust);
    QCOMPARE(ProcessPanel::rebuilds, rebuilds); // the channel is not bound again
    ++ProcessPanel::rebuilds;                   // but the host's program was started
    QCOMPARE(log.count(logged), 1);
    m_it->check(before, adjust ? ADJUST : REUSE,
                {"==t==", "=====", "ii", "11", "=", adjust ? SAVE_ADJUSTED : SAVE_REUSED});
    QVERIFY(m_it->it.form->dataPlot->axisAutoScale(QwtPlot::xBottom));
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(g_cfg->long_current.y[i], 50.0 * i + 0.5);
        QCOMPARE(m_it->it.window->row(i)->status, uint16_t(STATUS_OUT_OF_ADJUSTMENT));
        QCOMPARE(m_it->it.window->row(i)->value_style(),
                 QStringLiteral("background-color: rgb(255, 255, 127)"));
    }
    QCOMPARE(int(g_cfg->table.worst_status), 3); // only a binding clears it
    // A re-use sets neither kind nor time, so the former kind stays in memory.
    QCOMPARE(int(g_cfg->table.last_save_type), int(adjust ? SAVE_ADJUSTED : SAVE_NEW_CORRELATION));
    QCOMPARE(g_cfg->table.poly[0].y[2], adjust ? 100.125 : 100.0);
    memory_lost = false;
    units_lost = false;
}

// The window stands still for the rebuild, the sampling does not.
void DecisionTails::monitor_thread_samples_on_during_the_rebuild()
{
    QFETCH(bool, adjust);
    m_it->ready_without_question();
    static bool sampled;
    static int32_t (*bind)(ZERL_CFG *);
    sampled = false;
    bind = g_callbacks.rebind_channel;
    g_callbacks.rebind_channel = [](ZERL_CFG *cfg) {
        relaxed_store(g_cfg->monitor_pass_done, uint16_t(0));
        QElapsedTimer since;
        since.start();
        while (!sampled && since.elapsed() < DEADLINE_MS) {
            QThread::msleep(1); // without the events of the window
            sampled = relaxed_load(g_cfg->monitor_pass_done) == 1;
        }
        return bind(cfg);
    };
    press(adjust);
    g_callbacks.rebind_channel = bind;
    QVERIFY(sampled);
}

// Another thread holds it, as a pass would, from the press to the point where
// the rebuild binds the channel anew, which publishes under it.
void DecisionTails::decision_takes_no_lock_but_for_the_binding()
{
    QFETCH(bool, adjust);
    m_it->ready_without_question();
    static HeldMutex *held;
    static bool in_time;
    static int32_t (*bind)(ZERL_CFG *);
    HeldMutex holder(&m_it->it);
    held = &holder;
    in_time = false;
    bind = g_callbacks.rebind_channel;
    g_callbacks.rebind_channel = [](ZERL_CFG *cfg) {
        in_time = held->release();
        return bind(cfg);
    };
    press(adjust);
    g_callbacks.rebind_channel = bind;
    QVERIFY(in_time);
    QCOMPARE(int(ProcessPanel::last_record().last_save_type),
             int(adjust ? SAVE_ADJUSTED : SAVE_REUSED));
}

WINDOW_TEST(DecisionTails);
#include "test_decisiontails.moc"
