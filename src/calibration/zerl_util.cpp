// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/zerl_util.h"

#include <algorithm>

#include "calibration/axisrange.h"
#include "calibration/plotcurve.h"
#include "calibration/process.h"
#include "frame/mainwindow.h"
#include "frame/relaxed.h"
#include "frame/tablelock.h"
#include "host/operations.h"
#include "sensor/tolerances.h"
#include "ui_mainwindow.h"

namespace
{

void take_table_into_work(ZERL_CFG *cfg)
{
    reset_axis_range(&cfg->x_axis_range);
    reset_axis_range(&cfg->y_axis_range);
    clear_unused_points(&cfg->long_current);
    cfg->plot_previous = cfg->plot_current;
    cfg->long_previous = cfg->long_current;
    mua_instance_index = 0;
    cfg->table.worst_status = 0;
    load_tolerances_and_biases(cfg);
    g_num_points = cfg->long_current.num_points;
    relaxed_store(g_monitor_run, static_cast<uint16_t>(1));
    cfg->redraw_all = 1;
    cfg->table_dirty = 0;
    g_captured_points = 0;
    cfg->x_axis_range.changed = 1;
    cfg->y_axis_range.changed = 1;
    reset_point_statistics(cfg);
}

} // namespace

void recompute_table_view(MainWindow *main)
{
    compute_long_table(&g_cfg->table, &g_cfg->long_current);
    {
        TableLock lock(main->table_mutex());
        take_table_into_work(g_cfg);
    }
    main->request_rescale();
    main->sync_type_controls(g_cfg);
    g_poly_order_text = main->form()->cboOrderOfPolynomial->currentText();
    main->show_table_fields(g_cfg);
    main->update_plot(g_cfg);
    reset_process_view(main, false);
    main->write_all_row_values();
    main->clear_next_step();
}

void MainWindow::show_coefficients(const ZERL_CFG *cfg)
{
    QLabel *const names[] = {ui->lblCoeff0, ui->lblCoeff1, ui->lblCoeff2, ui->lblCoeff3,
                             ui->lblCoeff4, ui->lblCoeff5, ui->lblCoeff6, ui->lblCoeff7};
    QLabel *const values[] = {ui->lblCoeff0Value, ui->lblCoeff1Value, ui->lblCoeff2Value,
                              ui->lblCoeff3Value, ui->lblCoeff4Value, ui->lblCoeff5Value,
                              ui->lblCoeff6Value, ui->lblCoeff7Value};
    const bool polynomial =
        cfg->table.table_type == TABLE_POLY || cfg->table.table_type == TABLE_POLY_RANGE;
    const POLY_RANGE_RECORD &range = range_in_work(cfg->table);
    for (int i = 0; i < 8; ++i) {
        const bool shown = polynomial && i < range.num_coeffs;
        if (shown)
            values[i]->setText(QString::number(range.coeffs[i], 'g', 6));
        names[i]->setVisible(shown);
        values[i]->setVisible(shown);
    }
}
