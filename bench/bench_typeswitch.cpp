// SPDX-License-Identifier: GPL-3.0-or-later
//
// The switch of a table of 64 points from INTERP to a polynomial of degree 7,
// from the slot to the painted plot, against a bare replot of the same curves
// and one fit. Runs in a private cell.
#include <cstring>

#include <QApplication>
#include <QSignalBlocker>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>

#include "bench/benchcell.h"
#include "bench/ratios.h"
#include "calibration/tableload.h"
#include "frame/mainwindow.h"
#include "ui_mainwindow.h"

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
    window->form()->cboCalType->setCurrentIndex(item);
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

void BM_bare_replot_and_fit(benchmark::State &state)
{
    choose_type(ITEM_POLY);
    paint();
    QwtPlot *plot = window->form()->dataPlot;
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
BENCHMARK(BM_bare_replot_and_fit)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char **argv)
{
    bench::publish_cell(1);
    QApplication application(argc, argv);
    MainWindow main_window;
    window = &main_window;
    g_main_window = window;
    window->show();
    paint();
    bind();
    const int status =
        bench::run(argc, argv, {{"BM_switch_to_poly", "BM_bare_replot_and_fit", 2.0}});
    g_main_window = nullptr;
    return status;
}
