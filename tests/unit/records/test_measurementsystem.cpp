// SPDX-License-Identifier: GPL-3.0-or-later
//
// The values of the measurement system under test.
#include <cmath>
#include <cstddef>
#include <cstring>

#include <rapidcheck.h>

#include <QtTest>

#include "records/measurementsystem.h"
#include "reports/linearityfigures.h"
#include "support/testmain.h"

static_assert(offsetof(ENV_BLOCK, validation_nominal_range_min) == 0, "range minimum");
static_assert(offsetof(ENV_BLOCK, validation_nominal_range_max) == 8, "range maximum");
static_assert(offsetof(ENV_BLOCK, min_expected_val) == 16, "smallest");
static_assert(offsetof(ENV_BLOCK, max_expected_val) == 24, "largest");

namespace
{

using Four = std::array<double, 4>;

Four four(const ENV_BLOCK &block)
{
    return {block.validation_nominal_range_min, block.validation_nominal_range_max,
            block.min_expected_val, block.max_expected_val};
}

Four four(const LINE_RPT &report)
{
    return {report.validation_nominal_range_min, report.validation_nominal_range_max,
            report.min_expected_val, report.max_expected_val};
}

} // namespace

class MeasurementSystem : public QObject
{
    Q_OBJECT

private slots:
    void texts_of_the_table_data();
    void texts_of_the_table();
    void storing_data();
    void storing();
    void number_data();
    void number();
    void relations_are_not_looked_at_data();
    void relations_are_not_looked_at();
    void texts_of_refused_values();
    void any_four_numbers_are_stored_twice();
    void confirmed_texts_keep_six_digits();
    void x_max_of_the_figures();
};

void MeasurementSystem::texts_of_the_table_data()
{
    const auto row =
        test_columns<double, double, QString, QString>("y_min", "y_max", "smallest", "largest");
    row("whole numbers", 0.0, 1000.0, "0", "1000");
    row("six digits", -12.3456789, 123456.789, "-12.3457", "123457");
    row("exponents", 0.0000123456789, 1234567.0, "1.23457e-05", "1.23457e+06");
    row("trailing zeros go", 0.1, 2.50, "0.1", "2.5");
    row("negative zero, NaN", -0.0, std::nan(""), "0", "nan");
    row("infinities", -HUGE_VAL, HUGE_VAL, "-inf", "inf");
}

void MeasurementSystem::texts_of_the_table()
{
    QFETCH(QString, smallest);
    QFETCH(QString, largest);
    QFETCH(double, y_min);
    QFETCH(double, y_max);
    TABLE_RECORD table = {};
    table.y_min = y_min;
    table.y_max = y_max;
    const ExpectedTexts texts = expected_texts(table);
    QCOMPARE(texts[EXPECTED_RANGE_MIN], smallest);
    QCOMPARE(texts[EXPECTED_RANGE_MAX], largest);
    QCOMPARE(texts[EXPECTED_MIN], smallest);
    QCOMPARE(texts[EXPECTED_MAX], largest);
}

void MeasurementSystem::storing_data()
{
    // stored: 11 to 14 stood there before
    const auto row = test_columns<QStringList, int, QList<double>>("texts", "refused", "stored");
    row("all numbers", QStringList{"1", "2.5", "-3e2", ".5"}, 4, QList<double>{1, 2.5, -300, 0.5});
    row("first is none", QStringList{"abc", "2", "3", "4"}, 0, QList<double>{0, 12, 13, 14});
    row("second is none", QStringList{"1", "abc", "3", "4"}, 1, QList<double>{1, 0, 13, 14});
    row("third is none: abc in Min Expected Val", QStringList{"1", "2", "abc", "4"}, 2,
        QList<double>{1, 2, 0, 14});
    row("fourth is none", QStringList{"1", "2", "3", "abc"}, 3, QList<double>{1, 2, 3, 0});
    row("two are none", QStringList{"1", "x", "3", "y"}, 1, QList<double>{1, 0, 13, 14});
}

void MeasurementSystem::storing()
{
    QFETCH(QStringList, texts);
    QFETCH(QList<double>, stored);
    ENV_BLOCK block = {11, 12, 13, 14};
    LINE_RPT report = {};
    report.validation_nominal_range_min = 11;
    report.validation_nominal_range_max = 12;
    report.min_expected_val = 13;
    report.max_expected_val = 14;
    const ExpectedValue result =
        store_expected_values({texts[0], texts[1], texts[2], texts[3]}, &block, &report);
    QTEST(int(result), "refused");
    const Four expected = {stored[0], stored[1], stored[2], stored[3]};
    QVERIFY(four(block) == expected);
    QVERIFY(four(report) == expected);
}

void MeasurementSystem::number_data()
{
    const auto row = test_columns<QString, bool, double>("text", "accepted", "value");
    row("plain", "12.5", true, 12.5);
    row("exponent", "1.25e-3", true, 0.00125);
    row("sign", "+7", true, 7.0);
    row("blanks around it", "  7 ", true, 7.0);
    row("infinity", "inf", true, HUGE_VAL);
    row("blank", " ", false, 0.0);
    row("comma", "12,5", false, 0.0);
    row("groups of digits", "1,000", false, 0.0);
    row("unit behind it", "12 kPa", false, 0.0);
    row("hexadecimal", "0x10", false, 0.0);
    row("two points", "1.2.3", false, 0.0);
    row("beyond a double", "1e400", false, 0.0);
    row("beyond a double, negative", "-1e400", false, 0.0);
}

void MeasurementSystem::number()
{
    QFETCH(QString, text);
    QFETCH(bool, accepted);
    QFETCH(double, value);
    ENV_BLOCK block = {};
    LINE_RPT report = {};
    block.max_expected_val = report.max_expected_val = 14;
    const ExpectedValue result = store_expected_values({"1", "2", "3", text}, &block, &report);
    QCOMPARE(result, accepted ? EXPECTED_VALUES : EXPECTED_MAX);
    QCOMPARE(block.max_expected_val, value);
    QCOMPARE(report.max_expected_val, value);
}

void MeasurementSystem::relations_are_not_looked_at_data()
{
    QTest::addColumn<QStringList>("texts");
    QTest::newRow("minimum above maximum") << QStringList{"100", "0", "50", "-50"};
    QTest::newRow("range of zero") << QStringList{"5", "5", "5", "5"};
    QTest::newRow("expected beyond the range") << QStringList{"0", "1", "-9", "9"};
    QTest::newRow("all zero") << QStringList{"0", "0", "0", "0"};
}

void MeasurementSystem::relations_are_not_looked_at()
{
    QFETCH(QStringList, texts);
    ENV_BLOCK block = {};
    LINE_RPT report = {};
    QCOMPARE(store_expected_values({texts[0], texts[1], texts[2], texts[3]}, &block, &report),
             EXPECTED_VALUES);
    const Four expected = {texts[0].toDouble(), texts[1].toDouble(), texts[2].toDouble(),
                           texts[3].toDouble()};
    QVERIFY(four(block) == expected);
}

void MeasurementSystem::texts_of_refused_values()
{
    QCOMPARE(invalid_value_text(EXPECTED_RANGE_MIN),
             QString("An invalid value was entered for Validation Nominal Range Min\n\n"
                     "The entered value must be a double"));
    QCOMPARE(invalid_value_text(EXPECTED_RANGE_MAX),
             QString("An invalid value was entered for Validation Nominal Range Max\n\n"
                     "The entered value must be a double"));
    QCOMPARE(invalid_value_text(EXPECTED_MIN),
             QString("An invalid value was entered for Min Expected Val\n\n"
                     "The entered value must be a double"));
    QCOMPARE(invalid_value_text(EXPECTED_MAX),
             QString("An invalid value was entered for Max Expected Val\n\n"
                     "The entered value must be a double"));
}

void MeasurementSystem::any_four_numbers_are_stored_twice()
{
    QVERIFY(rc::check("both copies hold what was entered", [] {
        const auto values = *rc::gen::container<Four>(rc::gen::arbitrary<double>());
        ExpectedTexts texts;
        for (std::size_t i = 0; i < values.size(); ++i)
            texts[i] = QString::number(values[i], 'g', 17);
        ENV_BLOCK block = {};
        LINE_RPT report = {};
        RC_ASSERT(store_expected_values(texts, &block, &report) == EXPECTED_VALUES);
        RC_ASSERT(four(block) == values);
        RC_ASSERT(four(report) == values);
    }));
}

void MeasurementSystem::confirmed_texts_keep_six_digits()
{
    QVERIFY(rc::check("half of the sixth digit is lost at most", [] {
        TABLE_RECORD table = {};
        table.y_min = *rc::gen::arbitrary<double>();
        table.y_max = *rc::gen::arbitrary<double>();
        ENV_BLOCK block = {};
        LINE_RPT report = {};
        RC_ASSERT(store_expected_values(expected_texts(table), &block, &report) == EXPECTED_VALUES);
        // 5e-6 of the value, and the last bit of the conversion.
        RC_ASSERT(std::fabs(block.max_expected_val - table.y_max) <=
                  5.0001e-6 * std::fabs(table.y_max));
        RC_ASSERT(std::fabs(block.min_expected_val - table.y_min) <=
                  5.0001e-6 * std::fabs(table.y_min));
        RC_ASSERT(block.validation_nominal_range_min == block.min_expected_val);
        RC_ASSERT(block.validation_nominal_range_max == block.max_expected_val);
    }));
    TABLE_RECORD table = {};
    table.y_max = 1234.56789;
    ENV_BLOCK block = {};
    LINE_RPT report = {};
    QCOMPARE(store_expected_values(expected_texts(table), &block, &report), EXPECTED_VALUES);
    QCOMPARE(report.max_expected_val, 1234.57);
}

void MeasurementSystem::x_max_of_the_figures()
{
    ENV_BLOCK block = {};
    LINE_RPT report = {};
    const POINT_STATISTICS points[3] = {};
    const char units[16] = "DEG_F";
    const double without = linearity_figures(points, 3, units, report).record.x_max;
    QCOMPARE(without, linearity_figures(points, 3, units, report).record.unit_zero_offset);
    QCOMPARE(store_expected_values({"-10", "500", "-20", "400"}, &block, &report), EXPECTED_VALUES);
    QCOMPARE(linearity_figures(points, 3, units, report).record.x_max, without + 400.0);
}

LOOP_TEST(MeasurementSystem);
#include "test_measurementsystem.moc"
