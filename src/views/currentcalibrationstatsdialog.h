// SPDX-License-Identifier: GPL-3.0-or-later
//
// Compares, point by point, the calibration in progress with the previous one and
// with the straight-line fit. Changes nothing.
#ifndef VIEWS_CURRENTCALIBRATIONSTATSDIALOG_H
#define VIEWS_CURRENTCALIBRATIONSTATSDIALOG_H

#include <memory>

#include <QDialog>
#include <QList>

#include "frame/zerl_cfg.h"

class StatInfo;

namespace Ui
{
class CurrentCalibrationStatsDialog;
}

class CurrentCalibrationStatsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CurrentCalibrationStatsDialog(QWidget *parent);
    ~CurrentCalibrationStatsDialog() override;

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    void add_rows(int count);
    void fit_columns();
    void compute_row(int i);
    void show_rows_in_reach();

    QList<StatInfo *> m_rows;
    std::unique_ptr<Ui::CurrentCalibrationStatsDialog> ui;
    const ZERL_CFG *cfg;
};

#endif
