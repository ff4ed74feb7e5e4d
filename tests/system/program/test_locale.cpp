// SPDX-License-Identifier: GPL-3.0-or-later
//
// The programs on a desktop whose numbers have a decimal comma and points
// between the thousands: every number that they show or write has a decimal
// point and no groups.
#include <QDir>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

#include "support/cellfiles.h"
#include "support/testcell.h"
#include "support/testmain.h"
#include "system/program/testprogram.h"

namespace
{

// Axes in the thousands below and in fractions beside; no number is whole.
const QByteArray DESCRIPTION = R"(cell "Test Cell"
host testhost
channel 0
  label "Channel Zero"
  units kPa
  table zero
  input kPa 0.25 1.5
  response linear 50
  record INTERP
  points 0.5:0.25 2500.25:0.75 9000.75:1.5
  sensor kPa 0.25 1.5 MODEL0 SERIAL0
  description "Table zero"
  mua none
)";

} // namespace

class ProgramLocale : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void locale_has_a_comma();
    void title_and_row_have_points();
    void axes_have_points_and_no_groups();
    void dump_of_the_regression_has_points();
    void stamp_and_record_have_their_form();
    void rebuild_reads_and_writes_points();
    void cell_takes_and_tells_points();
    void panel_shows_points();

private:
    QByteArray output(const QString &program, const QStringList &arguments);

    QTemporaryDir m_locales;
    QProcessEnvironment m_environment = QProcessEnvironment::systemEnvironment();
    std::unique_ptr<TestCell> m_cell;
    TestProgram m_program;
};

// What a program prints under the locale; what it says on standard error, or a
// failure, comes behind it.
QByteArray ProgramLocale::output(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessEnvironment(m_environment);
    process.start(program, arguments);
    if (!process.waitForFinished(DEADLINE_MS))
        return "does not end";
    const QByteArray text = process.readAllStandardOutput() + process.readAllStandardError();
    return process.exitCode() == 0 ? text : text + " failed";
}

void ProgramLocale::initTestCase()
{
    const QByteArray said =
        output("localedef", {"-i", "de_DE", "-f", "UTF-8", m_locales.filePath("de_DE.UTF-8")});
    QVERIFY2(QFile::exists(m_locales.filePath("de_DE.UTF-8/LC_NUMERIC")),
             said + "; the package locales is needed");
    m_environment.insert("LOCPATH", m_locales.path());
    m_environment.insert("LC_ALL", "de_DE.UTF-8");
    m_environment.insert("LANG", "de_DE.UTF-8");
    for (const char *name : {"LOCPATH", "LC_ALL", "LANG"}) {
        m_program.set(name, m_environment.value(name));
        qputenv(name, m_environment.value(name).toUtf8()); // for the cell
    }
    m_cell = std::make_unique<TestCell>(DESCRIPTION);
    QVERIFY2(m_cell->start(), qPrintable(m_cell->error()));
    QVERIFY(m_cell->mv(0, 1234.5));
    QVERIFY(m_program.start());
    QVERIFY(m_program.wait_for_window());
    QVERIFY(m_program.send({"pick", "0"}));
    // The first reading is that of the first pass: until then it is 0.
    QTRY_VERIFY_WITH_TIMEOUT(m_program.ask({"title"}).contains(QRegularExpression("1234.5")),
                             DEADLINE_MS);
}

void ProgramLocale::cleanupTestCase()
{
    m_program.terminate();
    QCOMPARE(m_program.wait_for_end(), 0);
    QVERIFY2(m_cell->stop(), qPrintable(m_cell->error()));
}

// Without this the others would show nothing.
void ProgramLocale::locale_has_a_comma()
{
    QCOMPARE(output("locale", {"-k", "decimal_point", "thousands_sep"}),
             QByteArray("decimal_point=\",\"\nthousands_sep=\".\"\n"));
    QCOMPARE(QLocale("de_DE").toString(1234.5), QString("1.234,5"));
}

void ProgramLocale::title_and_row_have_points()
{
    const QRegularExpression title("^Current Point: 1234\\.5000 /  0\\.\\d{4}$");
    const QString shown = m_program.ask({"title"});
    QVERIFY2(title.match(shown).hasMatch(), qPrintable(shown));
    QCOMPARE(m_program.get("lblMillivolts"), QString("  0.5000"));
    QCOMPARE(m_program.get("txtCurrentValue"), QString("  0.2500"));
}

void ProgramLocale::axes_have_points_and_no_groups()
{
    const QRegularExpression scaled("8\\D?000");
    QTRY_VERIFY_WITH_TIMEOUT(m_program.ask({"axis", "x"}).contains(scaled), DEADLINE_MS);
    const QString x = m_program.ask({"axis", "x"});
    QCOMPARE(QRegularExpression("^\\d+( \\d+)+$").match(x).captured(), x);
    const QString y = m_program.ask({"axis", "y"});
    QVERIFY2(y.contains('.') && !y.contains(','), qPrintable(y));
}

// Written for every opening, with the C library's conversions.
void ProgramLocale::dump_of_the_regression_has_points()
{
    QVERIFY(m_program.send({"trigger", "actionCal_Statistics_Chart"}));
    QVERIFY(m_program.next_box().endsWith('|'));
    QVERIFY(m_program.send({"reject"}));
    const QStringList dumps = QDir("/ram").entryList({"zero*.html"});
    QCOMPARE(dumps.size(), 1);
    const QByteArray text = read_file("/ram/" + dumps.first());
    QVERIFY2(text.contains("D5  - xmin = 0.000000\n"), text);
    QVERIFY2(!text.contains(','), text);
}

void ProgramLocale::stamp_and_record_have_their_form()
{
    QVERIFY(m_program.send({"type", "txtTechnicianName", "J. Doe"}));
    QVERIFY(m_program.send({"type", "txtCalibrationQIE", "DWT-12"}));
    QVERIFY(m_program.send({"click", "btnRecordData"}));
    QVERIFY(m_program.next_box().startsWith("Warning|"));
    QVERIFY(m_program.press("Yes"));
    QVERIFY(m_program.next_box().startsWith("Record Calibration Data"));
    QVERIFY(m_program.send({"click", "rbAsFound"}));
    QVERIFY(m_program.send({"click", "btnRecord"}));
    const QRegularExpression form("^\\d{2}/\\d{2}/\\d{4} \\d{2}:\\d{2}:\\d{2}$");
    QTRY_VERIFY_WITH_TIMEOUT(form.match(m_program.get("txtAsFound")).hasMatch(), DEADLINE_MS);
    const QByteArray archive =
        output(PROJECT_BINARY_DIR "/bin/vxtable", {"list", "/cell/tables/zero.save"});
    QVERIFY2(archive.contains("As-Found"), archive);
    QVERIFY2(read_file("/cell/tables/zero.save").contains(" 9000.75 "), archive);
    QVERIFY(!archive.endsWith("failed"));
}

void ProgramLocale::rebuild_reads_and_writes_points()
{
    const QByteArray before = read_file("/cell/tables/zero.tbl");
    QCOMPARE(output(PROJECT_BINARY_DIR "/bin/bld_tables", {}), QByteArray());
    QCOMPARE(read_file("/cell/tables/zero.tbl"), before);
    const QByteArray shown =
        output(PROJECT_BINARY_DIR "/bin/vxtable", {"show", "/cell/tables/zero.tbl"});
    QVERIFY2(shown.contains("9000.75"), shown);
}

void ProgramLocale::cell_takes_and_tells_points()
{
    const QString cellctl = PROJECT_BINARY_DIR "/bin/cellctl";
    QCOMPARE(output(cellctl, {"mv", "0", "2345.25"}), QByteArray());
    const QByteArray list = output(cellctl, {"list"});
    QVERIFY2(list.contains(" 2345.250000 "), list);
    QVERIFY(m_cell->mv(0, 1234.5));
}

// Within a program of the toolkit, which takes up the user's locale.
void ProgramLocale::panel_shows_points()
{
    TestProgram panel;
    panel.run_instead(PROJECT_BINARY_DIR "/bin/cellpanel");
    for (const char *name : {"LOCPATH", "LC_ALL", "LANG"})
        panel.set(name, m_environment.value(name));
    QVERIFY(panel.start());
    QVERIFY(panel.wait_for_window());
    QTRY_VERIFY_WITH_TIMEOUT(panel.get("lblRange").contains(" to "), DEADLINE_MS);
    QCOMPARE(panel.get("lblRange"), QString("0.25 to 1.5:"));
    QVERIFY(panel.send({"click", "btn50"}));
    QTRY_COMPARE_WITH_TIMEOUT(panel.get("spinApplied", "value"), QString("0.875"), DEADLINE_MS);
    const QString shown = panel.get("spinApplied");
    QVERIFY2(shown.contains("0.875") && !shown.contains(','), qPrintable(shown));
    std::vector<cell::ChannelState> channels;
    QVERIFY(m_cell->client().list(&channels));
    QCOMPARE(channels.at(0).applied, 0.875);
    QVERIFY(panel.send({"close"}));
    QCOMPARE(panel.wait_for_end(), 0);
}

LOOP_TEST(ProgramLocale);
#include "test_locale.moc"
