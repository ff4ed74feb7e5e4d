// SPDX-License-Identifier: GPL-3.0-or-later
//
// Documents from the cases of tests/data/linearity, and their rows.
#ifndef UNIT_REPORTS_REPORTCONTENT_H
#define UNIT_REPORTS_REPORTCONTENT_H

#include <memory>

#include "reports/reportdocument.h"
#include "unit/reports/linearitycases.h"

template <std::size_t Size> void put(char (&field)[Size], const QJsonValue &text)
{
    qstrncpy(field, text.toString().toUtf8().constData(), Size);
}

inline EnvironmentReading reading(const QJsonValue &json)
{
    EnvironmentReading made;
    made.found = !json.isNull();
    if (made.found) {
        made.value = number(json.toArray()[0]);
        made.units = json.toArray()[1].toString().toUtf8();
    }
    return made;
}

// What a document is made from; sources points into the other three.
struct Content {
    LINE_RPT figures = {};
    TABLE_RECORD table = {};
    ENV_BLOCK expected = {};
    ReportSources sources = {};
};

inline std::unique_ptr<Content> content_of(const LinearityCase &one)
{
    auto content = std::make_unique<Content>();
    const QJsonObject &d = one.document;
    LINE_RPT &figures = content->figures;
    figures = figures_of(one).record;
    put(figures.ws_qie_number, d["ws_qie_number"]);
    put(figures.ws_make, d["ws_make"]);
    put(figures.ws_model, d["ws_model"]);
    put(figures.ws_cal_date, d["ws_cal_date"]);
    put(figures.ws_serial_no, d["ws_serial_no"]);
    put(figures.ws_range, d["ws_range"]);
    TABLE_RECORD &table = content->table;
    put(table.verified_by, d["verified_by"]);
    put(table.description, d["description"]);
    put(table.qie, d["qie"]);
    put(table.sensor_model, d["sensor_model"]);
    put(table.sensor_serial_no, d["sensor_serial_no"]);
    std::memcpy(table.eng_units, one.units, sizeof table.eng_units);
    table.sensor_range_min = number(d["sensor_range_min"]);
    table.sensor_range_max = number(d["sensor_range_max"]);
    table.last_cal_time = static_cast<int64_t>(d["last_cal_time"].toDouble());
    content->expected = {number(d["validation_nominal_range_min"]),
                         number(d["validation_nominal_range_max"]), number(d["min_expected_val"]),
                         one.max_expected_val};
    ReportSources &sources = content->sources;
    sources.figures = &figures;
    sources.table = &table;
    sources.expected = &content->expected;
    sources.channel = d["channel"].toInt();
    sources.test_cell_name = d["test_cell_name"].toString().toUtf8();
    sources.host_name = d["host_name"].toString().toUtf8();
    sources.channel_label = d["channel_label"].toString().toUtf8();
    sources.cal_table_name = d["cal_table_name"].toString().toUtf8();
    sources.sample_rate = d["sample_rate"].toInt();
    sources.filter_coeff = number(d["filter_coeff"]);
    sources.adjust_calibration_time = d["adjust_calibration_time"].toString().toUtf8();
    sources.temperature = reading(d["temperature"]);
    sources.barometer = reading(d["barometer"]);
    sources.humidity = reading(d["humidity"]);
    return content;
}

inline std::unique_ptr<Content> content_of(const char *name)
{
    return content_of(linearity_cases().at(QString::fromLatin1(name)));
}

inline QByteArray document_of(const char *name)
{
    return report_document(content_of(name)->sources);
}

// The row that holds the label; rows may lack their end.
inline QByteArray row_of(const QByteArray &document, const QByteArray &label)
{
    const int at = document.indexOf("'>" + label + "</td>");
    if (at < 0)
        return QByteArray();
    const int from = document.lastIndexOf("<tr>", at);
    return document.mid(from, document.indexOf("tr>", at) - from);
}

inline QByteArray centred(const char *text)
{
    return QByteArray("<td class='all_on_center'>") + text + "</td>";
}

#endif
