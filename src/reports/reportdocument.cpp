// SPDX-License-Identifier: GPL-3.0-or-later
//
// The rows stand here as they stand in the document. Unclosed tags, a row that
// opens twice, "Sersor" and "&nbps;" belong to it: documents are compared by
// their bytes.
#include "reports/reportdocument.h"

#include <algorithm>
#include <cmath>
#include <initializer_list>
#include <vector>

#include <QDateTime>
#include <QLocale>

#include "frame/functions.h"
#include "reports/linearityfigures.h"

namespace
{

// ---- Numbers ----

// Six significant digits in the shorter of fixed and scientific form.
QByteArray plain(double value)
{
    return QByteArray::number(value, 'g', 6);
}

QByteArray fixed(double value, int decimals)
{
    return QByteArray::number(value, 'f', decimals);
}

QByteArray integer(int value)
{
    return QByteArray::number(value);
}

// ---- Cells and rows ----

const char NA[] = "<td class='all_on_center'>N/A</td>";
const char ONE_PERCENT[] = "<td class='all_on_center'>1%</td>";
const char BLANK[] = "<td class='all_on_center'>&nbsp;</td>";
const char GAP[] = "<td>&nbsp;</td>";
const char SPACER[] = "<td class='all_on_center' colspan='6'>&nbsp;</td>";
const char RIGHT_2_BLANK[] = "<td class='all_on_right' colspan='2'>&nbsp;</td>";
const char FILL_3[] = "<td colspan='3' class='all_on_center'>&nbsp;</td>";
const char FILL_4[] = "<td colspan='4' class='all_on_center'>&nbsp;</td>";

QByteArray title6(const char *label)
{
    return QByteArray("<td class='title_row'  colspan='6'>") + label + "</td>";
}

QByteArray right(const char *label)
{
    return QByteArray("<td class='all_on_right'>") + label + "</td>";
}

QByteArray left(const QByteArray &value)
{
    return "<td class='all_on_left'>" + value + "</td>";
}

QByteArray centre(const QByteArray &value)
{
    return "<td class='all_on_center'>" + value + "</td>";
}

QByteArray centre2(const QByteArray &value)
{
    return "<td colspan='2' class='all_on_center'>" + value + "</td>";
}

QByteArray count_cell(int count)
{
    return "<td align='center'>" + integer(count) + "</td>";
}

QByteArray percentage(double value, int decimals)
{
    return "<td class='all_on_center'>" + fixed(value, decimals) + "%</td>";
}

QByteArray verdict(bool passes)
{
    return passes ? "<td class='all_on_center'>PASS</td>" : "<td class='all_on_center'>FAIL</td>";
}

QByteArray environment(const EnvironmentReading &reading)
{
    if (!reading.found)
        return "<td class='all_on_center'>NA</td><td class='all_on_center'>NA</td>";
    return centre(plain(reading.value)) + centre(reading.units);
}

struct Row {
    Row(std::initializer_list<QByteArray> row_cells, const char *row_end = "</tr>")
        : cells(row_cells), end(row_end)
    {
    }

    std::vector<QByteArray> cells;
    const char *end;
};
using Rows = std::vector<Row>;

void put(QByteArray *document, const Rows &rows)
{
    for (const Row &row : rows) {
        document->append("<tr>");
        for (const QByteArray &cell : row.cells)
            document->append(cell);
        document->append(row.end);
    }
}

// ---- The document's parts ----

const char HEAD[] =
    "<html>"
    "<head>"
    "<style type='text/css'>"
    "p.title_row1 { font-family: arial; font-size: 11pt; text-align: center }"
    "table { border: 0; padding: 0cm; font-weight:bold; font-family: arial; font-size: 11pt; "
    "border-collapse: collapse; border-style: solid; border-width: 0pt }"
    "td.all_on_center {font-size: 9.0pt; font-family: arial; text-align: center; font-weight: "
    "bold; border-width: 1; border-style: solid solid solid solid}"
    "td.all_on_left {font-size: 9.0pt; font-family: arial; text-align: left; font-weight: bold; "
    "border-width: 1; border-style: solid solid solid solid}"
    "td.all_on_right {font-size: 9.0pt; font-family: arial; text-align: right; font-weight: bold; "
    "border-width: 1; border-style: solid solid solid solid}"
    "td.title_row {font-family: arial; font-size: 11pt; text-align: left; border-width: 1; "
    "border-style: solid solid solid solid; background-color: #00c4ff }"
    "td.sub_title_row {font-family: arial; font-size: 11pt; text-align: center; border-width: 1; "
    "border-style: solid solid solid solid; font-weight: bold }"
    "td.sub_title_row_no_borders {font-family: arial; font-size: 10pt; text-align: center; "
    "font-weight: bold }"
    "td.sub_title_row_left_borders {font-family: arial; font-size: 10pt; text-align: center; "
    "font-weight: bold; border-style: none none none solid; border-width: 1 }"
    "td.sub_title_row_rl_borders {font-family: arial; font-size: 10pt; text-align: center; "
    "font-weight: bold; border-style: none solid none solid; border-width: 1 }"
    "td.sub_title_row_right_borders {font-family: arial; font-size: 10pt; text-align: center; "
    "font-weight: bold; border-style: none solid none none; border-width: 1 }"
    "</style>"
    "</head>"
    "<p class='title_row1'>"
    "<b>Linearity Verification per 1065.307</b>"
    "<br />"
    "<br />";

const char ABS_NOTE[] = "<td class='all_on_center'>* Abs. Error is the true absolute error "
                        "determined from the difference from measured and reference values.</td>";
const char REL_NOTE[] = "<td class='all_on_center'>** Rel. Error over the range outside +/- 0.2 * "
                        "X<sub>max</sub> or of non-zero reference points</td>";

const char NEXT_TABLE[] = "</table><br/><table width='100%'>";

QByteArray text_of(const QDateTime &time, const char *format)
{
    return QLocale::c().toString(time, QLatin1String(format)).toUtf8();
}

Rows general_rows(const ReportSources &s)
{
    const TABLE_RECORD &table = *s.table;
    const QDateTime verified = QLocale::c().toDateTime(QString::fromUtf8(s.adjust_calibration_time),
                                                       QStringLiteral("MM/dd/yyyy hh:mm:ss"));
    const QDateTime last = QDateTime::fromSecsSinceEpoch(table.last_cal_time);
    // clang-format off
    return {
        {title6("General:")},
        {right("Test Cell:"), left(s.test_cell_name), GAP,
         right("Verification Date:"), centre2(text_of(verified, "MM/dd/yyyy"))},
        {RIGHT_2_BLANK, GAP, right("Time:"), centre2(text_of(verified, "hh:mm:ss"))},
        {right("Verified by (Name):"), left(record_bytes(table.verified_by)), GAP,
         right("Test Cell Temperature:"), environment(s.temperature)},
        {RIGHT_2_BLANK, GAP, right("Barometer:"), environment(s.barometer)},
        {right("Last Verification Date:"), left(text_of(last, "MM/dd/yyyy")), GAP,
         right("Humidity:"), environment(s.humidity)},
        {SPACER},
    };
    // clang-format on
}

Rows system_rows(const ReportSources &s)
{
    const TABLE_RECORD &table = *s.table;
    const QByteArray units = record_bytes(table.eng_units);
    const auto in_units = [&units](double value) { return centre(plain(value)) + centre(units); };
    // clang-format off
    return {
        {title6("Measurement System Under Test:")},
        {right("Description:"), left(record_bytes(table.description)), GAP,
         right("QIE:"), centre2(record_bytes(table.qie))},
        {right("Hostname:"), left(s.host_name), GAP,
         right("Engineering Units:"), centre2(units)},
        {right("Channel No:"), left(integer(s.channel)), GAP,
         right("Unit Zero Offset:"), centre(plain(s.figures->unit_zero_offset)),
         centre(record_bytes(s.figures->abs_units))},
        {right("VorNax Label:"), left(s.channel_label), GAP,
         right("Sensor Range Min:"), in_units(table.sensor_range_min)},
        {right("Cal Table Name:"), left(s.cal_table_name), GAP,
         right("Sersor Range Max:"), in_units(table.sensor_range_max)},
        {right("Sample Rate:"), left(integer(s.sample_rate)), GAP,
         right("Validation Nominal Range Min:"),
         in_units(s.expected->validation_nominal_range_min)},
        {right("Filter Coefficient:"), left(plain(s.filter_coeff)), GAP,
         right("Validation Nominal Range Max:"),
         in_units(s.expected->validation_nominal_range_max)},
        {right("Sensor Model:"), left(record_bytes(table.sensor_model)), GAP,
         right("Min Expected Val:"), in_units(s.expected->min_expected_val)},
        {right("Sensor Serial No:"), left(record_bytes(table.sensor_serial_no)), GAP,
         right("Max Expected Val:"), in_units(s.expected->max_expected_val)},
        {SPACER},
    };
    // clang-format on
}

Rows standard_rows(const ReportSources &s)
{
    const LINE_RPT &f = *s.figures;
    // clang-format off
    return {
        {title6("Working Standard:")},
        {right("QIE Number:"), left(record_bytes(f.ws_qie_number)), GAP,
         right("Cal Date:"), centre2(record_bytes(f.ws_cal_date))},
        {right("Make:"), left(record_bytes(f.ws_make)), GAP,
         right("Serial No:"), centre2(record_bytes(f.ws_serial_no))},
        {right("Model:"), left(record_bytes(f.ws_model)), GAP,
         right("Range:"), centre(record_bytes(f.ws_range)),
         centre(record_bytes(s.table->eng_units))},
        {SPACER},
    };
    // clang-format on
}

Rows regression_rows(const ReportSources &s)
{
    const LINE_RPT &f = *s.figures;
    const QByteArray absolute = centre(record_bytes(f.abs_units));
    const QByteArray units = centre(record_bytes(s.table->eng_units));
    const QByteArray see = nearly_equal(f.see, NO_VALUE) ? QByteArray(BLANK) : centre(plain(f.see));
    // clang-format off
    return {
        {title6("Linear Regression Results (Measured vs. Reference Values)")},
        {"<td class='sub_title_row'>Parameter</td>", "<td class='sub_title_row'>Value</td>",
         "<td class='sub_title_row'>Units</td>", FILL_3},
        {right("Number of Points:"), count_cell(f.entered_points), FILL_4},
        {right("X<sub>min</sub>:"), centre(plain(f.x_min)), absolute, FILL_3},
        {right("X<sub>max</sub>:"), centre(plain(f.x_max)), absolute, FILL_3},
        {right("A<sub>0</sub>(intercept):"), centre(plain(f.a0)), absolute, FILL_3},
        {right("A<sub>1</sub>(Slope):"), centre(plain(f.a1)), FILL_4},
        {right("SEE:"), see, absolute, FILL_3},
        {right("R<sup>2</sup>:"), centre(plain(f.r2)), BLANK,
         "<td class='sub_title_row'>At Ref Val</td>", "<td class='sub_title_row'>At Units</td>"},
        // Does not close but opens once more.
        Row({right("Max Abs Error*:"), centre(plain(f.max_abs_error)), absolute,
             centre(plain(f.max_abs_error_x - f.unit_zero_offset)), units,
             ABS_NOTE}, "<tr>"),
        {right("Max Rel Error**:"), centre(plain(100 * f.max_rel_error)),
         "<td class='all_on_center'>%</td>",
         centre(plain(f.max_rel_error_x - f.unit_zero_offset)), units,
         REL_NOTE},
        {SPACER},
    };
    // clang-format on
}

Row see_check_row(double see_check_frac)
{
    const QByteArray label = right("SEE / x <sub>max</sub>");
    if (nearly_equal(see_check_frac, NO_VALUE))
        return {label, BLANK, NA, NA, ONE_PERCENT, "<td class='all_on_center'>&nbps;</td>"};
    return {label,       percentage(see_check_frac * 100, 4), NA, NA,
            ONE_PERCENT, verdict(see_passes(see_check_frac))};
}

Rows check_rows(const LINE_RPT &f)
{
    // clang-format off
    return {
        {title6("Linearity Verification Results")},
        {"<td class='sub_title_row'>Parameter</td>",
         "<td class='sub_title_row'>High Precision Value</td>",
         "<td class='sub_title_row'>Rounded Value</td>", "<td class='sub_title_row'>Min</td>",
         "<td class='sub_title_row'>Max</td>", "<td class='sub_title_row'>Pass / Fail</td>"},
        {right("| x<sub>min</sub>(a<sub>1</sub>-1) + a<sub>0</sub> | / x<sub>max</sub>"),
         percentage(f.intercept_check_frac * 100, 4), NA, NA, ONE_PERCENT,
         verdict(intercept_passes(f.intercept_check_frac))},
        {right("a<sub>1</sub>"), centre(plain(f.slope_check)),
         centre(fixed(std::round(f.slope_check), 2)), "<td class='all_on_center'>0.99</td>",
         "<td class='all_on_center'>1.01</td>", verdict(slope_passes(f.slope_check))},
        see_check_row(f.see_check_frac),
        {right("r<sup>2</sup>"), centre(plain(f.r2_check)),
         centre(fixed(std::round(f.r2_check), 3)), "<td class='all_on_center'>0.998</td>", NA,
         verdict(r2_passes(f.r2_check))},
        {SPACER},
    };
    // clang-format on
}

Rows data_heading_rows(const LINE_RPT &f)
{
    return {
        {"<td class='title_row'  colspan='8'>Validation Data:</td>"},
        {"<td class='sub_title_row_left_borders'>Entered Pts:</td>", count_cell(f.entered_points),
         "<td class='sub_title_row_rl_borders' colspan='5'>In Specified Engineering Units</td>"},
        {"<td class='sub_title_row_left_borders' colspan='2'>&nbsp;</td>",
         "<td class='sub_title_row_left_borders'>X</td>",
         "<td class='sub_title_row_no_borders'>Y</td>",
         "<td class='sub_title_row_no_borders'>Y</td>",
         "<td class='sub_title_row_no_borders'>Y</td>",
         "<td class='sub_title_row_right_borders'>Y</td>"},
        {"<td class='sub_title_row_left_borders'>Point</td>",
         "<td class='sub_title_row_no_borders'>%FS</td>",
         "<td class='sub_title_row_left_borders'>Reference</td>",
         "<td class='sub_title_row_no_borders'>Average</td>",
         "<td class='sub_title_row_no_borders'>Std Dev</td>",
         "<td class='sub_title_row_no_borders'>Min</td>",
         "<td class='sub_title_row_right_borders'>Max</td>"},
    };
}

// Values as captured, while the share of full scale divides them by the shifted
// X max.
Rows point_rows(const LINE_RPT &f)
{
    Rows rows;
    const int count = std::clamp<int32_t>(f.entered_points, 0, MAX_POINTS);
    for (int i = 0; i < count; ++i)
        rows.push_back({centre(integer(i + 1)), percentage(100 * f.x_raw[i] / f.x_max, 1),
                        centre(fixed(f.x_raw[i], 8)), centre(fixed(f.y_avg_raw[i], 8)),
                        centre(fixed(f.y_std_raw[i], 8)), centre(fixed(f.y_min_raw[i], 8)),
                        centre(fixed(f.y_max_raw[i], 8))});
    return rows;
}

} // namespace

QByteArray report_document(const ReportSources &sources)
{
    QByteArray document = HEAD;
    document.append("<table width='100%'>");
    put(&document, general_rows(sources));
    put(&document, system_rows(sources));
    put(&document, standard_rows(sources));
    document.append(NEXT_TABLE);
    put(&document, regression_rows(sources));
    document.append(NEXT_TABLE);
    put(&document, check_rows(*sources.figures));
    document.append(NEXT_TABLE);
    put(&document, data_heading_rows(*sources.figures));
    put(&document, point_rows(*sources.figures));
    return document;
}
