// SPDX-License-Identifier: GPL-3.0-or-later
//
// Texts of the statistics views.
#include <limits>

#include <QtTest>

#include "support/testmain.h"
#include "views/statisticscells.h"

namespace
{

constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();
constexpr double ENDLESS = std::numeric_limits<double>::infinity();

} // namespace

class StatisticsCells : public QObject
{
    Q_OBJECT

private slots:
    void differences_data();
    void differences();
    void figures_data();
    void figures();
    void stability();
    void deviations_data();
    void deviations();
};

void StatisticsCells::differences_data()
{
    const auto row = test_columns<double, QString>("value", "text");
    row("zero", 0., "    0.00");
    row("two decimals, rounded", 1.006, "    1.01");
    row("negative", -12.5, "  -12.50");
    row("wider than its field", -123456.789, "-123456.79");
    row("no number", NOT_A_NUMBER, "     nan");
    row("endless", ENDLESS, "     inf");
}

void StatisticsCells::differences()
{
    QFETCH(double, value);
    QTEST(difference_text(value), "text");
}

void StatisticsCells::figures_data()
{
    const auto row = test_columns<double, QString>("value", "text");
    row("zero", 0., "0");
    row("0.000012345 prints as 1.2345e-05", 0.000012345, "1.2345e-05");
    row("0.00012345 has no exponent yet", 0.00012345, "0.00012345");
    row("six significant digits", 1234.56789, "1234.57");
    row("a million", 1e6, "1e+06");
    row("just below a million", 999999., "999999");
    row("a figure that does not exist", -999.9, "-999.9");
    row("no number", NOT_A_NUMBER, "nan");
    row("endless", -ENDLESS, "-inf");
}

void StatisticsCells::figures()
{
    QFETCH(double, value);
    QTEST(figure_text(value), "text");
}

void StatisticsCells::stability()
{
    POINT_STATISTICS point = {};
    point.mv_at_capture = 1.;
    point.mv_mean = 1250.1234567;
    point.mv_std = 0.000012345;
    point.mv_min = -0.5;
    point.mv_max = 12345678.;
    point.eu_reference = 2.;
    point.eu_mean = 50.25;
    point.eu_std = 3.;
    point.eu_min = 4.;
    point.eu_max = 5.;
    QCOMPARE(stability_cells(63, point),
             (QStringList{"64", "50.25", "1250.12", "1.2345e-05", "-0.5", "1.23457e+07"}));
    QCOMPARE(stability_cells(0, {}), (QStringList{"1", "0", "0", "0", "0", "0"}));
}

void StatisticsCells::deviations_data()
{
    const auto row = test_columns<int, QVector<double>, QStringList>("index", "values", "texts");
    row("three decimals", 0, QVector<double>{1000., 10.0006, 10., 0.0006},
        QStringList{"1", "1000.000", "10.001", "10.000", "0.001"});
    row("measured below computed is negative", 63, QVector<double>{-1.5, 9.5, 10.75, -1.25},
        QStringList{"64", "-1.500", "9.500", "10.750", "-1.250"});
    row("no exponent", 9, QVector<double>{1e7, 1e-7, 0., 1e-7},
        QStringList{"10", "10000000.000", "0.000", "0.000", "0.000"});
    row("no numbers", 1, QVector<double>{NOT_A_NUMBER, NOT_A_NUMBER, ENDLESS, -ENDLESS},
        QStringList{"2", "nan", "nan", "inf", "-inf"});
}

void StatisticsCells::deviations()
{
    QFETCH(int, index);
    QFETCH(QVector<double>, values);
    QTEST(deviation_cells(index, {values[0], values[1], values[2], values[3]}), "texts");
}

LOOP_TEST(StatisticsCells);
#include "test_statisticscells.moc"
