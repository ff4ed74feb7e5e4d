// SPDX-License-Identifier: GPL-3.0-or-later
//
// A point of the calibration under way against the previous one and the
// straight line.
#include <limits>

#include <QtTest>

#include "calibration/comparison.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

namespace
{

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

// The line y = 10 + 0.1 x, as two points.
const Points LINE{{0., 10.}, {1000., 110.}};

LONG_TABLE table_of(const Points &points)
{
    LONG_TABLE table = {};
    set_points(&table, points);
    return table;
}

} // namespace

Q_DECLARE_METATYPE(Points)

class Comparison : public QObject
{
    Q_OBJECT

private slots:
    void figures_data();
    void figures();
    void value_behind_the_previous_calibrations_points_stands_bare();
    void line_is_zero_behind_the_last_point();
    void last_of_64_points();
    void not_a_number_stays_one();
};

void Comparison::figures_data()
{
    const auto row = test_columns<Points, Points, int, double, double, double, double, double>(
        "current", "previous", "index", "straight_line", "current_to_previous", "current_to_line",
        "previous_value", "previous_to_line");
    const Points now{{0., 11.}, {500., 57.}, {1000., 112.}};
    // At 500 mV the former curve reads 55, at 1000 mV 110.
    const Points before{{0., 10.}, {400., 46.}, {1000., 110.}};
    const Points halves{{0., 8.}, {1000., 108.}};
    row("first point", now, before, 0, 10., 1., 1., 10., 0.);
    row("both curves are read at the point's millivolts", now,
        Points{{0., 10.}, {250., 46.}, {750., 66.}}, 1, 60., 1., 3., 46., 11.);
    row("the line is read at the previous point's own millivolts", now, before, 1, 60.,
        57. - (46. + 64. / 6.), 3., 46., 4.);
    row("below the line counts as above it", Points{{0., 7.}, {1000., 106.}}, halves, 1, 110., 2.,
        4., 108., 2.);
    row("a previous calibration with fewer points: zero, and a zero difference", now, halves, 2,
        110., 4., 2., 0., 0.);
    row("current equal to previous", now, now, 1, 60., 0., 3., 57., 3.);
    row("no previous calibration", now, Points(), 2, 110., 112., 2., 0., 0.);
}

void Comparison::figures()
{
    QFETCH(Points, current);
    QFETCH(Points, previous);
    QFETCH(int, index);
    const CurveComparison found =
        compare_point(table_of(current), table_of(previous), table_of(LINE), index);
    QCOMPARE(found.current, current[static_cast<std::size_t>(index)].second);
    QTEST(found.straight_line, "straight_line");
    QTEST(found.current_to_previous, "current_to_previous");
    QTEST(found.current_to_straight_line, "current_to_line");
    QTEST(found.previous, "previous_value");
    QTEST(found.previous_to_straight_line, "previous_to_line");
}

// No line is taken from it, so its distance is the value's own magnitude.
void Comparison::value_behind_the_previous_calibrations_points_stands_bare()
{
    LONG_TABLE previous = table_of({{0., 10.}, {1000., 110.}});
    previous.x[2] = 500.;
    previous.y[2] = -7.5;
    const CurveComparison found =
        compare_point(table_of({{0., 1.}, {1., 2.}, {2., 3.}}), previous, table_of(LINE), 2);
    QCOMPARE(found.previous, -7.5);
    QCOMPARE(found.previous_to_straight_line, 7.5);
}

void Comparison::line_is_zero_behind_the_last_point()
{
    LONG_TABLE current = table_of({{0., 10.}, {1000., 110.}});
    current.x[2] = 500.;
    current.y[2] = -4.;
    const CurveComparison found = compare_point(current, current, table_of(LINE), 2);
    QCOMPARE(found.straight_line, 0.);
    QCOMPARE(found.current_to_straight_line, 4.);
}

void Comparison::last_of_64_points()
{
    const LONG_TABLE table = table_of(line_points(64));
    const CurveComparison found = compare_point(table, table, table_of(LINE), 63);
    QCOMPARE(found.current, 1281.);
    QCOMPARE(found.straight_line, 74.);
    QCOMPARE(found.previous_to_straight_line, 1207.);
}

void Comparison::not_a_number_stays_one()
{
    LONG_TABLE current = table_of({{0., 10.}, {1000., 110.}});
    current.y[1] = NOT_A_NUMBER;
    const LONG_TABLE previous = table_of(LINE);
    CurveComparison found = compare_point(current, previous, table_of(LINE), 1);
    QVERIFY(qIsNaN(found.current));
    QVERIFY(qIsNaN(found.current_to_previous));
    QVERIFY(qIsNaN(found.current_to_straight_line));
    QCOMPARE(found.previous, 110.);
    QCOMPARE(found.previous_to_straight_line, 0.);
    current.x[1] = NOT_A_NUMBER;
    found = compare_point(current, previous, table_of(LINE), 1);
    QVERIFY(qIsNaN(found.straight_line));
    QVERIFY(qIsNaN(found.current_to_previous));
}

LOOP_TEST(Comparison);
#include "test_comparison.moc"
