// SPDX-License-Identifier: GPL-3.0-or-later
//
// Table type, polynomial degree and range. Signals are blocked in
// sync_type_controls for the degree alone; elsewhere the combos' slots run.
#include "frame/mainwindow.h"

#include <algorithm>

#include <QSignalBlocker>
#include <QStandardItemModel>

#include "calibration/zerl_util.h"
#include "frame/relaxed.h"
#include "ui_mainwindow.h"
#include "window/coefficientlabels.h"

namespace
{
enum { ITEM_INTERP = 0, ITEM_POLY = 1, ITEM_POLY_RANGE = 2 };
constexpr int HIGHEST_DEGREE = 7;
} // namespace

void MainWindow::set_range_item_enabled(bool enabled)
{
    auto *model = qobject_cast<QStandardItemModel *>(ui->cboCalType->model());
    if (model != nullptr)
        model->item(ITEM_POLY_RANGE)->setEnabled(enabled);
}

// Items "1" to the highest degree.
void MainWindow::fill_degrees(int highest)
{
    for (int degree = 1; degree <= highest; ++degree)
        ui->cboOrderOfPolynomial->addItem(QString::number(degree));
}

// The item with exactly that text, or else the last one.
void MainWindow::select_degree(int degree)
{
    QComboBox *combo = ui->cboOrderOfPolynomial;
    const int item = combo->findText(QString::number(degree), Qt::MatchExactly);
    combo->setCurrentIndex(item >= 0 ? item : combo->count() - 1);
}

void MainWindow::sync_type_controls(const ZERL_CFG *cfg)
{
    // The slot of the type calls this function again: the inner call must leave
    // the degree blocked, or filling it would run its slot and fit again.
    const QSignalBlocker blocker(ui->cboOrderOfPolynomial);
    const POLY_RANGE_RECORD &range = cfg->table.poly[range_index(cfg->table)];
    ui->cboOrderOfPolynomial->clear();
    ui->cboCalType->setEnabled(true);
    if (cfg->table.table_type == TABLE_INTERP) {
        const int points = cfg->table.poly[0].num_points;
        ui->cboCalType->setCurrentIndex(ITEM_INTERP);
        ui->cboOrderOfPolynomial->setEnabled(false);
        ui->cboOrderOfPolynomial->clear();
        fill_degrees(points > 7 ? HIGHEST_DEGREE : points - 1);
        ui->cboOrderOfPolynomial->setCurrentIndex(0);
        ui->cboPolyRangeIndex->setEnabled(false);
        set_range_item_enabled(false);
        ui->coeffFrame->hide();
        show_coefficients(cfg);
        return;
    }
    if (cfg->table.table_type == TABLE_POLY) {
        ui->cboCalType->setCurrentIndex(ITEM_POLY);
        ui->cboOrderOfPolynomial->setEnabled(true);
        int highest = range.num_points - 1;
        if (range.num_points == 0)
            highest = range.num_coeffs - 1;
        else if (range.num_points > 8)
            highest = HIGHEST_DEGREE;
        fill_degrees(highest);
        select_degree(range.num_coeffs - 1);
    } else if (cfg->table.table_type == TABLE_POLY_RANGE) {
        ui->cboCalType->setCurrentIndex(ITEM_POLY_RANGE);
        ui->cboPolyRangeIndex->setEnabled(true);
        ui->cboOrderOfPolynomial->clear();
        fill_degrees(range.num_points - 1); // no cap at 7 here
        select_degree(range.num_points - 1);
    } else {
        return;
    }
    note_degree_on_show();
    set_range_item_enabled(true);
    ui->coeffFrame->show();
    show_coefficients(cfg);
}

// A change of type alone is not unsaved work.
void MainWindow::on_cboCalType_currentIndexChanged(int index)
{
    relaxed_store(g_monitor_run, static_cast<uint16_t>(1));
    g_cfg->redraw_all = 1;
    g_cfg->table_dirty = 0;
    g_cal_type_changed = 1;
    if (index == ITEM_POLY)
        choose_type_poly();
    else if (index == ITEM_INTERP)
        choose_type_interp();
    else if (index == ITEM_POLY_RANGE)
        choose_type_poly_range();
}

void MainWindow::choose_type_poly()
{
    relaxed_store(g_cfg->table.table_type, static_cast<uint16_t>(TABLE_POLY));
    ui->cboPolyRangeIndex->setEnabled(false);
    // The second range is read, not the one in work: the combo's index is used
    // in its place, deliberately.
    select_degree(g_cfg->table.poly[ITEM_POLY].num_points - 1);
    note_degree_on_show();
    set_range_item_enabled(true);
    ui->cboOrderOfPolynomial->setEnabled(true);
    // Last, with its labels filled: shown before them, each label that appears
    // would lay the window out anew, at half again the time of the whole switch.
    ui->coeffFrame->show();
}

void MainWindow::choose_type_interp()
{
    relaxed_store(g_cfg->table.table_type, static_cast<uint16_t>(TABLE_INTERP));
    ui->cboOrderOfPolynomial->setCurrentIndex(0);
    ui->cboOrderOfPolynomial->setEnabled(false);
    ui->cboPolyRangeIndex->setEnabled(false);
    ui->coeffFrame->hide();
    sync_type_controls(g_cfg);
}

void MainWindow::choose_type_poly_range()
{
    relaxed_store(g_cfg->table.table_type, static_cast<uint16_t>(TABLE_POLY_RANGE));
    relaxed_store(g_cfg->table.poly_range_index, static_cast<int16_t>(0));
    select_degree(g_cfg->table.poly[0].num_points - 1);
    set_range_item_enabled(true);
    sync_type_controls(g_cfg);
    ui->cboOrderOfPolynomial->setEnabled(true);
    ui->cboPolyRangeIndex->setEnabled(true);
    ui->cboPolyRangeIndex->setCurrentIndex(0);
}

void MainWindow::on_cboOrderOfPolynomial_currentIndexChanged(int)
{
    const QString text = ui->cboOrderOfPolynomial->currentText();
    TABLE_RECORD &table = g_cfg->table;
    g_cfg->redraw_all = 1;
    g_cfg->table_dirty = 0;
    // The list of POLY_RANGE goes beyond what a range holds.
    if (table.table_type == TABLE_POLY || table.table_type == TABLE_POLY_RANGE)
        relaxed_store(table.poly[range_index(table)].num_coeffs,
                      static_cast<int16_t>(std::min<int>(text.toInt() + 1, POLY_COEFFS)));
    g_poly_order_text = text;
    update_plot(g_cfg);
    show_coefficients(g_cfg);
}

void MainWindow::on_cboPolyRangeIndex_currentIndexChanged(int index)
{
    relaxed_store(g_cfg->table.poly_range_index, static_cast<int16_t>(index));
    g_cal_type_changed = 1;
    select_degree(g_cfg->table.poly[range_index(g_cfg->table)].num_points - 1);
    recompute_table_view(this);
    g_cfg->redraw_all = 1;
    g_cfg->table_dirty = 0;
    sync_type_controls(g_cfg);
    note_degree_on_show();
    update_plot(g_cfg);
    show_coefficients(g_cfg);
}

void MainWindow::note_degree_on_show()
{
    g_poly_order_text = ui->cboOrderOfPolynomial->currentText();
}

void MainWindow::show_coefficients(const ZERL_CFG *cfg)
{
    const bool polynomial =
        cfg->table.table_type == TABLE_POLY || cfg->table.table_type == TABLE_POLY_RANGE;
    const POLY_RANGE_RECORD &range = range_in_work(cfg->table);
    int i = 0;
    for (const CoefficientLabel &label : coefficient_labels(*ui)) {
        const bool shown = polynomial && i < range.num_coeffs;
        if (shown)
            label.value->setText(QString::number(range.coeffs[i], 'g', 6));
        label.set_visible(shown);
        ++i;
    }
}
