// SPDX-License-Identifier: GPL-3.0-or-later
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

#include <random>

#include "host/operations.h"
#include "quad.h"
#include "support/testmain.h"

using Values = std::vector<double>;
Q_DECLARE_METATYPE(Values)

namespace
{

struct Result {
    int32_t status;
    Values coeffs;
};

// The slots start as 12345, so that one left unwritten shows, and the slot
// behind them must stay so.
Result fit(const Values &x, const Values &y, int coeff_count)
{
    Values store(static_cast<std::size_t>(std::max(coeff_count, 0)) + 1, 12345.0);
    const int32_t status = polynomialfit(static_cast<int32_t>(x.size()), coeff_count, x.data(),
                                         y.data(), store.data());
    if (store.back() != 12345.0)
        qFatal("written behind the coefficients");
    store.pop_back();
    return {status, store};
}

struct CertifiedSet {
    Values x;
    Values y;
    int coeff_count = 0;
    std::vector<quad::Real> exact_decimal;
    std::vector<quad::Real> exact_binary64;
};

std::vector<quad::Real> read_coeffs(const QJsonValue &solution)
{
    std::vector<quad::Real> values;
    const QJsonArray list = solution.toObject()[QStringLiteral("coeffs")].toArray();
    for (const auto &text : list)
        values.push_back(quad::from_decimal(text.toString().toLatin1()));
    return values;
}

Values read_values(const QJsonValue &texts)
{
    Values values;
    const QJsonArray list = texts.toArray();
    for (const auto &text : list)
        values.push_back(text.toString().toDouble());
    return values;
}

CertifiedSet read_set(const QString &name)
{
    QFile file(QStringLiteral(TEST_DATA_DIR "/nist/%1.json").arg(name));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QJsonObject object = QJsonDocument::fromJson(file.readAll()).object();
    return {read_values(object[QStringLiteral("x")]), read_values(object[QStringLiteral("y")]),
            object[QStringLiteral("coeff_count")].toInt(),
            read_coeffs(object[QStringLiteral("exact_decimal")]),
            read_coeffs(object[QStringLiteral("exact_binary64")])};
}

double worst_digits(const Values &coeffs, const std::vector<quad::Real> &truth)
{
    double worst = 16.0;
    for (std::size_t k = 0; k < truth.size(); ++k)
        worst = std::min(worst, quad::correct_digits(coeffs[k], truth[k]));
    return worst;
}

double worst_ulps(const Values &coeffs, const std::vector<quad::Real> &truth)
{
    double worst = 0.0;
    for (std::size_t k = 0; k < truth.size(); ++k)
        worst = std::max(worst, quad::ulps(coeffs[k], truth[k]));
    return worst;
}

Values integers(int from, int to)
{
    Values values;
    for (int i = from; i <= to; ++i)
        values.push_back(i);
    return values;
}

Values values_of(const Values &coeffs, const Values &x)
{
    Values y;
    for (const double at : x)
        y.push_back(poly(coeffs.data(), static_cast<int32_t>(coeffs.size()), at));
    return y;
}

} // namespace

class PolynomialFit : public QObject
{
    Q_OBJECT

private slots:
    void certified_sets_data();
    void certified_sets();
    void random_points_data();
    void random_points();
    void exact_polynomials_data();
    void exact_polynomials();
    void undetermined_degrees_data();
    void undetermined_degrees();
    void unusable_input_data();
    void unusable_input();
    void no_coefficients();
    void magnitudes_data();
    void magnitudes();
    void order_plays_no_part();
    void a_repeated_call_gives_the_same();
    void many_points();
    void many_coefficients();
};

// The digits are those that the doubles themselves allow: the certified
// solution is that of decimal data, which a double rounds.
void PolynomialFit::certified_sets_data()
{
    QTest::addColumn<double>("digits");
    QTest::newRow("Norris") << 14.0;
    QTest::newRow("Pontius") << 13.5;
    QTest::newRow("Wampler1") << 16.0;
    QTest::newRow("Wampler2") << 13.2;
}

void PolynomialFit::certified_sets()
{
    QFETCH(double, digits);
    const CertifiedSet set = read_set(QString::fromLatin1(QTest::currentDataTag()));
    QVERIFY(set.coeff_count >= 2);
    QCOMPARE(set.exact_decimal.size(), static_cast<std::size_t>(set.coeff_count));
    QCOMPARE(set.exact_binary64.size(), static_cast<std::size_t>(set.coeff_count));
    const Result result = fit(set.x, set.y, set.coeff_count);
    QCOMPARE(result.status, 0);
    const double reached = worst_digits(result.coeffs, set.exact_decimal);
    QVERIFY2(reached >= digits - 0.1, qPrintable(QString::number(reached)));
    // Rounded once from the exact solution of the doubles: the nearest double.
    const double distance = worst_ulps(result.coeffs, set.exact_binary64);
    QVERIFY2(distance <= 0.5, qPrintable(QString::number(distance)));
    for (std::size_t k = 0; k < set.exact_binary64.size(); ++k)
        QCOMPARE(result.coeffs[k], static_cast<double>(set.exact_binary64[k]));
}

void PolynomialFit::random_points_data()
{
    const auto row = test_columns<int, int, double, double>("obs", "coeff_count", "from", "to");
    row("straight line through 5 points", 5, 2, 0.0, 50.0);
    row("straight line far from zero", 20, 2, 1.0e6, 1.0e6 + 1);
    row("odd number of points", 11, 3, -10.0, 10.0);
    row("degree 7 through a full table", 64, 8, 0.0, 50.0);
    row("degree 7 about zero", 64, 8, -10.0, 10.0);
    row("as many coefficients as points", 6, 6, -2.0, 3.0);
    row("one constant", 64, 1, 0.0, 50.0);
    row("more points than a table has", 200, 5, 0.0, 10.0);
}

void PolynomialFit::random_points()
{
    QFETCH(int, obs);
    QFETCH(int, coeff_count);
    QFETCH(double, from);
    QFETCH(double, to);
    std::mt19937 generator(20u);
    const auto uniform = [&generator](double low, double high) {
        return low + (high - low) * static_cast<double>(generator()) * 0x1p-32;
    };
    for (int round = 0; round < 20; ++round) {
        Values x, y;
        for (int i = 0; i < obs; ++i) {
            x.push_back(uniform(from, to));
            y.push_back(uniform(-100.0, 100.0));
        }
        const Result result = fit(x, y, coeff_count);
        QCOMPARE(result.status, 0);
        const double distance = worst_ulps(
            result.coeffs, quad::least_squares(x, y, static_cast<std::size_t>(coeff_count)));
        QVERIFY2(distance <= 0.51, qPrintable(QString::number(distance)));
    }
}

void PolynomialFit::exact_polynomials_data()
{
    const auto row = test_columns<Values, Values>("coeffs", "x");
    row("proportional", Values{0, 2}, integers(0, 10));
    row("line with an offset", Values{-7, 3}, integers(1, 5));
    row("falling line", Values{100, -4}, integers(-3, 20));
    row("line fitted with degree 7", Values{1, 2, 0, 0, 0, 0, 0, 0}, integers(0, 63));
    row("all values 0", Values{0, 0, 0}, integers(0, 9));
    row("level, with degree 3", Values{5, 0, 0, 0}, integers(10, 30));
    row("square only", Values{0, 0, 1, 0, 0}, integers(5, 25));
    row("integers up to degree 5", Values{3, -2, 1, 4, -5, 6}, integers(-8, 12));
    row("through exactly as many points", Values{1, 1, 1, 1}, integers(2, 5));
    row("falling positions", Values{-1, 0.5}, Values{9, 7, 5, 1, -3});
}

void PolynomialFit::exact_polynomials()
{
    QFETCH(Values, coeffs);
    QFETCH(Values, x);
    const Result result = fit(x, values_of(coeffs, x), static_cast<int>(coeffs.size()));
    QCOMPARE(result.status, 0);
    for (std::size_t k = 0; k < coeffs.size(); ++k) {
        QCOMPARE(result.coeffs[k], coeffs[k]);
        QVERIFY2(result.coeffs[k] != 0.0 || !std::signbit(result.coeffs[k]), "minus zero");
    }
}

void PolynomialFit::undetermined_degrees_data()
{
    const auto row = test_columns<Values, Values, Values>("x", "y", "coeffs");
    row("one point: its y", Values{4}, Values{7.5}, Values{7.5, 0, 0});
    row("one x: the mean", Values{4, 4, 4}, Values{1, 2, 6}, Values{3, 0, 0, 0});
    row("all points at 0", Values{0, 0}, Values{1, 2}, Values{1.5, 0});
    row("two points, degree 3", Values{0, 10}, Values{1, 21}, Values{1, 2, 0, 0});
    row("two distinct x among four: the line through the means", Values{1, 3, 1, 3},
        Values{0, 4, 2, 6}, Values{-1, 2, 0});
    row("three points in no order, degree 4", Values{2, 0, 1}, Values{4, 0, 1},
        Values{0, 0, 1, 0, 0});
    row("one coefficient: the mean", Values{1, 2, 3}, Values{3, 5, 10}, Values{6});
}

void PolynomialFit::undetermined_degrees()
{
    QFETCH(Values, x);
    QFETCH(Values, y);
    QFETCH(Values, coeffs);
    const Result result = fit(x, y, static_cast<int>(coeffs.size()));
    QCOMPARE(result.status, 0);
    QCOMPARE(result.coeffs, coeffs);
}

void PolynomialFit::unusable_input_data()
{
    const auto row = test_columns<Values, Values, bool>("x", "y", "nan");
    const double infinity = std::numeric_limits<double>::infinity();
    row("no points", Values{}, Values{}, false);
    row("NaN in x", Values{1, qQNaN(), 3}, Values{1, 2, 3}, true);
    row("NaN in y", Values{1, 2, 3}, Values{1, 2, qQNaN()}, true);
    row("infinite x", Values{infinity, 2, 3}, Values{1, 2, 3}, true);
    row("infinite y", Values{1, 2, 3}, Values{-infinity, 2, 3}, true);
    row("infinities that cancel", Values{1, 2}, Values{-infinity, infinity}, true);
    row("one point, not a number", Values{qQNaN()}, Values{1}, true);
}

void PolynomialFit::unusable_input()
{
    QFETCH(Values, x);
    QFETCH(Values, y);
    QFETCH(bool, nan);
    const Result result = fit(x, y, 3);
    QCOMPARE(result.status, -1);
    for (const double coeff : result.coeffs)
        QVERIFY(nan ? std::isnan(coeff) : coeff == 0.0);
    double store[2] = {1, 1};
    QCOMPARE(polynomialfit(-1, 2, x.data(), y.data(), store), -1);
    QCOMPARE(store[0], 0.0);
    QCOMPARE(store[1], 0.0);
}

void PolynomialFit::no_coefficients()
{
    const double x[] = {1, 2}, y[] = {1, 2};
    double store = 99.0;
    QCOMPARE(polynomialfit(2, 0, x, y, &store), -1);
    QCOMPARE(polynomialfit(2, -1, x, y, &store), -1);
    QCOMPARE(store, 99.0);
    QCOMPARE(polynomialfit(2, 1, nullptr, y, &store), -1);
    QCOMPARE(store, 0.0);
}

// The same data in other units: powers of two, so the result scales exactly.
void PolynomialFit::magnitudes_data()
{
    const auto row = test_columns<int, int>("x_exponent", "y_exponent");
    row("huge values", 0, 1015);
    row("tiny values", 0, -1000);
    row("huge positions", 330, 0);
    row("tiny positions", -330, 0);
    row("positions at the top of the range", 1018, 1018);
    row("both tiny", -340, -700);
}

void PolynomialFit::magnitudes()
{
    QFETCH(int, x_exponent);
    QFETCH(int, y_exponent);
    const Values x = {1, 2.5, 4, 7.25, 11, 13, 17.5, 20};
    const Values y = {0.3, 1.7, 2.2, 5.1, 9.4, 8.8, 13.3, 40.7};
    const Result plain = fit(x, y, 3);
    Values scaled_x, scaled_y;
    for (std::size_t i = 0; i < x.size(); ++i) {
        scaled_x.push_back(std::ldexp(x[i], x_exponent));
        scaled_y.push_back(std::ldexp(y[i], y_exponent));
    }
    const Result scaled = fit(scaled_x, scaled_y, 3);
    QCOMPARE(scaled.status, 0);
    for (int k = 0; k < 3; ++k) {
        const std::size_t i = static_cast<std::size_t>(k);
        QVERIFY(plain.coeffs[i] != 0.0);
        const double expected = std::ldexp(plain.coeffs[i], y_exponent - k * x_exponent);
        QVERIFY2(scaled.coeffs[i] == expected, qPrintable(QString::number(scaled.coeffs[i])));
    }
}

void PolynomialFit::order_plays_no_part()
{
    const Values x = {0.1, 4.7, 9.9, 14.2, 21.8, 30.3, 41.4}, y = {3, 1, 4, 1, 5, 9, 2};
    const Result rising = fit(x, y, 4);
    const Result falling = fit({x.rbegin(), x.rend()}, {y.rbegin(), y.rend()}, 4);
    const Result mixed = fit({x[3], x[0], x[6], x[1], x[5], x[2], x[4]},
                             {y[3], y[0], y[6], y[1], y[5], y[2], y[4]}, 4);
    QCOMPARE(falling.coeffs, rising.coeffs);
    QCOMPARE(mixed.coeffs, rising.coeffs);
}

void PolynomialFit::a_repeated_call_gives_the_same()
{
    const CertifiedSet set = read_set(QStringLiteral("Pontius"));
    const Result first = fit(set.x, set.y, set.coeff_count);
    fit(integers(0, 40), integers(100, 140), 9);
    QCOMPARE(fit(set.x, set.y, set.coeff_count).coeffs, first.coeffs);
}

void PolynomialFit::many_points()
{
    const Values coeffs = {4, -3, 2, 1};
    const Values x = integers(-5000, 5000);
    QCOMPARE(fit(x, values_of(coeffs, x), 4).coeffs, coeffs);
}

// Far beyond what is sensible: what it gives still runs through the points.
void PolynomialFit::many_coefficients()
{
    Values x, y;
    for (int i = 0; i < 64; ++i) {
        x.push_back(std::cos(0.049 * i));
        y.push_back(std::sin(3.0 * x.back()));
    }
    for (const int coeff_count : {18, 24, 64, 100}) {
        const Result result = fit(x, y, coeff_count);
        QCOMPARE(result.status, 0);
        for (const double coeff : result.coeffs)
            QVERIFY(std::isfinite(coeff));
        if (coeff_count > 24)
            continue;
        const Values fitted = values_of(result.coeffs, x);
        for (std::size_t i = 0; i < x.size(); ++i)
            QVERIFY(std::fabs(fitted[i] - y[i]) < 1e-9);
    }
}

PLAIN_TEST(PolynomialFit);
#include "test_polynomialfit.moc"
