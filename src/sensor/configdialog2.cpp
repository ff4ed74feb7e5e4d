// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensor/configdialog2.h"

#include <ctime>

#include <QEvent>
#include <QMessageBox>

#include "frame/functions.h"
#include "frame/zerl_cfg.h"
#include "host/operations.h"
#include "sensor/tablevalueunitsdialog.h"
#include "sensor/tolerances.h"
#include "sensor/unitcatalogue.h"
#include "sensor/unitkeywords.h"
#include "ui_configdialog2.h"
#include "window/messagebox.h"
#include "window/numbervalidator.h"
#include "window/touchfield.h"

namespace
{

QString limit_text(double value)
{
    return QString::asprintf("%8.2f", value);
}

// Local date, "MM/dd/yy"; empty when no calendar holds the time.
QString date_text(int64_t seconds)
{
    const time_t time = seconds;
    tm local = {};
    char text[24] = "";
    if (localtime_r(&time, &local) == nullptr ||
        std::strftime(text, sizeof text, "%D", &local) == 0)
        return {};
    return QString::fromUtf8(text);
}

} // namespace

ConfigDialog2::ConfigDialog2(QWidget *parent, bool show_reason, uint32_t reason)
    : QDialog(parent), ui(std::make_unique<Ui::ConfigDialog2>())
{
    ui->setupUi(this);
    if (g_touch_input)
        set_up_touch_input();
    g_cfg->table_dirty = 0;
    setWindowFlags(TITLE_BAR_ONLY);
    fill_form();
    if (!show_reason)
        return;
    const QString text = range_update_text(reason, g_cfg->table);
    if (!text.isEmpty())
        tell(QStringLiteral("Update Data"), text);
}

ConfigDialog2::~ConfigDialog2() = default;

// On an ordinary desktop the fields stay free of marks and validators.
void ConfigDialog2::set_up_touch_input()
{
    for (QLineEdit *field : {ui->txtDescription, ui->txtSerialNumber, ui->txtSensorMfgModel,
                             ui->txtLowerRangeLimit, ui->txtUpperRangeLimit})
        mark_touch_field(field, this);
    auto *const validator = new NumberValidator(this);
    ui->txtLowerRangeLimit->setValidator(validator);
    ui->txtUpperRangeLimit->setValidator(validator);
}

// A double tap opens the field's pad and goes on to the field as well.
bool ConfigDialog2::eventFilter(QObject *object, QEvent *event)
{
    hand_double_tap_over(object, event);
    return false;
}

void ConfigDialog2::tell(const QString &title, const QString &text)
{
    // Before the dialog shows, a box of its own would stand where it is not yet.
    QWidget *const owner = isVisible() ? this : parentWidget();
    ::tell(owner, QMessageBox::Warning, title, text);
}

void ConfigDialog2::fill_form()
{
    fill_sensor_information();
    fill_calibration_information();
    ui->lblOOABias->setText(ooa_bias_token);
    ui->lblOOATolerance->setText(ooa_tolerance_token);
    ui->lblOOTBias->setText(oot_bias_token);
    ui->lblOOTTolerance->setText(oot_tolerance_token);
    ui->lblSOOTBias->setText(soot_bias_token);
    ui->lblSOOTTolerance->setText(soot_tolerance_token);
    ui->lblMUAInstanceName_2->setText(record_text(g_cfg->table.mua_instance_name));
    g_num_points = g_cfg->long_current.num_points;
}

void ConfigDialog2::fill_sensor_information()
{
    const TABLE_RECORD &table = g_cfg->table;
    ui->txtDescription->setText(record_text(table.description));
    ui->txtSerialNumber->setText(record_text(table.sensor_serial_no));
    ui->txtSensorMfgModel->setText(record_text(table.sensor_model));
    show_limits();
    show_units(record_bytes(table.sensor_units));
}

void ConfigDialog2::fill_calibration_information()
{
    const TABLE_RECORD &table = g_cfg->table;
    const char *const units = g_cfg->table_units;
    ui->lblCalibrationUnitsText->setText(record_text(table.eng_units));
    ui->lblMinimumText->setText(limit_text(converted(table.eng_units, units, table.y_min)));
    ui->lblMaximumText->setText(limit_text(converted(table.eng_units, units, table.y_max)));
    ui->lblDateText->setText(date_text(table.last_cal_time));
    ui->lblQIEText->setText(record_text(table.qie));
    ui->lblTechText->setText(record_text(table.verified_by));
}

void ConfigDialog2::show_limits()
{
    ui->txtLowerRangeLimit->setText(limit_text(g_cfg->table.sensor_range_min));
    ui->txtUpperRangeLimit->setText(limit_text(g_cfg->table.sensor_range_max));
}

void ConfigDialog2::show_units(const QByteArray &keyword)
{
    m_units = keyword;
    ui->btnSensorUnits->setText(QString::fromUtf8(keyword));
}

QByteArray ConfigDialog2::units_on_form() const
{
    return shown_bytes(ui->btnSensorUnits->text(), m_units);
}

// A field that was not edited gives the record's own bytes.
SensorForm ConfigDialog2::sensor_form() const
{
    const TABLE_RECORD &table = g_cfg->table;
    return {shown_bytes(ui->txtDescription->text(), record_bytes(table.description)),
            shown_bytes(ui->txtSerialNumber->text(), record_bytes(table.sensor_serial_no)),
            shown_bytes(ui->txtSensorMfgModel->text(), record_bytes(table.sensor_model)),
            units_on_form(),
            ui->txtLowerRangeLimit->text().toDouble(),
            ui->txtUpperRangeLimit->text().toDouble()};
}

bool ConfigDialog2::validate_form()
{
    reason_code = form_range_reason(
        {ui->txtLowerRangeLimit->text(), ui->txtUpperRangeLimit->text(), units_on_form()},
        g_cfg->table.eng_units);
    return reason_code == RANGE_VALID;
}

// Says what is wrong and puts the record's values back on the form.
void ConfigDialog2::refuse_form()
{
    const TABLE_RECORD &table = g_cfg->table;
    tell(range_refusal_title(reason_code),
         range_refusal_text(reason_code, ui->btnSensorUnits->text(), record_text(table.eng_units)));
    if (reason_code <= RANGE_UNREADABLE)
        show_limits();
    else
        show_units(record_bytes(table.sensor_units));
}

void ConfigDialog2::on_btnOk_clicked()
{
    if (!validate_form()) {
        refuse_form();
        return;
    }
    TABLE_RECORD &table = g_cfg->table;
    const SensorForm form = sensor_form();
    if (change_affects_calibration(form, table))
        tell(QStringLiteral("Clearing Calibration Data"),
             QStringLiteral("Changes may affect the calibration.\n\n"
                            "Calibration data will be cleared."));
    trim_text(table.mua_instance_name);
    if (store_sensor_form(form, &table))
        g_cfg->table_dirty = 1;
    load_tolerances_and_biases();
    // The inverse of what fill_form shows, in place: units picked meanwhile count.
    table.y_min = converted(g_cfg->table_units, table.eng_units, table.y_min);
    table.y_max = converted(g_cfg->table_units, table.eng_units, table.y_max);
    accept();
}

void ConfigDialog2::on_btnCancel_clicked()
{
    if (cancel_loses_changes(sensor_form(), g_cfg->table))
        tell(QStringLiteral("Changes Lost"),
             QStringLiteral("Changes made to the Calibration Configuration will be lost."));
    reject();
}

void ConfigDialog2::on_btnSensorUnits_clicked()
{
    units_for_table = 0;
    units_for_sensor = 1;
    TableValueUnitsDialog dialog(this);
    if (dialog.exec() == QDialog::Accepted && unit_is_picked(g_cfg))
        take_picked_units();
}

// The limits keep their physical meaning. The record's sensor units wait for OK;
// table_units change at once, and Cancel does not put them back.
void ConfigDialog2::take_picked_units()
{
    const QByteArray old_units = units_on_form();
    for (QLineEdit *field : {ui->txtLowerRangeLimit, ui->txtUpperRangeLimit})
        field->setText(
            limit_text(converted(old_units, g_cfg->value_units, field->text().toDouble())));
    copyn(__FILE__, __LINE__, g_cfg->table_units, g_cfg->value_units, sizeof g_cfg->table_units);
    show_units(record_bytes(g_cfg->table_units));
}

double ConfigDialog2::get_tolerance_value(int tolerance_class)
{
    const QLabel *const label =
        of_class(tolerance_class, ui->lblOOATolerance, ui->lblOOTTolerance, ui->lblSOOTTolerance);
    const TokenReading reading = read_tolerance(
        label->text().toUtf8(), none_tolerance_token(tolerance_class).toUtf8(), g_cfg->table);
    if (reading.warning != nullptr)
        show_warning(reading.warning->title, reading.warning->text);
    if (reading.warning == &SENSOR_UNITS_WARNING)
        mua_instance_index = 0;
    return reading.value;
}

double ConfigDialog2::get_bias_value(int tolerance_class)
{
    // The warning is dropped here too, as the load operation drops it.
    const QLabel *const label =
        of_class(tolerance_class, ui->lblOOABias, ui->lblOOTBias, ui->lblSOOTBias);
    return read_bias(label->text().toUtf8(), g_cfg->table).value;
}

void ConfigDialog2::load_tolerances_and_biases()
{
    refresh_limits(
        &g_cfg->table, [this](int tolerance_class) { return get_bias_value(tolerance_class); },
        [this](int tolerance_class) { return get_tolerance_value(tolerance_class); });
}
