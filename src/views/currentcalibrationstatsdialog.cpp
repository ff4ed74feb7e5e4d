// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/currentcalibrationstatsdialog.h"

#include <algorithm>

#include <QScrollBar>

#include "calibration/comparison.h"
#include "ui_currentcalibrationstatsdialog.h"
#include "views/statinfo.h"

CurrentCalibrationStatsDialog::CurrentCalibrationStatsDialog(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::CurrentCalibrationStatsDialog>()),
      cfg(g_cfg != nullptr ? g_cfg : get_cfg_pointer())
{
    ui->setupUi(this);
    const int count = point_count(cfg->long_current);
    add_rows(count);
    for (int i = 0; i < count; ++i)
        compute_row(i);
    connect(ui->scrollArea->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &CurrentCalibrationStatsDialog::show_rows_in_reach);
}

CurrentCalibrationStatsDialog::~CurrentCalibrationStatsDialog() = default;

void CurrentCalibrationStatsDialog::add_rows(int count)
{
    for (int i = 0; i < count; ++i) {
        auto *row = new StatInfo(static_cast<int16_t>(i), ui->scrollAreaWidgetContents);
        // Showing them takes longer than making them, so each waits for its turn
        // in the place that it will have.
        QSizePolicy policy = row->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        row->setSizePolicy(policy);
        row->hide();
        m_rows.append(row);
        ui->verticalLayout->addWidget(row);
    }
}

void CurrentCalibrationStatsDialog::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    show_rows_in_reach();
}

// The window's height covers what the scrolled part can show of it.
void CurrentCalibrationStatsDialog::show_rows_in_reach()
{
    if (m_rows.isEmpty())
        return;
    const int row_height = m_rows.first()->sizeHint().height();
    const int top = ui->scrollArea->verticalScrollBar()->value();
    const int last = std::min((top + height()) / row_height + 1, m_rows.size());
    for (int i = std::max(top / row_height, 0); i < last; ++i)
        m_rows.at(i)->show();
}

void CurrentCalibrationStatsDialog::compute_row(int i)
{
    StatInfo *row = m_rows.at(i);
    const COMPARISON point = compare_point(cfg->long_current, cfg->long_previous, cfg->long_fit, i);
    row->setCurrentCalibration(point.current);
    row->setCurrentToStraightLine(point.current_to_straight_line);
    row->setStraightLineApprox(point.straight_line);
    row->setCurrentToPrevious(point.current_to_previous);
    row->setPreviousCalibration(point.previous);
    row->setPreviousToStraightLine(point.previous_to_straight_line);
}
