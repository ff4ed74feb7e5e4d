// SPDX-License-Identifier: GPL-3.0-or-later
//
// The judgement of a point against the former calibration.
#include <cmath>
#include <limits>
#include <memory>

#include <QtTest>

#include "calibration/classification.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

namespace
{

const double INFINITE = std::numeric_limits<double>::infinity();

// Former calibration y = x on 0 to 100, limits of a sensor span of 100.
std::unique_ptr<ZERL_CFG> session()
{
    auto cfg = std::make_unique<ZERL_CFG>();
    set_points(&cfg->long_previous, Points{{0.0, 0.0}, {100.0, 100.0}});
    cfg->table.ooa_tol = 0.25;
    cfg->table.oot_tol = 1.0;
    cfg->table.soot_tol = 2.0;
    return cfg;
}

} // namespace

class Classification : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { g_cfg = nullptr; }
    void status_of_a_point_data();
    void status_of_a_point();
    void error_against_the_tolerance_data();
    void error_against_the_tolerance();
    void order_of_the_limits_data();
    void order_of_the_limits();
    void biases_play_no_part();
    void point_within_judges_the_session();
    void rewritten_table_makes_the_point_green();
    void former_table_without_points();
    void style_of_a_status_data();
    void style_of_a_status();
};

void Classification::status_of_a_point_data()
{
    const auto row = test_columns<double, double, int>("mv", "reference", "status");
    row("(50, 50): no error", 50., 50., 0);
    row("(50, 50.25): error exactly 0.25", 50., 50.25, 0);
    row("(50, 50.25 and one bit)", 50., std::nextafter(50.25, 51.0), 1);
    row("(50, 50.3)", 50., 50.3, 1);
    row("(50, 51): error exactly 1", 50., 51., 1);
    row("(50, 51 and one bit)", 50., std::nextafter(51.0, 52.0), 2);
    row("(50, 51.5)", 50., 51.5, 2);
    row("(50, 52): error exactly 2", 50., 52., 2);
    row("(50, 52.01)", 50., 52.01, 3);
    row("(50, 49.75): the sign does not matter", 50., 49.75, 0);
    row("(50, 49): the sign does not matter", 50., 49., 1);
    row("(50, 48): the sign does not matter", 50., 48., 2);
    row("(50, 47.5): the sign does not matter", 50., 47.5, 3);
    row("beyond the table the last segment goes on", 110., 110., 0);
    row("a reference that is not a number is within", 50., qQNaN(), 0);
    row("millivolts that are not a number are within", qQNaN(), 50., 0);
    row("an infinite reference", 50., INFINITE, 3);
}

void Classification::status_of_a_point()
{
    QFETCH(double, mv);
    QFETCH(double, reference);
    const auto cfg = session();
    cfg->long_current.x[63] = mv;
    cfg->long_current.y[63] = reference;
    QTEST(int{point_status(*cfg, 63)}, "status");
}

void Classification::error_against_the_tolerance_data()
{
    const auto row = test_columns<double, double, bool>("error", "tolerance", "within");
    row("on the limit", 0.25, 0.25, true);
    row("on the limit, below", -0.25, 0.25, true);
    row("just past the limit", std::nextafter(0.25, 1.0), 0.25, false);
    row("just past the limit, below", -std::nextafter(0.25, 1.0), 0.25, false);
    row("a tolerance of 0 passes no error at all", 0.0, 0.0, true);
    row("and the zero of the other sign", -0.0, 0.0, true);
    row("but nothing else", 1e-300, 0.0, false);
    row("a negative tolerance passes nothing", 0.0, -1.0, false);
    row("error NaN", qQNaN(), 0.25, true);
    row("tolerance NaN", 5.0, qQNaN(), true);
    row("infinite error", INFINITE, 1e300, false);
    row("infinite tolerance", 1e300, INFINITE, true);
}

void Classification::error_against_the_tolerance()
{
    QFETCH(double, error);
    QFETCH(double, tolerance);
    QTEST(within_tolerance(error, tolerance), "within");
}

void Classification::order_of_the_limits_data()
{
    // status: of an error of 1.5
    const auto row = test_columns<double, double, double, int>("ooa", "oot", "soot", "status");
    row("the widest first: still status 0", 2.0, 1.0, 0.25, 0);
    row("the widest in the middle: status 1", 1.0, 2.0, 0.25, 1);
    row("the widest last: status 2", 1.0, 0.25, 2.0, 2);
    row("all the same and kept: status 0", 1.5, 1.5, 1.5, 0);
    row("all zero: status 3", 0.0, 0.0, 0.0, 3);
}

void Classification::order_of_the_limits()
{
    QFETCH(double, ooa);
    QFETCH(double, oot);
    QFETCH(double, soot);
    QTEST(int{status_of_error(1.5, ooa, oot, soot)}, "status");
    QTEST(int{status_of_error(-1.5, ooa, oot, soot)}, "status");
}

void Classification::biases_play_no_part()
{
    const auto cfg = session();
    cfg->long_current.x[0] = 50.0;
    cfg->long_current.y[0] = 50.25;
    cfg->table.ooa_bias = cfg->table.oot_bias = cfg->table.soot_bias = 10.0;
    QCOMPARE(int{point_status(*cfg, 0)}, 0);
    QCOMPARE(point_error(*cfg, 0), -0.25);
}

void Classification::point_within_judges_the_session()
{
    const auto cfg = session();
    g_cfg = cfg.get();
    cfg->long_current.x[5] = 50.0;
    cfg->long_current.y[5] = 51.0;
    QVERIFY(point_within(5, 1.0));
    QVERIFY(!point_within(5, 0.25));
    QVERIFY2(point_within(0, 0.0), "another point, (0, 0), is judged by itself");
}

void Classification::rewritten_table_makes_the_point_green()
{
    const auto cfg = session();
    set_points(&cfg->long_current, Points{{0.0, 3.0}, {50.0, 57.0}, {100.0, 95.0}});
    for (int i = 0; i < 3; ++i)
        QCOMPARE(int{point_status(*cfg, i)}, 3);
    cfg->long_previous = cfg->long_current;
    for (int i = 0; i < 3; ++i)
        QCOMPARE(int{point_status(*cfg, i)}, 0);
}

// The host reads 0 from such a table, so the reference alone is the error.
void Classification::former_table_without_points()
{
    const auto cfg = session();
    cfg->long_previous.num_points = 0;
    cfg->long_current.x[0] = 50.0;
    cfg->long_current.y[0] = 1.0;
    QCOMPARE(int{point_status(*cfg, 0)}, 1);
    cfg->long_current.y[0] = 50.0;
    QCOMPARE(int{point_status(*cfg, 0)}, 3);
}

void Classification::style_of_a_status_data()
{
    const auto row = test_columns<int, QByteArray>("status", "style");
    row("0 no adjustment needed, green", 0, QByteArray("background-color: rgb(0,255,0)"));
    row("1 out of adjustment, yellow", 1, QByteArray("background-color: rgb(255, 255, 127)"));
    row("2 out of tolerance, orange", 2, QByteArray("background-color: rgb(255,170,0)"));
    row("3 significantly out of tolerance, red", 3,
        QByteArray("background-color: rgb(255, 78, 78)"));
    row("beyond 3 as 3", 65535, QByteArray("background-color: rgb(255, 78, 78)"));
}

void Classification::style_of_a_status()
{
    QFETCH(int, status);
    QTEST(QByteArray(status_style(static_cast<uint16_t>(status))), "style");
}

LOOP_TEST(Classification);
#include "test_classification.moc"
