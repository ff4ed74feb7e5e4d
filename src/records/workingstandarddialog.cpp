// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/workingstandarddialog.h"

#include <QDir>

#include "ui_workingstandarddialog.h"
#include "window/messagebox.h"

namespace
{

bool folder_stands()
{
    const QString folder = QLatin1String(WORKING_STANDARD_FOLDER);
    return QDir(folder).exists() || QDir().mkpath(folder);
}

void warn(QWidget *owner, const QString &text)
{
    tell(owner, QMessageBox::Warning, QString(), text);
}

} // namespace

WorkingStandardDialog::WorkingStandardDialog(QLineEdit *name_source, QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::WorkingStandardDialog>())
{
    ui->setupUi(this);
    setWindowFlags(TITLE_BAR_ONLY);
    const QString name = name_source->text();
    ui->lblWSName->setText(name);
    if (!folder_stands()) {
        warn(parent, QStringLiteral("The %1 directory does not exist.\n\n"
                                    "Please create this directory in order for entered Working "
                                    "Standard information to be saved")
                         .arg(QLatin1String(WORKING_STANDARD_FOLDER)));
        return;
    }
    if (name.isEmpty())
        return;
    ui->lblWSName->setEnabled(false);
    load(name);
}

WorkingStandardDialog::~WorkingStandardDialog() = default;

// A standard without a file is a new one: fields and report stay as they are.
void WorkingStandardDialog::load(const QString &name)
{
    const std::optional<WorkingStandard> standard = read_working_standard(name);
    if (!standard)
        return;
    ui->txtWSMake->setText(standard->make);
    ui->txtWSModel->setText(standard->model);
    ui->txtWSCalDate->setText(standard->cal_date);
    ui->txtWSSerialNo->setText(standard->serial_no);
    ui->txtWSRange->setText(standard->range);
    store_ws_fields();
}

WorkingStandard WorkingStandardDialog::entered() const
{
    return {ui->lblWSName->text(),    ui->txtWSMake->text(),     ui->txtWSModel->text(),
            ui->txtWSCalDate->text(), ui->txtWSSerialNo->text(), ui->txtWSRange->text()};
}

void WorkingStandardDialog::store_ws_fields()
{
    store_working_standard(entered(), &g_line_rpt);
}

void WorkingStandardDialog::reject() {}

void WorkingStandardDialog::on_btnWSOK_clicked()
{
    const WorkingStandard standard = entered();
    if (!is_complete(standard)) {
        warn(this, QStringLiteral("Please make sure data has been entered\n"
                                  "for all Working Standard fields"));
        return;
    }
    write_working_standard(standard);
    store_ws_fields();
    accept();
}
