// SPDX-License-Identifier: GPL-3.0-or-later
#include <QTest>

#include <cmath>
#include <limits>
#include <vector>

#include "host/operations.h"
#include "support/testmain.h"

using Values = std::vector<double>;
Q_DECLARE_METATYPE(Values)

namespace
{

int32_t count_of(const Values &values)
{
    return static_cast<int32_t>(values.size());
}

} // namespace

class Polynomials : public QObject
{
    Q_OBJECT

private slots:
    void value_data();
    void value();
    void samples_data();
    void samples();
    void the_last_sample_is_at_the_end();
    void r_squared_data();
    void r_squared();
    void r_squared_near_one();
};

void Polynomials::value_data()
{
    const auto row = test_columns<Values, double, double>("coeffs", "x", "value");
    row("no coefficients", Values{}, 3.0, 0.0);
    row("a constant", Values{5}, 3.0, 5.0);
    row("lowest power first", Values{1, 10, 100}, 3.0, 931.0);
    row("at 0", Values{-4, 7, 9}, 0.0, -4.0);
    row("negative x", Values{0, 0, 0, 2}, -2.0, -16.0);
    row("eight coefficients", Values{1, 1, 1, 1, 1, 1, 1, 1}, 2.0, 255.0);
    row("NaN x", Values{1, 1}, qQNaN(), qQNaN());
}

void Polynomials::value()
{
    QFETCH(Values, coeffs);
    QFETCH(double, x);
    QFETCH(double, value);
    QCOMPARE(poly(coeffs.data(), count_of(coeffs), x), value);
    QCOMPARE(poly(coeffs.data(), -1, x), 0.0);
}

void Polynomials::samples_data()
{
    const auto row = test_columns<int, double, double, Values>("intervals", "from", "to", "x");
    row("four equal steps", 4, 0.0, 10.0, Values{0, 2.5, 5, 7.5, 10});
    row("one interval: both ends", 1, -3.0, 8.0, Values{-3, 8});
    row("falling", 2, 6.0, 2.0, Values{6, 4, 2});
    row("no length", 2, 5.0, 5.0, Values{5, 5, 5});
    row("no intervals: the start alone", 0, 1.0, 9.0, Values{1});
    row("negative intervals: the start alone", -5, 1.0, 9.0, Values{1});
}

void Polynomials::samples()
{
    QFETCH(int, intervals);
    QFETCH(double, from);
    QFETCH(double, to);
    QFETCH(Values, x);
    const Values coeffs = {2, -1, 3};
    Values out_x(x.size() + 1, 12345.0), out_y(x.size() + 1, 12345.0);
    computepoints(coeffs.data(), count_of(coeffs), intervals, out_x.data(), out_y.data(), from, to);
    for (std::size_t i = 0; i < x.size(); ++i) {
        QCOMPARE(out_x[i], x[i]);
        QCOMPARE(out_y[i], 2 - x[i] + 3 * x[i] * x[i]);
    }
    QCOMPARE(out_x.back(), 12345.0);
    QCOMPARE(out_y.back(), 12345.0);
}

void Polynomials::the_last_sample_is_at_the_end()
{
    const double coeffs[] = {0, 1};
    double out_x[101], out_y[101];
    for (const double to : {0.1, 0.7, 33.3, 1e-7, 49.97}) {
        computepoints(coeffs, 2, 100, out_x, out_y, -0.3, to);
        QVERIFY(out_x[0] == -0.3);
        QVERIFY(out_x[100] == to);
        QVERIFY(out_y[100] == to);
        for (int i = 0; i < 100; ++i)
            QVERIFY(out_x[i] < out_x[i + 1]);
    }
}

void Polynomials::r_squared_data()
{
    const auto row = test_columns<Values, Values, Values, double>("x", "y", "coeffs", "expected");
    const Values x = {1, 2, 3};
    row("every point met", x, Values{3, 5, 7}, Values{1, 2}, 1.0);
    row("the mean explains nothing", x, Values{3, 5, 7}, Values{5}, 0.0);
    row("a quarter explained", x, Values{0, 2, 1}, Values{0, 0.5}, 0.25);
    row("worse than the mean", x, Values{1, 2, 3}, Values{4}, -6.0);
    row("far from zero", x, Values{1e9 + 1, 1e9 + 2, 1e9 + 3}, Values{1e9 + 2}, 0.0);
    row("huge values", x, Values{3e300, 5e300, 7e300}, Values{5e300}, 0.0);
    row("tiny values", x, Values{3e-300, 5e-300, 7e-300}, Values{5e-300}, 0.0);
    row("equal values, met", x, Values{4, 4, 4}, Values{4}, 1.0);
    row("equal values, missed", x, Values{4, 4, 4}, Values{5}, 0.0);
    row("one point, met", Values{2}, Values{5}, Values{1, 2}, 1.0);
    row("one point, missed", Values{2}, Values{6}, Values{1, 2}, 0.0);
    row("equal values that no double divides evenly, met", x, Values{0.1, 0.1, 0.1}, Values{0.1},
        1.0);
    row("no pairs", Values{}, Values{}, Values{1}, 0.0);
    row("no coefficients: all about 0", x, Values{-1, 0, 1}, Values{}, 0.0);
    row("NaN among the values", x, Values{1, qQNaN(), 3}, Values{1}, qQNaN());
    row("NaN throughout", x, Values(3, qQNaN()), Values{1}, qQNaN());
}

void Polynomials::r_squared()
{
    QFETCH(Values, x);
    QFETCH(Values, y);
    QFETCH(Values, coeffs);
    QFETCH(double, expected);
    const double found =
        getRSquared(x.data(), y.data(), count_of(x), coeffs.data(), count_of(coeffs));
    if (std::isnan(expected))
        QVERIFY(std::isnan(found));
    else
        QVERIFY2(std::fabs(found - expected) <= 1e-15, qPrintable(QString::number(found, 'g', 17)));
    QCOMPARE(getRSquared(x.data(), y.data(), -1, coeffs.data(), count_of(coeffs)), 0.0);
}

// A load cell's scatter: ten nines, of which none may be lost. The points miss
// the line by 1e-4 either way, so the sum of the squares is 4e-8; about the
// mean, 15, it is that of 14.9999, 5.0001, 4.9999 and 15.0001.
void Polynomials::r_squared_near_one()
{
    const double x[] = {0, 10, 20, 30};
    const double y[] = {0.0001, 9.9999, 19.9999, 30.0001};
    const double coeffs[] = {0, 1};
    const double about_mean = 500.00000004;
    const double found = getRSquared(x, y, 4, coeffs, 2);
    QVERIFY(std::fabs((1.0 - found) - 4e-8 / about_mean) < 1e-15);
}

PLAIN_TEST(Polynomials);
#include "test_polynomials.moc"
