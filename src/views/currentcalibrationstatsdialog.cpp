// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/currentcalibrationstatsdialog.h"

#include "calibration/comparison.h"
#include "calibration/plotcurve.h"
#include "ui_currentcalibrationstatsdialog.h"
#include "views/statinfo.h"

CurrentCalibrationStatsDialog::CurrentCalibrationStatsDialog(QWidget *parent)
    : QDialog(parent), ui(new Ui::CurrentCalibrationStatsDialog),
      cfg(g_cfg != nullptr ? g_cfg : get_cfg_pointer())
{
    ui->setupUi(this);
    const int count = point_count(cfg->long_current);
    add_rows(count);
    for (int i = 0; i < count; ++i)
        compute_row(i);
}

CurrentCalibrationStatsDialog::~CurrentCalibrationStatsDialog()
{
    delete ui;
}

void CurrentCalibrationStatsDialog::add_rows(int count)
{
    for (int i = 0; i < count; ++i) {
        auto *row = new StatInfo(static_cast<int16_t>(i), ui->scrollAreaWidgetContents);
        m_rows.append(row);
        ui->verticalLayout->addWidget(row);
    }
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
