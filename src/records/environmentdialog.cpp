// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/environmentdialog.h"

#include "host/operations.h"
#include "records/specsfile.h"
#include "ui_environmentdialog.h"
#include "window/messagebox.h"

EnvironmentDialog::EnvironmentDialog(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::EnvironmentDialog>())
{
    ui->setupUi(this);
    ui->txtTempName->setText(specs_text(g_specs->temperature_var_name));
    ui->tmpBaroName->setText(specs_text(g_specs->barometer_var_name));
    ui->txtHumidityName->setText(specs_text(g_specs->humidity_var_name));
}

EnvironmentDialog::~EnvironmentDialog() = default;

// The record takes Latin-1 of at most 79 characters, the file the whole text.
void EnvironmentDialog::store() const
{
    copyn(__FILE__, __LINE__, g_specs->temperature_var_name,
          ui->txtTempName->text().toLatin1().constData(), sizeof g_specs->temperature_var_name);
    copyn(__FILE__, __LINE__, g_specs->barometer_var_name,
          ui->tmpBaroName->text().toLatin1().constData(), sizeof g_specs->barometer_var_name);
    copyn(__FILE__, __LINE__, g_specs->humidity_var_name,
          ui->txtHumidityName->text().toLatin1().constData(), sizeof g_specs->humidity_var_name);
    SpecsLines lines = specs_lines(*g_specs);
    lines.temperature = ui->txtTempName->text().toUtf8();
    lines.barometer = ui->tmpBaroName->text().toUtf8();
    lines.humidity = ui->txtHumidityName->text().toUtf8();
    write_specs(lines);
    g_specs->report_email_count = lines.emails.size();
}

void EnvironmentDialog::on_btnOK_clicked()
{
    if (ui->txtTempName->text().isEmpty() || ui->tmpBaroName->text().isEmpty() ||
        ui->txtHumidityName->text().isEmpty()) {
        tell(this, QMessageBox::Warning, QString(),
             QStringLiteral("Please make sure data has been entered\n"
                            "for all Environment Variable fields"));
        return;
    }
    store();
    accept();
}
