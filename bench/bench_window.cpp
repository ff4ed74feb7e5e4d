// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window: a tick with a steady reading against the comparison of the bytes
// that tell a change, a tick with a moving reading against a bare replot of the
// same five curves under a new title, and the filling of the channel list
// against a bare combo box. Runs in a private cell.
#include <cstring>

#include <QApplication>
#include <QComboBox>

#include <qwt_plot.h>
#include <qwt_plot_curve.h>

#include "acquisition/channelbinding.h"
#include "bench/benchcell.h"
#include "bench/ratios.h"
#include "calibration/tableload.h"
#include "frame/mainwindow.h"
#include "tests/support/windowform.h"

namespace
{

constexpr int CHANNELS = 32767;
constexpr std::size_t COMPARED_BYTES = 2568;

MainWindow *window = nullptr;

void paint()
{
    QCoreApplication::processEvents();
}

// Channel 0 on the plot, its record shown once.
void bind()
{
    const TABLE_RECORD table = bench::straight_table(11);
    if (create_table("/cell/tables/bench.tbl", &table) != 0)
        bench::give_up("the table cannot be written");
    TABLE_RECORD &bound = g_cfg->table;
    std::memcpy(&bound, &table, sizeof bound);
    std::strcpy(g_cfg->tbl_path, "/cell/tables/bench.tbl");
    load_channel_table(g_cfg);
    g_cfg->long_previous = g_cfg->long_current;
    g_cfg->redraw_all = 1;
    g_cfg->live_mv = 1250.0;
    g_cfg->live_eu = 125.0;
    window->update_plot(g_cfg);
    paint();
}

void BM_steady_tick(benchmark::State &state)
{
    window->update_plot(g_cfg);
    for (auto run : state) {
        static_cast<void>(run);
        window->update_plot(g_cfg);
    }
}
BENCHMARK(BM_steady_tick);

void BM_memcmp_2568(benchmark::State &state)
{
    static unsigned char a[COMPARED_BYTES];
    static unsigned char b[COMPARED_BYTES];
    std::memcpy(a, &g_cfg->long_current, COMPARED_BYTES);
    std::memcpy(b, a, COMPARED_BYTES);
    for (auto run : state) {
        static_cast<void>(run);
        benchmark::DoNotOptimize(static_cast<void *>(a));
        benchmark::DoNotOptimize(static_cast<void *>(b));
        benchmark::DoNotOptimize(std::memcmp(a, b, COMPARED_BYTES));
        benchmark::ClobberMemory();
    }
}
BENCHMARK(BM_memcmp_2568);

void BM_moving_tick(benchmark::State &state)
{
    double step = 0.0;
    for (auto run : state) {
        static_cast<void>(run);
        step = step < 100.0 ? step + 0.5 : 0.0;
        g_cfg->live_mv = 1250.0 + step;
        g_cfg->live_eu = 125.0 + step / 10.0;
        window->update_plot(g_cfg);
        paint();
    }
}
BENCHMARK(BM_moving_tick)->Unit(benchmark::kMicrosecond);

void BM_bare_replot(benchmark::State &state)
{
    QwtPlot *plot = form_of(window)->dataPlot;
    double step = 0.0;
    for (auto run : state) {
        static_cast<void>(run);
        step = step < 100.0 ? step + 0.5 : 0.0;
        plot->setTitle(
            QString::asprintf("Current Point: %8.4f /%8.4f", 1250.0 + step, 125.0 + step / 10.0));
        plot->replot();
        paint();
    }
}
BENCHMARK(BM_bare_replot)->Unit(benchmark::kMicrosecond);

void BM_fill_channel_list(benchmark::State &state)
{
    QComboBox *list = form_of(window)->cboCurrentChannel;
    for (auto run : state) {
        static_cast<void>(run);
        state.PauseTiming();
        {
            const QSignalBlocker blocker(list);
            list->clear();
        }
        state.ResumeTiming();
        window->fill_channel_list();
    }
    if (list->count() != CHANNELS + 1)
        state.SkipWithError("not all channels are in the list");
}
BENCHMARK(BM_fill_channel_list)->Unit(benchmark::kMillisecond);

void BM_bare_combo(benchmark::State &state)
{
    const QStringList texts = channel_items();
    for (auto run : state) {
        static_cast<void>(run);
        QComboBox combo;
        combo.addItems(texts);
        benchmark::DoNotOptimize(combo.count());
    }
}
BENCHMARK(BM_bare_combo)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    bench::publish_cell(CHANNELS);
    QApplication application(argc, argv);
    MainWindow main_window;
    window = &main_window;
    set_main_window(window);
    window->show();
    paint();
    bind();
    const int status = bench::run(argc, argv,
                                  {{"BM_steady_tick", "BM_memcmp_2568", 5.0},
                                   {"BM_moving_tick", "BM_bare_replot", 1.5},
                                   {"BM_fill_channel_list", "BM_bare_combo", 2.0}});
    set_main_window(nullptr);
    return status;
}
