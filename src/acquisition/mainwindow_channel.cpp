// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window's channel list: leaving a channel, binding another, giving one up.
#include "frame/mainwindow.h"

#include <memory>

#include <QSignalBlocker>

#include "acquisition/channelbinding.h"
#include "acquisition/monitorthread.h"
#include "acquisition/pointinfo.h"
#include "calibration/questions.h"
#include "calibration/zerl_util.h"
#include "frame/functions.h"
#include "frame/relaxed.h"
#include "frame/tablelock.h"
#include "sensor/configdialog2.h"
#include "ui_mainwindow.h"
#include "window/messagebox.h"
#include "window/styles.h"
#include "window/termination.h"

#include <qwt_plot.h>

void MainWindow::fill_channel_list()
{
    const QSignalBlocker blocker(ui->cboCurrentChannel);
    ui->cboCurrentChannel->addItems(channel_items());
}

void MainWindow::on_cboCurrentChannel_currentIndexChanged(const QString &text)
{
    // On the heap: a range that is refused over and over nests this slot.
    const auto local = std::make_unique<ZERL_CFG>();
    {
        TableLock lock(m_table_mutex);
        *local = *g_cfg;
    }
    if (curves_removed) {
        setup_plot();
        curves_removed = false;
    }
    ui->dataPlot->show();
    g_cal_type_changed = 1;
    ui->chk1065Verification->setChecked(false);
    const int16_t old_channel = g_cfg->channel;
    if (!channel_of_item(text, &local->channel)) {
        no_channel_chosen();
        return;
    }
    if (!m_channel_reverting) {
        if (!may_leave_channel()) {
            revert_channel(old_channel);
            return;
        }
        clear_next_step();
    }
    bind_selected_channel(local.get());
}

void MainWindow::show_no_channel()
{
    ui->btnAdjustCalibration->setEnabled(false);
    ui->btnReuseCalibration->setEnabled(false);
    ui->lblSerialNumber->clear();
    ui->btnUnits->setText(QString());
}

// The first pick of the list's first line, after start or a given-up channel, takes a
// quiet path, even with a channel bound: the combo stays there, the record keeps
// its channel and the monitor thread goes on with it.
void MainWindow::no_channel_chosen()
{
    if (g_first_select != 0) {
        show_no_channel();
        hide_rows();
        g_first_select = 0;
        return;
    }
    tell(this, QMessageBox::Information, QString(),
         QStringLiteral("Please select a valid channel number and name"));
    if (!end_decided())
        revert_channel(g_cfg->channel);
}

// The first question that applies is the only one asked.
bool MainWindow::may_leave_channel()
{
    switch (first_unfinished(this, g_cfg)) {
    case Unfinished::Points:
        if (ask_question(this, QuestionMark::L1))
            return true;
        recount_captured_rows();
        return false;
    case Unfinished::Calibration:
        return ask_question(this, QuestionMark::L2);
    case Unfinished::Table:
        return ask_question(this, QuestionMark::L3);
    case Unfinished::Nothing:
        break;
    }
    return true;
}

void MainWindow::recount_captured_rows()
{
    g_captured_points = 0;
    for (int i = 0; i < MAX_POINTS; ++i) {
        if (row(i)->value_style() != QLatin1String(STYLE_WHITE))
            ++g_captured_points;
    }
}

// Puts the combo back. Its slot then binds the channel again, so the table is
// read anew and what was captured and not recorded is gone from the record. A
// channel without an item leaves the list blank, as no channel.
void MainWindow::revert_channel(int16_t channel)
{
    const int item =
        ui->cboCurrentChannel->findText(channel_item_prefix(channel), Qt::MatchContains);
    for (int i = 0; i < MAX_POINTS; ++i)
        row(i)->saved_style = row(i)->value_style();
    m_channel_reverting = true;
    ui->cboCurrentChannel->setCurrentIndex(item);
    m_channel_reverting = false;
}

void MainWindow::bind_selected_channel(ZERL_CFG *local)
{
    if (!m_monitor->isRunning())
        m_monitor->start();
    TableLock lock(m_table_mutex);
    bind_active_channel(local);
    ui->lblTableName->setText(record_text(local->table.table_name));
    local->x_axis_range.changed = 1;
    local->y_axis_range.changed = 1;
    reset_point_statistics(local);
    ui->menuStatistics->setEnabled(false);
    ui->actionCal_Statistics_Chart->setEnabled(false);
    relaxed_store(g_monitor_enabled, static_cast<uint8_t>(0));
    publish_record(local, g_cfg);
    sync_type_controls(local);
    lock.unlock();
    show_bound_channel();
    uint32_t reason = 0;
    if (check_sensor_range(&reason) == 0)
        repair_sensor_range(reason);
}

void MainWindow::show_bound_channel()
{
    ui->actionView_Previous_Calibration_Report->setEnabled(true);
    force_rescale = true;
    show_table_fields(g_cfg);
    if (m_channel_reverting) {
        for (int i = 0; i < MAX_POINTS; ++i)
            row(i)->set_value_style(QLatin1String(STYLE_WHITE));
        return;
    }
    g_captured_points = 0;
    reset_process_view(this, true);
    write_all_row_values();
    clear_next_step();
}

void MainWindow::repair_sensor_range(uint32_t reason)
{
    TableLock lock(m_table_mutex);
    ConfigDialog2 dialog(this, true, reason);
    const bool accepted = dialog.exec() == QDialog::Accepted;
    if (end_decided())
        return;
    if (accepted && dialog.reason_code == 0) {
        show_serial_number();
        reset_process_view(this, true);
        return;
    }
    give_up_channel();
}

void MainWindow::give_up_channel()
{
    // Re-enters the slot of the combo, which may bring the dialog back; what
    // follows runs when that has unwound.
    ui->cboCurrentChannel->setCurrentIndex(0);
    // Their slots show the table once more, so they go before what is emptied.
    ui->cboCalType->setCurrentIndex(0);
    ui->cboPolyRangeIndex->setCurrentIndex(0);
    show_no_channel();
    ui->btnGenerateLineRpt->setEnabled(false);
    // Fresh rows below the old ones, of which the list's first 64 stay the ones
    // in use: kept as it is.
    create_rows();
    hide_rows();
    ui->coeffFrame->hide();
    ui->lblTableName->clear();
    ui->txtNumPoints->clear();
    ui->cboCalType->setEnabled(false);
    ui->cboPolyRangeIndex->setEnabled(false);
    g_first_select = 1;
    remove_curves();
}
