// SPDX-License-Identifier: GPL-3.0-or-later
//
// Extent of the values on an axis of the plot. Expected ranges are worked out by
// hand from the rule: span 1.1 times the extent over divisions - 1 steps, each
// the next of 2, 4, 5, 6, 8 and 10 times a power of ten.
#include <cfloat>
#include <cstring>
#include <limits>

#include <QtTest>

#include "calibration/axisrange.h"
#include "support/testmain.h"

Q_DECLARE_METATYPE(QVector<double>)

namespace
{

const double INFINITE = std::numeric_limits<double>::infinity();

AXIS_RANGE fresh_axis()
{
    AXIS_RANGE axis;
    std::memset(&axis, 0x55, sizeof axis);
    reset_axis_range(&axis);
    return axis;
}

AXIS_RANGE axis_of(double min, double max, int divisions = 5)
{
    AXIS_RANGE axis = fresh_axis();
    axis.min = min;
    axis.max = max;
    axis.divisions = static_cast<int16_t>(divisions);
    return axis;
}

int32_t update(AXIS_RANGE *axis, const QVector<double> &values)
{
    return update_axis_range(axis, values.constData(), values.size());
}

} // namespace

class AxisRange : public QObject
{
    Q_OBJECT

private slots:
    void reset_state();
    void rescaled_data();
    void rescaled();
    void ladder_data();
    void ladder();
    void divisions_of_zero_become_two();
    void multiple_of_16_bits();
    void values_without_a_round_range_terminate_data();
    void values_without_a_round_range_terminate();
    void first_values_data();
    void first_values();
    void span_stays_when_values_move_inwards();
    void range_only_grows();
    void near_values_move_the_ends_without_rounding();
    void equal_record_tells_no_change();
    void no_values_count_as_one_zero();
    void values_that_are_no_numbers_terminate_data();
    void values_that_are_no_numbers_terminate();
};

void AxisRange::reset_state()
{
    const AXIS_RANGE axis = fresh_axis();
    AXIS_RANGE expected;
    std::memset(&expected, 0, sizeof expected);
    expected.divisions = 5;
    QVERIFY(std::memcmp(&axis, &expected, sizeof axis) == 0);
}

void AxisRange::rescaled_data()
{
    const auto row =
        test_columns<double, double, double, double>("min", "max", "round_min", "round_max");
    row("100 and 600: above five times, so from zero", 100., 600., 0., 800.);
    row("100 and 500: five times itself is not above", 100., 500., 100., 900.);
    row("-600 and -100: up to zero", -600., -100., -800., 0.);
    row("-500 and -100 keep their ends", -500., -100., -600., 200.);
    row("-100 and 600: zero lies between", -100., 600., -200., 600.);
    row("5 and 5: treated as 4 to 6", 5., 5., 3.9, 6.3);
    row("-7 and -7: treated as -8 to -6", -7., -7., -8.1, -5.7);
    row("0 and 0: treated as -1 to 1", 0., 0., -1.2, 1.2);
    row("nearly equal ends are parted too", 5., 5.0000005, 3.9, 6.3);
    row("0.5 and 0.5: parted first, no longer on one side", 0.5, 0.5, -0.6, 1.8);
    row("-1 and 1", -1., 1., -1.2, 1.2);
    row("0 and 10", 0., 10., 0., 16.);
    row("-10 and 0", -10., 0., -16., 0.);
    row("0 and 0.001: exponents below zero", 0., 0.001, 0., 0.0016);
    row("0 and 1e7: exponents above zero", 0., 1e7, 0., 1.6e7);
    row("-3 and 20: the lower end goes down a half step", -3., 20., -4., 28.);
    row("20 and 30: the lower end stays on a half step", 20., 30., 20., 36.);
}

void AxisRange::rescaled()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(double, round_min);
    QFETCH(double, round_max);
    AXIS_RANGE axis = axis_of(min, max);
    rescale_axis_range(&axis);
    QVERIFY2(qAbs(axis.min - round_min) < 1e-9, qPrintable(QString::number(axis.min, 'g', 17)));
    QVERIFY2(qAbs(axis.max - round_max) < 1e-9, qPrintable(QString::number(axis.max, 'g', 17)));
    QCOMPARE(axis.step_unit, 1.0);
    QCOMPARE(axis.divisions, int16_t{5});
}

void AxisRange::ladder_data()
{
    const auto row = test_columns<double, double>("raw", "step");
    row("exactly 1: the rung 1 is never taken", 1.0, 2.0);
    row("1.65", 1.65, 2.0);
    row("exactly 2", 2.0, 2.0);
    row("2.2", 2.2, 4.0);
    row("exactly 4", 4.0, 4.0);
    row("4.4", 4.4, 5.0);
    row("exactly 5", 5.0, 5.0);
    row("5.5", 5.5, 6.0);
    row("exactly 6", 6.0, 6.0);
    row("6.6", 6.6, 8.0);
    row("exactly 8", 8.0, 8.0);
    row("8.8", 8.8, 10.0);
    row("exactly 10 is not divided", 10.0, 10.0);
    row("11 is the rung of 1.1, tenfold", 11.0, 20.0);
    row("0.99 is the rung of 9.9, a tenth", 0.99, 1.0);
    row("0.11 is the rung of 1.1, a tenth", 0.11, 0.2);
}

// With one step from zero on, the upper end is the step.
void AxisRange::ladder()
{
    QFETCH(double, raw);
    AXIS_RANGE axis = axis_of(0.0, raw / 1.1, 2);
    rescale_axis_range(&axis);
    QTEST(axis.max, "step");
}

void AxisRange::divisions_of_zero_become_two()
{
    AXIS_RANGE axis = axis_of(0.0, 10.0, 0);
    rescale_axis_range(&axis);
    QCOMPARE(axis.divisions, int16_t{2});
    QCOMPARE(axis.max, 20.0);
}

// The multiple of the half step is kept in 16 bits: 500,000 becomes 41,248, and
// that as a signed number -24,288.
void AxisRange::multiple_of_16_bits()
{
    AXIS_RANGE axis = axis_of(1e6, 1e6 + 10.0);
    rescale_axis_range(&axis);
    QCOMPARE(axis.min, -24288 * 2.0);
    QCOMPARE(axis.max, -24288 * 2.0 + 16.0);
    AXIS_RANGE largest = axis_of(32767.0 * 2.0, 32767.0 * 2.0 + 10.0);
    rescale_axis_range(&largest);
    QCOMPARE(largest.min, 65534.0);
}

void AxisRange::values_without_a_round_range_terminate_data()
{
    const auto row = test_columns<double, double>("min", "max");
    row("lower end NaN", qQNaN(), 1.0);
    row("upper end NaN", 1.0, qQNaN());
    row("both NaN", qQNaN(), qQNaN());
    row("to infinity", 0.0, INFINITE);
    row("from minus infinity to infinity", -INFINITE, INFINITE);
    row("infinity alone", INFINITE, INFINITE);
    row("all doubles", -DBL_MAX, DBL_MAX);
    row("reversed", 10.0, -10.0);
}

void AxisRange::values_without_a_round_range_terminate()
{
    QFETCH(double, min);
    QFETCH(double, max);
    AXIS_RANGE axis = axis_of(min, max);
    rescale_axis_range(&axis);
    QCOMPARE(axis.divisions, int16_t{5});
    QCOMPARE(axis.step_unit, 1.0);
}

void AxisRange::first_values_data()
{
    const auto row = test_columns<QVector<double>, double, double>("values", "min", "max");
    row("100 and 600", QVector<double>{100., 600.}, 0., 800.);
    row("5 and 5", QVector<double>{5., 5.}, 3.9, 6.3);
    row("in any order", QVector<double>{0.3, 1., -1., 0.}, -1.2, 1.2);
    row("one value", QVector<double>{5.}, 3.9, 6.3);
    row("all above zero: the zeros of the reset do not count", QVector<double>{20., 30.}, 20., 36.);
}

void AxisRange::first_values()
{
    QFETCH(QVector<double>, values);
    AXIS_RANGE axis = fresh_axis();
    QCOMPARE(update(&axis, values), 1);
    QCOMPARE(axis.changed, uint16_t{1});
    QTEST(axis.min, "min");
    QTEST(axis.max, "max");
}

void AxisRange::span_stays_when_values_move_inwards()
{
    AXIS_RANGE axis = fresh_axis();
    QCOMPARE(update(&axis, {-1.0, 1.0}), 1);
    axis.changed = 0;
    const AXIS_RANGE before = axis;
    QCOMPARE(update(&axis, {0.0, 0.5}), 0);
    QVERIFY(std::memcmp(&axis, &before, sizeof axis) == 0);
    QVERIFY(axis.min <= -1.0 && axis.max >= 1.0);
}

void AxisRange::range_only_grows()
{
    AXIS_RANGE axis = fresh_axis();
    QCOMPARE(update(&axis, {-1.0, 1.0}), 1);
    QCOMPARE(update(&axis, {50.0}), 1);
    QVERIFY(axis.max >= 50.0);
    QVERIFY(axis.min <= -1.2);
    const double max = axis.max;
    QCOMPARE(update(&axis, {-50.0}), 1);
    QVERIFY(axis.min <= -50.0);
    QVERIFY(axis.max >= max);
}

// A new end within 1e-6 of the old one is taken as it is.
void AxisRange::near_values_move_the_ends_without_rounding()
{
    AXIS_RANGE axis = axis_of(-1.0, 3.0);
    QCOMPARE(update(&axis, {3.0 + 5e-7}), 1);
    QVERIFY(axis.max == 3.0 + 5e-7);
    QVERIFY(axis.min == -1.0);
    QCOMPARE(axis.changed, uint16_t{1});
    QCOMPARE(axis.step_unit, 0.0);
}

void AxisRange::equal_record_tells_no_change()
{
    AXIS_RANGE axis = axis_of(-1.0, 3.0);
    QCOMPARE(update(&axis, {0.0}), 0);
    QCOMPARE(axis.changed, uint16_t{0});
    axis.changed = 1;
    QCOMPARE(update(&axis, {0.0}), 0);
    QCOMPARE(axis.changed, uint16_t{1}); // the plot clears it, nobody else
}

void AxisRange::no_values_count_as_one_zero()
{
    for (const int32_t n : {0, -1}) {
        AXIS_RANGE axis = fresh_axis();
        QCOMPARE(update_axis_range(&axis, nullptr, n), 0);
        QCOMPARE(axis.min, 0.0);
        QCOMPARE(axis.max, 0.0);
    }
    AXIS_RANGE above = axis_of(5.0, 9.0);
    QCOMPARE(update_axis_range(&above, nullptr, 0), 1);
    QCOMPARE(above.min, 0.0);
    QVERIFY(above.max >= 9.0);
}

void AxisRange::values_that_are_no_numbers_terminate_data()
{
    QTest::addColumn<QVector<double>>("values");
    QTest::newRow("NaN alone") << QVector<double>{qQNaN()};
    QTest::newRow("NaN first") << QVector<double>{qQNaN(), 1.0};
    QTest::newRow("NaN last") << QVector<double>{1.0, qQNaN()};
    QTest::newRow("infinity") << QVector<double>{1.0, INFINITE};
    QTest::newRow("minus infinity") << QVector<double>{-INFINITE, 1.0};
    QTest::newRow("largest double") << QVector<double>{-DBL_MAX, DBL_MAX};
    QTest::newRow("smallest double") << QVector<double>{0.0, DBL_TRUE_MIN};
}

void AxisRange::values_that_are_no_numbers_terminate()
{
    QFETCH(QVector<double>, values);
    AXIS_RANGE axis = fresh_axis();
    update(&axis, values);
    update(&axis, {-1.0, 1.0});
    QCOMPARE(axis.divisions, int16_t{5});
}

LOOP_TEST(AxisRange);
#include "test_axisrange.moc"
