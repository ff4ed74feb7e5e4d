// SPDX-License-Identifier: GPL-3.0-or-later
//
// The sensor range check on the record and on the form, and its texts.
#include <cmath>
#include <memory>

#include <QtTest>

#include "host/operations.h"
#include "sensor/sensorrange.h"
#include "support/testmain.h"

namespace
{

std::unique_ptr<TABLE_RECORD> record(double min, double max, const char *sensor, const char *table)
{
    auto result = std::make_unique<TABLE_RECORD>();
    result->sensor_range_min = min;
    result->sensor_range_max = max;
    qstrncpy(result->sensor_units, sensor, sizeof result->sensor_units);
    qstrncpy(result->eng_units, table, sizeof result->eng_units);
    return result;
}

} // namespace

class SensorRange : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QCOMPARE(units_init_access(1) & 0xffff, 0); }
    void record_reason_data();
    void record_reason();
    void form_reason_data();
    void form_reason();
    void units_are_judged_as_shown_and_compared_as_bytes();
    void close_limits_pass_the_form_and_fail_as_a_record();
    void update_text_data();
    void update_text();
    void refusal_data();
    void refusal();
    void refusal_keeps_percent_signs_in_units();
};

void SensorRange::record_reason_data()
{
    const auto row = test_columns<double, double, QByteArray, QByteArray, uint>(
        "min", "max", "sensor", "table", "reason");
    const double nan = qQNaN();
    row("valid", 0, 100, "kPa", "kPa", 0);
    row("valid in another unit of the dimension", 0, 100, "PSI", "kPa", 0);
    row("valid below zero", -150, -50, "kPa", "kPa", 0);
    row("valid without an upper end", 0, qInf(), "kPa", "kPa", 0);
    row("reversed", 100, 0, "kPa", "kPa", 1);
    row("reversed by less than 1e-6", 1e-7, 0, "kPa", "kPa", 1);
    row("equal", 5, 5, "kPa", "kPa", 2);
    row("both zero", -0.0, 0.0, "kPa", "kPa", 2);
    row("1e-6 apart is the same", 0, 1e-6, "kPa", "kPa", 2);
    row("just more than 1e-6 apart", 0, std::nextafter(1e-6, 1.0), "kPa", "kPa", 0);
    row("lower limit no number", nan, 100, "kPa", "kPa", 3);
    row("upper limit no number", 0, nan, "kPa", "kPa", 3);
    row("neither a number", nan, nan, "kPa", "kPa", 3);
    row("1e-7 apart", 0, 1e-7, "kPa", "kPa", 2);
    row("without ends", -qInf(), qInf(), "kPa", "kPa", 0);
    row("both limits the same infinity: their difference is no number", qInf(), qInf(), "kPa",
        "kPa", 0);
    row("units missing", 0, 100, "", "kPa", 5);
    row("units none", 0, 100, "none", "kPa", 6);
    row("units NONE", 0, 100, "NONE", "kPa", 6);
    row("units None", 0, 100, "None", "kPa", 6);
    row("units none and the table's too", 0, 100, "none", "none", 6);
    row("the letters within a longer word are no none", 0, 100, "nonesuch", "kPa", 7);
    row("units unlike the table's", 0, 100, "DEG_F", "kPa", 7);
    row("limits come before units", 100, 0, "", "kPa", 1);
    row("equal limits come before units", 5, 5, "none", "kPa", 2);
    row("a limit no number comes before units", nan, 5, "DEG_F", "kPa", 3);
}

void SensorRange::record_reason()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(QByteArray, sensor);
    QFETCH(QByteArray, table);
    QTEST(uint(sensor_range_reason(*record(min, max, sensor, table))), "reason");
}

void SensorRange::form_reason_data()
{
    const auto row =
        test_columns<QString, QString, QString, uint>("lower", "upper", "units", "reason");
    // The table's units are kPa throughout.
    row("valid", "0", "100", "kPa", 0);
    row("valid with blanks around", "    0.00", "  100.00 ", "kPa", 0);
    row("valid with an exponent", "-1e2", "1e2", "PSI", 0);
    row("reversed", "100", "0", "kPa", 1);
    row("unreadable reads as 0 and so is reversed", "x", "-5", "kPa", 1);
    row("equal", "5", "5.00", "kPa", 2);
    row("both empty read as 0", "", "", "kPa", 2);
    row("unreadable against 0", "x", "0", "kPa", 2);
    row("less than 1e-6 apart is not the same", "0", "0.0000001", "kPa", 0);
    row("nan in the lower limit", "nan", "100", "kPa", 3);
    row("nan in the upper limit", "0", "     nan", "kPa", 3);
    row("nan in both", "nan", "nan", "kPa", 3);
    row("nan anywhere in the text", "banana", "1", "kPa", 3);
    row("NaN is searched for in this case only", "NaN", "100", "kPa", 0);
    row("unreadable with NAN in it", "BANANA", "1", "kPa", 4);
    row("lower limit unreadable", "x", "100", "kPa", 4);
    row("upper limit unreadable", "-5", "1,5", "kPa", 4);
    row("lower limit empty", "", "100", "kPa", 4);
    row("too large to read", "0", "1e999", "kPa", 4);
    row("too large to read, and so above the upper limit", "1e400", "100", "kPa", 1);
    row("blanks around a number", " 5 ", "50", "kPa", 0);
    row("a comma reads as 0", "5,0", "0", "kPa", 2);
    row("a comma", "5,0", "50", "kPa", 4);
    row("far below zero", "-1e400", "100", "kPa", 4);
    row("two numbers", "0 5", "100", "kPa", 4);
    row("a number and its unit", "-5", "100 kPa", "kPa", 4);
    row("a number of base 16", "-5", "0x10", "kPa", 4);
    row("NAN in capitals", "NAN", "100", "kPa", 0);
    row("keyword of 16 characters", "0", "100", "kPakPakPakPakPak", 7);
    row("keyword of 16 characters with none in it", "0", "100", "kPakPanonekPakPa", 6);
    row("keyword of 16 characters that begins as a known one", "0", "100", "kPa             ", 7);
    row("keyword of 200 characters", "0", "100", QByteArray(200, 'k'), 7);
    row("keyword of blanks is not missing, and unknown", "0", "100", "   ", 7);
    row("units missing", "0", "100", "", 5);
    row("units none", "0", "100", "none", 6);
    row("units NONE", "0", "100", "NONE", 6);
    row("the letters within a longer word", "0", "100", "aNoNeb", 6);
    row("units unlike the table's", "0", "100", "DEG_F", 7);
    row("units unknown", "0", "100", "nosuch", 7);
    row("limits come before units", "100", "0", "", 1);
    row("unreadable comes before units", "x", "100", "", 4);
}

void SensorRange::form_reason()
{
    QFETCH(QString, lower);
    QFETCH(QString, upper);
    QFETCH(QString, units);
    QTEST(uint(form_range_reason({lower, upper, units.toUtf8()}, "kPa")), "reason");
}

// A byte order mark shows as nothing, other bytes that are no UTF-8 as a sign.
void SensorRange::units_are_judged_as_shown_and_compared_as_bytes()
{
    QCOMPARE(form_range_reason({"0", "1", "\xef\xbb\xbf"}, "kPa"), uint32_t(RANGE_UNITS_MISSING));
    QCOMPARE(form_range_reason({"0", "1", "\xb0none"}, "kPa"), uint32_t(RANGE_UNITS_NONE));
    QCOMPARE(form_range_reason({"0", "1", "\xb0kPa"}, "kPa"), uint32_t(RANGE_UNITS_UNLIKE));
}

void SensorRange::close_limits_pass_the_form_and_fail_as_a_record()
{
    QCOMPARE(form_range_reason({"0", "0.0000005", "kPa"}, "kPa"), uint32_t(RANGE_VALID));
    QCOMPARE(sensor_range_reason(*record(0, 0.0000005, "kPa", "kPa")), uint32_t(RANGE_EMPTY));
}

void SensorRange::update_text_data()
{
    const auto row = test_columns<uint, QString>("reason", "text");
    row("valid has none", 0u, QString());
    row("reversed", 1u,
        "The Sensor Lower Range Value is greater than the Upper Range "
        "Value.\n\nPress OK to update Table Information");
    row("the same", 2u,
        "The Sensor Lower and Upper Range Values are the same.\n\n"
        "Press OK to update Table Information");
    row("no number", 3u,
        "The Sensor Lower and Upper Range Values are INVALID and need to "
        "be updated.\n\nPress OK to update Table Information");
    row("unreadable has none", 4u, QString());
    row("units missing", 5u,
        "The Sensor Range Units must be specified.\n\n"
        "Press OK to update Table Information");
    row("units none", 6u,
        "The Sensor Range Units = NONE and need to be updated.\n\n"
        "Press OK to update Table Information");
    row("units unlike", 7u,
        "The Sensor Range Units (DEG_F) are not compatible with the "
        "table units (kPa).\n\nPress OK to update Table Information");
    row("no such reason", 8u, QString());
}

void SensorRange::update_text()
{
    QFETCH(uint, reason);
    QTEST(range_update_text(reason, *record(0, 100, "DEG_F", "kPa")), "text");
}

void SensorRange::refusal_data()
{
    const QString values = "Invalid Sensor Range Limit VALUES";
    const QString units = "Invalid Sensor Range UNITS";
    const auto row = test_columns<uint, QString, QString>("reason", "title", "text");
    row("reversed", 1u, values,
        "The entered value for the Sensor Range Lower Limit cannot be "
        "more than the Sensor Range Upper Limit value\n\n"
        "Please reenter the Limit Values.");
    row("the same", 2u, values,
        "The Sensor Range Lower and Upper Limit Values cannot be the "
        "same\n\nPlease reenter the Limit Values.");
    row("no number", 3u, values,
        "NAN is not an acceptable value for the Sensor Range Lower or "
        "Upper Limit Values\n\nPlease reenter the Limit Values.");
    row("unreadable", 4u, values,
        "Invalid data was entered for the Sensor Range Lower or Upper "
        "Limit Values\n\nPlease reenter the Limit Values");
    row("units missing", 5u, units,
        "The Sensor Range Units must be specified\n\n"
        "Please reselect the Sensor Range Units.");
    row("units none", 6u, units,
        "The Sensor Range Units cannot be NONE\n\n"
        "Please reselect the Sensor Range Units.");
    row("units unlike", 7u, units,
        "The Sensor Range Units (DEG_F) are not compatible with the "
        "table units (kPa).\n\n"
        "Please reselect the Sensor Range Units.");
}

void SensorRange::refusal()
{
    QFETCH(uint, reason);
    QTEST(range_refusal_title(reason), "title");
    QTEST(range_refusal_text(reason, "DEG_F", "kPa"), "text");
}

void SensorRange::refusal_keeps_percent_signs_in_units()
{
    QCOMPARE(range_refusal_text(RANGE_UNITS_UNLIKE, "%2", "%1"),
             QString("The Sensor Range Units (%2) are not compatible with the table units (%1).\n\n"
                     "Please reselect the Sensor Range Units."));
    const QString text = range_update_text(RANGE_UNITS_UNLIKE, *record(0, 1, "%", "%1"));
    QVERIFY(text.startsWith("The Sensor Range Units (%) are not compatible with the table units "
                            "(%1)."));
}

PLAIN_TEST(SensorRange);
#include "test_sensorrange.moc"
