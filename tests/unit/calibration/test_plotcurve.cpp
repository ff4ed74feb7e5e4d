// SPDX-License-Identifier: GPL-3.0-or-later
//
// Long tables as samples of the plot.
#include <QtTest>

#include "calibration/plotcurve.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

class PlotCurve : public QObject
{
    Q_OBJECT

private slots:
    void tail_sits_on_the_last_point_data();
    void tail_sits_on_the_last_point();
    void table_without_points_gives_zero_pairs();
    void number_of_points_stays_within_the_table_data();
    void number_of_points_stays_within_the_table();
    void unused_points_are_cleared_data() { number_of_points_stays_within_the_table_data(); }
    void unused_points_are_cleared();
};

void PlotCurve::tail_sits_on_the_last_point_data()
{
    QTest::addColumn<int>("points");
    QTest::newRow("one point fills the curve") << 1;
    QTest::newRow("two points") << 2;
    QTest::newRow("63 points") << 63;
    QTest::newRow("64 points have no tail") << 64;
}

void PlotCurve::tail_sits_on_the_last_point()
{
    QFETCH(int, points);
    LONG_TABLE table = {};
    set_points(&table, line_points(64));
    table.num_points = static_cast<int16_t>(points);
    PLOT_CURVE curve = {};
    fill_plot_curve(&table, &curve);
    QCOMPARE(curve.count, uint16_t{64});
    for (int i = 0; i < MAX_POINTS; ++i) {
        const int source = qMin(i, points - 1);
        QCOMPARE(curve.pairs[i].x, table.x[source]);
        QCOMPARE(curve.pairs[i].y, table.y[source]);
    }
}

void PlotCurve::table_without_points_gives_zero_pairs()
{
    for (const int16_t points : {int16_t{0}, int16_t{-1}}) {
        LONG_TABLE table = {};
        set_points(&table, line_points(64));
        table.num_points = points;
        PLOT_CURVE curve;
        std::memset(&curve, 0x55, sizeof curve);
        fill_plot_curve(&table, &curve);
        QCOMPARE(curve.count, uint16_t{64});
        for (const PLOT_PAIR &pair : curve.pairs) {
            QCOMPARE(pair.x, 0.0);
            QCOMPARE(pair.y, 0.0);
        }
    }
}

void PlotCurve::number_of_points_stays_within_the_table_data()
{
    const auto row = test_columns<int, int>("recorded", "used");
    row("none", 0, 0);
    row("some", 7, 7);
    row("all", 64, 64);
    row("just past all", 65, 64);
    row("largest", 32767, 64);
    row("negative", -1, 0);
    row("smallest", -32768, 0);
}

void PlotCurve::number_of_points_stays_within_the_table()
{
    QFETCH(int, recorded);
    QFETCH(int, used);
    LONG_TABLE table = {};
    set_points(&table, line_points(64));
    table.num_points = static_cast<int16_t>(recorded);
    QCOMPARE(point_count(table), used);
    PLOT_CURVE curve = {};
    fill_plot_curve(&table, &curve);
    QCOMPARE(curve.pairs[63].x, used == 0 ? 0.0 : table.x[used - 1]);
}

void PlotCurve::unused_points_are_cleared()
{
    QFETCH(int, recorded);
    QFETCH(int, used);
    LONG_TABLE table = {};
    set_points(&table, line_points(64));
    table.num_points = static_cast<int16_t>(recorded);
    table.slope[63] = 2.0;
    clear_unused_points(&table);
    for (int i = 0; i < MAX_POINTS; ++i) {
        QCOMPARE(table.x[i], i < used ? 10.0 * (i + 1) : 0.0);
        QCOMPARE(table.y[i], i < used ? 20.0 * (i + 1) + 1.0 : 0.0);
    }
    QCOMPARE(table.slope[63], 2.0);
    QCOMPARE(int{table.num_points}, recorded);
}

LOOP_TEST(PlotCurve);
#include "test_plotcurve.moc"
