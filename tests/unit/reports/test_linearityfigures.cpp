// SPDX-License-Identifier: GPL-3.0-or-later
//
// The arithmetic of a linearity verification.
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include "support/testmain.h"
#include "unit/reports/linearitycases.h"

namespace
{

constexpr double INF = std::numeric_limits<double>::infinity();

// A line through these has residuals 1, -2 and 1 at a slope of 1.
const std::vector<Pair> BENT = {{0.0, -1.0}, {50.0, 52.0}, {100.0, 99.0}};

double relative(double actual, double exact)
{
    return std::fabs(actual / exact - 1.0);
}

} // namespace

class LinearityFiguresTest : public QObject
{
    Q_OBJECT

private slots:
    void units_data();
    void units();
    void units_of_16_bytes_are_cut();
    void fahrenheit_is_computed_on_the_absolute_scale();
    void raw_and_shifted_values();
    void second_call_grows_the_standard_error_by_root_two();
    void two_points_have_no_standard_error();
    void no_points();
    void no_points_keep_the_largest_error_of_before();
    void every_point_excluded();
    void reference_of_zero_is_excluded_from_the_relative_error_alone();
    void exactly_a_fifth_is_not_excluded();
    void max_expected_val_never_entered();
    void magnitudes_at_or_above_9999_9();
    void x_min_has_the_smallest_magnitude_and_its_sign();
    void first_of_equal_points_is_found();
    void relative_error_has_its_sign();
    void only_the_sum_of_y_is_rounded();
    void x_max_is_not_the_largest_reference();
    void counts_outside_what_a_session_holds_data();
    void counts_outside_what_a_session_holds();
    void what_is_not_computed_is_kept();
    void check_of_the_intercept_data();
    void check_of_the_intercept();
    void check_of_the_slope_data();
    void check_of_the_slope();
    void check_of_the_standard_error_data();
    void check_of_the_standard_error();
    void check_of_r_squared_data();
    void check_of_r_squared();
};

void LinearityFiguresTest::units_data()
{
    const auto row = test_columns<QByteArray, QByteArray, double, QByteArray>("units", "upper",
                                                                              "offset", "absolute");
    row("Fahrenheit", "DEG_F", "DEG_F", 459.69, "deg R");
    row("Fahrenheit in small letters", "deg_f", "DEG_F", 459.69, "deg R");
    row("Celsius", "DEG_C", "DEG_C", 273.15, "Kelvin");
    row("Celsius in letters of both kinds", "Deg_c", "DEG_C", 273.15, "Kelvin");
    row("units in small letters come out in capitals", "kPa", "KPA", 0.0, "KPA");
    row("Kelvin has no offset", "DEG_K", "DEG_K", 0.0, "DEG_K");
    row("a blank behind it is another unit", "DEG_F ", "DEG_F ", 0.0, "DEG_F ");
    row("longer keyword", "DEG_FF", "DEG_FF", 0.0, "DEG_FF");
    row("no units", "", "", 0.0, "");
}

void LinearityFiguresTest::units()
{
    QFETCH(QByteArray, units);
    const LINE_RPT record = figures_of(BENT, 100.0, units.constData()).record;
    QTEST(QByteArray(record.units_upper), "upper");
    QTEST(record.unit_zero_offset, "offset");
    QTEST(QByteArray(record.abs_units), "absolute");
}

void LinearityFiguresTest::units_of_16_bytes_are_cut()
{
    auto units = std::make_unique<char[]>(16); // so that a read behind it is noticed
    std::memset(units.get(), 'u', 16);
    const LINE_RPT record =
        linearity_figures(session_points(BENT).data(), 3, units.get(), {}).record;
    QCOMPARE(QByteArray(record.units_upper), QByteArray(15, 'U'));
    QCOMPARE(QByteArray(record.abs_units), QByteArray(15, 'U'));
}

void LinearityFiguresTest::fahrenheit_is_computed_on_the_absolute_scale()
{
    const std::vector<Pair> pairs = {{100.0, 101.0}, {200.0, 200.0}, {300.0, 301.0}};
    const LINE_RPT record = figures_of(pairs, 400.0, "DEG_F").record;
    QCOMPARE(record.x[0], 559.69);
    QCOMPARE(record.x_max, 859.69);
    QCOMPARE(record.avg_x, 659.69);
    QCOMPARE(record.a1, 1.0);
    QVERIFY(std::fabs(record.a0 - 2.0 / 3.0) < 1e-10);
    QVERIFY(std::fabs(record.max_rel_error - 1.0 / 559.69) < 1e-15);
    QVERIFY(relative(record.see, std::sqrt(2.0 / 3.0)) < 1e-10);
    QVERIFY(std::fabs(record.r2 - (1.0 - (2.0 / 3.0) / (20000.0 + 2.0 / 3.0))) < 1e-12);
}

void LinearityFiguresTest::raw_and_shifted_values()
{
    POINT_STATISTICS point = {};
    point.eu_reference = 1.0;
    point.eu_mean = 2.0;
    point.eu_std = 3.0;
    point.eu_min = 4.0;
    point.eu_max = 5.0;
    const LINE_RPT r = linearity_figures(&point, 1, "DEG_C\0\0\0\0\0\0\0\0\0\0", {}).record;
    QCOMPARE(r.entered_points, 1);
    const double *raw[] = {r.x_raw, r.y_avg_raw, r.y_std_raw, r.y_min_raw, r.y_max_raw};
    const double *shifted[] = {r.x, r.y_avg, r.y_std, r.y_min, r.y_max};
    for (int k = 0; k < 5; ++k) {
        QCOMPARE(raw[k][0], k + 1.0);
        QCOMPARE(shifted[k][0], k + 1.0 + 273.15); // the deviation too
    }
}

void LinearityFiguresTest::second_call_grows_the_standard_error_by_root_two()
{
    const LINE_RPT first = figures_of(BENT, 100.0).record;
    QCOMPARE(first.see_sum, 6.0);
    QCOMPARE(first.see, std::sqrt(6.0));
    const LINE_RPT second = figures_of(BENT, 100.0, "kPa", first).record;
    QCOMPARE(second.a0, first.a0);
    QCOMPARE(second.a1, first.a1);
    QCOMPARE(second.r2, first.r2);
    QCOMPARE(second.see_sum, 12.0);
    QCOMPARE(second.see, first.see * std::sqrt(2.0));
}

void LinearityFiguresTest::two_points_have_no_standard_error()
{
    const LinearityFigures figures = figures_of({{0.0, 1.0}, {100.0, 102.0}}, 100.0);
    QCOMPARE(figures.record.see, -999.9);
    QCOMPARE(figures.record.see_check_frac, -999.9);
    QCOMPARE(figures.record.a1, 1.01);
    QCOMPARE(figures.record.r2, 1.0);
}

void LinearityFiguresTest::no_points()
{
    const LinearityFigures figures = figures_of({}, 100.0);
    const LINE_RPT &r = figures.record;
    QCOMPARE(r.entered_points, 0);
    for (const double value :
         {r.avg_x, r.avg_y, r.a0, r.a1, r.r2, r.max_rel_error, r.intercept_check,
          r.intercept_check_frac, r.slope_check, r.r2_check})
        QVERIFY(std::isnan(value));
    QCOMPARE(r.see, -999.9);
    QCOMPARE(r.see_check_frac, -999.9);
    QCOMPARE(r.max_abs_error, 0.0);
    QCOMPARE(figures.min_abs_x, 9999.9);
}

void LinearityFiguresTest::no_points_keep_the_largest_error_of_before()
{
    const LINE_RPT before = figures_of({{7.0, 9.0}, {8.0, 8.0}, {9.0, 9.0}}, 10.0).record;
    const LINE_RPT r = figures_of({}, 10.0, "kPa", before).record;
    QCOMPARE(r.max_abs_error, 2.0);
    QCOMPARE(r.max_rel_error_work, 2.0);
    QCOMPARE(r.x_min, 7.0);
    QCOMPARE(r.max_abs_error_x, 7.0);
    QCOMPARE(r.max_rel_error, 0.0); // the errors are this run's, and it has none
    QCOMPARE(r.see_sum, before.see_sum);
}

void LinearityFiguresTest::every_point_excluded()
{
    LINE_RPT record = {};
    record.max_rel_error_work = 12.25;
    const LinearityFigures figures =
        figures_of({{-5.0, -6.0}, {10.0, 10.5}, {19.0, 20.0}}, 100.0, "kPa", record);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(figures.columns.abs_rel_error[i], -999.9);
    QCOMPARE(figures.rel_index, 0);
    QCOMPARE(figures.record.max_rel_error_x, -5.0);
    QCOMPARE(figures.record.max_rel_error, -0.2); // of point 0
    QCOMPARE(figures.record.max_rel_error_work, 12.25);
}

void LinearityFiguresTest::reference_of_zero_is_excluded_from_the_relative_error_alone()
{
    const LinearityFigures figures = figures_of({{0.0, 5.0}, {50.0, 51.0}, {100.0, 100.0}}, 100.0);
    QCOMPARE(figures.columns.abs_rel_error[0], -999.9);
    QCOMPARE(figures.columns.abs_rel_error[1], 2.0);
    QCOMPARE(figures.rel_index, 1);
    QCOMPARE(figures.record.max_rel_error, 0.02);
    QCOMPARE(figures.record.max_abs_error, 5.0);
    QCOMPARE(figures.abs_index, 0);
    QCOMPARE(figures.min_index, 0);
    QCOMPARE(figures.record.avg_x, 50.0);
    QCOMPARE(figures.record.avg_y, 52.0);
    QCOMPARE(figures.columns.a1n[0], 2500.0);
}

void LinearityFiguresTest::exactly_a_fifth_is_not_excluded()
{
    const LinearityFigures figures = figures_of(
        {{-20.0, -21.0}, {std::nextafter(20.0, 0.0), 20.0}, {20.0, 20.0}, {100.0, 100.0}}, 100.0);
    QCOMPARE(figures.columns.abs_rel_error[0], 5.0);
    QCOMPARE(figures.columns.abs_rel_error[1], -999.9);
    QCOMPARE(figures.columns.abs_rel_error[2], 0.0);
}

void LinearityFiguresTest::max_expected_val_never_entered()
{
    const LinearityFigures figures = figures_of({{0.0, 0.5}, {5.0, 5.25}, {10.0, 9.5}}, 0.0);
    QCOMPARE(figures.record.x_max, 0.0);
    QCOMPARE(figures.columns.abs_rel_error[0], INF); // none is excluded
    QCOMPARE(figures.columns.abs_rel_error[1], 5.0);
    QCOMPARE(figures.columns.abs_rel_error[2], 5.0);
    QCOMPARE(figures.record.intercept_check_frac, INF);
    QCOMPARE(figures.record.see_check_frac, INF);
}

void LinearityFiguresTest::magnitudes_at_or_above_9999_9()
{
    const LinearityFigures figures =
        figures_of({{20000.0, 1.0}, {10000.0, 2.0}, {-15000.0, 3.0}}, 20000.0);
    QCOMPARE(figures.min_abs_x, 9999.9);
    QCOMPARE(figures.min_index, 0);
    QCOMPARE(figures.record.x_min, 20000.0);
}

void LinearityFiguresTest::x_min_has_the_smallest_magnitude_and_its_sign()
{
    const LinearityFigures figures =
        figures_of({{-50.0, -50.0}, {30.0, 30.0}, {-7.0, -7.0}, {8.0, 8.0}}, 100.0);
    QCOMPARE(figures.record.x_min, -7.0);
    QCOMPARE(figures.min_index, 2);
}

void LinearityFiguresTest::first_of_equal_points_is_found()
{
    const LinearityFigures figures =
        figures_of({{50.0, 50.0}, {-25.0, -26.0}, {25.0, 26.0}, {-25.0, -26.0}}, 100.0);
    QCOMPARE(figures.min_index, 1);
    QCOMPARE(figures.abs_index, 1);
    QCOMPARE(figures.rel_index, 1);
    // Relative errors are the same within 1e-6 of a percent.
    const LinearityFigures near =
        figures_of({{50.0, 50.0}, {100.0, 101.0}, {100.0, 101.0000000009}}, 100.0);
    QCOMPARE(near.rel_index, 1);
    QCOMPARE(near.abs_index, 2);
    QCOMPARE(near.record.max_rel_error_work, 1.0);
}

void LinearityFiguresTest::relative_error_has_its_sign()
{
    const LINE_RPT r = figures_of({{-40.0, -42.0}, {50.0, 50.5}, {80.0, 80.0}}, 100.0).record;
    QCOMPARE(r.max_rel_error, -0.05);
    QCOMPARE(r.max_rel_error_x, -40.0);
    QCOMPARE(r.max_rel_error_work, -2.0); // in units, no longer a percentage
    QCOMPARE(r.max_abs_error, 2.0);
}

void LinearityFiguresTest::only_the_sum_of_y_is_rounded()
{
    const LinearityFigures figures =
        figures_of({{0.0, 4e-9}, {1.0, 1.000000004}, {2.0, 2.0000000175}}, 2.0);
    QCOMPARE(figures.record.avg_y, (0.0 + 1.0 + 2.00000002) / 3.0);
    QCOMPARE(figures.record.y_avg[1], 1.000000004);
    QCOMPARE(figures.columns.error[0], 4e-9);
    QCOMPARE(figures.columns.cdd[0], (4e-9 - figures.record.avg_y) * (4e-9 - figures.record.avg_y));
}

void LinearityFiguresTest::x_max_is_not_the_largest_reference()
{
    QCOMPARE(figures_of(BENT, 37.5).record.x_max, 37.5);
    QCOMPARE(figures_of(BENT, -5.0).record.x_max, -5.0);
}

void LinearityFiguresTest::counts_outside_what_a_session_holds_data()
{
    const auto row = test_columns<int, int>("count", "read");
    row("none", 0, 0);
    row("fewer than none", -1, 0);
    row("the least of 16 bits", -32768, 0);
    row("all", 64, 64);
    row("one too many", 65, 64);
    row("the most of 16 bits", 32767, 64);
}

void LinearityFiguresTest::counts_outside_what_a_session_holds()
{
    QFETCH(int, count);
    QFETCH(int, read);
    // As many as are read, so that a sanitizer sees one read behind them.
    std::vector<POINT_STATISTICS> points(static_cast<std::size_t>(read));
    for (POINT_STATISTICS &point : points)
        point.eu_reference = point.eu_mean = 2.0;
    char units[16] = "kPa";
    const LINE_RPT r = linearity_figures(points.data(), count, units, {}).record;
    QCOMPARE(r.entered_points, count);
    for (int i = 0; i < MAX_POINTS; ++i)
        QCOMPARE(r.x[i], i < read ? 2.0 : 0.0);
    if (count == 0)
        QVERIFY(std::isnan(r.avg_x));
    else
        QCOMPARE(r.avg_x, 2.0 * read / count);
}

void LinearityFiguresTest::what_is_not_computed_is_kept()
{
    LINE_RPT record = {};
    record.max_expected_val = 100.0;
    record.min_expected_val = 1.0;
    record.validation_nominal_range_min = 2.0;
    record.validation_nominal_range_max = 3.0;
    record.x[40] = 4.0;
    qstrncpy(record.ws_qie_number, "DWT-12", sizeof record.ws_qie_number);
    qstrncpy(record.ws_range, "0-2000", sizeof record.ws_range);
    const LINE_RPT r =
        linearity_figures(session_points(BENT).data(), 3, "kPa\0\0\0\0\0\0\0\0\0\0\0\0", record)
            .record;
    QCOMPARE(r.max_expected_val, 100.0);
    QCOMPARE(r.min_expected_val, 1.0);
    QCOMPARE(r.validation_nominal_range_min, 2.0);
    QCOMPARE(r.validation_nominal_range_max, 3.0);
    QCOMPARE(r.x[40], 4.0);
    QCOMPARE(QByteArray(r.ws_qie_number), QByteArray("DWT-12"));
    QCOMPARE(QByteArray(r.ws_range), QByteArray("0-2000"));
    QCOMPARE(r.abs_error_ref_index, 0);
    QCOMPARE(r.rel_error_ref_index, 0);
}

void LinearityFiguresTest::check_of_the_intercept_data()
{
    const auto row = test_columns<double, bool>("value", "passes");
    row("zero", 0.0, true);
    row("on the limit", 0.01, true);
    row("just past the limit", std::nextafter(0.01, 1.0), false);
    row("negative, with a negative X max", -5.0, true);
    row("NaN", std::nan(""), false);
    row("infinite", INF, false);
}

void LinearityFiguresTest::check_of_the_intercept()
{
    QFETCH(double, value);
    QTEST(intercept_passes(value), "passes");
}

void LinearityFiguresTest::check_of_the_slope_data()
{
    const auto row = test_columns<double, bool>("value", "passes");
    row("0.49", 0.49, false);
    row("just below a half", std::nextafter(0.5, 0.0), false);
    row("0.5", 0.5, true);
    row("0.98", 0.98, true);
    row("1", 1.0, true);
    row("1.49", 1.49, true);
    row("just below one and a half", std::nextafter(1.5, 0.0), true);
    row("1.5", 1.5, false);
    row("1.6", 1.6, false);
    row("-1", -1.0, false);
    row("NaN", std::nan(""), false);
}

void LinearityFiguresTest::check_of_the_slope()
{
    QFETCH(double, value);
    QTEST(slope_passes(value), "passes");
}

void LinearityFiguresTest::check_of_the_standard_error_data()
{
    const auto row = test_columns<double, bool>("value", "passes");
    row("zero", 0.0, true);
    row("just below the limit", std::nextafter(0.01, 0.0), true);
    row("on the limit", 0.01, false);
    row("NaN", std::nan(""), false);
    row("infinite", INF, false);
}

void LinearityFiguresTest::check_of_the_standard_error()
{
    QFETCH(double, value);
    QTEST(see_passes(value), "passes");
}

void LinearityFiguresTest::check_of_r_squared_data()
{
    const auto row = test_columns<double, bool>("value", "passes");
    row("one", 1.0, true);
    row("a half", 0.5, true);
    row("just below a half", std::nextafter(0.5, 0.0), false);
    row("negative", -3.0, false);
    row("NaN", std::nan(""), false);
    row("infinite, negative", -INF, false);
}

void LinearityFiguresTest::check_of_r_squared()
{
    QFETCH(double, value);
    QTEST(r2_passes(value), "passes");
}

LOOP_TEST(LinearityFiguresTest);
#include "test_linearityfigures.moc"
