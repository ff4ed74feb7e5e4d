// SPDX-License-Identifier: GPL-3.0-or-later
//
// The live polynomial fit: number of coefficients, where they come from and go
// to, and the samples of the curve.
#include <cmath>
#include <memory>

#include <QtTest>

#include "calibration/polycurve.h"
#include "host/operations.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

namespace
{

// n points on 1 + 2x + 3x^2 from 0 on, 1 mV apart.
Points parabola(int n)
{
    Points points;
    for (int i = 0; i < n; ++i)
        points.emplace_back(i, 1.0 + 2.0 * i + 3.0 * i * i);
    return points;
}

std::unique_ptr<ZERL_CFG> session(int type, int range, const Points &points)
{
    auto cfg = std::make_unique<ZERL_CFG>();
    cfg->table.table_type = static_cast<uint16_t>(type);
    cfg->table.poly_range_index = static_cast<int16_t>(range);
    set_points(&cfg->table.poly[type == TABLE_POLY_RANGE ? range : 0], points);
    return cfg;
}

} // namespace

class PolyCurve : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void number_of_coefficients_data();
    void number_of_coefficients();
    void degree_is_clamped_by_the_points_data();
    void degree_is_clamped_by_the_points();
    void fitted_coefficients_are_stored();
    void range_in_work_is_fitted();
    void poly_table_with_an_index_stores_into_that_range();
    void stored_coefficients_serve_once_after_a_change_of_type();
    void clamp_comes_before_the_stored_coefficients();
    void first_eight_coefficients_are_zeroed_first();
    void every_point_goes_into_the_fit();
    void without_fit_the_stored_coefficients_serve();
    void samples_of_the_curve();
    void extent_of_the_samples_data();
    void extent_of_the_samples();
    void range_without_points();
    void odd_point_counts_data();
    void odd_point_counts();

private:
    void update(ZERL_CFG *cfg, bool fit = true, double from = 0.0, double to = 10.0);

    POLY_PLOT_CURVE m_curve = {};
    double m_y_min = 0.0;
    double m_y_max = 0.0;
};

void PolyCurve::init()
{
    g_poly_order_text = QStringLiteral("2");
    g_cal_type_changed = 0;
    m_curve = {};
}

void PolyCurve::update(ZERL_CFG *cfg, bool fit, double from, double to)
{
    update_poly_curve(cfg, &m_curve, &m_y_min, &m_y_max, fit, from, to);
}

void PolyCurve::number_of_coefficients_data()
{
    const auto row = test_columns<int, int, int>("degree", "points", "coefficients");
    row("degree 7 with 5 points: 4 coefficients", 7, 5, 4);
    row("degree 4 with 5 points: exact, 5 coefficients", 4, 5, 5);
    row("degree 5 with 5 points: 4 coefficients", 5, 5, 4);
    row("degree 3 with 5 points: 4 coefficients", 3, 5, 4);
    row("degree 7 with 64 points", 7, 64, 8);
    row("degree 1 with 2 points", 1, 2, 2);
    row("degree 1 with 1 point: none", 1, 1, 0);
    row("degree 1 without points: none", 1, 0, 0);
    row("degree 0", 0, 5, 1);
    row("a degree beyond what a range holds", 40, 64, 18);
    row("a negative degree", -5, 5, 0);
}

void PolyCurve::number_of_coefficients()
{
    QFETCH(int, degree);
    QFETCH(int, points);
    QTEST(int{fit_coeff_count(degree, points)}, "coefficients");
}

void PolyCurve::degree_is_clamped_by_the_points_data()
{
    const auto row = test_columns<QString, int, int>("degree", "points", "coefficients");
    row("degree 7 with 5 points: 4 coefficients", "7", 5, 4);
    row("degree 4 with 5 points: 5 coefficients", "4", 5, 5);
    row("degree 2 with 2 points: 1 coefficient", "2", 2, 1);
    row("a text that is no number is degree 0", "", 5, 1);
}

void PolyCurve::degree_is_clamped_by_the_points()
{
    QFETCH(QString, degree);
    QFETCH(int, points);
    QFETCH(int, coefficients);
    g_poly_order_text = degree;
    const auto cfg = session(TABLE_POLY, 0, parabola(points));
    update(cfg.get());
    QCOMPARE(int{cfg->table.poly[0].num_coeffs}, coefficients);
    std::vector<double> expected(8, 0.0);
    const POLY_RANGE_RECORD &range = cfg->table.poly[0];
    polynomialfit(points, coefficients, range.x, range.y, expected.data());
    for (int i = 0; i < 8; ++i)
        QCOMPARE(range.coeffs[i], expected[static_cast<std::size_t>(i)]);
}

void PolyCurve::fitted_coefficients_are_stored()
{
    const auto cfg = session(TABLE_POLY, 0, parabola(6));
    set_coeffs(&cfg->table.poly[0], {9.0, 9.0, 9.0, 9.0});
    update(cfg.get());
    const POLY_RANGE_RECORD &range = cfg->table.poly[0];
    QCOMPARE(range.num_coeffs, int16_t{3});
    QCOMPARE(range.coeffs[0], 1.0);
    QCOMPARE(range.coeffs[1], 2.0);
    QCOMPARE(range.coeffs[2], 3.0);
    QCOMPARE(range.coeffs[3], 0.0);
}

void PolyCurve::range_in_work_is_fitted()
{
    const auto cfg = session(TABLE_POLY_RANGE, 5, parabola(6));
    set_points(&cfg->table.poly[0], line_points(4));
    update(cfg.get());
    QCOMPARE(cfg->table.poly[5].num_coeffs, int16_t{3});
    QCOMPARE(cfg->table.poly[5].coeffs[2], 3.0);
    QCOMPARE(cfg->table.poly[0].num_coeffs, int16_t{0});
}

// The points of a POLY table are those of range 0, whatever the index.
void PolyCurve::poly_table_with_an_index_stores_into_that_range()
{
    const auto cfg = session(TABLE_POLY, 3, parabola(6));
    update(cfg.get());
    QCOMPARE(cfg->table.poly[3].num_coeffs, int16_t{3});
    QCOMPARE(cfg->table.poly[3].coeffs[1], 2.0);
    QCOMPARE(cfg->table.poly[0].num_coeffs, int16_t{0});
    QCOMPARE(cfg->table.poly[0].coeffs[1], 0.0);
}

// A polynomial that a table brought is kept at the first update after binding.
void PolyCurve::stored_coefficients_serve_once_after_a_change_of_type()
{
    g_cal_type_changed = 1;
    const auto cfg = session(TABLE_POLY, 0, parabola(6));
    const std::vector<double> stored = {0.125, -0.25, 0.5};
    set_coeffs(&cfg->table.poly[0], stored);
    update(cfg.get());
    QCOMPARE(g_cal_type_changed, int16_t{0});
    QCOMPARE(cfg->table.poly[0].num_coeffs, int16_t{3});
    for (std::size_t i = 0; i < stored.size(); ++i)
        QVERIFY(cfg->table.poly[0].coeffs[i] == stored[i]);
    QCOMPARE(m_curve.pairs[100].y, 0.125 - 2.5 + 50.0);
    update(cfg.get());
    QCOMPARE(cfg->table.poly[0].coeffs[0], 1.0);
    QCOMPARE(cfg->table.poly[0].coeffs[2], 3.0);
}

void PolyCurve::clamp_comes_before_the_stored_coefficients()
{
    g_cal_type_changed = 1;
    g_poly_order_text = QStringLiteral("7");
    const auto cfg = session(TABLE_POLY, 0, parabola(5));
    set_coeffs(&cfg->table.poly[0], {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0});
    update(cfg.get());
    QCOMPARE(cfg->table.poly[0].num_coeffs, int16_t{4});
    QCOMPARE(cfg->table.poly[0].coeffs[3], 4.0);
    QCOMPARE(cfg->table.poly[0].coeffs[4], 0.0);
}

void PolyCurve::first_eight_coefficients_are_zeroed_first()
{
    const auto cfg = session(TABLE_POLY, 0, parabola(6));
    set_coeffs(&cfg->table.poly[0], std::vector<double>(18, 9.0));
    update(cfg.get());
    for (int i = 3; i < 8; ++i)
        QCOMPARE(cfg->table.poly[0].coeffs[i], 0.0);
    for (int i = 8; i < 18; ++i)
        QCOMPARE(cfg->table.poly[0].coeffs[i], 9.0);
    QCOMPARE(cfg->table.poly[0].x[1], 1.0);
}

// Equal points weigh twice, and count as points.
void PolyCurve::every_point_goes_into_the_fit()
{
    g_poly_order_text = QStringLiteral("1");
    const auto cfg = session(TABLE_POLY, 0, {{0.0, 0.0}, {0.0, 3.0}, {0.0, 3.0}, {10.0, 5.0}});
    update(cfg.get());
    QCOMPARE(cfg->table.poly[0].num_coeffs, int16_t{2});
    QCOMPARE(cfg->table.poly[0].coeffs[0], 2.0);
    QCOMPARE(cfg->table.poly[0].coeffs[1], 0.3);
}

void PolyCurve::without_fit_the_stored_coefficients_serve()
{
    g_cal_type_changed = 1;
    g_poly_order_text = QStringLiteral("1");
    const auto cfg = session(TABLE_POLY_RANGE, 2, {});
    set_coeffs(&cfg->table.poly[2], {4.0, 0.5, 100.0});
    update(cfg.get(), false, 0.0, 10000.0);
    QCOMPARE(m_curve.count, uint16_t{101});
    QCOMPARE(m_curve.pairs[0].y, 4.0);
    QCOMPARE(m_curve.pairs[100].x, 10000.0);
    QCOMPARE(m_curve.pairs[100].y, 5004.0); // of degree 1: two of the three
    QCOMPARE(cfg->table.poly[2].num_coeffs, int16_t{3});
    QCOMPARE(cfg->table.poly[2].coeffs[2], 100.0);
    QVERIFY2(g_cal_type_changed == 1, "kept for the next fit");
}

void PolyCurve::samples_of_the_curve()
{
    const auto cfg = session(TABLE_POLY, 0, parabola(6));
    update(cfg.get(), true, -2.0, 3.0);
    QCOMPARE(m_curve.count, uint16_t{101});
    for (int i = 0; i <= 100; ++i) {
        const double x = -2.0 + 5.0 * i / 100.0;
        QVERIFY(std::fabs(m_curve.pairs[i].x - x) < 1e-12);
        QVERIFY(std::fabs(m_curve.pairs[i].y - (1.0 + 2.0 * x + 3.0 * x * x)) < 1e-10);
    }
    // The parabola's lowest point, -1/3, lies between two samples; the nearest
    // is -0.35.
    QVERIFY(std::fabs(m_y_min - (1.0 - 0.7 + 3.0 * 0.1225)) < 1e-10);
    QVERIFY(std::fabs(m_y_max - 34.0) < 1e-10);
}

void PolyCurve::extent_of_the_samples_data()
{
    const auto row = test_columns<double, double, double>("constant", "y_min", "y_max");
    row("one value is both ends", 5.0, 5.0, 5.0);
    row("above the start value of the minimum", 2e6, 999999.0, 2e6);
    row("below the start value of the maximum", -2e6, -2e6, -999999.0);
    row("not a number: the start values stay", qQNaN(), 999999.0, -999999.0);
}

void PolyCurve::extent_of_the_samples()
{
    QFETCH(double, constant);
    g_poly_order_text = QStringLiteral("0");
    const auto cfg = session(TABLE_POLY, 0, {});
    set_coeffs(&cfg->table.poly[0], {constant});
    update(cfg.get(), false, 0.0, 10000.0);
    QTEST(m_y_min, "y_min");
    QTEST(m_y_max, "y_max");
}

void PolyCurve::range_without_points()
{
    const auto cfg = session(TABLE_POLY, 0, {});
    set_coeffs(&cfg->table.poly[0], {4.0, 0.5});
    update(cfg.get());
    QCOMPARE(cfg->table.poly[0].num_coeffs, int16_t{0});
    QCOMPARE(m_curve.count, uint16_t{101});
    QCOMPARE(m_curve.pairs[50].y, 0.0);
}

void PolyCurve::odd_point_counts_data()
{
    const auto row = test_columns<int, int>("count", "index");
    row("more points than a range holds", 65, 0);
    row("far more", 32767, 0);
    row("negative", -1, 0);
    row("index past the last range", 64, 8);
    row("negative index", 64, -1);
}

void PolyCurve::odd_point_counts()
{
    QFETCH(int, count);
    QFETCH(int, index);
    g_poly_order_text = QStringLiteral("1");
    const auto cfg = session(TABLE_POLY_RANGE, 0, {});
    for (POLY_RANGE_RECORD &range : cfg->table.poly) {
        set_points(&range, line_points(64));
        range.num_points = static_cast<int16_t>(count);
    }
    cfg->table.poly_range_index = static_cast<int16_t>(index);
    update(cfg.get());
    const POLY_RANGE_RECORD &range = cfg->table.poly[index > 7 ? 7 : 0];
    QCOMPARE(int{range.num_coeffs}, count < 0 ? 0 : 2);
    if (count > 0)
        QCOMPARE(range.coeffs[1], 2.0);
}

LOOP_TEST(PolyCurve);
#include "test_polycurve.moc"
