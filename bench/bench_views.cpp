// SPDX-License-Identifier: GPL-3.0-or-later
//
// The statistics views over 64 points, from the click in the menu to the
// painted window, against the same view opened empty: headings, boxes and Ok
// without a point. Runs in a private cell.
#include <cmath>

#include <QApplication>
#include <QDialog>

#include "bench/benchcell.h"
#include "bench/ratios.h"
#include "calibration/linefit.h"
#include "frame/mainwindow.h"
#include "tests/support/windowform.h"

namespace
{

MainWindow *window = nullptr;

void bind()
{
    g_cfg->table = bench::straight_table(MAX_POINTS);
    g_cfg->table.table_type = TABLE_POLY;
    g_cfg->table.poly[0].num_coeffs = 8;
    g_cfg->table.poly[0].coeffs[1] = 0.1;
    compute_long_table(&g_cfg->table, &g_cfg->long_current);
    g_cfg->long_previous = g_cfg->long_current;
    compute_long_fit(&g_cfg->long_current, &g_cfg->long_fit);
    for (int i = 0; i < MAX_POINTS; ++i) {
        POINT_STATISTICS &point = g_cfg->point_stats[i];
        point.eu_reference = g_cfg->table.poly[0].y[i];
        point.eu_mean = point.eu_reference + 0.01 * std::sin(i);
        point.mv_mean = g_cfg->table.poly[0].x[i];
        point.mv_std = 0.0123456789;
        point.mv_min = point.mv_mean - 0.1234567;
        point.mv_max = point.mv_mean + 0.1234567;
    }
}

// Stops the clock when a dialog's first painting is through, and closes it.
class Painted : public QObject
{
public:
    explicit Painted(benchmark::State &state) : m_state(state) { qApp->installEventFilter(this); }
    bool seen() const { return m_seen; }

    bool eventFilter(QObject *object, QEvent *event) override
    {
        auto *dialog = event->type() == QEvent::Paint ? qobject_cast<QDialog *>(object) : nullptr;
        if (dialog != nullptr && !m_seen) {
            m_seen = true;
            // A window's children are painted within the same call.
            QMetaObject::invokeMethod(
                this,
                [this, dialog] {
                    m_state.PauseTiming();
                    dialog->accept();
                },
                Qt::QueuedConnection);
        }
        return false;
    }

private:
    benchmark::State &m_state;
    bool m_seen = false;
};

void open(benchmark::State &state, int points, void (*click)())
{
    g_cfg->long_current.num_points = static_cast<int16_t>(points);
    bool painted = true;
    for (auto run : state) {
        static_cast<void>(run);
        const Painted watcher(state);
        click();
        painted = painted && watcher.seen();
        state.ResumeTiming();
    }
    if (!painted)
        state.SkipWithError("a window was not painted");
}

// The entry is not on show, so its slot is called.
void click_calibration_statistics()
{
    QMetaObject::invokeMethod(window, "on_actionStatistics_Chart_triggered");
}

void click_point_statistics()
{
    form_of(window)->actionPoint_Statistics->trigger();
}

void click_polynomial_regression()
{
    form_of(window)->actionCal_Statistics_Chart->trigger();
}

void BM_calibration_statistics(benchmark::State &state)
{
    open(state, MAX_POINTS, click_calibration_statistics);
}
BENCHMARK(BM_calibration_statistics)->Unit(benchmark::kMillisecond);

void BM_calibration_statistics_empty(benchmark::State &state)
{
    open(state, 0, click_calibration_statistics);
}
BENCHMARK(BM_calibration_statistics_empty)->Unit(benchmark::kMillisecond);

void BM_point_statistics(benchmark::State &state)
{
    open(state, MAX_POINTS, click_point_statistics);
}
BENCHMARK(BM_point_statistics)->Unit(benchmark::kMillisecond);

void BM_point_statistics_empty(benchmark::State &state)
{
    open(state, 0, click_point_statistics);
}
BENCHMARK(BM_point_statistics_empty)->Unit(benchmark::kMillisecond);

void BM_polynomial_regression(benchmark::State &state)
{
    open(state, MAX_POINTS, click_polynomial_regression);
}
BENCHMARK(BM_polynomial_regression)->Unit(benchmark::kMillisecond);

void BM_polynomial_regression_empty(benchmark::State &state)
{
    open(state, 0, click_polynomial_regression);
}
BENCHMARK(BM_polynomial_regression_empty)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    bench::publish_cell(1);
    QApplication application(argc, argv);
    MainWindow main_window;
    window = &main_window;
    set_main_window(window);
    form_of(window)->actionPoint_Statistics->setEnabled(true);
    form_of(window)->actionCal_Statistics_Chart->setEnabled(true);
    window->show();
    QCoreApplication::processEvents();
    bind();
    const int status =
        bench::run(argc, argv,
                   {{"BM_calibration_statistics", "BM_calibration_statistics_empty", 3.0},
                    {"BM_point_statistics", "BM_point_statistics_empty", 3.0},
                    {"BM_polynomial_regression", "BM_polynomial_regression_empty", 3.0}});
    set_main_window(nullptr);
    return status;
}
