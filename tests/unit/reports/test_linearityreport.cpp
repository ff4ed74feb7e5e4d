// SPDX-License-Identifier: GPL-3.0-or-later
//
// The operation that writes the linearity report.
#include <cstring>
#include <memory>

#include <QDateTime>
#include <QFileInfo>
#include <QLocale>

#include "frame/hostlink.h"
#include "reports/linearityreport.h"
#include "support/hostlog.h"
#include "support/testcell.h"
#include "support/testmain.h"
#include "unit/reports/reportcontent.h"

namespace
{

const char TMP_REPORT[] = "/tmp/zerl_util_line_rpt.html";

// The record's name, after which files are named; the host's name for the table
// of channel 1 is "one".
const char TABLE_NAME[] = "record_one";

QString permanent_path(const QDate &day)
{
    return "/cell/tables/reports/record_one_" + QLocale::c().toString(day, "MMddyyyy") + ".html";
}

} // namespace

class LinearityReport : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void report_of_a_session();
    void permanent_report_is_named_by_table_and_day();
    void second_report_of_a_day_replaces_the_first();
    void variables_of_the_cell();
    void no_folder_for_reports();
    void full_disc_is_not_noticed();

private:
    void bind_channel_one(const char *case_name);
};

void LinearityReport::initTestCase()
{
    require_private_cell();
    allocate_session();
}

void LinearityReport::init()
{
    clear_cell();
    QFile::remove(TMP_REPORT);
    report_path.clear();
    *g_cfg = {};
    *g_ws_block = {};
    std::memset(g_specs, 0, sizeof *g_specs);
    *g_env = {};
    g_line_rpt = {};
}

// Channel 1 of a running cell with the points of a case.
void LinearityReport::bind_channel_one(const char *case_name)
{
    const LinearityCase &one = linearity_cases().at(QString::fromLatin1(case_name));
    QCOMPARE(attach_host_memories(), 0);
    g_cfg->channel = 1;
    std::copy(one.points.begin(), one.points.end(), g_cfg->point_stats);
    g_cfg->long_current.num_points = static_cast<int16_t>(one.count);
    qstrncpy(g_cfg->table.table_name, TABLE_NAME, sizeof g_cfg->table.table_name);
    qstrncpy(g_cfg->table.description, "Table one", sizeof g_cfg->table.description);
    std::memcpy(g_cfg->table.eng_units, one.units, sizeof one.units);
    g_env->max_expected_val = one.max_expected_val;
    g_line_rpt.max_expected_val = one.max_expected_val;
}

void LinearityReport::report_of_a_session()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    bind_channel_one("three_points");
    qstrncpy(g_cfg->table.verified_by, "J. Doe", sizeof g_cfg->table.verified_by);
    qstrncpy(g_ws_block->adjust_calibration_time, "03/05/2024 14:07:09", 80);
    qstrncpy(g_line_rpt.ws_qie_number, "DWT-12", 80);
    g_env->validation_nominal_range_min = 1.5;
    g_env->validation_nominal_range_max = 2.5;
    g_env->min_expected_val = 3.5;
    g_env->max_expected_val = 4.5; // the maths has a copy of its own
    g_cfg->table.last_cal_time = 951782400;
    QVERIFY(generate_line_rpt(false));
    QCOMPARE(report_path, QByteArray(TMP_REPORT));

    Content content;
    content.figures = g_line_rpt;
    content.table = g_cfg->table;
    content.expected = *g_env;
    ReportSources &sources = content.sources;
    sources.figures = &content.figures;
    sources.table = &content.table;
    sources.expected = &content.expected;
    sources.channel = 1;
    sources.test_cell_name = "Test Cell";
    sources.host_name = "testhost";
    sources.channel_label = "Channel One";
    sources.cal_table_name = "one";
    sources.sample_rate = g_ai_transfer[1].sample_rate;
    sources.filter_coeff = g_ai_transfer[1].filter_coeff;
    sources.adjust_calibration_time = "03/05/2024 14:07:09";
    const QByteArray document = report_document(sources);
    QCOMPARE(read_file(TMP_REPORT), document);
    QCOMPARE(g_line_rpt.a1, figures_of(linearity_cases().at("three_points")).record.a1);
    QVERIFY(row_of(document, "X<sub>max</sub>:").contains(centred("1000")));
    QVERIFY(row_of(document, "Max Expected Val:").contains(centred("4.5")));
    QVERIFY(row_of(document, "Cal Table Name:").contains("<td class='all_on_left'>one</td>"));
    QCOMPARE(QDir("/ram").entryList({"record_one*.html"}, QDir::Files).size(), 1);
    QCOMPARE(QDir("/ram").entryList(QDir::Files).size(), 1);
}

void LinearityReport::permanent_report_is_named_by_table_and_day()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    bind_channel_one("three_points");
    QVERIFY(QDir().mkpath("/cell/tables/reports"));
    const QDate before = QDate::currentDate();
    QVERIFY(generate_line_rpt(true));
    const QString path = QString::fromUtf8(report_path);
    QVERIFY2(path == permanent_path(before) || path == permanent_path(QDate::currentDate()),
             qPrintable(path));
    QVERIFY(row_of(read_file(path), "Cal Table Name:").contains(">one<"));
    QVERIFY(read_file(path).startsWith("<html>"));
    QVERIFY(!QFileInfo::exists(TMP_REPORT));
}

void LinearityReport::second_report_of_a_day_replaces_the_first()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    bind_channel_one("three_points");
    QVERIFY(QDir().mkpath("/cell/tables/reports"));
    QDate day;
    do { // both on one day
        day = QDate::currentDate();
        g_cfg->long_current.num_points = 3;
        QVERIFY(generate_line_rpt(true));
        g_cfg->long_current.num_points = 2;
        QVERIFY(generate_line_rpt(true));
    } while (day != QDate::currentDate());
    const QByteArray document = read_file(permanent_path(day));
    QCOMPARE(document.count("<html>"), 1);
    QVERIFY(document.contains("Entered Pts:</td><td align='center'>2</td>"));
    QVERIFY(document.endsWith("</td></tr>"));
}

void LinearityReport::variables_of_the_cell()
{
    TestCell cell(TestCell::simple_description() +
                  "variable CELL_BARO 101.325 kPa\nvariable HUMID 0.45 FRAC\n"
                  "variable FAN_SPEED 1500 RPM\n");
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    bind_channel_one("three_points");
    qstrncpy(g_specs->temperature_var_name, "CELL_TEMP", 80);
    qstrncpy(g_specs->barometer_var_name, "CELL_BARO", 80);
    qstrncpy(g_specs->humidity_var_name, "HUMID", 80);
    {
        const HostLog log;
        QVERIFY(generate_line_rpt(false));
        const QByteArray document = read_file(TMP_REPORT);
        QCOMPARE(log.texts(), QStringList());
        QVERIFY(row_of(document, "Test Cell Temperature:")
                    .contains(centred("72.5") + centred("DEG_F")));
        // The value is in inches of mercury, the unit is the variable's own.
        QVERIFY(row_of(document, "Barometer:").contains(centred("29.9213") + centred("kPa")));
        QVERIFY(row_of(document, "Humidity:").contains(centred("45") + centred("FRAC")));
    }
    {
        // Found, but no pressure: the host passes the value on, in its own unit. A
        // value that the host left alone would stay 0.
        const HostLog log;
        qstrncpy(g_specs->barometer_var_name, "FAN_SPEED", 80);
        QVERIFY(generate_line_rpt(false));
        QCOMPARE(log.texts(), QStringList());
        QVERIFY(row_of(read_file(TMP_REPORT), "Barometer:")
                    .endsWith(centred("1500") + centred("RPM") + "</"));
        QCOMPARE(EnvironmentReading().value, 0.0);
        qstrncpy(g_specs->barometer_var_name, "CELL_BARO", 80);
    }
    const HostLog log;
    qstrncpy(g_specs->temperature_var_name, "", 80);
    qstrncpy(g_specs->humidity_var_name, "NO_SUCH", 80);
    QVERIFY(generate_line_rpt(false));
    const QByteArray document = read_file(TMP_REPORT);
    QCOMPARE(log.texts(), QStringList({"Can't find variable <>", "Can't find variable <NO_SUCH>"}));
    for (const char *label : {"Test Cell Temperature:", "Humidity:"})
        QVERIFY(row_of(document, label).endsWith(centred("NA") + centred("NA") + "</"));
    QVERIFY(row_of(document, "Barometer:").contains(centred("29.9213") + centred("kPa")));
}

void LinearityReport::no_folder_for_reports()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    bind_channel_one("three_points");
    QVERIFY(!QFileInfo::exists("/cell/tables/reports"));
    const HostLog log;
    QVERIFY(!generate_line_rpt(true));
    QVERIFY(report_path.startsWith("/cell/tables/reports/record_one_"));
    QVERIFY(!QFileInfo::exists("/cell/tables/reports")); // it is not made
    QCOMPARE(log.texts(), QStringList());
    QCOMPARE(g_line_rpt.entered_points, 3); // the figures and their dump are there
    QCOMPARE(QDir("/ram").entryList(QDir::Files).size(), 1);
}

void LinearityReport::full_disc_is_not_noticed()
{
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    bind_channel_one("three_points");
    QVERIFY(QFile::link("/dev/full", TMP_REPORT));
    QVERIFY(generate_line_rpt(false));
    QVERIFY(QFile::remove(TMP_REPORT));
}

LOOP_TEST(LinearityReport);
#include "test_linearityreport.moc"
