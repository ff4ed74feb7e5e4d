// SPDX-License-Identifier: GPL-3.0-or-later
//
// The switch of a table of 64 points from INTERP to a polynomial of degree 7,
// and a change of its degree, from the slot to the painted plot, against a replot
// of the same curves and one fit. The switch itself fits nothing: its first
// drawing takes the stored coefficients; the change of the degree fits.
// The reading moves in each run, so that nothing is drawn from what was kept, and
// both sides draw under its title: a new title lays the plot out anew, a cost of
// the reading and not of the slot. Runs in a private cell.
#include <cstring>

#include <QApplication>
#include <QSignalBlocker>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>

#include "bench/benchcell.h"
#include "bench/ratios.h"
#include "calibration/tableload.h"
#include "frame/mainwindow.h"
#include "tests/support/windowform.h"

namespace
{

enum { ITEM_INTERP = 0, ITEM_POLY = 1, DEGREE = 7 };

MainWindow *window = nullptr;

void paint()
{
    QCoreApplication::processEvents();
}

// Channel 0 on the plot, slightly curved.
void bind()
{
    const TABLE_RECORD table = bench::straight_table(MAX_POINTS);
    std::memcpy(&g_cfg->table, &table, sizeof table);
    POLY_RANGE_RECORD &range = g_cfg->table.poly[0];
    for (int i = 0; i < MAX_POINTS; ++i)
        range.y[i] += 1e-6 * range.x[i] * range.x[i];
    compute_long_table(&g_cfg->table, &g_cfg->long_current);
    take_table_into_work(g_cfg);
    g_cfg->live_mv = 1250.0;
    g_cfg->live_eu = 125.0;
    window->sync_type_controls(g_cfg);
    window->show_rows();
    window->update_plot(g_cfg);
    paint();
}

void choose_type(int item)
{
    form_of(window)->cboCalType->setCurrentIndex(item);
}

void back_to_interp()
{
    choose_type(ITEM_INTERP);
    g_cfg->redraw_all = 1;
    window->update_plot(g_cfg);
    paint();
    // What an event loop would have deleted by now.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    paint();
}

void BM_switch_to_poly(benchmark::State &state)
{
    back_to_interp();
    double step = 0.0;
    for (auto run : state) {
        static_cast<void>(run);
        step = step < 100.0 ? step + 0.5 : 0.0;
        g_cfg->live_mv = 1250.0 + step;
        g_cfg->live_eu = 125.0 + step / 10.0;
        choose_type(ITEM_POLY);
        paint();
        state.PauseTiming();
        if (g_poly_order_text.toInt() != DEGREE || g_cfg->redraw_all != 0 ||
            g_cfg->table.poly[0].num_coeffs != DEGREE + 1)
            state.SkipWithError("the polynomial was not drawn");
        back_to_interp();
        state.ResumeTiming();
    }
}
BENCHMARK(BM_switch_to_poly)->Unit(benchmark::kMicrosecond);

// From degree 6 to 7 and back, both sides counted.
void BM_change_of_degree(benchmark::State &state)
{
    back_to_interp();
    choose_type(ITEM_POLY);
    paint();
    double step = 0.0;
    bool higher = false;
    for (auto run : state) {
        static_cast<void>(run);
        step = step < 100.0 ? step + 0.5 : 0.0;
        g_cfg->live_mv = 1250.0 + step;
        g_cfg->live_eu = 125.0 + step / 10.0;
        higher = !higher;
        form_of(window)->cboOrderOfPolynomial->setCurrentIndex(DEGREE - (higher ? 2 : 1));
        paint();
        const POLY_RANGE_RECORD &range = g_cfg->table.poly[0];
        if (g_cfg->redraw_all != 0 || range.num_coeffs != DEGREE + (higher ? 0 : 1))
            state.SkipWithError("the polynomial was not drawn");
    }
    form_of(window)->cboOrderOfPolynomial->setCurrentIndex(DEGREE - 1);
    paint();
}
BENCHMARK(BM_change_of_degree)->Unit(benchmark::kMicrosecond);

void BM_replot_and_fit(benchmark::State &state)
{
    choose_type(ITEM_POLY);
    paint();
    QwtPlot *plot = form_of(window)->dataPlot;
    const POLY_RANGE_RECORD &range = g_cfg->table.poly[0];
    double step = 0.0;
    for (auto run : state) {
        static_cast<void>(run);
        step = step < 100.0 ? step + 0.5 : 0.0;
        double coeffs[POLY_COEFFS] = {};
        polynomialfit(MAX_POINTS, DEGREE + 1, range.x, range.y, coeffs);
        benchmark::DoNotOptimize(coeffs);
        plot->setTitle(
            QString::asprintf("Current Point: %8.4f /%8.4f", 1250.0 + step, 125.0 + step / 10.0));
        plot->replot();
        paint();
    }
}
BENCHMARK(BM_replot_and_fit)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    bench::publish_cell(1);
    QApplication application(argc, argv);
    MainWindow main_window;
    window = &main_window;
    set_main_window(window);
    window->show();
    paint();
    bind();
    const int status = bench::run(argc, argv,
                                  {{"BM_switch_to_poly", "BM_replot_and_fit", 2.0},
                                   {"BM_change_of_degree", "BM_replot_and_fit", 2.0}});
    set_main_window(nullptr);
    return status;
}
