// SPDX-License-Identifier: GPL-3.0-or-later
//
// Shows how well the table's polynomial reproduces the captured points and, for
// a POLY table, its coefficients and the straight-line statistics. Computes the
// linearity figures anew, which writes their dump.
#ifndef VIEWS_POLYREGRESSIONDIALOG_H
#define VIEWS_POLYREGRESSIONDIALOG_H

#include <memory>

#include <QDialog>

#include "frame/zerl_cfg.h"

namespace Ui
{
class PolyRegressionDialog;
}

class PolyRegressionDialog : public QDialog
{
    Q_OBJECT

public:
    explicit PolyRegressionDialog(QWidget *parent);
    ~PolyRegressionDialog() override;

    // Computes r squared of the polynomial itself and drops it. Nothing calls it.
    void calc_poly_r_squared();

private:
    void fill_table();
    void fill_coefficients();
    void fill_regression();

    std::unique_ptr<Ui::PolyRegressionDialog> ui;
    ZERL_CFG *cfg;
};

#endif
