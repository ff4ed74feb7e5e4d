// SPDX-License-Identifier: GPL-3.0-or-later
//
// Shows how steady the millivolts of each point were during its capture.
// Changes nothing.
#ifndef VIEWS_POINTSTATSDIALOG_H
#define VIEWS_POINTSTATSDIALOG_H

#include <memory>

#include <QDialog>

#include "frame/zerl_cfg.h"

namespace Ui
{
class PointStatsDialog;
}

class PointStatsDialog : public QDialog
{
    Q_OBJECT

public:
    explicit PointStatsDialog(QWidget *parent);
    ~PointStatsDialog() override;

private:
    void fill();

    std::unique_ptr<Ui::PointStatsDialog> ui;
    const ZERL_CFG *cfg;
};

#endif
