// SPDX-License-Identifier: GPL-3.0-or-later
//
// The change of the table's units.
#include "frame/mainwindow.h"

#include "calibration/zerl_util.h"
#include "frame/functions.h"
#include "sensor/tablevalueunitsdialog.h"
#include "sensor/tolerances.h"
#include "sensor/unitcatalogue.h"
#include "ui_mainwindow.h"

// The table mutex is not taken: sampling goes on while the dialog and the
// warnings are open, and each value changes whole.
void MainWindow::on_btnUnits_clicked()
{
    units_for_table = 1;
    units_for_sensor = 0;
    TableValueUnitsDialog dialog(this);
    if (dialog.exec() != QDialog::Accepted)
        return;
    if (unit_is_picked(g_cfg)) {
        convert_table_values(g_cfg);
        ui->lblSerialNumber->setText(record_text(g_cfg->table.sensor_serial_no));
        ui->btnUnits->setText(record_text(g_cfg->table.eng_units));
        write_all_row_values();
    }
    reset_process_view(this, false);
    load_tolerances_and_biases(g_cfg);
    g_captured_points = 0;
}
