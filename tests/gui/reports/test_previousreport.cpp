// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the window does about a former report, and about a specs file that it
// cannot read. A script named firefox takes the browser's place.
#include <csignal>
#include <cstdio>
#include <ctime>

#include <QAction>
#include <QDir>
#include <QTemporaryDir>

#include "gui/frame/testwindow.h"
#include "gui/records/specsrecord.h"
#include "support/testmain.h"

namespace
{

const QString REPORTS = "/cell/tables/reports/";
const QString CALLED = "/ram/called";

void set_table(const char *name, const QDate &day)
{
    qstrncpy(g_cfg->table.table_name, name, sizeof g_cfg->table.table_name);
    g_cfg->table.last_cal_time = QDateTime(day, QTime(12, 0)).toSecsSinceEpoch();
}

} // namespace

class PreviousReport : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();
    void cleanupTestCase() { m_it.reset(); }
    void action_is_never_shown();
    void no_report();
    void report_of_another_day_is_not_found();
    void report_is_given_to_the_browser();
    void window_waits_for_the_browser();
    void name_that_a_shell_would_interpret_data();
    void name_that_a_shell_would_interpret();
    void browser_that_is_missing_or_fails_is_not_noticed_data();
    void browser_that_is_missing_or_fails_is_not_noticed();
    void shell_that_cannot_be_started_is_told();
    void specs_file_is_read_into_the_record();
    void specs_file_that_cannot_be_read_is_told();

private:
    void browser(const QByteArray &script);
    void trigger();

    std::unique_ptr<TestWindow> m_it;
    std::unique_ptr<QTemporaryDir> m_programs;
    QByteArray m_path;
};

void PreviousReport::initTestCase()
{
    m_path = qgetenv("PATH");
    m_it = std::make_unique<TestWindow>();
}

void PreviousReport::init()
{
    std::memset(g_specs, 0, sizeof *g_specs);
    QFile::remove(SPECS_FILE);
    QFile::remove(CALLED);
    QDir(REPORTS).removeRecursively();
    QVERIFY(QDir().mkpath(REPORTS));
    m_programs = std::make_unique<QTemporaryDir>();
    set_table("one", QDate(2024, 3, 5));
}

void PreviousReport::cleanup()
{
    qputenv("PATH", m_path);
    m_programs.reset();
}

// Only this folder is searched, so that no browser of the machine starts.
void PreviousReport::browser(const QByteArray &script)
{
    qputenv("PATH", m_programs->path().toLocal8Bit());
    if (script.isEmpty())
        return;
    const QString path = m_programs->filePath("firefox");
    write_file(path, "#!/bin/sh\n" + script + '\n');
    QVERIFY(QFile::setPermissions(path, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner));
}

// By the action's own signal, since an action out of sight answers to nothing.
void PreviousReport::trigger()
{
    emit m_it->form->actionView_Previous_Calibration_Report->triggered();
}

// Enabled by the binding, which shows as soon as it is made visible.
void PreviousReport::action_is_never_shown()
{
    QAction *const action = m_it->form->actionView_Previous_Calibration_Report;
    const auto enabled_once_visible = [action] {
        action->setVisible(true);
        const bool enabled = action->isEnabled();
        action->setVisible(false);
        return enabled;
    };
    QVERIFY(!action->isVisible());
    QVERIFY(!enabled_once_visible());
    m_it->pick(0);
    QVERIFY(!action->isVisible());
    QVERIFY(enabled_once_visible());
}

void PreviousReport::no_report()
{
    browser("echo called >/ram/called");
    BoxAnswerer answerer;
    answerer.expect("No Previous Report", "No Previous Calibration Report Exists");
    trigger();
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(answerer.met()[0].buttons, QStringList{"OK"});
    QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met()[0]));
    QVERIFY(!QFile::exists(CALLED));
}

// The writer names a report after its own day, the viewer looks for the day of
// the calibration.
void PreviousReport::report_of_another_day_is_not_found()
{
    write_file(REPORTS + "one_03062024.html", "report");
    browser("echo called >/ram/called");
    BoxAnswerer answerer;
    answerer.expect("No Previous Report", "No Previous Calibration Report Exists");
    trigger();
    QCOMPARE(answerer.met().size(), 1);
    QVERIFY(!QFile::exists(CALLED));
}

void PreviousReport::report_is_given_to_the_browser()
{
    write_file(REPORTS + "one_03052024.html", "report");
    browser("printf '%s\\n' \"$#\" \"$@\" >/ram/arguments");
    const BoxAnswerer answerer;
    trigger();
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(read_file("/ram/arguments"),
             QByteArray("1\n/cell/tables/reports/one_03052024.html\n"));
}

// What it leaves last is there when the slot returns.
void PreviousReport::window_waits_for_the_browser()
{
    write_file(REPORTS + "one_03052024.html", "report");
    browser("/bin/sleep 0.3; echo closed >/ram/closed");
    trigger();
    QCOMPARE(read_file("/ram/closed"), QByteArray("closed\n"));
}

void PreviousReport::name_that_a_shell_would_interpret_data()
{
    QTest::addColumn<QByteArray>("name");
    QTest::newRow("blank") << QByteArray("oil pressure");
    QTest::newRow("command") << QByteArray("a;echo x >injected");
    QTest::newRow("substitution") << QByteArray("$(exit)`exit`");
    QTest::newRow("quotes") << QByteArray("it's \"so\"");
    QTest::newRow("background") << QByteArray("a&b|c<d>e");
    QTest::newRow("pattern") << QByteArray("*?[a]~#!");
    QTest::newRow("UTF-8") << QByteArray("Öldruck");
    QTest::newRow("no UTF-8") << QByteArray("druck\xd6l\xff");
    QTest::newRow("many quotes") << QByteArray(79, '\'');
}

void PreviousReport::name_that_a_shell_would_interpret()
{
    QFETCH(QByteArray, name);
    set_table(name.constData(), QDate(2024, 3, 5));
    const QByteArray path = REPORTS.toLatin1() + name + "_03052024.html";
    // By its bytes, which no QString can hold for all of the rows.
    std::FILE *const report = std::fopen(path.constData(), "we");
    QVERIFY(report != nullptr);
    std::fclose(report);
    browser("printf '%s\\n' \"$#\" \"$@\" >/ram/arguments");
    const BoxAnswerer answerer;
    trigger();
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(read_file("/ram/arguments"), "1\n" + path + '\n');
}

void PreviousReport::browser_that_is_missing_or_fails_is_not_noticed_data()
{
    QTest::addColumn<QByteArray>("script");
    QTest::newRow("missing") << QByteArray();
    QTest::newRow("fails") << QByteArray("exit 1");
    QTest::newRow("killed") << QByteArray("kill -9 $$");
    QTest::newRow("status 255") << QByteArray("exit 255");
}

void PreviousReport::browser_that_is_missing_or_fails_is_not_noticed()
{
    QFETCH(QByteArray, script);
    write_file(REPORTS + "one_03052024.html", "report");
    browser(script);
    const BoxAnswerer answerer;
    trigger();
    QVERIFY(answerer.met().isEmpty());
}

// A child whose end nobody hears of is one that system() could not start.
void PreviousReport::shell_that_cannot_be_started_is_told()
{
    write_file(REPORTS + "one_03052024.html", "report");
    browser("exit 0");
    BoxAnswerer answerer;
    answerer.expect("Error", "Error displaying previous calibration report");
    const auto former = std::signal(SIGCHLD, SIG_IGN);
    trigger();
    std::signal(SIGCHLD, former);
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(answerer.met()[0].buttons, QStringList{"OK"});
    QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met()[0]));
}

void PreviousReport::specs_file_is_read_into_the_record()
{
    write_file(SPECS_FILE, "@ROOM_TEMP_KEYWORD\nT\n@BAROMETER_KEYWORD\nB\n@HUMIDITY_KEYWORD\nH\n"
                           "@REPORT_EMAIL_LIST_KEYWORD\na@cell\n");
    const BoxAnswerer answerer;
    m_it->window->read_specs_file();
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(g_specs->temperature_var_name, "T");
    QCOMPARE(g_specs->barometer_var_name, "B");
    QCOMPARE(g_specs->humidity_var_name, "H");
    QCOMPARE(g_specs->report_email_count, 1);
    QCOMPARE(g_specs->report_email[0], "a@cell");
}

void PreviousReport::specs_file_that_cannot_be_read_is_told()
{
    const HostLog log;
    BoxAnswerer answerer;
    answerer.expect("Unable to open ini file",
                    "Cannot read file - /cell/zerl_util_specs.ini - to obtain\n\n"
                    "- Environment variable names for:\n     Temperature\n     Barometer\n"
                    "     Humidity\n\n- Report email addresses\n"
                    "     to receive 1065 Linearity Report\n\n",
                    "Proceed");
    m_it->window->read_specs_file();
    const MetBox &box = answerer.met()[0];
    QCOMPARE(box.buttons, QStringList{"Proceed"});
    QCOMPARE(box.icon, QMessageBox::Information);
    QVERIFY(BoxAnswerer::has_title_bar_only(box));
    QCOMPARE(log.count("zerl_util - unable to open the ini file </cell/zerl_util_specs.ini>"), 1);
    QCOMPARE(QByteArray(g_specs->temperature_var_name), QByteArray());
    QCOMPARE(g_specs->report_email_count, 0);
}

WINDOW_TEST(PreviousReport);
#include "test_previousreport.moc"
