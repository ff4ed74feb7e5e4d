// SPDX-License-Identifier: GPL-3.0-or-later
//
// Table files that no program should meet: the channel comes up without a
// table, the log tells file and line, and the file stays as it is until data is
// recorded.
#include <QRegularExpression>
#include <QtTest>

#include "support/cellfiles.h"
#include "support/hostlog.h"
#include "support/testcell.h"
#include "support/testmain.h"
#include "system/program/testprogram.h"

namespace
{
const QString TABLE = QStringLiteral("/cell/tables/zero.tbl");
const QString ARCHIVE = QStringLiteral("/cell/tables/zero.save");
} // namespace

class ProgramTables : public QObject
{
    Q_OBJECT

private slots:
    void bad_table_data();
    void bad_table();
    void bad_archive_leaves_the_table_in_force();
};

void ProgramTables::bad_table_data()
{
    QTest::addColumn<QByteArray>("change");
    QTest::newRow("missing") << QByteArray("missing");
    QTest::newRow("empty") << QByteArray("empty");
    QTest::newRow("foreign text") << QByteArray("foreign");
    QTest::newRow("bytes of no text") << QByteArray("binary");
    QTest::newRow("truncated") << QByteArray("truncated");
    QTest::newRow("one digit changed") << QByteArray("digit");
    QTest::newRow("a number of points beyond all reason") << QByteArray("absurd");
}

void ProgramTables::bad_table()
{
    QFETCH(QByteArray, change);
    clear_cell();
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    QByteArray bytes = read_file(TABLE);
    QVERIFY(bytes.contains("3750"));
    if (change == "empty")
        bytes.clear();
    else if (change == "foreign")
        bytes = "<html>\n<body>A page, not a table</body>\n</html>\n";
    else if (change == "binary")
        bytes = QByteArray(5000, '\xff') + QByteArray(5000, '\0');
    else if (change == "truncated")
        bytes.truncate(bytes.size() / 2);
    else if (change == "digit")
        bytes.replace("3750", "3751");
    else if (change == "absurd")
        bytes.replace("num_points 5", "num_points 5000000");
    if (change == "missing")
        QVERIFY(QFile::remove(TABLE));
    else
        write_file(TABLE, bytes);

    const HostLog log;
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.wait_for_window());
    QVERIFY(program.send({"pick", "0"}));
    // An empty record has no sensor range: the table information opens.
    QVERIFY(program.next_box().startsWith(QLatin1String("Update Data|")));
    QVERIFY(program.press(QStringLiteral("OK")));
    QCOMPARE(program.next_box(), QStringLiteral("Transducer Calibration Configuration|"));
    QCOMPARE(program.get(QStringLiteral("txtDescription")), QStringLiteral("No Description"));
    QVERIFY(program.send({"reject"}));
    QTRY_COMPARE_WITH_TIMEOUT(
        program.get(QStringLiteral("cboCurrentChannel"), QStringLiteral("currentText")),
        QStringLiteral("Select A Channel"), 120000);
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);

    bool named = false;
    for (const LoggedEntry &entry : log.entries())
        named = named || (entry.text.contains(TABLE) && !entry.source.isEmpty() && entry.line > 0);
    QVERIFY2(named, qPrintable(log.texts().join(QLatin1Char('\n'))));
    if (change != "missing" && change != "empty") {
        // "FILE:LINE" of the table itself.
        QVERIFY2(!log.texts().filter(QRegularExpression(TABLE + QStringLiteral(":\\d+"))).isEmpty(),
                 qPrintable(log.texts().join(QLatin1Char('\n'))));
    }
    QCOMPARE(QFile::exists(TABLE), change != "missing");
    if (change != "missing")
        QCOMPARE(read_file(TABLE), bytes); // nothing is overwritten
    QVERIFY(!QFile::exists(ARCHIVE));
    QVERIFY2(cell.stop(), qPrintable(cell.error()));
}

void ProgramTables::bad_archive_leaves_the_table_in_force()
{
    clear_cell();
    TestCell cell(TestCell::simple_description());
    QVERIFY2(cell.start(), qPrintable(cell.error()));
    const QByteArray torn = read_file(TABLE).left(300);
    write_file(ARCHIVE, torn);
    const HostLog log;
    TestProgram program;
    QVERIFY(program.start());
    QVERIFY(program.wait_for_window());
    QVERIFY(program.send({"pick", "0"}));
    QCOMPARE(program.get(QStringLiteral("lblTableName")), QStringLiteral("zero"));
    QCOMPARE(program.get(QStringLiteral("txtNumPoints")), QStringLiteral("5"));
    program.terminate();
    QCOMPARE(program.wait_for_end(), 0);
    QVERIFY(log.count_containing(ARCHIVE) > 0);
    QCOMPARE(read_file(ARCHIVE), torn);
    QVERIFY2(cell.stop(), qPrintable(cell.error()));
}

LOOP_TEST(ProgramTables);
#include "test_tables.moc"
