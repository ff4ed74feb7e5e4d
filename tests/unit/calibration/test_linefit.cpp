// SPDX-License-Identifier: GPL-3.0-or-later
//
// The straight-line regression and the best-fit table.
#include <cmath>
#include <memory>

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include "calibration/linefit.h"
#include "support/testmain.h"
#include "unit/calibration/tablerecords.h"

namespace
{

struct Line {
    double slope;
    double intercept;
    double r_squared;
    double value;
};

Line fit(const QVector<double> &x, const QVector<double> &y, double at)
{
    Line line = {};
    line.value = fit_line(x.size(), x.constData(), y.constData(), &line.slope, &line.intercept,
                          &line.r_squared, at);
    return line;
}

QVector<double> numbers(const QJsonValue &texts)
{
    QVector<double> values;
    for (const auto text : texts.toArray())
        values.append(text.toString().toDouble());
    return values;
}

double relative(double actual, double exact)
{
    return std::fabs(actual / exact - 1.0);
}

} // namespace

Q_DECLARE_METATYPE(QVector<double>)

class LineFit : public QObject
{
    Q_OBJECT

private slots:
    void exact_lines_data();
    void exact_lines();
    void least_squares_of_three_points();
    void certified_line();
    void no_finite_line_data();
    void no_finite_line();
    void level_line_has_no_r_squared();
    void best_fit_table();
    void slots_behind_the_last_point_are_copied();
    void table_without_points();
    void equal_millivolts_give_what_the_division_gives();
    void odd_point_counts_data();
    void odd_point_counts();
};

void LineFit::exact_lines_data()
{
    const auto row = test_columns<QVector<double>, double, double>("x", "slope", "intercept");
    row("two points", QVector<double>{0., 100.}, 2.5, 0.);
    row("five points, falling", QVector<double>{0., 1., 2., 3., 4.}, -3., 7.);
    row("points in any order", QVector<double>{8., -2., 4., 0.}, 0.5, -1.);
    row("one x twice", QVector<double>{1., 1., 5.}, 2., 3.);
}

// Small whole numbers: every sum is exact, and so is the line.
void LineFit::exact_lines()
{
    QFETCH(QVector<double>, x);
    QFETCH(double, slope);
    QFETCH(double, intercept);
    QVector<double> y;
    for (const double value : x)
        y.append(slope * value + intercept);
    const Line line = fit(x, y, 10.0);
    QVERIFY(line.slope == slope);
    QVERIFY(line.intercept == intercept);
    QVERIFY(line.value == slope * 10.0 + intercept);
    QCOMPARE(line.r_squared, 1.0);
}

// Worked by hand: Sx 3, Sy 6, Sxx 5, Syy 14, Sxy 8; D 6.
void LineFit::least_squares_of_three_points()
{
    const Line line = fit({0.0, 1.0, 2.0}, {1.0, 2.0, 3.0}, 0.5);
    QCOMPARE(line.slope, 1.0);
    const Line bent = fit({0.0, 1.0, 2.0}, {0.0, 2.0, 1.0}, 4.0);
    QCOMPARE(bent.slope, 0.5);
    QCOMPARE(bent.intercept, 0.5);
    QCOMPARE(bent.value, 2.5);
    QCOMPARE(bent.r_squared, 0.25);
}

// NIST's Norris data. Sums of 36 products lose about a digit, and the products
// in the intercept's numerator, 1e11, cancel to 1e8, which costs three more.
void LineFit::certified_line()
{
    QFile file(QStringLiteral(TEST_DATA_DIR "/nist/Norris.json"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QJsonObject data = QJsonDocument::fromJson(file.readAll()).object();
    const QVector<double> x = numbers(data["x"]);
    const QVector<double> y = numbers(data["y"]);
    QCOMPARE(x.size(), 36);
    const QJsonObject exact = data["exact_binary64"].toObject();
    const QVector<double> coeffs = numbers(exact["coeffs"]);
    const Line line = fit(x, y, 500.0);
    QVERIFY2(relative(line.slope, coeffs[1]) < 1e-14, qPrintable(QString::number(line.slope)));
    QVERIFY2(relative(line.intercept, coeffs[0]) < 1e-11,
             qPrintable(QString::number(line.intercept)));
    QVERIFY2(relative(line.r_squared, exact["r_squared"].toString().toDouble()) < 1e-13,
             qPrintable(QString::number(line.r_squared, 'g', 17)));
    QVERIFY(relative(line.value, coeffs[0] + 500.0 * coeffs[1]) < 1e-13);
}

void LineFit::no_finite_line_data()
{
    const auto row = test_columns<QVector<double>, QVector<double>>("x", "y");
    row("two points with equal x", QVector<double>{5., 5.}, QVector<double>{1., 2.});
    row("three points with equal x", QVector<double>{2., 2., 2.}, QVector<double>{1., 2., 4.});
    row("one point", QVector<double>{5.}, QVector<double>{1.});
    row("no point", QVector<double>{}, QVector<double>{});
}

void LineFit::no_finite_line()
{
    QFETCH(QVector<double>, x);
    QFETCH(QVector<double>, y);
    const Line line = fit(x, y, 5.0);
    QVERIFY(!std::isfinite(line.slope));
    QVERIFY(!std::isfinite(line.intercept));
    QVERIFY(!std::isfinite(line.value));
}

void LineFit::level_line_has_no_r_squared()
{
    const Line line = fit({0.0, 1.0, 2.0}, {4.0, 4.0, 4.0}, 7.0);
    QCOMPARE(line.slope, 0.0);
    QCOMPARE(line.value, 4.0);
    QVERIFY(!std::isfinite(line.r_squared));
}

void LineFit::best_fit_table()
{
    LONG_TABLE in = {};
    LONG_TABLE out = {};
    set_points(&in, Points{{0.0, 0.0}, {1.0, 2.0}, {2.0, 1.0}});
    compute_long_fit(&in, &out);
    QCOMPARE(out.num_points, int16_t{3});
    const double y[] = {0.5, 1.0, 1.5};
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(out.x[i], in.x[i]);
        QCOMPARE(out.y[i], y[i]);
        QCOMPARE(out.slope[i], 0.5);
        QCOMPARE(out.intercept[i], 0.5);
    }
}

void LineFit::slots_behind_the_last_point_are_copied()
{
    LONG_TABLE in = {};
    LONG_TABLE out = {};
    set_points(&in, line_points(2));
    for (int i = 2; i < MAX_POINTS; ++i) {
        in.x[i] = 100.0 + i;
        in.y[i] = 200.0 + i;
        out.slope[i] = 5.0;
    }
    compute_long_fit(&in, &out);
    for (int i = 2; i < MAX_POINTS; ++i) {
        QCOMPARE(out.x[i], 100.0 + i);
        QCOMPARE(out.y[i], 200.0 + i);
        QCOMPARE(out.slope[i], 5.0);
    }
    QCOMPARE(out.y[1], 41.0);
}

void LineFit::table_without_points()
{
    LONG_TABLE in = {};
    LONG_TABLE out = {};
    out.num_points = 9;
    out.x[0] = 3.0;
    compute_long_fit(&in, &out);
    QCOMPARE(out.num_points, int16_t{0});
    QCOMPARE(out.x[0], 0.0);
    QCOMPARE(out.slope[0], 0.0);
}

void LineFit::equal_millivolts_give_what_the_division_gives()
{
    LONG_TABLE in = {};
    LONG_TABLE out = {};
    set_points(&in, Points{{5.0, 1.0}, {5.0, 2.0}});
    compute_long_fit(&in, &out);
    for (int i = 0; i < 2; ++i) {
        QCOMPARE(out.x[i], 5.0);
        QVERIFY(!std::isfinite(out.y[i]));
        QVERIFY(!std::isfinite(out.slope[i]));
    }
}

void LineFit::odd_point_counts_data()
{
    const auto row = test_columns<int, int>("count", "fitted");
    row("all that a table holds", 64, 64);
    row("more than a table holds", 65, 64);
    row("far more", 32767, 64);
    row("negative", -1, 0);
}

void LineFit::odd_point_counts()
{
    QFETCH(int, count);
    QFETCH(int, fitted);
    LONG_TABLE in = {};
    LONG_TABLE out = {};
    set_points(&in, line_points(64));
    in.num_points = static_cast<int16_t>(count);
    compute_long_fit(&in, &out);
    QCOMPARE(int{out.num_points}, count);
    for (int i = 0; i < MAX_POINTS; ++i) {
        QCOMPARE(out.x[i], in.x[i]);
        QCOMPARE(out.y[i], in.y[i]);
        QCOMPARE(out.slope[i], i < fitted ? 2.0 : 0.0);
    }
}

LOOP_TEST(LineFit);
#include "test_linefit.moc"
