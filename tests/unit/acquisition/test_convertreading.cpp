// SPDX-License-Identifier: GPL-3.0-or-later
//
// A reading through the table of each type.
#include <memory>

#include <QtTest>

#include "acquisition/monitorthread.h"
#include "support/testmain.h"

namespace
{

// Long table y = 2x on 0 to 100 mV; poly[0] is 1 + x^2, poly[3] is 4 - 3x.
std::unique_ptr<ZERL_CFG> session()
{
    auto cfg = std::make_unique<ZERL_CFG>();
    cfg->long_current.num_points = 2;
    cfg->long_current.x[1] = 100.0;
    cfg->long_current.y[1] = 200.0;
    POLY_RANGE_RECORD &first = cfg->table.poly[0];
    first.num_coeffs = 3;
    first.coeffs[0] = 1.0;
    first.coeffs[2] = 1.0;
    POLY_RANGE_RECORD &fourth = cfg->table.poly[3];
    fourth.num_coeffs = 2;
    fourth.coeffs[0] = 4.0;
    fourth.coeffs[1] = -3.0;
    cfg->table.poly_range_index = 3;
    return cfg;
}

double convert(const ZERL_CFG &cfg, int type, double mv)
{
    uint16_t hint = 0;
    return convert_reading(static_cast<uint16_t>(type), &hint, &cfg, mv);
}

} // namespace

class ConvertReading : public QObject
{
    Q_OBJECT

private slots:
    void by_table_type_data();
    void by_table_type();
    void scaled_table_multiplies_by_the_first_value();
    void polynomial_by_horners_rule();
    void number_of_coefficients_data();
    void number_of_coefficients();
    void range_index_never_leads_outside_data();
    void range_index_never_leads_outside();
    void interp_table_without_points();
};

void ConvertReading::by_table_type_data()
{
    const auto row = test_columns<int, double>("type", "value");
    row("0 INTERP reads the long table", 0, 20.0);
    row("1 POLY evaluates range 0, whatever the index", 1, 101.0);
    row("7 POLY_RANGE evaluates the range of its index", 7, -26.0);
    row("3 is not known", 3, 0.0);
    row("6 is not known", 6, 0.0);
    row("8 is not known", 8, 0.0);
    row("65535 is not known", 65535, 0.0);
}

void ConvertReading::by_table_type()
{
    QFETCH(int, type);
    QTEST(convert(*session(), type, 10.0), "value");
}

void ConvertReading::scaled_table_multiplies_by_the_first_value()
{
    const auto cfg = session();
    cfg->long_current.x[0] = 2.5;
    QCOMPARE(convert(*cfg, 2, 10.0), 25.0);
    QCOMPARE(convert(*cfg, 2, -4.0), -10.0);
}

// The same sum in the same order gives the same double, to the last bit.
void ConvertReading::polynomial_by_horners_rule()
{
    const auto cfg = session();
    POLY_RANGE_RECORD &range = cfg->table.poly[0];
    const double coeffs[] = {0.1, -0.7, 1e-3, 3.3e-5, -1.0 / 3.0, 1e-9, 2e-11, 7e-14};
    std::copy(std::begin(coeffs), std::end(coeffs), range.coeffs);
    range.num_coeffs = 8;
    for (const double mv : {-17.3, -1.0, 0.0, 0.1, 4999.7}) {
        double sum = 0.0;
        for (int i = 7; i >= 0; --i)
            sum = sum * mv + coeffs[i];
        QVERIFY(convert(*cfg, TABLE_POLY, mv) == sum);
    }
}

void ConvertReading::number_of_coefficients_data()
{
    // value: all 18 coefficients are 1, at 1 mV
    const auto row = test_columns<int, double>("count", "value");
    row("none gives 0.0", 0, 0.0);
    row("one is a constant", 1, 1.0);
    row("all that a range holds", 18, 18.0);
    row("one more than a range holds: the first x value", 19, 1000018.0);
    row("as many as points: 46 x values", 64, 3000018.0);
    row("far more", 32767, 3000018.0);
    row("negative gives 0.0", -1, 0.0);
}

void ConvertReading::number_of_coefficients()
{
    QFETCH(int, count);
    const auto cfg = session();
    for (const int r : {0, 3}) {
        std::fill(std::begin(cfg->table.poly[r].coeffs), std::end(cfg->table.poly[r].coeffs), 1.0);
        cfg->table.poly[r].x[0] = 1e6; // what stands behind the coefficients
        cfg->table.poly[r].x[45] = 2e6;
        cfg->table.poly[r].x[46] = 1e9;
        cfg->table.poly[r].num_coeffs = static_cast<int16_t>(count);
    }
    QTEST(convert(*cfg, TABLE_POLY, 1.0), "value");
    QTEST(convert(*cfg, TABLE_POLY_RANGE, 1.0), "value");
}

void ConvertReading::range_index_never_leads_outside_data()
{
    const auto row = test_columns<int, double>("index", "value");
    row("last range", 7, 70.0);
    row("just past the last", 8, 70.0);
    row("negative", -1, 1.0);
}

void ConvertReading::range_index_never_leads_outside()
{
    QFETCH(int, index);
    const auto cfg = session();
    cfg->table.poly[7].num_coeffs = 1;
    cfg->table.poly[7].coeffs[0] = 70.0;
    cfg->table.poly_range_index = static_cast<int16_t>(index);
    QTEST(convert(*cfg, TABLE_POLY_RANGE, 0.0), "value");
}

void ConvertReading::interp_table_without_points()
{
    const auto cfg = session();
    cfg->long_current.num_points = 0;
    QCOMPARE(convert(*cfg, TABLE_INTERP, 10.0), 0.0);
}

LOOP_TEST(ConvertReading);
#include "test_convertreading.moc"
