// SPDX-License-Identifier: GPL-3.0-or-later
//
// What no control of the window reaches: the dialogs of the supporting records,
// the one that asks what becomes of a report, and the linearity report of the
// calibration that has just been finished. They are part of the program and are
// called here as a caller would.
#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QInputDialog>
#include <QLabel>
#include <QProcess>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>

#include "frame/mainwindow.h"
#include "frame/zerl_cfg.h"
#include "records/environmentdialog.h"
#include "records/measurementsystemdialog.h"
#include "records/workingstandarddialog.h"
#include "reports/linearityreport.h"
#include "reports/reportdialog.h"
#include "tests/tour/stops.h"
#include "tests/tour/technician.h"

using namespace tour;

namespace
{

constexpr char REPORT[] = "/tmp/zerl_util_line_rpt.html";

QByteArray content_of(Driver &driver, const char *path)
{
    QFile file(QString::fromLatin1(path));
    driver.check(file.open(QIODevice::ReadOnly), file.fileName());
    return file.readAll();
}

void type(Driver &driver, QWidget *dialog, const char *field, const QString &text)
{
    auto *line = driver.find<QLineEdit>(field, dialog);
    line->setFocus();
    line->selectAll();
    QTest::keyClick(line, Qt::Key_Delete);
    QTest::keyClicks(line, text);
}

void show_environment(Driver &driver)
{
    const auto press_ok = [&](QWidget *dialog) {
        driver.press(driver.find<QPushButton>("btnOK", dialog));
    };
    driver.with_dialog([&] { EnvironmentDialog(driver.window()).exec(); },
                       [&](QWidget *dialog) {
                           driver.check(driver.find<QLineEdit>("txtTempName", dialog)->text() ==
                                            QLatin1String("CELL_TEMP"),
                                        QStringLiteral("the specs file has been read"));
                           driver.picture(QStringLiteral("environment-variables"));
                           type(driver, dialog, "tmpBaroName", QString());
                           driver.answer([&] { press_ok(dialog); }, QStringLiteral("-"),
                                         QStringLiteral("OK"),
                                         QStringLiteral("environment-variables-incomplete"));
                           type(driver, dialog, "tmpBaroName", QStringLiteral("CELL_BARO"));
                           press_ok(dialog);
                       });
}

void add_address(Driver &driver, QWidget *dialog, const QString &address, const QString &picture)
{
    driver.with_dialog(
        [&] { driver.press(driver.find<QPushButton>("btnAddEmailAddress", dialog)); },
        [&](QWidget *asked) {
            auto *line = asked->findChild<QLineEdit *>();
            QTest::keyClicks(line, address);
            if (!picture.isEmpty())
                driver.picture(picture);
            QTest::keyClick(line, Qt::Key_Return);
        });
}

void show_report_actions(Driver &driver)
{
    driver.with_dialog([&] { ReportDialog(driver.window(), true).exec(); },
                       [&](QWidget *dialog) {
                           driver.picture(QStringLiteral("report-actions"));
                           auto *email = driver.find<QCheckBox>("chkEmail", dialog);
                           email->setFocus();
                           QTest::keyClick(email, Qt::Key_Space);
                           add_address(driver, dialog, QStringLiteral("lab@cell.example"),
                                       QStringLiteral("report-address"));
                           add_address(driver, dialog, QStringLiteral("qa@cell.example"),
                                       QString());
                           driver.picture(QStringLiteral("report-actions-email"));
                           driver.press(driver.find<QPushButton>("btnOk", dialog));
                       });
}

// Without a file yet: its name is fixed, and every field has to be filled in.
void enter_new_standard(Driver &driver)
{
    const struct {
        const char *field;
        const char *text;
    } entries[] = {{"txtWSMake", "Deadweight"},
                   {"txtWSModel", "DWT-30"},
                   {"txtWSCalDate", "2024-02-01"},
                   {"txtWSSerialNo", "10581"},
                   {"txtWSRange", "0 to 3000 kPa"}};
    QLineEdit name(QStringLiteral("DWT-30"));
    driver.with_dialog([&] { WorkingStandardDialog(&name, driver.window()).exec(); },
                       [&](QWidget *dialog) {
                           auto *ok = driver.find<QPushButton>("btnWSOK", dialog);
                           driver.picture(QStringLiteral("new-working-standard"));
                           driver.answer([&] { driver.press(ok); }, QStringLiteral("-"),
                                         QStringLiteral("OK"),
                                         QStringLiteral("working-standard-incomplete"));
                           for (const auto &entry : entries)
                               type(driver, dialog, entry.field, QLatin1String(entry.text));
                           driver.press(ok);
                       });
    driver.check(content_of(driver, "/specs/working_standards/DWT-30.txt") ==
                     "# Information for working standard - DWT-30\n@WS_MAKE_KEYWORD\nDeadweight\n"
                     "@WS_MODEL_KEYWORD\nDWT-30\n@WS_CAL_DATE_KEYWORD\n2024-02-01\n"
                     "@WS_SERIAL_NO_KEYWORD\n10581\n@WS_RANGE_KEYWORD\n0 to 3000 kPa\n",
                 QStringLiteral("the new standard has its file"));
}

// As the cell has it: nothing is left to type, and its file stays as it is.
void show_working_standard(Driver &driver)
{
    constexpr char path[] = "/specs/working_standards/DWT-12.txt";
    const QByteArray before = content_of(driver, path);
    QLineEdit name(QStringLiteral("DWT-12"));
    driver.with_dialog([&] { WorkingStandardDialog(&name, driver.window()).exec(); },
                       [&](QWidget *dialog) {
                           driver.check(driver.find<QLineEdit>("txtWSRange", dialog)->text() ==
                                            QLatin1String("0 to 1400 kPa"),
                                        QStringLiteral("the standard's file has been read"));
                           driver.picture(QStringLiteral("working-standard"));
                           driver.press(driver.find<QPushButton>("btnWSOK", dialog));
                       });
    driver.check(content_of(driver, path) == before,
                 QStringLiteral("what was read is written again"));
}

void show_measurement_system(Driver &driver)
{
    driver.with_dialog(
        [&] { MeasurementSystemDialog(driver.window()).exec(); },
        [&](QWidget *dialog) {
            auto *ok = driver.find<QPushButton>("btnOK", dialog);
            const QString largest = driver.find<QLineEdit>("txtMaxExpVal", dialog)->text();
            driver.picture(QStringLiteral("measurement-system"));
            type(driver, dialog, "txtMaxExpVal", QStringLiteral("a lot"));
            driver.answer([&] { driver.press(ok); }, QStringLiteral("-"), QStringLiteral("OK"),
                          QStringLiteral("expected-value-refused"));
            type(driver, dialog, "txtMaxExpVal", largest);
            driver.press(ok);
        });
}

// Browser and the arguments that have it write a picture of a page.
struct Browser {
    QString program;
    QStringList arguments;
};

Browser headless_browser(const QString &picture, const QString &profile)
{
    const QString url = QStringLiteral("file://") + QLatin1String(REPORT);
    const QString size = QStringLiteral("--window-size=1100,1300");
    const QString chromium = QStandardPaths::findExecutable(QStringLiteral("chromium"));
    if (!chromium.isEmpty())
        return {chromium,
                {QStringLiteral("--headless"), QStringLiteral("--no-sandbox"),
                 QStringLiteral("--disable-gpu"), QStringLiteral("--hide-scrollbars"),
                 QStringLiteral("--user-data-dir=") + profile, size,
                 QStringLiteral("--screenshot=") + picture, url}};
    for (const char *name : {"firefox-esr", "firefox"}) {
        const QString firefox = QStandardPaths::findExecutable(QLatin1String(name));
        if (!firefox.isEmpty())
            return {firefox,
                    {QStringLiteral("--headless"), QStringLiteral("--no-remote"),
                     QStringLiteral("--profile"), profile, size, QStringLiteral("--screenshot"),
                     picture, url}};
    }
    return {};
}

// A newcomer's machine need not have a browser, and one that is there need not
// run in a private cell: neither is a fault of the program.
void picture_of_report(Driver &driver)
{
    const QTemporaryDir profile;
    const QString picture = driver.next_picture(QStringLiteral("linearity-report"));
    const Browser browser = headless_browser(picture, profile.path());
    if (browser.program.isEmpty()) {
        driver.tell(QStringLiteral("no picture of the report: neither chromium nor firefox is "
                                   "installed"));
        return;
    }
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("HOME"), profile.path());
    process.setProcessEnvironment(environment);
    process.setStandardOutputFile(QProcess::nullDevice());
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(browser.program, browser.arguments);
    const bool ended = process.waitForFinished(60000);
    if (!ended)
        process.kill();
    process.waitForFinished();
    if (ended && QFile::exists(picture))
        driver.tell(QStringLiteral("picture ") + picture);
    else
        driver.tell(QStringLiteral("no picture of the report: %1 did not take one (status %2)")
                        .arg(browser.program)
                        .arg(process.exitCode()));
}

} // namespace

void stop_supporting_records(Driver &driver)
{
    qobject_cast<MainWindow *>(driver.window())->read_specs_file();
    show_environment(driver);
    show_report_actions(driver);
    enter_new_standard(driver);
    show_working_standard(driver);
    show_measurement_system(driver);
    driver.check(content_of(driver, "/cell/zerl_util_specs.ini") ==
                     "@ROOM_TEMP_KEYWORD\nCELL_TEMP\n@BAROMETER_KEYWORD\nCELL_BARO\n"
                     "@HUMIDITY_KEYWORD\nCELL_HUMIDITY\n@REPORT_EMAIL_LIST_KEYWORD\n"
                     "lab@cell.example\nqa@cell.example\n",
                 QStringLiteral("the specs file has the names and both addresses"));
}

void stop_linearity_report(Driver &driver)
{
    const int points = visible_rows(driver).size();
    driver.check(generate_line_rpt(false), QStringLiteral("the report is written"));
    const QByteArray report = content_of(driver, REPORT);
    driver.check(report.contains("Entered Pts:</td><td align='center'>" +
                                 QByteArray::number(points) + "</td>"),
                 QStringLiteral("the report has all points"));
    driver.check(report.count(">PASS</td>") == 4 && report.count(">FAIL</td>") == 0,
                 QStringLiteral("a calibration just adjusted passes the four checks"));
    driver.check(report.contains("Deadweight") && report.contains("CELL_") == 0 &&
                     report.count(">NA</td>") == 0,
                 QStringLiteral("working standard and surroundings are in the report"));
    const QString copy = driver.folder() + QStringLiteral("/linearity-report.html");
    QFile::remove(copy);
    driver.check(QFile::copy(QLatin1String(REPORT), copy), copy);
    driver.tell(QStringLiteral("report ") + copy);
    picture_of_report(driver);
}
