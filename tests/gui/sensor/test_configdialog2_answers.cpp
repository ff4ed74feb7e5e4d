// SPDX-License-Identifier: GPL-3.0-or-later
//
// The table information dialog: what OK writes and refuses, and when Cancel warns.
#include <cstring>
#include <memory>

#include <QtTest>

#include "host/operations.h"
#include "support/testmain.h"
#include "tableinformation.h"

class TableInformationAnswers : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QCOMPARE(units_init_access(1) & 0xffff, 0); }
    void init() { m_boxes = std::make_unique<SessionBoxes>(); }
    void cleanup() { m_boxes.reset(); }
    void ok_without_an_edit();
    void ok_with_an_edit_data();
    void ok_with_an_edit();
    void ok_after_a_tiny_change_of_a_limit();
    void ok_takes_new_limits();
    void ok_refused_data();
    void ok_refused();
    void ok_converts_the_extremes_back();
    void cancel_data();
    void cancel();
    void exec_result();

private:
    std::unique_ptr<SessionBoxes> m_boxes;
};

void TableInformationAnswers::ok_without_an_edit()
{
    set_text(g_cfg->table.mua_instance_name, "  cell 4 \n ");
    g_cfg->table.ooa_bias = 99.0;
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->said(), QStringList());
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QVERIFY(!dialog.isVisible());
    QCOMPARE(dialog.reason_code, uint32_t(0));
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    const TABLE_RECORD &table = g_cfg->table;
    QCOMPARE(QString(table.mua_instance_name), QString("cell 4"));
    QCOMPARE(table.ooa_bias, 0.0);
    QCOMPARE(table.ooa_tol, 0.25);
    QCOMPARE(table.oot_bias, 0.0);
    QCOMPARE(table.oot_tol, 1.0);
    QCOMPARE(table.soot_bias, 0.0);
    QCOMPARE(table.soot_tol, 2.0);
}

void TableInformationAnswers::ok_with_an_edit_data()
{
    const auto row = test_columns<QString, QString, QString>("widget", "text", "stored");
    row("description", "txtDescription", "Exhaust", "Exhaust");
    row("description emptied", "txtDescription", "", "");
    row("description with blanks around", "txtDescription", "  Oil  ", "Oil");
    row("description of 32 characters is cut", "txtDescription", QString(32, 'd'),
        QString(31, 'd'));
    row("serial number", "txtSerialNumber", " SN-205", "SN-205");
    row("model", "txtSensorMfgModel", "Model 8 ", "Model 8");
    row("units", "btnSensorUnits", "PSI", "PSI");
    row("lower limit", "txtLowerRangeLimit", "-10.5", "-10.5");
    row("upper limit", "txtUpperRangeLimit", "200", "200");
}

void TableInformationAnswers::ok_with_an_edit()
{
    QFETCH(QString, widget);
    QFETCH(QString, text);
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    show_on(dialog, widget, text);
    m_boxes->expect("Clearing Calibration Data", "Changes may affect the calibration.\n\n"
                                                 "Calibration data will be cleared.");
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->remaining(), 0);
    QVERIFY(is_ok_box(m_boxes->met().first()));
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    const TABLE_RECORD &table = g_cfg->table;
    const QHash<QString, QString> record = {
        {"txtDescription", table.description},
        {"txtSerialNumber", table.sensor_serial_no},
        {"txtSensorMfgModel", table.sensor_model},
        {"btnSensorUnits", table.sensor_units},
        {"txtLowerRangeLimit", QString::number(table.sensor_range_min)},
        {"txtUpperRangeLimit", QString::number(table.sensor_range_max)}};
    QTEST(record.value(widget), "stored");
}

void TableInformationAnswers::ok_after_a_tiny_change_of_a_limit()
{
    ConfigDialog2 dialog(nullptr, false, 0);
    type(dialog, "txtLowerRangeLimit", "0.0000005");
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->said(), QStringList());
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QCOMPARE(g_cfg->table.sensor_range_min, 0.0000005);
}

void TableInformationAnswers::ok_takes_new_limits()
{
    set_text(g_cfg->table.eng_units, "PSI");
    ConfigDialog2 dialog(nullptr, false, 0);
    type(dialog, "txtLowerRangeLimit", "-50");
    type(dialog, "txtUpperRangeLimit", "150");
    m_boxes->expect_title("Clearing Calibration Data");
    press(dialog, "btnOk");
    // 200 kPa in PSI; the tolerances follow the limits just entered.
    QCOMPARE(g_cfg->table.oot_tol, 0.01 * 200.0 / 6.894757293168361);
}

// Each reason once, with its box.
void TableInformationAnswers::ok_refused_data()
{
    const auto row =
        test_columns<QString, QString, QString, uint>("lower", "upper", "sensor_units", "reason");
    row("reversed", "100", "0", "PSI", 1);
    row("the same", "7", "7", "PSI", 2);
    row("no number", "nan", "7", "PSI", 3);
    row("an unreadable upper limit reads as 0", "7", "12 kPa", "PSI", 1);
    row("unreadable lower limit", "low", "7", "PSI", 4);
    row("units missing", "5", "50", "", 5);
    row("units none", "5", "50", "none", 6);
    row("units unlike", "5", "50", "DEG_F", 7);
}

void TableInformationAnswers::ok_refused()
{
    QFETCH(QString, lower);
    QFETCH(QString, upper);
    QFETCH(QString, sensor_units);
    QFETCH(uint, reason);
    set_text(g_cfg->table.mua_instance_name, " cell 4 ");
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    type(dialog, "txtDescription", "Exhaust");
    type(dialog, "txtLowerRangeLimit", lower);
    type(dialog, "txtUpperRangeLimit", upper);
    show_on(dialog, "btnSensorUnits", sensor_units);
    const auto before = std::make_unique<ZERL_CFG>(*g_cfg);
    m_boxes->expect(range_refusal_title(reason), range_refusal_text(reason, sensor_units, "kPa"));
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->remaining(), 0);
    QVERIFY(is_ok_box(m_boxes->met().first()));
    QCOMPARE(uint(dialog.reason_code), reason);
    // The dialog stays, nothing is written, and what was wrong is put back.
    QVERIFY(dialog.isVisible());
    QCOMPARE(std::memcmp(before.get(), g_cfg, sizeof *g_cfg), 0);
    QCOMPARE(text_of(dialog, "txtDescription"), QString("Exhaust"));
    const bool limits = reason <= 4;
    QCOMPARE(text_of(dialog, "txtLowerRangeLimit"), limits ? QString("    0.00") : lower);
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit"), limits ? QString("  100.00") : upper);
    QCOMPARE(text_of(dialog, "btnSensorUnits"), limits ? sensor_units : QString("kPa"));
}

void TableInformationAnswers::ok_converts_the_extremes_back()
{
    set_text(g_cfg->table_units, "PSI");
    g_cfg->table.y_min = 1.0;
    g_cfg->table.y_max = 100.0;
    ConfigDialog2 dialog(nullptr, false, 0);
    press(dialog, "btnOk");
    // They are taken to stand in table_units, whether they did or not.
    QCOMPARE(g_cfg->table.y_min, 6.894757293168361);
    QCOMPARE(g_cfg->table.y_max, 689.4757293168361);
}

void TableInformationAnswers::cancel_data()
{
    const double nan = qQNaN();
    const auto row = test_columns<double, double, QString, QString, bool>("min", "max", "widget",
                                                                          "text", "warns");
    row("nothing changed", 0, 100, "txtSerialNumber", "SN-204", false);
    row("description changed", 0, 100, "txtDescription", "Exhaust", true);
    row("serial number changed", 0, 100, "txtSerialNumber", "SN-205", true);
    row("model changed", 0, 100, "txtSensorMfgModel", "Model 8", true);
    row("units changed", 0, 100, "btnSensorUnits", "PSI", true);
    row("lower limit changed", 0, 100, "txtLowerRangeLimit", "1", true);
    row("lower limit changed by less than 1e-6", 0, 100, "txtLowerRangeLimit", "5e-7", false);
    row("only the upper limit changed: no word", 0, 100, "txtUpperRangeLimit", "200", false);
    row("lower limit typed as nan: the upper decides", 0, 100, "txtLowerRangeLimit", "nan", false);
    row("lower limit no number, upper changed", nan, 100, "txtUpperRangeLimit", "200", true);
    row("lower limit no number, upper the same", nan, 100, "txtUpperRangeLimit", "100", false);
    row("neither a number", nan, nan, "txtUpperRangeLimit", "200", false);
    row("neither a number, description changed", nan, nan, "txtDescription", "Exhaust", true);
    row("upper no number, lower changed", 0, nan, "txtLowerRangeLimit", "1", true);
    row("upper no number, upper typed", 0, nan, "txtUpperRangeLimit", "100", false);
    row("lower no number, lower typed: the upper decides", nan, 100, "txtLowerRangeLimit", "1",
        false);
    row("lower no number, upper typed as nan", nan, 100, "txtUpperRangeLimit", "nan", false);
    row("lower no number, upper changed by 1e-7", nan, 100, "txtUpperRangeLimit", "100.0000001",
        false);
    row("a blank more", 0, 100, "txtDescription", "Intake pressure ", true);
    row("another case", 0, 100, "btnSensorUnits", "KPA", true);
    row("lower limit typed as NAN", 0, 100, "txtLowerRangeLimit", "NAN", false);
    row("lower limit typed as 1e400", 0, 100, "txtLowerRangeLimit", "1e400", true);
    row("emptied reads as 0, which the limit is", 0, 100, "txtLowerRangeLimit", "", false);
    row("5,0 reads as 0, which the limit is", 0, 100, "txtLowerRangeLimit", "5,0", false);
    row("blanks around the limit", 0, 100, "txtLowerRangeLimit", " 0 ", false);
    row("blanks around another", 0, 100, "txtLowerRangeLimit", " 5 ", true);
}

void TableInformationAnswers::cancel()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(QString, widget);
    QFETCH(QString, text);
    QFETCH(bool, warns);
    g_cfg->table.sensor_range_min = min;
    g_cfg->table.sensor_range_max = max;
    set_text(g_cfg->table.mua_instance_name, " cell 4 ");
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    dialog.setResult(QDialog::Accepted);
    show_on(dialog, widget, text);
    const auto before = std::make_unique<ZERL_CFG>(*g_cfg);
    if (warns)
        m_boxes->expect("Changes Lost",
                        "Changes made to the Calibration Configuration will be lost.");
    press(dialog, "btnCancel");
    QCOMPARE(m_boxes->remaining(), 0);
    for (const MetBox &box : m_boxes->met())
        QVERIFY(is_ok_box(box));
    QCOMPARE(dialog.result(), int(QDialog::Rejected));
    QVERIFY(!dialog.isVisible());
    QCOMPARE(std::memcmp(before.get(), g_cfg, sizeof *g_cfg), 0);
}

void TableInformationAnswers::exec_result()
{
    ConfigDialog2 accepted(nullptr, false, 0);
    QTimer::singleShot(0, &accepted, [&] { press(accepted, "btnOk"); });
    QCOMPARE(accepted.exec(), 1);
    ConfigDialog2 rejected(nullptr, false, 0);
    QTimer::singleShot(0, &rejected, [&] { press(rejected, "btnCancel"); });
    QCOMPARE(rejected.exec(), 0);
}

WINDOW_TEST(TableInformationAnswers);
#include "test_configdialog2_answers.moc"
