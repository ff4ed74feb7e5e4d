// SPDX-License-Identifier: GPL-3.0-or-later
//
// How exact the figures of a linearity verification are.
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "support/testmain.h"
#include "unit/reports/linearitycases.h"

namespace
{

constexpr double INF = std::numeric_limits<double>::infinity();

bool same_bits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

double relative(double actual, double exact)
{
    return std::fabs(actual / exact - 1.0);
}

std::vector<Pair> nist_pairs(const char *name)
{
    const QByteArray bytes =
        read_file(QStringLiteral(TEST_DATA_DIR "/nist/") + QLatin1String(name) + ".json");
    const QJsonObject data = QJsonDocument::fromJson(bytes).object();
    const QJsonArray x = data["x"].toArray();
    const QJsonArray y = data["y"].toArray();
    std::vector<Pair> pairs;
    pairs.reserve(static_cast<std::size_t>(x.size()));
    for (int i = 0; i < x.size(); ++i)
        pairs.push_back({number(x[i]), number(y[i])});
    return pairs;
}

} // namespace

class LinearityAccuracy : public QObject
{
    Q_OBJECT

private slots:
    void rounding_is_printing_and_reading_back_data();
    void rounding_is_printing_and_reading_back();
    void rounding_of_many_values();
    void rounding_of_many_large_values();
    void nist_line_data();
    void nist_line();
    void norris_as_published();
};

void LinearityAccuracy::rounding_is_printing_and_reading_back_data()
{
    const auto row = test_columns<double, double>("value", "rounded");
    row("zero", 0.0, 0.0);
    row("whole", 17.0, 17.0);
    row("8 decimals stay", 0.12345678, 0.12345678);
    row("below the half", 1.000000004999, 1.0);
    row("above the half", 1.000000005001, 1.00000001);
    row("exactly the half goes away from zero", 1.0 / 512, 0.00195313);
    row("so does a negative one", -1.0 / 512, -0.00195313);
    row("just below an exact half", std::nextafter(1.0 / 512, 0.0), 0.00195312);
    row("0.5e-8 is not exact and lies above", 0.5e-8, 1e-8);
    row("1.5e-8 is not exact and lies below", 1.5e-8, 1e-8);
    row("smallest of all", 5e-324, 0.0);
    row("where the scaled value loses its half", 45035996.5, 45035996.5);
    row("a half behind it", 50000000.0 + 1.0 / 512, 50000000.00195313);
    row("so does a negative one there", -50000000.0 - 1.0 / 512, -50000000.00195313);
    row("where decimals end", 67108864.0, 67108864.0);
    row("just before", std::nextafter(67108864.0, 0.0), 67108863.99999999);
    row("large", 123456789.123456789, 123456789.12345679);
    row("larger than its decimals", 1e300, 1e300);
    row("infinite", INF, INF);
    row("infinite, negative", -INF, -INF);
    row("NaN", std::nan(""), std::nan(""));
}

void LinearityAccuracy::rounding_is_printing_and_reading_back()
{
    QFETCH(double, value);
    QFETCH(double, rounded);
    QVERIFY(same_bits(rounded_to_8_decimals(value), rounded));
    QVERIFY(same_bits(QString::number(value, 'f', 8).toDouble(), rounded));
}

void LinearityAccuracy::rounding_of_many_values()
{
    std::mt19937_64 random(20240305); // the same values in every run
    std::uniform_real_distribution<double> exponent(-12.0, 9.0);
    std::uniform_real_distribution<double> mantissa(-1.0, 1.0);
    std::uniform_int_distribution<int64_t> steps(-4000000000, 4000000000);
    for (int i = 0; i < 50000; ++i) {
        const double half = (2.0 * static_cast<double>(steps(random)) + 1.0) / 512.0;
        const double near_half = (static_cast<double>(steps(random)) + 0.5) / 1e8;
        for (const double value : {mantissa(random) * std::pow(10.0, exponent(random)), half,
                                   std::nextafter(half, INF), near_half}) {
            const double expected = QString::number(value, 'f', 8).toDouble();
            QVERIFY2(same_bits(rounded_to_8_decimals(value), expected),
                     qPrintable(QString::number(value, 'g', 17)));
        }
    }
}

// Where the decimals come to an end, and far behind it.
void LinearityAccuracy::rounding_of_many_large_values()
{
    std::mt19937_64 random(20240306);
    std::uniform_real_distribution<double> around(3e7, 2e8);
    std::uniform_real_distribution<double> exponent(7.0, 308.0);
    std::uniform_int_distribution<int64_t> steps(7500000000, 17179869183);
    for (int i = 0; i < 20000; ++i) {
        const double half = (2.0 * static_cast<double>(steps(random)) + 1.0) / 512.0;
        for (const double value : {around(random), -around(random), half, std::nextafter(half, 0.0),
                                   std::nextafter(half, INF), std::pow(2.0, 24 + i % 900),
                                   -std::nextafter(std::pow(2.0, 24 + i % 900), 0.0),
                                   std::pow(10.0, exponent(random))}) {
            const double expected = QString::number(value, 'f', 8).toDouble();
            QVERIFY2(same_bits(rounded_to_8_decimals(value), expected),
                     qPrintable(QString::number(value, 'g', 17)));
        }
    }
}

// Straight lines through NIST's data, against the exact line through the same
// doubles. Means are taken off first, so the slope keeps 15 digits. The intercept
// is a small difference of mean y and slope times mean x, 440 and more against
// -0.26 for Norris, 1.1 against 0.006 for Pontius: 3 digits of some 15 go. A
// residual, some 0.9 of 500 and 0.002 of 1, loses as much and the error with it,
// but the squares' own roundings average out: 13 digits. What r squared lacks of
// 1 is less than 2e-5, so nothing of that loss is left in its 15.
void LinearityAccuracy::nist_line_data()
{
    const auto row = test_columns<double, double, double, double>("slope", "intercept", "r_squared",
                                                                  "standard_error");
    row("Norris", 1e-15, 1e-12, 1e-15, 1e-13);
    row("Pontius", 1e-15, 1e-12, 1e-15, 1e-13);
}

void LinearityAccuracy::nist_line()
{
    const char *name = QTest::currentDataTag();
    const QJsonObject lines =
        QJsonDocument::fromJson(linearity_file(QStringLiteral("straight_lines.json"))).object();
    const QJsonObject exact = lines[QLatin1String(name)].toObject();
    const LINE_RPT r = figures_of(nist_pairs(name), 1.0).record;
    const std::pair<const char *, double> figures[] = {
        {"slope", r.a1}, {"intercept", r.a0}, {"r_squared", r.r2}, {"standard_error", r.see}};
    for (const auto &[figure, value] : figures) {
        const double distance = relative(value, number(exact[QLatin1String(figure)]));
        qInfo("%s %s: %.17g, off by %.1e", name, figure, value, distance);
        const QByteArray limit_name = figure;
        const double limit =
            *static_cast<double *>(QTest::qData(limit_name.constData(), qMetaTypeId<double>()));
        QVERIFY2(distance <= limit, figure);
    }
}

// The certified values are of the decimals, ours of the doubles nearest to
// them, which moves the intercept by 1e-14. Certified digits met: all 15 of
// slope and r squared, 12 of the intercept, 13 of the error.
void LinearityAccuracy::norris_as_published()
{
    const LINE_RPT r = figures_of(nist_pairs("Norris"), 1000.0).record;
    QCOMPARE(r.entered_points, 36);
    QVERIFY(relative(r.a1, 1.00211681802045) < 5e-15);
    QVERIFY(relative(r.a0, -0.262323073774029) < 5e-13);
    QVERIFY(relative(r.r2, 0.999993745883712) < 5e-15);
    QVERIFY(relative(r.see, 0.884796396144373) < 5e-14);
}

LOOP_TEST(LinearityAccuracy);
#include "test_linearityaccuracy.moc"
