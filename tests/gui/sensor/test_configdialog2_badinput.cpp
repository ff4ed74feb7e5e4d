// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a technician can type into the table information that makes no sense or
// does not fit: refused with its reason, or bounded by the record's fields.
#include <cmath>
#include <cstring>
#include <memory>

#include <QtTest>

#include "host/operations.h"
#include "support/testmain.h"
#include "tableinformation.h"

namespace
{

const char *const CLEARING = "Clearing Calibration Data";
const char *const BAD_VALUES = "Invalid Sensor Range Limit VALUES";

bool same_number(double a, double b)
{
    return (std::isnan(a) && std::isnan(b)) || a == b;
}

} // namespace

class TableInformationBadInput : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QCOMPARE(units_init_access(1) & 0xffff, 0); }
    void init() { m_boxes = std::make_unique<SessionBoxes>(); }
    void cleanup() { m_boxes.reset(); }
    void refused_limits_data();
    void refused_limits();
    void odd_limits_that_pass_data();
    void odd_limits_that_pass();
    void long_texts_data();
    void long_texts();
    void limit_of_more_decimals_than_shown_is_rounded_by_ok();
    void huge_limits_are_shown_in_full();

private:
    std::unique_ptr<SessionBoxes> m_boxes;
};

void TableInformationBadInput::refused_limits_data()
{
    const auto row = test_columns<QString, QString, uint>("lower", "upper", "reason");
    row("upper limit emptied reads as 0", "5", "", 1);
    row("1e400 is above everything", "1e400", "100", 1);
    row("5,0 in both", "5,0", "5,0", 2);
    row("nan in both", "nan", "nan", 3);
    row("5,0 as lower limit", "5,0", "100", 4);
    row("a number and its unit", "-5", "100 kPa", 4);
}

void TableInformationBadInput::refused_limits()
{
    QFETCH(QString, lower);
    QFETCH(QString, upper);
    QFETCH(uint, reason);
    ConfigDialog2 dialog(nullptr, false, 0);
    dialog.show();
    type(dialog, "txtLowerRangeLimit", lower);
    type(dialog, "txtUpperRangeLimit", upper);
    const auto before = std::make_unique<ZERL_CFG>(*g_cfg);
    m_boxes->expect(BAD_VALUES, range_refusal_text(reason, "kPa", "kPa"));
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->remaining(), 0);
    QCOMPARE(uint(dialog.reason_code), reason);
    QVERIFY(dialog.isVisible());
    QVERIFY(std::memcmp(before.get(), g_cfg, sizeof *g_cfg) == 0);
    QCOMPARE(text_of(dialog, "txtLowerRangeLimit"), QString("    0.00"));
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit"), QString("  100.00"));
}

void TableInformationBadInput::odd_limits_that_pass_data()
{
    // as_a_record: reason of the record that was written
    const auto row = test_columns<QString, QString, double, double, uint>("lower", "upper", "min",
                                                                          "max", "as_a_record");
    row("blanks around", " 5 ", "\t50 ", 5, 50, 0);
    row("a sign and an exponent", "+5e-1", "5E1", 0.5, 50, 0);
    row("1e-7 apart", "0", "0.0000001", 0, 1e-7, 2);
    row("NAN in capitals is not searched for", "NAN", "50", qQNaN(), 50, 3);
    row("NaN as upper limit", "0", "NaN", 0, qQNaN(), 3);
    row("without ends", "-inf", "inf", -qInf(), qInf(), 0);
}

void TableInformationBadInput::odd_limits_that_pass()
{
    QFETCH(QString, lower);
    QFETCH(QString, upper);
    QFETCH(double, min);
    QFETCH(double, max);
    ConfigDialog2 dialog(nullptr, false, 0);
    type(dialog, "txtLowerRangeLimit", lower);
    type(dialog, "txtUpperRangeLimit", upper);
    m_boxes->expect_title(CLEARING);
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->remaining(), 0);
    QCOMPARE(dialog.result(), int(QDialog::Accepted));
    QCOMPARE(dialog.reason_code, uint32_t(0));
    QVERIFY(same_number(g_cfg->table.sensor_range_min, min));
    QVERIFY(same_number(g_cfg->table.sensor_range_max, max));
    QTEST(uint(sensor_range_reason(g_cfg->table)), "as_a_record");
    QVERIFY(same_number(g_cfg->table.oot_tol, 0.01 * std::fabs(max - min)));
}

void TableInformationBadInput::long_texts_data()
{
    const auto row = test_columns<QString, QString>("text", "stored");
    row("31 characters fit", QString(31, 'd'), QString(31, 'd'));
    row("32 characters are cut", QString(32, 'd'), QString(31, 'd'));
    row("200 characters are cut", QString(200, 'd'), QString(31, 'd'));
    row("no character is cut in half", QString(200, QChar(0xfc)), QString(15, QChar(0xfc)));
    row("what the cut leaves is trimmed", QString(30, 'd') + "  " + QString(9, 'e'),
        QString(30, 'd'));
    row("blanks alone", QString(200, ' '), QString());
    row("marks of rich text stay", "<b>oil</b> &amp;", "<b>oil</b> &amp;");
}

void TableInformationBadInput::long_texts()
{
    QFETCH(QString, text);
    QFETCH(QString, stored);
    TABLE_RECORD &table = g_cfg->table;
    const struct {
        const char *widget;
        const char *field;
    } texts[] = {{"txtDescription", table.description},
                 {"txtSerialNumber", table.sensor_serial_no},
                 {"txtSensorMfgModel", table.sensor_model}};
    for (const auto &each : texts) {
        fresh_session();
        // Neighbours to run into, and what the refresh writes.
        set_text(table.qie, "QIE");
        set_text(table.cal_comment, "comment");
        load_tolerances_and_biases(g_cfg);
        const auto before = std::make_unique<TABLE_RECORD>(table);
        {
            ConfigDialog2 dialog(nullptr, false, 0);
            type(dialog, each.widget, text);
            m_boxes->expect_title(CLEARING);
            press(dialog, "btnOk");
        }
        QCOMPARE(m_boxes->remaining(), 0);
        QCOMPARE(QString::fromUtf8(each.field), stored);
        QCOMPARE(g_cfg->table_dirty, uint16_t(1));
        const std::ptrdiff_t offset = each.field - reinterpret_cast<const char *>(&table);
        std::memcpy(reinterpret_cast<char *>(before.get()) + offset, each.field, 32);
        QVERIFY(std::memcmp(before.get(), &table, sizeof table) == 0);

        // Shown again as it was stored: nothing differs.
        const int said = m_boxes->said().size();
        ConfigDialog2 again(nullptr, false, 0);
        QCOMPARE(text_of(again, each.widget), stored);
        press(again, "btnCancel");
        QCOMPARE(m_boxes->said().size(), said);
    }
}

// The fields show two decimals, and OK takes the limits from there.
void TableInformationBadInput::limit_of_more_decimals_than_shown_is_rounded_by_ok()
{
    g_cfg->table.sensor_range_max = 0.126;
    ConfigDialog2 dialog(nullptr, false, 0);
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit"), QString("    0.13"));
    m_boxes->expect_title(CLEARING);
    press(dialog, "btnOk");
    QCOMPARE(g_cfg->table.sensor_range_max, 0.13);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
}

void TableInformationBadInput::huge_limits_are_shown_in_full()
{
    g_cfg->table.sensor_range_min = -1.7976931348623157e308;
    g_cfg->table.sensor_range_max = 1.7976931348623157e308;
    ConfigDialog2 dialog(nullptr, false, 0);
    QCOMPARE(text_of(dialog, "txtUpperRangeLimit").size(), 312);
    press(dialog, "btnOk");
    QCOMPARE(m_boxes->said().size(), 0);
    QCOMPARE(g_cfg->table.sensor_range_min, -1.7976931348623157e308);
    QVERIFY(std::isinf(g_cfg->table.oot_tol));
}

WINDOW_TEST(TableInformationBadInput);
#include "test_configdialog2_badinput.moc"
