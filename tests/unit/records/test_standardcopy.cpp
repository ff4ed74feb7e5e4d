// SPDX-License-Identifier: GPL-3.0-or-later
//
// The report's copy of a working standard, and what makes one complete.
#include <array>
#include <cstddef>
#include <cstring>

#include <QDir>
#include <QtTest>

#include "records/workingstandard.h"
#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testmain.h"

// Six texts of 80 bytes, the name first.
static_assert(offsetof(LINE_RPT, ws_make) == offsetof(LINE_RPT, ws_qie_number) + 80, "make");
static_assert(offsetof(LINE_RPT, ws_model) == offsetof(LINE_RPT, ws_make) + 80, "model");
static_assert(offsetof(LINE_RPT, ws_cal_date) == offsetof(LINE_RPT, ws_model) + 80, "date");
static_assert(offsetof(LINE_RPT, ws_serial_no) == offsetof(LINE_RPT, ws_cal_date) + 80, "serial");
static_assert(offsetof(LINE_RPT, ws_range) == offsetof(LINE_RPT, ws_serial_no) + 80, "range");

namespace
{

using Six = std::array<QString, 6>;

WorkingStandard standard_of(const Six &texts)
{
    return {texts[0], texts[1], texts[2], texts[3], texts[4], texts[5]};
}

const Six DEAD_WEIGHT = {"DW-12", "Pascal & Sons", "P 3000", "03/14/2026", "SN 77", "0 to 100 kPa"};

} // namespace

class WorkingStandardCopy : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void complete_data();
    void complete();
    void report_takes_the_six_texts();
    void report_cuts_at_80_bytes();
};

void WorkingStandardCopy::complete_data()
{
    QTest::addColumn<int>("empty");
    const char *const names[] = {"name",          "make", "model", "calibration date",
                                 "serial number", "range"};
    for (int i = 0; i < 6; ++i)
        QTest::newRow(names[i]) << i;
}

void WorkingStandardCopy::complete()
{
    QFETCH(int, empty);
    Six texts = DEAD_WEIGHT;
    QVERIFY(is_complete(standard_of(texts)));
    texts[static_cast<std::size_t>(empty)].clear();
    QVERIFY(!is_complete(standard_of(texts)));
    texts[static_cast<std::size_t>(empty)] = " "; // a blank is a text
    QVERIFY(is_complete(standard_of(texts)));
}

void WorkingStandardCopy::report_takes_the_six_texts()
{
    LINE_RPT report = {};
    store_working_standard(standard_of(DEAD_WEIGHT), &report);
    QCOMPARE(report.ws_qie_number, "DW-12");
    QCOMPARE(report.ws_make, "Pascal & Sons");
    QCOMPARE(report.ws_model, "P 3000");
    QCOMPARE(report.ws_cal_date, "03/14/2026");
    QCOMPARE(report.ws_serial_no, "SN 77");
    QCOMPARE(report.ws_range, "0 to 100 kPa");
    LINE_RPT untouched = report;
    std::memset(untouched.ws_qie_number, 0, 6 * sizeof untouched.ws_qie_number);
    const LINE_RPT zero = {};
    QVERIFY(std::memcmp(&untouched, &zero, sizeof zero) == 0);
    store_working_standard({}, &report);
    QCOMPARE(report.ws_make, "");
}

void WorkingStandardCopy::report_cuts_at_80_bytes()
{
    LINE_RPT report = {};
    const HostLog log;
    WorkingStandard standard = standard_of(DEAD_WEIGHT);
    standard.make = QString(79, 'm');
    standard.model = QString(200, 'n');
    standard.range = QString(78, 'r') + QString::fromUtf8("\xc2\xb0"
                                                          "C"); // byte 79 is half a sign
    store_working_standard(standard, &report);
    QCOMPARE(QByteArray(report.ws_make), QByteArray(79, 'm'));
    QCOMPARE(QByteArray(report.ws_model), QByteArray(79, 'n'));
    QCOMPARE(QByteArray(report.ws_range), QByteArray(78, 'r'));
    QCOMPARE(report.ws_cal_date, "03/14/2026");
    QCOMPARE(log.count_containing("text longer than 79 bytes cut"), 2);
    // The file keeps what the report loses.
    QVERIFY(QDir().mkpath(WORKING_STANDARD_FOLDER));
    write_working_standard(standard);
    QCOMPARE(read_working_standard("DW-12")->model, QString(200, 'n'));
}

LOOP_TEST(WorkingStandardCopy);
#include "test_standardcopy.moc"
