// SPDX-License-Identifier: GPL-3.0-or-later
//
// Asks for the range that a verification is meant to cover; belongs before the
// linearity report, whose limits follow Max Expected Val. GUI thread; takes no
// lock.
#ifndef RECORDS_MEASUREMENTSYSTEMDIALOG_H
#define RECORDS_MEASUREMENTSYSTEMDIALOG_H

#include <memory>

#include <QDialog>

namespace Ui
{
class MeasurementSystemDialog;
}

class MeasurementSystemDialog : public QDialog
{
    Q_OBJECT

public:
    // Starts from the extremes of the bound channel's table.
    explicit MeasurementSystemDialog(QWidget *parent);
    ~MeasurementSystemDialog() override;

private slots:
    // Stores into g_env and g_line_rpt, field by field, and accepts when all
    // four are numbers.
    void on_btnOK_clicked();

private:
    std::unique_ptr<Ui::MeasurementSystemDialog> ui;
};

#endif
