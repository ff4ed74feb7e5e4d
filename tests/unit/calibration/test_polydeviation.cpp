// SPDX-License-Identifier: GPL-3.0-or-later
//
// Captured points against the polynomial of their table.
#include <cmath>
#include <limits>

#include <QtTest>

#include "calibration/polydeviation.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

class PolyDeviation : public QObject
{
    Q_OBJECT

private slots:
    void deviation_data();
    void deviation();
    void r_squared_takes_the_values_for_x_and_the_millivolts_for_y();
    void r_squared_of_the_types_range_data();
    void r_squared_of_the_types_range();
    void r_squared_of_odd_counts_data();
    void r_squared_of_odd_counts();
    void r_squared_of_more_coefficients_than_a_range_holds();
};

void PolyDeviation::deviation_data()
{
    const auto row = test_columns<QVector<double>, int, double, double, double, double>(
        "coeffs", "count", "x", "y", "computed", "difference");
    const QVector<double> square{1., 2., 3.};
    row("measured above computed is positive", square, 3, 2., 17.5, 17., 0.5);
    row("measured below computed is negative", square, 3, 2., 16.25, 17., -0.75);
    row("only as many coefficients as the range counts", square, 2, 2., 5., 5., 0.);
    row("no coefficients", square, 0, 2., 5., 0., 5.);
    row("a negative count", square, -1, 2., 5., 0., 5.);
    row("negative millivolts", square, 3, -1., 2., 2., 0.);
    QVector<double> full(POLY_COEFFS, 0.);
    full[17] = 1.;
    row("18 coefficients", full, 18, 2., 131072., 131072., 0.);
    // 2^17 and 5 * 2^18, then 7 * 2^19 too.
    row("the 19th is the first x value", full, 19, 2., 1441792., 1441792., 0.);
    row("the 20th is the second", full, 20, 2., 0., 5111808., -5111808.);
    row("the 64th is the 46th", full, 64, 1., 0., 24., -24.);
    row("more than points stop at the 64th", full, 65, 1., 0., 24., -24.);
    const double nan = std::numeric_limits<double>::quiet_NaN();
    row("millivolts that are no number", square, 3, nan, 2., nan, nan);
    row("a value that is no number", square, 3, 2., nan, 17., nan);
}

void PolyDeviation::deviation()
{
    QFETCH(QVector<double>, coeffs);
    QFETCH(int, count);
    POLY_RANGE_RECORD range = {};
    std::copy(coeffs.cbegin(), coeffs.cend(), range.coeffs);
    range.num_coeffs = static_cast<int16_t>(count);
    range.x[0] = 5.; // what stands behind the coefficients
    range.x[1] = 7.;
    range.x[45] = 11.;
    range.x[46] = 1e9;
    POINT_STATISTICS point = {};
    QFETCH(double, x);
    QFETCH(double, y);
    point.mv_mean = x;
    point.eu_mean = y;
    point.mv_at_capture = point.eu_reference = -999.; // no part in this
    const PointDeviation found = deviation_of(point, range);
    QCOMPARE(found.x, x);
    QCOMPARE(found.y, y);
    QTEST(found.computed, "computed");
    QTEST(found.deviation, "difference");
}

// mV = 2 x the value: the polynomial 2 x meets every point that way round only.
void PolyDeviation::r_squared_takes_the_values_for_x_and_the_millivolts_for_y()
{
    auto cfg = std::make_unique<ZERL_CFG>();
    cfg->table.table_type = TABLE_POLY;
    set_coeffs(&cfg->table.poly[0], {0., 2.});
    cfg->long_current.num_points = 3;
    for (int i = 0; i < 4; ++i) {
        cfg->point_stats[i].eu_mean = i;
        cfg->point_stats[i].mv_mean = 2. * i;
    }
    cfg->point_stats[3].mv_mean = 1000.; // behind the last point
    QCOMPARE(poly_r_squared(*cfg), 1.);
    // Residuals -1, 0, 1 against values 1, 2, 3 about their mean: 1 - 2/2.
    for (int i = 0; i < 3; ++i)
        cfg->point_stats[i].mv_mean = 1. + i;
    QCOMPARE(poly_r_squared(*cfg), 1. - 2. / 2.);
}

void PolyDeviation::r_squared_of_the_types_range_data()
{
    const auto row = test_columns<int, int, bool>("type", "index", "exact");
    row("POLY_RANGE: the range in work", int(TABLE_POLY_RANGE), 3, true);
    row("POLY_RANGE in another range", int(TABLE_POLY_RANGE), 2, false);
    row("POLY: the first, whatever the index", int(TABLE_POLY), 3, false);
    row("INTERP: the first as well", int(TABLE_INTERP), 3, false);
}

void PolyDeviation::r_squared_of_the_types_range()
{
    QFETCH(int, type);
    QFETCH(int, index);
    auto cfg = std::make_unique<ZERL_CFG>();
    cfg->table.table_type = static_cast<uint16_t>(type);
    cfg->table.poly_range_index = static_cast<int16_t>(index);
    set_coeffs(&cfg->table.poly[0], {5.});
    set_coeffs(&cfg->table.poly[2], {7.});
    set_coeffs(&cfg->table.poly[3], {0., 2.});
    cfg->long_current.num_points = 3;
    for (int i = 0; i < 3; ++i) {
        cfg->point_stats[i].eu_mean = i;
        cfg->point_stats[i].mv_mean = 2. * i;
    }
    QTEST(poly_r_squared(*cfg) == 1., "exact");
}

void PolyDeviation::r_squared_of_odd_counts_data()
{
    const auto row = test_columns<int, int, double>("points", "coeffs", "r_squared");
    row("no points", 0, 2, 0.);
    row("a negative number of points", -3, 2, 0.);
    row("64 points", 64, 2, 1.);
    row("more points than there are", 1000, 2, 1.);
    row("more coefficients than a range holds: the x values serve too", 64, 64, 1.);
    row("more coefficients than points", 64, 65, 1.);
}

void PolyDeviation::r_squared_of_odd_counts()
{
    QFETCH(int, points);
    QFETCH(int, coeffs);
    auto cfg = std::make_unique<ZERL_CFG>();
    set_coeffs(&cfg->table.poly[0], {0., 2.});
    cfg->table.poly[0].num_coeffs = static_cast<int16_t>(coeffs);
    cfg->table.poly[0].x[46] = 1e9;
    cfg->long_current.num_points = static_cast<int16_t>(points);
    for (int i = 0; i < MAX_POINTS; ++i) {
        cfg->point_stats[i].eu_mean = i;
        cfg->point_stats[i].mv_mean = 2. * i;
    }
    QTEST(poly_r_squared(*cfg), "r_squared");
}

// 0, 1 and 2^18 at 0, 1 and 2 lie on x^18, whose coefficient is the first x value.
void PolyDeviation::r_squared_of_more_coefficients_than_a_range_holds()
{
    auto cfg = std::make_unique<ZERL_CFG>();
    cfg->table.table_type = TABLE_POLY;
    cfg->table.poly[0].x[0] = 1.;
    cfg->long_current.num_points = 3;
    for (int i = 0; i < 3; ++i) {
        cfg->point_stats[i].eu_mean = i;
        cfg->point_stats[i].mv_mean = std::pow(i, 18);
    }
    cfg->table.poly[0].num_coeffs = 19;
    QCOMPARE(poly_r_squared(*cfg), 1.);
    cfg->table.poly[0].num_coeffs = 18;
    QVERIFY(poly_r_squared(*cfg) < 0.);
}

LOOP_TEST(PolyDeviation);
#include "test_polydeviation.moc"
