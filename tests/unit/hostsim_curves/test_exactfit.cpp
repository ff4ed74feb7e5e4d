// SPDX-License-Identifier: GPL-3.0-or-later
//
// The polynomial fit against the exact solution in fractions, on random sets of
// points. FIT_SEED gives another seed than the fixed one, FIT_SETS another
// number of sets in each family.
#include <QTest>

#include <cmath>
#include <limits>

#include "exactfit.h"
#include "host/operations.h"
#include "pointsets.h"
#include "support/hostlog.h"
#include "support/testmain.h"

using exactfit::Exact;
using pointsets::Family;
using pointsets::Set;
using pointsets::Values;
Q_DECLARE_METATYPE(Family)
Q_DECLARE_METATYPE(Values)

namespace
{

constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double LEAST = std::numeric_limits<double>::denorm_min();
constexpr double LARGEST = std::numeric_limits<double>::max();

int number_from(const char *variable, int otherwise)
{
    bool given = false;
    const int number = qEnvironmentVariableIntValue(variable, &given);
    return given ? number : otherwise;
}

Values fit(const Set &set)
{
    Values coeffs(set.coeff_count);
    polynomialfit(static_cast<int32_t>(set.x.size()), static_cast<int32_t>(set.coeff_count),
                  set.x.data(), set.y.data(), coeffs.data());
    return coeffs;
}

// Largest distance of a coefficient from the exact one.
double distance(const Set &set)
{
    const Values coeffs = fit(set);
    const std::vector<Exact> exact = exactfit::least_squares(set.x, set.y, set.coeff_count);
    double worst = 0.0;
    for (std::size_t k = 0; k < coeffs.size(); ++k)
        worst = std::max(worst, exactfit::ulps(coeffs[k], exact[k]));
    return worst;
}

Exact fraction(long numerator, long denominator, long exponent)
{
    return {mpq_class(numerator, denominator), exponent};
}

// A group of points a few units in the last place apart, with values that
// differ little or not at all, and a point on either side.
Set flat_group(std::mt19937_64 &random)
{
    Set set;
    const std::size_t n = 8 + random() % 8;
    const double noise = random() % 2 == 0 ? 0.0 : 0x1p-52;
    for (std::size_t i = 0; i < n; ++i) {
        set.x.push_back(10.0 + static_cast<double>(random() % 64) * 0x1p-49);
        set.y.push_back(1.25 + noise * static_cast<double>(random() % 4));
    }
    set.x.insert(set.x.end(), {2.0, 23.0});
    set.y.insert(set.y.end(), {1.7, 9.1});
    set.coeff_count = 5 + random() % 4;
    return set;
}

} // namespace

class ExactFit : public QObject
{
    Q_OBJECT

private slots:
    void units_in_the_last_place_data();
    void units_in_the_last_place();
    void fractions_of_small_sets_data();
    void fractions_of_small_sets();
    void every_coefficient_is_within_one_unit_data();
    void every_coefficient_is_within_one_unit();
    void two_set_points_with_a_little_scatter_and_one_point_far_off();
    void coefficients_below_the_normal_range();
    void extreme_magnitudes_never_give_nan();
    void what_62_digits_cannot_settle_is_logged();
    void ordinary_sets_leave_no_word_in_the_log();
};

void ExactFit::units_in_the_last_place_data()
{
    const auto row = test_columns<double, long, long, long, double>(
        "value", "numerator", "denominator", "exponent", "distance");
    row("equal", 3.0, 3L, 1L, 0L, 0.0);
    row("half a unit above one", 1.0, ((1L << 53) + 1), 1L, -53L, 0.5);
    row("just below a power of two the unit is halved", 1.0, ((1L << 54) - 1), 1L, -54L, 0.5);
    row("a third", 1.0 / 3, 1L, 3L, 0L, 1.0 / 3);
    row("another sign", -1.0, 1L, 1L, 0L, 0x1p53);
    row("zero is zero", 0.0, 0L, 1L, 0L, 0.0);
    row("minus zero is zero", -0.0, 0L, 1L, 0L, 0.0);
    row("what should be zero", LEAST, 0L, 1L, 0L, INFINITE);
    row("zero for a small number", 0.0, 1L, 1L, -200L, 0x1p52);
    row("subnormal: the unit is the least number", 2 * LEAST, 3L, 1L, -1074L, 1.0);
    row("too small for a double", 0.0, 1L, 1L, -1076L, 0.25);
    row("too large for a double", INFINITE, 1L, 1L, 1024L, 0.0);
    row("infinity for the largest double", INFINITE, 1L, 1L, 1023L, INFINITE);
    row("not a number", qQNaN(), 1L, 1L, 0L, INFINITE);
}

void ExactFit::units_in_the_last_place()
{
    QFETCH(double, value);
    QFETCH(long, numerator);
    QFETCH(long, denominator);
    QFETCH(long, exponent);
    QFETCH(double, distance);
    const double found = exactfit::ulps(value, fraction(numerator, denominator, exponent));
    QVERIFY2(std::fabs(found - distance) <= 1e-9 || found == distance,
             qPrintable(QString::number(found)));
}

void ExactFit::fractions_of_small_sets_data()
{
    const auto row = test_columns<Values, Values, Values>("x", "y", "coeffs");
    row("line through two points", Values{0, 10}, Values{1, 21}, Values{1, 2});
    row("line through three points", Values{0, 1, 2}, Values{0, 3, 3}, Values{0.5, 1.5});
    row("fractions and signs", Values{-0.5, 0.25}, Values{0.5, -1}, Values{-0.5, -2});
    row("one x: the mean, no slope", Values{4, 4}, Values{1, 2}, Values{1.5, 0});
    row("square", Values{-2, -1, 0, 1, 2}, Values{4, 1, 0, 1, 4}, Values{0, 0, 1});
    row("the ends of the range", Values{0, LARGEST}, Values{LEAST, LEAST}, Values{LEAST, 0});
}

void ExactFit::fractions_of_small_sets()
{
    QFETCH(Values, x);
    QFETCH(Values, y);
    QFETCH(Values, coeffs);
    const std::vector<Exact> exact = exactfit::least_squares(x, y, coeffs.size());
    for (std::size_t k = 0; k < coeffs.size(); ++k)
        QCOMPARE(exactfit::ulps(coeffs[k], exact[k]), 0.0);
}

void ExactFit::every_coefficient_is_within_one_unit_data()
{
    QTest::addColumn<Family>("family");
    QTest::newRow("noise") << Family::Noise;
    QTest::newRow("smooth curves") << Family::Smooth;
    QTest::newRow("as many coefficients as points") << Family::AsManyAsPoints;
    QTest::newRow("few distinct x") << Family::FewDistinct;
    QTest::newRow("points about a few set points, some far off") << Family::Clusters;
    QTest::newRow("far from zero") << Family::FarFromZero;
    QTest::newRow("x a few units in the last place apart") << Family::NearEqual;
    QTest::newRow("a lower degree runs through all points") << Family::ExactPolynomial;
}

void ExactFit::every_coefficient_is_within_one_unit()
{
    QFETCH(Family, family);
    const auto seed = static_cast<std::uint32_t>(number_from("FIT_SEED", 20261122));
    const int sets = number_from("FIT_SETS", 3000);
    double worst = 0.0;
    for (int i = 0; i < sets; ++i) {
        const auto number = static_cast<std::uint32_t>(i);
        const Set set = pointsets::Generator(seed, family, number).make(family);
        const double found = distance(set);
        worst = std::max(worst, found);
        QVERIFY2(found <= 1.0, qPrintable(QStringLiteral("seed %1, set %2, %3 points, %4 "
                                                         "coefficients: off by %5 units")
                                              .arg(seed)
                                              .arg(i)
                                              .arg(set.x.size())
                                              .arg(set.coeff_count)
                                              .arg(found)));
    }
    qInfo("seed %u, %d sets, largest distance %.4f units", seed, sets, worst);
}

void ExactFit::two_set_points_with_a_little_scatter_and_one_point_far_off()
{
    const Set set = {{0.60036, 0.60017, 0.60013, 0.59962, 0.59997, 0.60049, 7.10045, 7.10015,
                      7.09965, 7.10014, 7.10007, 45.0},
                     {1.24, 1.24, 1.23, 1.16, 1.16, 1.26, 14.28, 14.22, 14.27, 14.28, 14.28, 90.45},
                     8};
    const double found = distance(set);
    QVERIFY2(found <= 1.0, qPrintable(QString::number(found)));
}

void ExactFit::coefficients_below_the_normal_range()
{
    const Set set = {{1e80, 2e80, 3.5e80, 4.25e80, 7e80}, {1, 3, 2, 5, 4}, 5};
    const std::vector<Exact> exact = exactfit::least_squares(set.x, set.y, set.coeff_count);
    QVERIFY(fit(set)[4] != 0.0);
    QVERIFY(std::fabs(fit(set)[4]) < std::numeric_limits<double>::min());
    const double found = distance(set);
    QVERIFY2(found <= 1.0, qPrintable(QString::number(found)));
}

void ExactFit::extreme_magnitudes_never_give_nan()
{
    const Values ends = {0.0,   LEAST, -LEAST,  1e-300, -1e-300,  1.0,
                         1e300, -3.0,  LARGEST, 1.5,    -LARGEST, 0x1p-1022};
    std::mt19937_64 random(3);
    for (int i = 0; i < 2000; ++i) {
        Set set;
        const std::size_t n = 1 + random() % 12;
        for (std::size_t k = 0; k < n; ++k) {
            set.x.push_back(ends[random() % ends.size()]);
            set.y.push_back(ends[random() % ends.size()]);
        }
        set.coeff_count = 1 + random() % 9;
        for (const double coeff : fit(set))
            QVERIFY2(!std::isnan(coeff), qPrintable(QString::number(i)));
    }
}

// Such a group can ask for 80 digits: what comes is finite, and there is a word
// of it.
void ExactFit::what_62_digits_cannot_settle_is_logged()
{
    std::mt19937_64 random(5);
    int beyond = 0;
    for (int i = 0; i < 300; ++i) {
        const Set set = flat_group(random);
        const HostLog log;
        for (const double coeff : fit(set))
            QVERIFY(std::isfinite(coeff));
        const QString word = QStringLiteral("polynomial of degree %1 through %2 points is not "
                                            "exact to the last digit");
        const QStringList texts = log.texts();
        if (distance(set) <= 1.0)
            continue;
        ++beyond;
        QCOMPARE(texts, QStringList(word.arg(set.coeff_count - 1).arg(set.x.size())));
    }
    QVERIFY(beyond > 0);
}

void ExactFit::ordinary_sets_leave_no_word_in_the_log()
{
    const HostLog log;
    for (const Family family :
         {Family::Noise, Family::Smooth, Family::AsManyAsPoints, Family::FewDistinct,
          Family::FarFromZero, Family::ExactPolynomial}) {
        for (std::uint32_t i = 0; i < 500; ++i)
            fit(pointsets::Generator(1, family, i).make(family));
    }
    QCOMPARE(log.texts(), QStringList());
}

PLAIN_TEST(ExactFit);
#include "test_exactfit.moc"
