// SPDX-License-Identifier: GPL-3.0-or-later
//
// The document of a linearity verification.
#include <cmath>
#include <cstring>
#include <ctime>
#include <random>

#include <QTextStream>

#include "support/testmain.h"
#include "unit/reports/reportcontent.h"

class ReportDocument : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void golden_data();
    void golden();
    void whole_document_is_one_line_that_ends_with_a_row();
    void document_of_no_points();
    void document_of_two_points();
    void slope_data();
    void slope();
    void fahrenheit_shows_its_offset_and_the_channels_units();
    void temperature_that_is_not_defined();
    void verification_date_data();
    void verification_date();
    void plain_numbers_are_those_of_a_text_stream();
    void bytes_that_are_no_utf_8_stay();
    void texts_without_an_end();
    void more_points_than_a_session_holds();
};

void ReportDocument::initTestCase()
{
    qputenv("TZ", "UTC"); // the day of the last calibration is a local one
    tzset();
}

void ReportDocument::golden_data()
{
    QTest::addColumn<QString>("name");
    for (const auto &one : linearity_cases())
        QTest::newRow(qPrintable(one.first)) << one.first;
}

void ReportDocument::golden()
{
    QFETCH(QString, name);
    const QByteArray golden = linearity_file(name + ".html");
    QVERIFY(!golden.isEmpty());
    const QByteArray document = report_document(content_of(linearity_cases().at(name))->sources);
    // Cell by cell first, so that a difference shows where it is.
    const QStringList cells = QString::fromUtf8(document).split("<t");
    const QStringList expected = QString::fromUtf8(golden).split("<t");
    for (int i = 0; i < std::min(cells.size(), expected.size()); ++i)
        QCOMPARE(cells[i], expected[i]);
    QCOMPARE(document, golden);
}

void ReportDocument::whole_document_is_one_line_that_ends_with_a_row()
{
    const QByteArray document = document_of("ten_points");
    QCOMPARE(document.count('\n'), 0);
    QVERIFY(document.startsWith("<html><head><style type='text/css'>p.title_row1 {"));
    QVERIFY(document.endsWith("</td></tr>"));
    QCOMPARE(document.count("<table"), 4);
    QCOMPARE(document.count("</table>"), 3);
    for (const char *missing : {"</html>", "<body>", "</body>", "</p>"})
        QCOMPARE(document.count(missing), 0);
    // Of table two, the row before the last but one opens twice and never ends.
    QCOMPARE(document.count("measured and reference values.</td><tr><tr><td"), 1);
    QCOMPARE(document.count("<tr>"), document.count("</tr>") + 2);
}

void ReportDocument::document_of_no_points()
{
    const QByteArray document = document_of("no_points");
    QVERIFY(document.endsWith("<td class='sub_title_row_right_borders'>Max</td></tr>"));
    for (const char *label : {"A<sub>0</sub>(intercept):", "A<sub>1</sub>(Slope):",
                              "R<sup>2</sup>:", "Max Rel Error**:"})
        QVERIFY2(row_of(document, label).contains(centred("nan")), label);
    QCOMPARE(document.count(centred("FAIL")), 3);
    QCOMPARE(document.count(centred("PASS")), 0);
    QVERIFY(row_of(document, "SEE / x <sub>max</sub>").contains(centred("&nbps;")));
    QVERIFY(document.contains("Entered Pts:</td><td align='center'>0</td>"));
}

void ReportDocument::document_of_two_points()
{
    const QByteArray document = document_of("two_points");
    QVERIFY(row_of(document, "SEE:").contains(centred("&nbsp;") + centred("KPA")));
    const QByteArray check = row_of(document, "SEE / x <sub>max</sub>");
    QVERIFY(check.endsWith(centred("&nbsp;") + centred("N/A") + centred("N/A") + centred("1%") +
                           centred("&nbps;") + "</"));
    QCOMPARE(document.count("&nbps;"), 1);
    QCOMPARE(document_of("three_points").count("&nbps;"), 0);
}

void ReportDocument::slope_data()
{
    const auto add = test_columns<QByteArray, QByteArray, QByteArray, QByteArray>(
        "name", "plain", "rounded", "verdict");
    const auto row = [&](const char *name, const char *plain, const char *rounded,
                         const char *verdict) {
        add(plain, QByteArray(name), QByteArray(plain), QByteArray(rounded), QByteArray(verdict));
    };
    row("slope_0_49", "0.49", "0.00", "FAIL");
    row("slope_0_5", "0.5", "1.00", "PASS");
    row("slope_0_98", "0.98", "1.00", "PASS");
    row("slope_1_49", "1.49", "1.00", "PASS");
    row("slope_1_5", "1.5", "2.00", "FAIL");
    row("slope_1_6", "1.6", "2.00", "FAIL");
}

void ReportDocument::slope()
{
    QFETCH(QByteArray, name);
    QFETCH(QByteArray, plain);
    QFETCH(QByteArray, rounded);
    QFETCH(QByteArray, verdict);
    const QByteArray row = row_of(document_of(name.constData()), "a<sub>1</sub>");
    QVERIFY2(row.endsWith(centred(plain.constData()) + centred(rounded.constData()) +
                          centred("0.99") + centred("1.01") + centred(verdict.constData()) + "</"),
             row.constData());
}

void ReportDocument::fahrenheit_shows_its_offset_and_the_channels_units()
{
    const QByteArray document = document_of("fahrenheit");
    QVERIFY(row_of(document, "Unit Zero Offset:").contains(centred("459.69") + centred("deg R")));
    QVERIFY(row_of(document, "Engineering Units:")
                .contains("<td colspan='2' class='all_on_center'>deg_f</td>"));
    // Values as captured, the share of full scale of the absolute maximum.
    QVERIFY(document.contains("<tr>" + centred("1") + centred("14.7%") + centred("100.00000000") +
                              centred("100.40000000")));
}

void ReportDocument::temperature_that_is_not_defined()
{
    const QByteArray with = document_of("three_points");
    const QByteArray without = document_of("no_temperature");
    QVERIFY(
        row_of(without, "Test Cell Temperature:").endsWith(centred("NA") + centred("NA") + "</"));
    QCOMPARE(without.count(centred("NA")), 2);
    QByteArray other = with;
    other.replace(centred("72.5") + centred("DEG_F"), centred("NA") + centred("NA"));
    QCOMPARE(without, other); // the rest of the report is unaffected
}

void ReportDocument::verification_date_data()
{
    const auto row = test_columns<QByteArray, QByteArray, QByteArray>("stamp", "day", "time");
    row("a moment", QByteArray("03/05/2024 14:07:09"), QByteArray("03/05/2024"),
        QByteArray("14:07:09"));
    row("not recorded", QByteArray(), QByteArray(), QByteArray());
    row("no moment", QByteArray("yesterday"), QByteArray(), QByteArray());
    row("no such day", QByteArray("02/30/2024 10:00:00"), QByteArray(), QByteArray());
    row("day and month changed about", QByteArray("2024-03-05 14:07:09"), QByteArray(),
        QByteArray());
}

void ReportDocument::verification_date()
{
    QFETCH(QByteArray, stamp);
    QFETCH(QByteArray, day);
    QFETCH(QByteArray, time);
    const auto content = content_of("three_points");
    content->sources.adjust_calibration_time = stamp;
    const QByteArray document = report_document(content->sources);
    const QByteArray cell = "<td colspan='2' class='all_on_center'>";
    QVERIFY(row_of(document, "Verification Date:").endsWith(cell + day + "</td></"));
    QVERIFY(row_of(document, "Time:").endsWith(cell + time + "</td></"));
}

void ReportDocument::plain_numbers_are_those_of_a_text_stream()
{
    const auto content = content_of("three_points");
    std::mt19937_64 random(1065); // the same values in every run
    std::vector<double> values = {0.0,     -0.0,  123456.5, 1234565.0, 0.0001,
                                  0.00001, 1e6,   999999.5, 100000.0,  1e300,
                                  5e-324,  -1e-7, INFINITY, -INFINITY, std::nan("")};
    std::uniform_real_distribution<double> exponent(-9.0, 9.0);
    for (int i = 0; i < 200; ++i)
        values.push_back(std::pow(10.0, exponent(random)) * (i % 2 == 0 ? 1 : -1));
    for (const double value : values) {
        content->sources.filter_coeff = value;
        QByteArray text;
        QTextStream(&text) << value;
        QVERIFY2(row_of(report_document(content->sources), "Filter Coefficient:")
                     .contains("<td class='all_on_left'>" + text + "</td>"),
                 text.constData());
    }
}

void ReportDocument::bytes_that_are_no_utf_8_stay()
{
    const auto content = content_of("three_points");
    content->sources.channel_label = "5\xb0 \xff<i>";
    std::memcpy(content->table.description, "\xe4\xf6\xfc & \n", 8);
    const QByteArray document = report_document(content->sources);
    QVERIFY(document.contains("<td class='all_on_left'>5\xb0 \xff<i></td>"));
    QVERIFY(document.contains("<td class='all_on_left'>\xe4\xf6\xfc & \n</td>"));
}

void ReportDocument::texts_without_an_end()
{
    const auto content = content_of("three_points");
    std::memset(content->table.sensor_serial_no, 's', sizeof content->table.sensor_serial_no);
    const QByteArray row = row_of(report_document(content->sources), "Sensor Serial No:");
    QVERIFY(row.contains("<td class='all_on_left'>" + QByteArray(32, 's') + "</td>"));
}

void ReportDocument::more_points_than_a_session_holds()
{
    const auto content = content_of("sixty_four_points");
    content->figures.entered_points = 32767;
    const QByteArray document = report_document(content->sources);
    QVERIFY(document.contains("Entered Pts:</td><td align='center'>32767</td>"));
    QVERIFY(document.contains("<tr>" + centred("64")));
    QVERIFY(!document.contains("<tr>" + centred("65")));
}

LOOP_TEST(ReportDocument);
#include "test_reportdocument.moc"
