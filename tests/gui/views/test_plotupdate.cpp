// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a tick, a movement of the reading and a change of the table do to the
// plot, and what they leave alone. The monitor thread is held off by the table
// mutex where single updates are looked at.
#include <cmath>

#include <QtTest>

#include <qwt_scale_widget.h>

#include "calibration/linefit.h"
#include "gui/frame/testwindow.h"
#include "gui/views/allocations.h"
#include "gui/views/plotlook.h"
#include "host/operations.h"
#include "support/testmain.h"

class PlotUpdate : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void cleanup() { m_it->window->table_mutex()->unlock(); }

    void title_text_data();
    void title_text();
    void steady_reading_leaves_title_and_plot_untouched();
    void steady_update_allocates_nothing();
    void change_below_a_thousandth_counts_for_nothing();
    void change_of_a_thousandth_moves_the_point();
    void change_of_the_converted_reading_alone_moves_the_point();
    void reading_that_is_no_number();
    void current_point_follows_the_reading();
    void captured_samples_repeat_the_last_point();
    void previous_samples_are_the_table_at_binding();
    void best_fit_samples_are_the_line();
    void table_change_alone_is_not_drawn_until_the_reading_moves();
    void refit_of_the_polynomial();
    void polynomial_without_points_spans_ten_volts();
    void polynomial_of_the_range_in_work();
    void redraw_all_draws_everything_and_is_cleared();
    void record_is_read_under_the_mutex_and_drawn_without();
    void axes_are_on_auto_scale_after_a_rescale();
    void ticks_from_the_thread_move_the_plot();

private:
    QwtPlot *plot() const { return m_it->form->dataPlot; }
    void show_reading(double mv, double eu);
    void settle();

    std::unique_ptr<TestWindow> m_it;
};

void PlotUpdate::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
    QVERIFY(QTest::qWaitForWindowExposed(m_it->window));
}

void PlotUpdate::init()
{
    m_it->bind_afresh(0);
    QVERIFY(m_it->reading(2500.0));
    QTRY_COMPARE_WITH_TIMEOUT(plot()->title().text(),
                              QStringLiteral("Current Point: 2500.0000 / 50.0000"), DEADLINE_MS);
    settle();
    m_it->window->table_mutex()->lock();
    QApplication::processEvents(); // the ticks that were on their way
}

// Works off what a movement has asked for.
void PlotUpdate::settle()
{
    for (int i = 0; i < 20; ++i)
        QApplication::processEvents();
}

// As a tick finds it.
void PlotUpdate::show_reading(double mv, double eu)
{
    relaxed_store(g_cfg->live_mv, mv);
    relaxed_store(g_cfg->live_eu, eu);
    m_it->window->update_plot(g_cfg);
}

void PlotUpdate::title_text_data()
{
    const auto row = test_columns<double, double, QString>("mv", "eu", "text");
    row("small values are padded", 1.5, 0.03, "Current Point:   1.5000 /  0.0300");
    row("negative", -12.34567, -0.5, "Current Point: -12.3457 / -0.5000");
    row("wide values are not cut", 1234567.125, 99999.5, "Current Point: 1234567.1250 /99999.5000");
    row("at most 79 characters", 1e50, 1e50,
        QString::asprintf("Current Point: %8.4f /%8.4f", 1e50, 1e50).left(79));
}

void PlotUpdate::title_text()
{
    QFETCH(double, mv);
    QFETCH(double, eu);
    QFETCH(QString, text);
    show_reading(mv, eu);
    QCOMPARE(plot()->title().text(), text);
}

void PlotUpdate::steady_reading_leaves_title_and_plot_untouched()
{
    m_it->window->table_mutex()->unlock();
    QVERIFY(m_it->ticks(2));
    settle();
    PlotWatch watch(plot());
    const QString title = plot()->title().text();
    QVERIFY(m_it->ticks(8));
    settle();
    QCOMPARE(watch.paints, 0);
    QCOMPARE(watch.titles, 0);
    QCOMPARE(plot()->title().text(), title);
    m_it->window->table_mutex()->lock();
    // The same watch sees a movement.
    show_reading(2600.0, 52.0);
    settle();
    QVERIFY(watch.paints > 0);
    QVERIFY(watch.titles > 0);
}

void PlotUpdate::steady_update_allocates_nothing()
{
    m_it->window->update_plot(g_cfg);
    const long before = allocations_of_this_thread();
    for (int i = 0; i < 100; ++i)
        m_it->window->update_plot(g_cfg);
    const long steady = allocations_of_this_thread();
    QCOMPARE(steady, before);
    show_reading(2600.0, 52.0);
    const long moved = allocations_of_this_thread();
    QVERIFY(moved > steady); // the counter does count
}

void PlotUpdate::change_below_a_thousandth_counts_for_nothing()
{
    show_reading(2500.0001, 50.0001);
    settle();
    const QString title = plot()->title().text();
    PlotWatch watch(plot());
    show_reading(2500.0009, 50.0009);
    settle();
    QCOMPARE(plot()->title().text(), title);
    QCOMPARE(watch.paints, 0);
    QCOMPARE(samples_of(m_it->window->curve(CURVE_CURRENT_POINT)).first().x(), 2500.0);
}

void PlotUpdate::change_of_a_thousandth_moves_the_point()
{
    PlotWatch watch(plot());
    show_reading(2500.0011, 50.0);
    settle();
    QCOMPARE(plot()->title().text(), QStringLiteral("Current Point: 2500.0011 / 50.0000"));
    QCOMPARE(samples_of(m_it->window->curve(CURVE_CURRENT_POINT)).first(),
             QPointF(2500.0011, 50.0));
    QVERIFY(watch.paints > 0);
}

void PlotUpdate::change_of_the_converted_reading_alone_moves_the_point()
{
    show_reading(2500.0, 50.25);
    QCOMPARE(plot()->title().text(), QStringLiteral("Current Point: 2500.0000 / 50.2500"));
    QCOMPARE(samples_of(m_it->window->curve(CURVE_CURRENT_POINT)).first(), QPointF(2500.0, 50.25));
}

void PlotUpdate::reading_that_is_no_number()
{
    show_reading(qQNaN(), qQNaN());
    QVERIFY(plot()->title().text().contains(QLatin1String("nan")));
    const QString title = plot()->title().text();
    PlotWatch watch(plot());
    show_reading(qQNaN(), qQNaN());
    settle();
    QCOMPARE(plot()->title().text(), title);
    show_reading(2500.0, 50.0);
    QCOMPARE(plot()->title().text(), QStringLiteral("Current Point: 2500.0000 / 50.0000"));
}

void PlotUpdate::current_point_follows_the_reading()
{
    show_reading(3000.0, 60.0);
    QCOMPARE(samples_of(m_it->window->curve(CURVE_CURRENT_POINT)),
             (QVector<QPointF>{QPointF(3000.0, 60.0)}));
}

// Nothing is drawn past the last point.
void PlotUpdate::captured_samples_repeat_the_last_point()
{
    const QVector<QPointF> samples = samples_of(m_it->window->curve(CURVE_CAPTURED));
    QCOMPARE(samples.size(), 64);
    for (int i = 0; i < 5; ++i)
        QCOMPARE(samples.at(i), QPointF(1250.0 * i, 25.0 * i));
    for (int i = 5; i < 64; ++i)
        QCOMPARE(samples.at(i), QPointF(5000.0, 100.0));
    QCOMPARE(g_cfg->plot_current.count, uint16_t(64));
}

void PlotUpdate::previous_samples_are_the_table_at_binding()
{
    g_cfg->long_current.x[1] = 1300.0;
    g_cfg->redraw_all = 1;
    m_it->window->update_plot(g_cfg);
    QCOMPARE(samples_of(m_it->window->curve(CURVE_CAPTURED)).at(1), QPointF(1300.0, 25.0));
    QCOMPARE(samples_of(m_it->window->curve(CURVE_PREVIOUS)).at(1), QPointF(1250.0, 25.0));
    QCOMPARE(samples_of(m_it->window->curve(CURVE_PREVIOUS)).size(), 64);
}

void PlotUpdate::best_fit_samples_are_the_line()
{
    g_cfg->long_current.y[2] = 53.0;
    g_cfg->redraw_all = 1;
    m_it->window->update_plot(g_cfg);
    auto fit = std::make_unique<LONG_TABLE>();
    compute_long_fit(&g_cfg->long_current, fit.get());
    const QVector<QPointF> samples = samples_of(m_it->window->curve(CURVE_BEST_FIT));
    QCOMPARE(samples.size(), 64);
    for (int i = 0; i < 64; ++i) {
        const int point = qMin(i, 4);
        QCOMPARE(samples.at(i), QPointF(fit->x[point], fit->y[point]));
    }
    QVERIFY(std::fabs(samples.at(2).y() - 50.6) < 1e-9); // 0.6 of the 3 that one point is off
}

// The new curves are there and appear with the next movement.
void PlotUpdate::table_change_alone_is_not_drawn_until_the_reading_moves()
{
    settle();
    PlotWatch watch(plot());
    g_cfg->long_current.x[2] = 2400.0;
    g_cfg->long_current.y[2] = 49.0;
    QCOMPARE(g_cfg->redraw_all, uint16_t(0));
    m_it->window->update_plot(g_cfg);
    settle();
    QCOMPARE(samples_of(m_it->window->curve(CURVE_CAPTURED)).at(2), QPointF(2400.0, 49.0));
    QCOMPARE(watch.paints, 0);
    QCOMPARE(watch.titles, 0);
    show_reading(2510.0, 50.2);
    settle();
    QVERIFY(watch.paints > 0);
}

void PlotUpdate::refit_of_the_polynomial()
{
    m_it->window->table_mutex()->unlock();
    m_it->bind_afresh(4);
    QVERIFY(m_it->ticks(2));
    m_it->window->table_mutex()->lock();
    QCOMPARE(m_it->form->cboOrderOfPolynomial->currentText(), QStringLiteral("2"));
    const QVector<QPointF> samples = samples_of(m_it->window->curve(CURVE_POLYNOMIAL));
    QCOMPARE(samples.size(), 101);
    QCOMPARE(samples.first().x(), 0.0);
    QCOMPARE(samples.last().x(), 5000.0);
    for (const QPointF &sample : samples)
        QVERIFY(std::fabs(sample.y() - (0.01 * sample.x() + 1e-6 * sample.x() * sample.x())) <
                1e-9);
    QCOMPARE(g_cfg->plot_poly.count, uint16_t(101));
    QCOMPARE(m_it->form->lblCoeff1Value->text(), QStringLiteral("0.01"));
    QCOMPARE(m_it->form->lblCoeff2Value->text(), QStringLiteral("1e-06"));
    QVERIFY(!m_it->form->lblCoeff2->isHidden());
    QVERIFY(m_it->form->lblCoeff3->isHidden());
    QVERIFY(m_it->form->lblCoeff7Value->isHidden());
    // A point that moves takes the coefficients with it.
    g_cfg->table.poly[0].y[5] = g_cfg->long_current.y[5] = 85.0;
    m_it->window->update_plot(g_cfg);
    QVERIFY(g_cfg->table.poly[0].coeffs[2] > 1.1e-6);
    QCOMPARE(m_it->form->lblCoeff2Value->text(),
             QString::number(g_cfg->table.poly[0].coeffs[2], 'g', 6));
}

void PlotUpdate::polynomial_without_points_spans_ten_volts()
{
    m_it->window->table_mutex()->unlock();
    m_it->bind_afresh(4);
    QVERIFY(m_it->ticks(2));
    m_it->window->table_mutex()->lock();
    g_cfg->table.poly[0].num_points = 0;
    g_cfg->long_current.num_points = 0;
    g_cfg->redraw_all = 1;
    m_it->window->update_plot(g_cfg);
    const QVector<QPointF> samples = samples_of(m_it->window->curve(CURVE_POLYNOMIAL));
    QCOMPARE(samples.first().x(), 0.0);
    QCOMPARE(samples.last().x(), 10000.0);
    QVERIFY(std::fabs(samples.last().y() - 200.0) < 1e-6); // the stored coefficients
}

void PlotUpdate::polynomial_of_the_range_in_work()
{
    m_it->window->table_mutex()->unlock();
    m_it->bind_afresh(5);
    QVERIFY(m_it->ticks(2));
    m_it->window->table_mutex()->lock();
    g_cfg->table.poly_range_index = 5;
    compute_long_table(&g_cfg->table, &g_cfg->long_current);
    g_poly_order_text = QStringLiteral("1");
    g_cfg->table.poly[0].num_points = 0;
    g_cfg->table.poly[0].num_coeffs = 0;
    g_cfg->redraw_all = 1;
    m_it->window->update_plot(g_cfg);
    QCOMPARE(curves_on_show(plot()),
             (QStringList{"Captured", "Previous", "Current Point", "Polynomial"}));
    const QVector<QPointF> samples = samples_of(m_it->window->curve(CURVE_POLYNOMIAL));
    QCOMPARE(samples.size(), 101);
    QCOMPARE(samples.first().x(), 2000.0); // of range 5
    QCOMPARE(samples.last().x(), 5000.0);
    QVERIFY(std::fabs(samples.last().y() - 100.0) < 1e-6);
    QVERIFY(!m_it->form->lblCoeff1Value->isHidden());
    QVERIFY(m_it->form->lblCoeff2Value->isHidden());
    QCOMPARE(m_it->form->lblCoeff1Value->text(), QStringLiteral("0.02"));
}

void PlotUpdate::redraw_all_draws_everything_and_is_cleared()
{
    std::strcpy(g_cfg->table.eng_units, "PSI");
    PlotWatch watch(plot());
    m_it->window->update_plot(g_cfg);
    QCOMPARE(plot()->axisTitle(QwtPlot::yLeft).text(), QStringLiteral("kPa"));
    g_cfg->redraw_all = 1;
    m_it->window->update_plot(g_cfg);
    settle();
    QCOMPARE(plot()->axisTitle(QwtPlot::yLeft).text(), QStringLiteral("PSI"));
    QCOMPARE(g_cfg->redraw_all, uint16_t(0));
    QVERIFY(watch.paints > 0);
}

void PlotUpdate::axes_are_on_auto_scale_after_a_rescale()
{
    plot()->setAxisScale(QwtPlot::xBottom, 0.0, 1.0);
    plot()->setAxisScale(QwtPlot::yLeft, 0.0, 1.0);
    show_reading(2501.0, 50.02); // within the range: no rescale
    QVERIFY(!plot()->axisAutoScale(QwtPlot::xBottom));
    show_reading(90000.0, 1800.0);
    QVERIFY(plot()->axisAutoScale(QwtPlot::xBottom));
    QVERIFY(plot()->axisAutoScale(QwtPlot::yLeft));
    QCOMPARE(g_cfg->x_axis_range.changed, uint16_t(0));
    QCOMPARE(g_cfg->y_axis_range.changed, uint16_t(0));
    plot()->setAxisScale(QwtPlot::xBottom, 0.0, 1.0);
    m_it->window->request_rescale();
    m_it->window->update_plot(g_cfg);
    QVERIFY(plot()->axisAutoScale(QwtPlot::xBottom));
}

void PlotUpdate::ticks_from_the_thread_move_the_plot()
{
    m_it->window->table_mutex()->unlock();
    for (const double mv : {1000.0, 4000.0, -20.0}) {
        QVERIFY(m_it->reading(mv));
        QTRY_COMPARE_WITH_TIMEOUT(plot()->title().text(),
                                  QString::asprintf("Current Point: %8.4f /%8.4f", mv, mv * 0.02),
                                  DEADLINE_MS);
        QCOMPARE(samples_of(m_it->window->curve(CURVE_CURRENT_POINT)).first().x(), mv);
    }
    m_it->window->table_mutex()->lock();
}

// A slow redraw does not hold the monitor up.
void PlotUpdate::record_is_read_under_the_mutex_and_drawn_without()
{
    m_it->window->table_mutex()->unlock();
    QVector<bool> attaching;
    QVector<bool> drawing;
    QObject probe;
    connect(plot(), &QwtPlot::itemAttached, &probe, [&] { attaching += m_it->mutex_is_free(); });
    connect(plot()->axisWidget(QwtPlot::xBottom), &QwtScaleWidget::scaleDivChanged, &probe,
            [&] { drawing += m_it->mutex_is_free(); });
    g_cfg->long_current.x[4] = 90000.0;
    g_cfg->redraw_all = 1;
    m_it->window->update_plot(g_cfg);
    QVERIFY(!attaching.isEmpty());
    QVERIFY(!attaching.contains(true));
    QCOMPARE(drawing, QVector<bool>{true});
    m_it->window->table_mutex()->lock();
}

WINDOW_TEST(PlotUpdate);
#include "test_plotupdate.moc"
