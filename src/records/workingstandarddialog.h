// SPDX-License-Identifier: GPL-3.0-or-later
//
// Asks for the data of a working standard, from its file when it has one, and
// keeps them there and for the report. GUI thread; takes no lock.
#ifndef RECORDS_WORKINGSTANDARDDIALOG_H
#define RECORDS_WORKINGSTANDARDDIALOG_H

#include <memory>

#include <QDialog>

#include "records/workingstandard.h"

class QLineEdit;

namespace Ui
{
class WorkingStandardDialog;
}

class WorkingStandardDialog : public QDialog
{
    Q_OBJECT

public:
    // The name is read from the caller's field here and not again. With a known
    // name the data of its file go to the report at once, before any OK; without
    // one the name can be typed.
    WorkingStandardDialog(QLineEdit *name_source, QWidget *parent);
    ~WorkingStandardDialog() override;

    // The six fields go to the report.
    void store_ws_fields();

public slots:
    // Does nothing: OK is the only way out.
    void reject() override;

private slots:
    void on_btnWSOK_clicked();

private:
    void load(const QString &name);
    WorkingStandard entered() const;

    std::unique_ptr<Ui::WorkingStandardDialog> ui;
};

#endif
