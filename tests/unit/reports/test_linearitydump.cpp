// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dump of a linearity verification, and the operation that writes it.
#include <cmath>
#include <cstring>

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QStandardPaths>

#include "reports/linearitydump.h"
#include "support/hostlog.h"
#include "support/testmain.h"
#include "unit/reports/linearitycases.h"

namespace
{

// Whether a NaN has a sign is the processor's matter, and printf shows it; the
// golden files have none.
QByteArray without_sign_of_nan(QByteArray text)
{
    return text.replace("-nan", "nan");
}

QStringList dumps()
{
    return QDir(QStringLiteral("/ram")).entryList(QDir::Files | QDir::System);
}

// The session as a capture leaves it.
void set_session(const LinearityCase &one, const char *table_name)
{
    *g_cfg = {};
    std::copy(one.points.begin(), one.points.end(), g_cfg->point_stats);
    g_cfg->long_current.num_points = static_cast<int16_t>(one.count);
    qstrncpy(g_cfg->table.table_name, table_name, sizeof g_cfg->table.table_name);
    std::memcpy(g_cfg->table.eng_units, one.units, sizeof one.units);
    g_line_rpt = {};
    g_line_rpt.max_expected_val = one.max_expected_val;
}

} // namespace

class LinearityDump : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init() { clear_cell(); }
    void golden_files_are_what_the_script_makes();
    void golden_data();
    void golden();
    void two_points_print_no_standard_error();
    void every_point_excluded_prints_what_was_held_before();
    void reference_values_are_those_of_the_first_point();
    void path_data();
    void path();
    void table_name_without_an_end();
    void operation_fills_the_record_and_writes_the_dump();
    void operation_without_points_data();
    void operation_without_points();
    void second_run_adds_to_the_squared_residuals();
    void dump_replaces_one_of_the_same_name();
    void dump_that_cannot_be_opened_is_skipped();
    void dump_that_finds_no_room_is_skipped();
    void folder_that_is_missing_costs_one_log_entry();
};

void LinearityDump::initTestCase()
{
    require_private_cell();
    allocate_session();
    QVERIFY(linearity_cases().size() >= 12);
    QCOMPARE(linearity_cases().size(), std::size_t(read_cases()["cases"].toArray().size()));
    // Born zero, before anything has run.
    static const LINE_RPT zero = {};
    QCOMPARE(std::memcmp(&g_line_rpt, &zero, sizeof zero), 0);
}

void LinearityDump::golden_files_are_what_the_script_makes()
{
    const QString python = QStandardPaths::findExecutable(QStringLiteral("python3"));
    if (python.isEmpty())
        QSKIP("python3 is not installed; the golden files were compared when they were made");
    QProcess script;
    script.start(python,
                 {QStringLiteral(TEST_DATA_DIR "/linearity/golden.py"), QStringLiteral("--check")});
    QVERIFY(script.waitForFinished(60000));
    QCOMPARE(QString::fromUtf8(script.readAllStandardOutput()), QString());
    QCOMPARE(QString::fromUtf8(script.readAllStandardError()), QString());
    QCOMPARE(script.exitCode(), 0);
}

void LinearityDump::golden_data()
{
    QTest::addColumn<QString>("name");
    for (const auto &one : linearity_cases())
        QTest::newRow(qPrintable(one.first)) << one.first;
}

void LinearityDump::golden()
{
    QFETCH(QString, name);
    const QByteArray golden = linearity_file(name + ".dump");
    QVERIFY(!golden.isEmpty());
    const QByteArray dump = linearity_dump(figures_of(linearity_cases().at(name)));
    const QList<QByteArray> lines = without_sign_of_nan(dump).split('\n');
    const QList<QByteArray> expected = golden.split('\n');
    for (int i = 0; i < std::min(lines.size(), expected.size()); ++i)
        QCOMPARE(lines[i], expected[i]);
    QCOMPARE(without_sign_of_nan(dump), golden);
}

void LinearityDump::two_points_print_no_standard_error()
{
    const QByteArray dump = linearity_dump(figures_of(linearity_cases().at("two_points")));
    QVERIFY(dump.contains("D11 - SEE = -999.900000\n"));
    QVERIFY(dump.contains("D19 - -99990.000000\n"));
}

void LinearityDump::every_point_excluded_prints_what_was_held_before()
{
    LINE_RPT record = {};
    record.max_rel_error_work = -7.5;
    const QByteArray dump =
        linearity_dump(figures_of({{1.0, 1.5}, {2.0, 2.0}, {3.0, 3.0}}, 100.0, "kPa", record));
    QCOMPARE(dump.count("-999.900000\t\n"), 3);
    QVERIFY(dump.contains("U131 = -7.500000\n"));
    QVERIFY(dump.contains("U134 = 0\n"));
    QVERIFY(dump.contains("U24 = 50.000000\n"));
}

void LinearityDump::reference_values_are_those_of_the_first_point()
{
    const QByteArray dump =
        linearity_dump(figures_of({{30.0, 30.0}, {60.0, 66.0}, {90.0, 90.0}}, 100.0));
    QVERIFY(dump.contains("D13 - Max Abs Error = 6.000000\t\tF13 - Ref Val: = 30.000000\n"));
    QVERIFY(dump.contains("D14 - Max Rel Error = 10.000000\t\tF14 - Ref Val: = 30.000000\n"));
}

void LinearityDump::path_data()
{
    const auto row = test_columns<QByteArray, QDateTime, QByteArray>("table", "now", "path");
    row("afternoon", QByteArray("oil"), QDateTime({2024, 3, 5}, {14, 7, 9}),
        QByteArray("/ram/oil03052024140709.html"));
    row("last second of a year", QByteArray("oil_2"), QDateTime({2023, 12, 31}, {23, 59, 59}),
        QByteArray("/ram/oil_212312023235959.html"));
    row("nameless", QByteArray(), QDateTime({2024, 1, 2}, {3, 4, 5}),
        QByteArray("/ram/01022024030405.html"));
    row("signs of a pattern and bytes that are no UTF-8", QByteArray("%1%2\xb0"),
        QDateTime({2024, 1, 2}, {3, 4, 5}),
        QByteArray("/ram/%1%2\xb0"
                   "01022024030405.html"));
}

void LinearityDump::path()
{
    QFETCH(QByteArray, table);
    QFETCH(QDateTime, now);
    QTEST(linearity_dump_path(table.constData(), now), "path");
}

void LinearityDump::table_name_without_an_end()
{
    const QByteArray name(80, 'n');
    const auto table = std::make_unique<char[]>(80);
    std::memcpy(table.get(), name.constData(), 80);
    QCOMPARE(linearity_dump_path(table.get(), QDateTime({2024, 1, 2}, {3, 4, 5})),
             "/ram/" + name + "01022024030405.html");
}

void LinearityDump::operation_fills_the_record_and_writes_the_dump()
{
    const LinearityCase &one = linearity_cases().at("three_points");
    set_session(one, "oil_pressure");
    const HostLog log;
    const QDateTime before = QDateTime::currentDateTime();
    calc_line_rpt_values(g_cfg);
    const QDateTime after = QDateTime::currentDateTime();
    QCOMPARE(log.texts(), QStringList());
    QCOMPARE(g_line_rpt.entered_points, 3);
    QCOMPARE(g_line_rpt.a1, figures_of(one).record.a1);
    const QStringList written = dumps();
    QCOMPARE(written.size(), 1);
    const QRegularExpressionMatch name =
        QRegularExpression("^oil_pressure(\\d{14})\\.html$").match(written[0]);
    QVERIFY2(name.hasMatch(), qPrintable(written[0]));
    const QDateTime stamp = QDateTime::fromString(name.captured(1), "MMddyyyyHHmmss");
    QVERIFY(stamp >= before.addMSecs(-before.time().msec()) && stamp <= after);
    QCOMPARE(read_file("/ram/" + written[0]), linearity_file("three_points.dump"));
}

void LinearityDump::operation_without_points_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("none") << "no_points";
    QTest::newRow("fewer than none") << "fewer_than_no_points";
}

void LinearityDump::operation_without_points()
{
    QFETCH(QString, name);
    set_session(linearity_cases().at(name), "oil_pressure");
    calc_line_rpt_values(g_cfg);
    QCOMPARE(dumps().size(), 1);
    QCOMPARE(without_sign_of_nan(read_file("/ram/" + dumps()[0])), linearity_file(name + ".dump"));
}

void LinearityDump::second_run_adds_to_the_squared_residuals()
{
    set_session(linearity_cases().at("three_points"), "oil_pressure");
    calc_line_rpt_values(g_cfg);
    const LINE_RPT first = g_line_rpt;
    calc_line_rpt_values(g_cfg);
    QCOMPARE(g_line_rpt.see_sum, 2 * first.see_sum);
    QCOMPARE(g_line_rpt.see, first.see * std::sqrt(2.0));
    QCOMPARE(g_line_rpt.a0, first.a0);
    QCOMPARE(g_line_rpt.a1, first.a1);
    QCOMPARE(g_line_rpt.r2, first.r2);
}

void LinearityDump::dump_replaces_one_of_the_same_name()
{
    write_linearity_dump("/ram/a.html", "a long text of the first run\n");
    write_linearity_dump("/ram/a.html", "second\n");
    QCOMPARE(read_file("/ram/a.html"), QByteArray("second\n"));
}

void LinearityDump::dump_that_cannot_be_opened_is_skipped()
{
    // A table whose name leads into a folder that is not there.
    const LinearityCase &one = linearity_cases().at("ten_points");
    set_session(one, "gone/oil_pressure");
    const HostLog log;
    calc_line_rpt_values(g_cfg);
    const QVector<LoggedEntry> entries = log.entries();
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries[0].severity, 1);
    QCOMPARE(entries[0].code, ENOENT);
    QCOMPARE(entries[0].source, QString("linearitydump.cpp"));
    const QRegularExpression text("^Unable to write </ram/gone/oil_pressure\\d{14}\\.html>: "
                                  "No such file or directory$");
    QVERIFY2(text.match(entries[0].text).hasMatch(), qPrintable(entries[0].text));
    QCOMPARE(dumps(), QStringList());
    QCOMPARE(g_line_rpt.see, figures_of(one).record.see);
}

void LinearityDump::dump_that_finds_no_room_is_skipped()
{
    // A device that is always full stands for a full /ram.
    QVERIFY(QFile::link("/dev/full", "/ram/full.html"));
    const HostLog log;
    write_linearity_dump("/ram/full.html", "text\n");
    const QVector<LoggedEntry> entries = log.entries();
    QCOMPARE(entries.size(), 1);
    QCOMPARE(entries[0].code, ENOSPC);
    QCOMPARE(entries[0].text, QString("Unable to write </ram/full.html>: No space left on device"));
    QVERIFY(!QFileInfo("/ram/full.html").isSymLink()); // no half of a dump stays
    QVERIFY(QFileInfo::exists("/dev/full"));
}

void LinearityDump::folder_that_is_missing_costs_one_log_entry()
{
    const HostLog log;
    write_linearity_dump("/ram/missing/a.html", "text\n");
    QCOMPARE(log.texts(),
             QStringList("Unable to write </ram/missing/a.html>: No such file or directory"));
}

LOOP_TEST(LinearityDump);
#include "test_linearitydump.moc"
