// SPDX-License-Identifier: GPL-3.0-or-later
//
// Names and dates of the reports on a desktop whose language has digits of its
// own.
#include <QLocale>

#include "reports/linearitydump.h"
#include "reports/linearityreport.h"
#include "support/testmain.h"
#include "unit/reports/reportcontent.h"

class LocalDigits : public QObject
{
    Q_OBJECT

private slots:
    void desktop_has_digits_of_its_own();
    void name_of_the_dump();
    void name_of_a_permanent_report();
    void dates_of_the_document();
    void figures_of_the_document();
};

// Without this the others would show nothing.
void LocalDigits::desktop_has_digits_of_its_own()
{
    QVERIFY(QLocale::system().zeroDigit() != QLatin1Char('0'));
    QVERIFY(QDate(2024, 3, 5).toString("MMddyyyy") != QString("03052024"));
}

void LocalDigits::name_of_the_dump()
{
    QCOMPARE(linearity_dump_path("oil", QDateTime({2024, 3, 5}, {14, 7, 9})),
             QByteArray("/ram/oil03052024140709.html"));
}

void LocalDigits::name_of_a_permanent_report()
{
    TABLE_RECORD table = {};
    qstrncpy(table.table_name, "oil", sizeof table.table_name);
    QCOMPARE(permanent_report_path(table, QDate(2024, 3, 5)),
             QByteArray("/cell/tables/reports/oil_03052024.html"));
}

void LocalDigits::dates_of_the_document()
{
    const auto content = content_of("three_points");
    content->table.last_cal_time = QDateTime({2024, 3, 4}, {12, 0}).toSecsSinceEpoch();
    const QByteArray document = report_document(content->sources);
    const QByteArray cell = "<td colspan='2' class='all_on_center'>";
    QVERIFY(row_of(document, "Verification Date:").endsWith(cell + "03/05/2024</td></"));
    QVERIFY(row_of(document, "Time:").endsWith(cell + "14:07:09</td></"));
    QVERIFY(row_of(document, "Last Verification Date:")
                .contains("<td class='all_on_left'>03/04/2024</td>"));
}

void LocalDigits::figures_of_the_document()
{
    QCOMPARE(document_of("ten_points"), linearity_file("ten_points.html"));
}

static int run(int argc, char **argv)
{
    // Before Qt looks; the language needs no support of the C library.
    qputenv("LC_ALL", "ar_EG.UTF-8");
    qputenv("TZ", "UTC");
    const QCoreApplication application(argc, argv);
    LocalDigits test;
    return QTest::qExec(&test, argc, argv);
}
TEST_WITH_MAIN(run);
#include "test_localdigits.moc"
