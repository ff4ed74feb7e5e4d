// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/zerl_util.h"

#include "calibration/process.h"
#include "calibration/tableload.h"
#include "frame/mainwindow.h"
#include "frame/tablelock.h"
#include "ui_mainwindow.h"

void recompute_table_view(MainWindow *main)
{
    refresh_long_table(g_cfg);
    {
        TableLock lock(main->table_mutex());
        take_table_into_work(g_cfg);
        g_captured_points = 0;
        g_cfg->x_axis_range.changed = 1;
        g_cfg->y_axis_range.changed = 1;
        reset_point_statistics(g_cfg);
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
