// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the former report is looked for, and the command that shows it.
#include <ctime>

#include <QDateTime>
#include <QtTest>

#include "reports/linearityreport.h"
#include "reports/previousreport.h"
#include "support/testmain.h"

class PreviousReportPath : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void path_has_table_and_day_of_the_last_calibration();
    void day_is_the_local_one_data();
    void day_is_the_local_one();
    void path_is_the_writers_on_the_day_of_the_calibration();
    void table_that_was_never_calibrated();
    void command_data();
    void command();
};

// Far from UTC, so that the two days differ for most of the time.
void PreviousReportPath::initTestCase()
{
    qputenv("TZ", "XST-14");
    tzset();
}

void PreviousReportPath::path_has_table_and_day_of_the_last_calibration()
{
    TABLE_RECORD table = {};
    qstrncpy(table.table_name, "oil_pressure", sizeof table.table_name);
    for (const QTime &time : {QTime(0, 0), QTime(23, 59, 59)}) {
        table.last_cal_time = QDateTime(QDate(2024, 3, 5), time).toSecsSinceEpoch();
        QCOMPARE(previous_report_path(table),
                 QByteArray("/cell/tables/reports/oil_pressure_03052024.html"));
    }
}

void PreviousReportPath::day_is_the_local_one_data()
{
    const auto row = test_columns<qint64, QByteArray>("seconds", "day");
    row("noon of 5 March in UTC", Q_INT64_C(1709640000), QByteArray("03062024"));
    row("last second of the local day", Q_INT64_C(1709632799), QByteArray("03052024"));
    row("first second of the local day", Q_INT64_C(1709632800), QByteArray("03062024"));
    row("the last second of 31 bits", Q_INT64_C(0x7fffffff), QByteArray("01192038"));
    row("the first of 32 bits", Q_INT64_C(0x80000000), QByteArray("01192038"));
    row("the last of 32 bits", Q_INT64_C(0xffffffff), QByteArray("02072106"));
    row("beyond 32 bits begins anew", Q_INT64_C(0x100000000), QByteArray("01011970"));
    row("before the epoch", Q_INT64_C(-1), QByteArray("02072106"));
}

void PreviousReportPath::day_is_the_local_one()
{
    QFETCH(qint64, seconds);
    QFETCH(QByteArray, day);
    TABLE_RECORD table = {};
    qstrncpy(table.table_name, "one", sizeof table.table_name);
    table.last_cal_time = seconds;
    QCOMPARE(previous_report_path(table), "/cell/tables/reports/one_" + day + ".html");
}

void PreviousReportPath::path_is_the_writers_on_the_day_of_the_calibration()
{
    TABLE_RECORD table = {};
    qstrncpy(table.table_name, "one", sizeof table.table_name);
    table.last_cal_time = QDateTime(QDate(2024, 12, 31), QTime(12, 0)).toSecsSinceEpoch();
    QCOMPARE(previous_report_path(table), permanent_report_path(table, QDate(2024, 12, 31)));
    QVERIFY(previous_report_path(table) != permanent_report_path(table, QDate(2025, 1, 1)));
}

void PreviousReportPath::table_that_was_never_calibrated()
{
    const TABLE_RECORD table = {};
    const QString day = QDateTime::fromSecsSinceEpoch(0).toString("MMddyyyy");
    QCOMPARE(QString(previous_report_path(table)), "/cell/tables/reports/_" + day + ".html");
}

void PreviousReportPath::command_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("path", "command");
    const QByteArray long_path(250, 'a');
    row("plain", QByteArray("/a/b_c.html"), QByteArray("firefox /a/b_c.html"));
    row("quoted", QByteArray("/a b"), QByteArray("firefox '/a b'"));
    row("quote within", QByteArray("/it's"), QByteArray("firefox '/it'\\''s'"));
    row("fits in 200 bytes", long_path.left(191), QByteArray("firefox " + long_path.left(191)));
    row("longer is cut", long_path, QByteArray("firefox " + long_path.left(191)));
    row("quoted stays whole", QByteArray(" " + long_path),
        QByteArray("firefox ' " + long_path + "'"));
}

void PreviousReportPath::command()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, command);
    QCOMPARE(browser_command(path), command);
}

PLAIN_TEST(PreviousReportPath);
#include "test_previousreport.moc"
