// SPDX-License-Identifier: GPL-3.0-or-later
//
// The dialog of the environment variables' names.
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QtTest>

#include "gui/records/specsrecord.h"
#include "records/environmentdialog.h"
#include "support/boxanswerer.h"
#include "support/hostlog.h"
#include "support/testmain.h"

namespace
{

const QString GUARD = "Please make sure data has been entered\n"
                      "for all Environment Variable fields";

void type_names(const QDialog &dialog, const QString &temperature, const QString &barometer,
                const QString &humidity)
{
    part_of<QLineEdit>(dialog, "txtTempName")->setText(temperature);
    part_of<QLineEdit>(dialog, "tmpBaroName")->setText(barometer);
    part_of<QLineEdit>(dialog, "txtHumidityName")->setText(humidity);
}

void press_ok(const QDialog &dialog)
{
    part_of<QPushButton>(dialog, "btnOK")->click();
}

} // namespace

class EnvironmentDialogTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { require_private_cell(); }
    void init() { fresh_specs(); }
    void form();
    void fields_show_the_record();
    void fields_are_empty_for_empty_names();
    void empty_field_is_refused_data();
    void empty_field_is_refused();
    void blanks_are_data();
    void ok_stores_writes_and_accepts();
    void ok_writes_the_addresses_without_free_slots();
    void names_are_stored_as_latin1_and_written_as_utf8();
    void long_name_is_cut_in_the_record_and_whole_in_the_file();
    void cancel_changes_nothing();
    void failed_write_keeps_the_names();
};

void EnvironmentDialogTest::form()
{
    const EnvironmentDialog dialog(nullptr);
    QCOMPARE(dialog.windowTitle(), QString("Environment Variables"));
    QCOMPARE(part_of<QLabel>(dialog, "label")->text(), QString("Temperature Variable Name:"));
    QCOMPARE(part_of<QLabel>(dialog, "label_2")->text(), QString("Barometer Variable Name:"));
    QCOMPARE(part_of<QLabel>(dialog, "label_3")->text(), QString("Humidity Variable Name:"));
    QCOMPARE(part_of<QPushButton>(dialog, "btnOK")->text(), QString("OK"));
    QCOMPARE(part_of<QPushButton>(dialog, "pushButton")->text(), QString("Cancel"));
    QCOMPARE(part_of<QLabel>(dialog, "label")->buddy()->objectName(), QString("txtTempName"));
    QCOMPARE(part_of<QLabel>(dialog, "label_2")->buddy()->objectName(), QString("tmpBaroName"));
    QCOMPARE(part_of<QLabel>(dialog, "label_3")->buddy()->objectName(), QString("txtHumidityName"));
}

void EnvironmentDialogTest::fields_show_the_record()
{
    set_names("CELL_TEMP", "Barometer °", "CELL_HUM");
    const EnvironmentDialog dialog(nullptr);
    QCOMPARE(part_of<QLineEdit>(dialog, "txtTempName")->text(), QString("CELL_TEMP"));
    QCOMPARE(part_of<QLineEdit>(dialog, "tmpBaroName")->text(), QString("Barometer °"));
    QCOMPARE(part_of<QLineEdit>(dialog, "txtHumidityName")->text(), QString("CELL_HUM"));
}

void EnvironmentDialogTest::fields_are_empty_for_empty_names()
{
    const EnvironmentDialog dialog(nullptr);
    for (const char *field : {"txtTempName", "tmpBaroName", "txtHumidityName"})
        QCOMPARE(part_of<QLineEdit>(dialog, field)->text(), QString());
}

void EnvironmentDialogTest::empty_field_is_refused_data()
{
    const auto row =
        test_columns<QString, QString, QString>("temperature", "barometer", "humidity");
    row("no temperature", "", "B", "H");
    row("no barometer", "T", "", "H");
    row("no humidity", "T", "B", "");
    row("nothing", "", "", "");
}

// One box, the dialog stays, record and file are as they were.
void EnvironmentDialogTest::empty_field_is_refused()
{
    QFETCH(QString, temperature);
    QFETCH(QString, barometer);
    QFETCH(QString, humidity);
    set_names("CELL_TEMP", "CELL_BARO", "CELL_HUM");
    write_file(SPECS_FILE, "untouched");
    EnvironmentDialog dialog(nullptr);
    dialog.show();
    type_names(dialog, temperature, barometer, humidity);
    BoxAnswerer answerer;
    answerer.expect(QString(), GUARD);
    press_ok(dialog);
    QCOMPARE(answerer.met().size(), 1);
    QCOMPARE(answerer.met()[0].buttons, QStringList{"OK"});
    QVERIFY(BoxAnswerer::has_title_bar_only(answerer.met()[0]));
    QVERIFY(dialog.isVisible());
    QCOMPARE(read_file(SPECS_FILE), QByteArray("untouched"));
    QCOMPARE(g_specs->temperature_var_name, "CELL_TEMP");
    QCOMPARE(g_specs->barometer_var_name, "CELL_BARO");
    QCOMPARE(g_specs->humidity_var_name, "CELL_HUM");
}

void EnvironmentDialogTest::blanks_are_data()
{
    EnvironmentDialog dialog(nullptr);
    type_names(dialog, " ", " ", " ");
    const BoxAnswerer answerer;
    press_ok(dialog);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(g_specs->temperature_var_name, " ");
}

void EnvironmentDialogTest::ok_stores_writes_and_accepts()
{
    const HostLog log;
    write_file(SPECS_FILE, QByteArray(4000, 'x'));
    EnvironmentDialog dialog(nullptr);
    dialog.show();
    type_names(dialog, "CELL_TEMP", "CELL_BARO", "CELL_HUM");
    press_ok(dialog);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(!dialog.isVisible());
    QCOMPARE(g_specs->temperature_var_name, "CELL_TEMP");
    QCOMPARE(g_specs->barometer_var_name, "CELL_BARO");
    QCOMPARE(g_specs->humidity_var_name, "CELL_HUM");
    QCOMPARE(read_file(SPECS_FILE), QByteArray("@ROOM_TEMP_KEYWORD\nCELL_TEMP\n"
                                               "@BAROMETER_KEYWORD\nCELL_BARO\n"
                                               "@HUMIDITY_KEYWORD\nCELL_HUM\n"
                                               "@REPORT_EMAIL_LIST_KEYWORD\n"));
    QCOMPARE(log.texts(), QStringList());
}

void EnvironmentDialogTest::ok_writes_the_addresses_without_free_slots()
{
    set_emails({"a@cell", "", "b@cell"});
    EnvironmentDialog dialog(nullptr);
    type_names(dialog, "T", "B", "H");
    press_ok(dialog);
    QVERIFY(read_file(SPECS_FILE).endsWith("@REPORT_EMAIL_LIST_KEYWORD\na@cell\nb@cell\n"));
    QCOMPARE(g_specs->report_email_count, 2);
}

void EnvironmentDialogTest::names_are_stored_as_latin1_and_written_as_utf8()
{
    EnvironmentDialog dialog(nullptr);
    type_names(dialog, "Zelle °C", "Druck €", "Feuchte ü");
    press_ok(dialog);
    QCOMPARE(g_specs->temperature_var_name, "Zelle \xb0"
                                            "C");
    QCOMPARE(g_specs->barometer_var_name, "Druck ?"); // no character of Latin-1
    QCOMPARE(g_specs->humidity_var_name, "Feuchte \xfc");
    const QByteArray file = read_file(SPECS_FILE);
    QVERIFY(file.contains("\nZelle °C\n"));
    QVERIFY(file.contains("\nDruck €\n"));
    QVERIFY(file.contains("\nFeuchte ü\n"));
    const EnvironmentDialog again(nullptr);
    QCOMPARE(part_of<QLineEdit>(again, "txtTempName")->text(), QString("Zelle °C"));
}

void EnvironmentDialogTest::long_name_is_cut_in_the_record_and_whole_in_the_file()
{
    const QByteArray name = QByteArray("0123456789").repeated(10);
    EnvironmentDialog dialog(nullptr);
    type_names(dialog, name, name, name);
    press_ok(dialog);
    QCOMPARE(QByteArray(g_specs->temperature_var_name), name.left(79));
    QCOMPARE(QByteArray(g_specs->humidity_var_name), name.left(79));
    QCOMPARE(QByteArray(g_specs->barometer_var_name), name.left(79));
    QCOMPARE(read_file(SPECS_FILE).count('\n' + name + '\n'), 3);
}

void EnvironmentDialogTest::cancel_changes_nothing()
{
    set_names("CELL_TEMP", "CELL_BARO", "CELL_HUM");
    EnvironmentDialog dialog(nullptr);
    dialog.show();
    type_names(dialog, "T", "B", "H");
    part_of<QPushButton>(dialog, "pushButton")->click();
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QVERIFY(!dialog.isVisible());
    QCOMPARE(g_specs->temperature_var_name, "CELL_TEMP");
    QVERIFY(!QFile::exists(SPECS_FILE));
}

void EnvironmentDialogTest::failed_write_keeps_the_names()
{
    QVERIFY(QDir().mkpath(SPECS_FILE));
    const HostLog log;
    EnvironmentDialog dialog(nullptr);
    type_names(dialog, "T", "B", "H");
    const BoxAnswerer answerer;
    press_ok(dialog);
    QVERIFY(answerer.met().isEmpty());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(g_specs->temperature_var_name, "T");
    QCOMPARE(log.count_containing("unable to write the ini file"), 1);
}

WINDOW_TEST(EnvironmentDialogTest);
#include "test_environmentdialog.moc"
