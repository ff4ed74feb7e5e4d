// SPDX-License-Identifier: GPL-3.0-or-later
#include "acquisition/undodialog.h"

#include "ui_undodialog.h"
#include "window/messagebox.h"

undoDialog::undoDialog(QWidget *parent) : QDialog(parent), ui(std::make_unique<Ui::undoDialog>())
{
    ui->setupUi(this);
    setWindowFlags(TITLE_BAR_ONLY);
}

undoDialog::~undoDialog() = default;

void undoDialog::on_btnRevert_clicked()
{
    accept();
}

void undoDialog::on_btnCancelUndo_clicked()
{
    reject();
}
