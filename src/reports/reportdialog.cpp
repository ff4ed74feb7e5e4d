// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/reportdialog.h"

#include <QInputDialog>

#include "frame/functions.h"
#include "records/specsfile.h"
#include "ui_reportdialog.h"
#include "window/messagebox.h"

ReportDialog::ReportDialog(QWidget *parent, bool email_allowed)
    : QDialog(parent), ui(std::make_unique<Ui::ReportDialog>())
{
    ui->setupUi(this);
    setWindowFlags(TITLE_BAR_ONLY);
    on_chkEmail_clicked(false);
    ui->chkEmail->setEnabled(email_allowed);
    ui->chkDisplay->setChecked(true);
    fill_email_addresses(false);
    ui->cboEmailAddresses->setCurrentIndex(0);
}

ReportDialog::~ReportDialog() = default;

QString ReportDialog::email_address() const
{
    return ui->cboEmailAddresses->currentText();
}

bool ReportDialog::email_checked() const
{
    return ui->chkEmail->isChecked();
}

bool ReportDialog::display_checked() const
{
    return ui->chkDisplay->isChecked();
}

void ReportDialog::fill_email_addresses(bool clear)
{
    const int count = specs_email_count(*g_specs);
    if (count == 0)
        return;
    if (clear)
        ui->cboEmailAddresses->clear();
    for (int i = 0; i < count; ++i)
        ui->cboEmailAddresses->addItem(specs_text(g_specs->report_email[i]));
}

void ReportDialog::save_specs_file()
{
    const SpecsLines lines = specs_lines(*g_specs);
    write_specs(lines);
    g_specs->report_email_count = lines.emails.size();
}

void ReportDialog::on_chkEmail_clicked(bool checked)
{
    ui->cboEmailAddresses->setEnabled(checked);
    ui->btnAddEmailAddress->setEnabled(checked);
}

// The slot is the one that the count names, free or not.
void ReportDialog::on_btnAddEmailAddress_clicked()
{
    bool entered = false;
    const QString text = QInputDialog::getText(
        this, QStringLiteral("Enter Email Address to be Added"), QStringLiteral("Email Address:"),
        QLineEdit::Normal, QString(), &entered);
    const int slot = specs_email_count(*g_specs);
    if (!entered || text.isEmpty() || slot == REPORT_EMAILS) {
        tell(this, QMessageBox::Warning, QStringLiteral("No Email Address Added"),
             QStringLiteral("No email address will be added."));
        return;
    }
    copy_text(g_specs->report_email[slot], TYPED_EMAIL_SIZE, text, __FILE__, __LINE__);
    g_specs->report_email_count = slot + 1;
    fill_email_addresses(true);
    save_specs_file();
}
