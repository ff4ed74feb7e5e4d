// SPDX-License-Identifier: GPL-3.0-or-later
//
// Asks whether a capture is to be taken back: accepted for yes.
#ifndef ACQUISITION_UNDODIALOG_H
#define ACQUISITION_UNDODIALOG_H

#include <memory>

#include <QDialog>

namespace Ui
{
class undoDialog;
}

class undoDialog : public QDialog
{
    Q_OBJECT

public:
    explicit undoDialog(QWidget *parent);
    ~undoDialog() override;

private slots:
    void on_btnRevert_clicked();
    void on_btnCancelUndo_clicked();

private:
    std::unique_ptr<Ui::undoDialog> ui;
};

#endif
