// SPDX-License-Identifier: GPL-3.0-or-later
#include "walk/view.h"

#include <QStandardItemModel>

#include "acquisition/pointinfo.h"
#include "frame/mainwindow.h"
#include "support/windowform.h"

namespace walk
{

namespace
{

constexpr int MAX_TOLD = 12;

QString shown_as(const QString &text)
{
    return QLatin1Char('"') + text + QLatin1Char('"');
}
QString shown_as(bool value)
{
    return value ? QStringLiteral("true") : QStringLiteral("false");
}
QString shown_as(int value)
{
    return QString::number(value);
}
QString shown_as(double value)
{
    return QString::number(value, 'g', 17);
}

class Comparison
{
public:
    template <typename T> void field(const char *name, const T &modelled, const T &real)
    {
        if (modelled == real || told.size() >= MAX_TOLD)
            return;
        told.append(where + QLatin1String(name) + QStringLiteral(": ") + shown_as(modelled) +
                    QStringLiteral(", but is ") + shown_as(real));
    }

    QString where;
    QStringList told;
};

void compare_row(Comparison &it, const Row &a, const Row &b)
{
    it.field("value", a.value, b.value);
    it.field("mv", a.mv, b.mv);
    it.field("style", a.style, b.style);
    it.field("saved_style", a.saved_style, b.saved_style);
    it.field("caption", a.caption, b.caption);
    it.field("caption style", a.caption_style, b.caption_style);
    it.field("previous_mv", a.previous_mv, b.previous_mv);
    it.field("status", a.status, b.status);
    it.field("previous_status", a.previous_status, b.previous_status);
    it.field("state", a.state, b.state);
    it.field("previous_state", a.previous_state, b.previous_state);
    it.field("shown", a.shown, b.shown);
}

void compare_button(Comparison &it, const char *name, const Button &a, const Button &b)
{
    it.where = QLatin1String(name) + QLatin1Char(' ');
    it.field("enabled", a.enabled, b.enabled);
    it.field("style", a.style, b.style);
    it.where.clear();
}

void compare_process(Comparison &it, const View &a, const View &b)
{
    for (int i = 0; i < BOXES; ++i) {
        const auto n = static_cast<std::size_t>(i);
        it.where = QStringLiteral("process box %1 ").arg(i);
        it.field("text", a.boxes[n].text, b.boxes[n].text);
        it.field("style", a.boxes[n].style, b.boxes[n].style);
        it.field("copy", a.boxes[n].copy, b.boxes[n].copy);
    }
    compare_button(it, "record", a.record, b.record);
    compare_button(it, "reuse", a.reuse, b.reuse);
    compare_button(it, "adjust", a.adjust, b.adjust);
    it.field("line report enabled", a.line_report, b.line_report);
    it.field("statistics menu enabled", a.menu_statistics, b.menu_statistics);
    it.field("cal statistics enabled", a.cal_statistics, b.cal_statistics);
    it.field("point statistics enabled", a.point_statistics, b.point_statistics);
    it.field("next step", a.next_step, b.next_step);
    it.field("next step style", a.next_step_style, b.next_step_style);
}

void compare_controls(Comparison &it, const View &a, const View &b)
{
    it.field("channel combo", a.channel, b.channel);
    it.field("type", a.type, b.type);
    it.field("type enabled", a.type_enabled, b.type_enabled);
    it.field("POLY_RANGE item enabled", a.range_item, b.range_item);
    it.field("degrees", a.degrees, b.degrees);
    it.field("degree index", a.degree, b.degree);
    it.field("degree enabled", a.degree_enabled, b.degree_enabled);
    it.field("range", a.range, b.range);
    it.field("range enabled", a.range_enabled, b.range_enabled);
    it.field("coefficients shown", a.coefficients, b.coefficients);
    for (std::size_t i = 0; i < COEFF_LABELS; ++i) {
        it.where = QStringLiteral("coefficient %1 ").arg(i);
        it.field("shown", a.coeff[i].shown, b.coeff[i].shown);
        if (a.coeff[i].shown)
            it.field("text", a.coeff[i].text, b.coeff[i].text);
    }
    it.where.clear();
    it.field("point count text", a.points_text, b.points_text);
    it.field("averaging text", a.averaging_text, b.averaging_text);
    it.field("technician", a.technician, b.technician);
    it.field("standard", a.standard, b.standard);
    it.field("serial number", a.serial, b.serial);
    it.field("units", a.units, b.units);
    it.field("table name", a.table_name, b.table_name);
    it.field("row objects", a.row_objects, b.row_objects);
    it.field("curves removed", a.curves_removed, b.curves_removed);
    it.field("window open", a.open, b.open);
}

Row look_at_row(const PointInfo &row)
{
    Row seen;
    seen.value = row.value_field()->text();
    seen.mv = row.mv_label()->text();
    seen.style = row.value_style();
    seen.saved_style = row.saved_style;
    seen.caption = row.caption();
    seen.caption_style = row.caption_style();
    seen.previous_mv = row.previous_mv;
    seen.status = row.status;
    seen.previous_status = row.previous_status;
    seen.state = row.state;
    seen.previous_state = row.previous_state;
    seen.shown = row.children_visible();
    return seen;
}

Button look_at_button(const QPushButton &button)
{
    return {button.isEnabled(), button.styleSheet()};
}

void look_at_process(const Ui::MainWindow &form, View *seen)
{
    const QLineEdit *const boxes[BOXES] = {form.txtAsFound, form.txtAfterService,
                                           form.txtAdjustCalibration, form.txtVerificationData,
                                           form.txtNewCorrelation};
    const char *const copies[BOXES] = {g_ws_block->as_found_time, g_ws_block->after_service_time,
                                       g_ws_block->adjust_calibration_time,
                                       g_ws_block->verification_time,
                                       g_ws_block->new_correlation_time};
    for (std::size_t i = 0; i < BOXES; ++i)
        seen->boxes[i] = {boxes[i]->text(), boxes[i]->styleSheet(), QString::fromUtf8(copies[i])};
    seen->record = look_at_button(*form.btnRecordData);
    seen->reuse = look_at_button(*form.btnReuseCalibration);
    seen->adjust = look_at_button(*form.btnAdjustCalibration);
    seen->line_report = form.btnGenerateLineRpt->isEnabled();
    seen->menu_statistics = form.menuStatistics->isEnabled();
    seen->cal_statistics = form.actionCal_Statistics_Chart->isEnabled();
    seen->point_statistics = form.actionPoint_Statistics->isEnabled();
    seen->next_step = form.lblNextStep->text();
    seen->next_step_style = form.lblNextStep->styleSheet();
}

void look_at_controls(const Ui::MainWindow &form, View *seen)
{
    bool is_number = false;
    const int channel = form.cboCurrentChannel->currentText().left(5).toInt(&is_number);
    seen->channel = is_number ? channel : -1;
    seen->type = form.cboCalType->currentIndex();
    seen->type_enabled = form.cboCalType->isEnabled();
    const auto *items = qobject_cast<const QStandardItemModel *>(form.cboCalType->model());
    seen->range_item = items->item(2)->isEnabled();
    seen->degrees = form.cboOrderOfPolynomial->count();
    seen->degree = form.cboOrderOfPolynomial->currentIndex();
    seen->degree_enabled = form.cboOrderOfPolynomial->isEnabled();
    seen->range = form.cboPolyRangeIndex->currentIndex();
    seen->range_enabled = form.cboPolyRangeIndex->isEnabled();
    seen->coefficients = !form.coeffFrame->isHidden();
    const QLabel *const names[] = {form.lblCoeff0, form.lblCoeff1, form.lblCoeff2, form.lblCoeff3,
                                   form.lblCoeff4, form.lblCoeff5, form.lblCoeff6, form.lblCoeff7};
    const QLabel *const values[] = {form.lblCoeff0Value, form.lblCoeff1Value, form.lblCoeff2Value,
                                    form.lblCoeff3Value, form.lblCoeff4Value, form.lblCoeff5Value,
                                    form.lblCoeff6Value, form.lblCoeff7Value};
    for (std::size_t i = 0; i < COEFF_LABELS; ++i)
        seen->coeff[i] = {!names[i]->isHidden() && !values[i]->isHidden(), values[i]->text()};
    seen->points_text = form.txtNumPoints->text();
    seen->averaging_text = form.txtAveragingTime->text();
    seen->technician = form.txtTechnicianName->text();
    seen->standard = form.txtCalibrationQIE->text();
    seen->serial = form.lblSerialNumber->text();
    seen->units = form.btnUnits->text();
    seen->table_name = form.lblTableName->text();
    seen->row_objects = form.verticalLayout_4->count();
}

} // namespace

View look(const MainWindow &window)
{
    View seen;
    for (int i = 0; i < ROWS; ++i)
        seen.rows[static_cast<std::size_t>(i)] = look_at_row(*window.row(i));
    look_at_process(*form_of(&window), &seen);
    look_at_controls(*form_of(&window), &seen);
    seen.curves_removed = window.curves_are_removed();
    seen.open = !window.isHidden();
    return seen;
}

QStringList differences(const View &modelled, const View &real)
{
    Comparison it;
    compare_process(it, modelled, real);
    compare_controls(it, modelled, real);
    for (std::size_t i = 0; i < ROWS; ++i) {
        it.where = QStringLiteral("row %1 ").arg(i + 1);
        compare_row(it, modelled.rows[i], real.rows[i]);
    }
    return it.told;
}

} // namespace walk
