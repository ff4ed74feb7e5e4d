// SPDX-License-Identifier: GPL-3.0-or-later
#include "acquisition/undodialog.h"

#include "frame/messagebox.h"
#include "ui_undodialog.h"

undoDialog::undoDialog(QWidget *parent) : QDialog(parent), ui(new Ui::undoDialog)
{
    ui->setupUi(this);
    setWindowFlags(TITLE_BAR_ONLY);
}

undoDialog::~undoDialog()
{
    delete ui;
}

void undoDialog::on_btnRevert_clicked()
{
    accept();
}

void undoDialog::on_btnCancelUndo_clicked()
{
    reject();
}
