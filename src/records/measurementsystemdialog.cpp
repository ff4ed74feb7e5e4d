// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/measurementsystemdialog.h"

#include <algorithm>

#include "frame/functions.h"
#include "records/measurementsystem.h"
#include "ui_measurementsystemdialog.h"
#include "window/messagebox.h"

namespace
{

std::array<QLineEdit *, EXPECTED_VALUES> fields_of(const Ui::MeasurementSystemDialog &form)
{
    return {form.txtValRangeMin, form.txtValRangeMax, form.txtMinExpVal, form.txtMaxExpVal};
}

void warn(QWidget *owner, const QString &text)
{
    tell(owner, QMessageBox::Warning, QString(), text);
}

} // namespace

MeasurementSystemDialog::MeasurementSystemDialog(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::MeasurementSystemDialog>())
{
    ui->setupUi(this);
    setWindowFlags(Qt::Dialog | Qt::WindowTitleHint | Qt::WindowMinimizeButtonHint);
    const ExpectedTexts texts = expected_texts(g_cfg->table);
    const auto fields = fields_of(*ui);
    for (std::size_t i = 0; i < fields.size(); ++i)
        fields[i]->setText(texts[i]);
    const QString units = record_text(g_cfg->table.eng_units);
    for (QLabel *label : {ui->txtUnits1, ui->txtUnits2, ui->txtUnits3, ui->txtUnits4})
        label->setText(units);
}

MeasurementSystemDialog::~MeasurementSystemDialog() = default;

void MeasurementSystemDialog::on_btnOK_clicked()
{
    ExpectedTexts texts;
    const auto fields = fields_of(*ui);
    std::transform(fields.begin(), fields.end(), texts.begin(),
                   [](const QLineEdit *field) { return field->text(); });
    if (std::any_of(texts.begin(), texts.end(),
                    [](const QString &text) { return text.isEmpty(); })) {
        warn(this, QStringLiteral("Values must be entered in all fields"));
        return;
    }
    const ExpectedValue refused = store_expected_values(texts, g_env, &g_line_rpt);
    if (refused != EXPECTED_VALUES) {
        warn(this, invalid_value_text(refused));
        return;
    }
    accept();
}
