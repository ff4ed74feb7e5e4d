// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/linearityreport.h"

#include <cstdio>

#include <QDateTime>
#include <QLocale>

#include "frame/functions.h"
#include "frame/hostlink.h"
#include "frame/zerl_cfg.h"
#include "reports/reportdocument.h"

QByteArray report_path;

namespace
{

// An empty name is looked up like any other.
EnvironmentReading read_environment(const char *name, const char *keyword)
{
    EnvironmentReading reading;
    void *address = nullptr;
    if (find_var_address(name, &address) == 0)
        return reading;
    reading.found = true;
    units_get_real_keyword(&reading.value, address, keyword);
    reading.units = record_bytes(static_cast<const VARIABLE_RECORD *>(address)->units);
    return reading;
}

// The channel's number is taken as it stands, as the binding left it.
ReportSources session_sources()
{
    const AI_TRANSFER_RECORD &transfer = g_ai_transfer[g_cfg->channel];
    ReportSources sources = {};
    sources.figures = &g_line_rpt;
    sources.table = &g_cfg->table;
    sources.expected = g_env;
    sources.channel = g_cfg->channel;
    sources.test_cell_name = record_bytes(Sys_attr->test_cell_name);
    sources.host_name = record_bytes(g_display_strings->host_name);
    sources.channel_label = record_bytes(Ai_real[g_cfg->channel].label);
    sources.cal_table_name = record_bytes(transfer.table_name);
    sources.sample_rate = transfer.sample_rate;
    sources.filter_coeff = transfer.filter_coeff;
    sources.adjust_calibration_time = record_bytes(g_ws_block->adjust_calibration_time);
    sources.temperature = read_environment(g_specs->temperature_var_name, "DEG_F");
    sources.barometer = read_environment(g_specs->barometer_var_name, "IN_HG");
    sources.humidity = read_environment(g_specs->humidity_var_name, "%");
    return sources;
}

} // namespace

QByteArray permanent_report_path(const TABLE_RECORD &table, const QDate &day)
{
    return "/cell/tables/reports/" + record_bytes(table.table_name) + '_' +
           QLocale::c().toString(day, QStringLiteral("MMddyyyy")).toUtf8() + ".html";
}

bool generate_line_rpt(bool permanent)
{
    calc_line_rpt_values(g_cfg);
    report_path = permanent ? permanent_report_path(g_cfg->table, QDate::currentDate())
                            : QByteArray("/tmp/zerl_util_line_rpt.html");
    std::FILE *file = std::fopen(report_path.constData(), "w");
    if (file == nullptr)
        return false;
    const QByteArray document = report_document(session_sources());
    std::fwrite(document.constData(), 1, static_cast<std::size_t>(document.size()), file);
    std::fclose(file);
    return true;
}
