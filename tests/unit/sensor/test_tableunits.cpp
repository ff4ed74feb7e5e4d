// SPDX-License-Identifier: GPL-3.0-or-later
//
// Table values in other units, and the display class of a unit.
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

#include <QtTest>

#include "host/operations.h"
#include "hostsim/runtime/unitcatalogue.h"
#include "sensor/unitcatalogue.h"
#include "sensor/unitkeywords.h"
#include "support/cellfiles.h"
#include "support/testmain.h"

namespace
{

template <std::size_t Size> void set_text(char (&field)[Size], const char *text)
{
    qstrncpy(field, text, Size);
}

// Readings as tables hold them, the ends of their span and the odd ones.
constexpr double READINGS[] = {0.0,   1.0,     29.92, -40.0, 98.6,  100.0,    212.0,
                               0.001, 101.325, 1e6,   1e-9,  -17.3, 4095.9375};

double ulp_of(double value)
{
    const double size = std::fabs(value);
    return std::nextafter(size, std::numeric_limits<double>::infinity()) - size;
}

void fill_table(ZERL_CFG *cfg)
{
    LONG_TABLE &current = cfg->long_current;
    current.num_points = static_cast<int16_t>(std::size(READINGS));
    for (std::size_t i = 0; i < std::size(READINGS); ++i) {
        current.x[i] = 0.1 * static_cast<double>(i) - 0.3;
        current.y[i] = READINGS[i];
    }
}

void change_units(ZERL_CFG *cfg, const std::string &to)
{
    set_text(cfg->value_units, to.c_str());
    convert_table_values(cfg);
}

} // namespace

class TableUnits : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void values_follow_the_units();
    void number_of_points_data();
    void number_of_points();
    void unlike_and_unknown_units_pass_values_on_data();
    void unlike_and_unknown_units_pass_values_on();
    void there_and_back_over_every_pair();
    void display_class_data();
    void display_class();
};

void TableUnits::initTestCase()
{
    require_private_cell();
    QCOMPARE(units_init_access(1) & 0xffff, 0);
}

void TableUnits::values_follow_the_units()
{
    const auto cfg = std::make_unique<ZERL_CFG>();
    set_text(cfg->table.eng_units, "kPa");
    set_text(cfg->table_units, "kPa");
    LONG_TABLE &current = cfg->long_current;
    current.num_points = 3;
    for (int i = 0; i < 5; ++i) {
        current.x[i] = 100.0 * (i + 1);
        current.y[i] = 50.0 * i;
        current.slope[i] = current.intercept[i] = 7.0;
        cfg->table.poly[0].y[i] = cfg->long_previous.y[i] = 9.0;
    }
    const auto expected = std::make_unique<ZERL_CFG>(*cfg);
    change_units(cfg.get(), "PSI");
    QCOMPARE(current.y[0], 0.0);
    QCOMPARE(current.y[1], 50.0 / 6.894757293168361);
    QCOMPARE(current.y[2], 100.0 / 6.894757293168361);
    QCOMPARE(cfg->table.eng_units, "PSI");
    QCOMPARE(cfg->redraw_all, uint16_t(1));

    // Nothing else in the record moves.
    std::copy_n(current.y, 3, expected->long_current.y);
    set_text(expected->table.eng_units, "PSI");
    set_text(expected->value_units, "PSI");
    expected->redraw_all = 1;
    QCOMPARE(std::memcmp(cfg.get(), expected.get(), sizeof *cfg), 0);
}

void TableUnits::number_of_points_data()
{
    const auto row = test_columns<int, int>("count", "converted");
    row("none", 0, 0);
    row("all", 64, 64);
    row("more than there is room for", 70, 64);
    row("less than none", -1, 0);
}

void TableUnits::number_of_points()
{
    QFETCH(int, count);
    QFETCH(int, converted);
    const auto cfg = std::make_unique<ZERL_CFG>();
    LONG_TABLE &current = cfg->long_current;
    set_text(cfg->table.eng_units, "MSEC");
    std::fill(std::begin(current.y), std::end(current.y), 2000.0);
    std::fill(std::begin(current.slope), std::end(current.slope), 2000.0);
    current.num_points = static_cast<int16_t>(count);
    change_units(cfg.get(), "SEC");
    for (int i = 0; i < MAX_POINTS; ++i) {
        QCOMPARE(current.y[i], i < converted ? 2.0 : 2000.0);
        QCOMPARE(current.slope[i], 2000.0);
    }
    QCOMPARE(cfg->table.eng_units, "SEC");
}

void TableUnits::unlike_and_unknown_units_pass_values_on_data()
{
    const auto row = test_columns<QByteArray, QByteArray>("from", "to");
    row("another dimension", QByteArray("kPa"), QByteArray("DEG_C"));
    row("from no units", QByteArray(""), QByteArray("kPa"));
    row("to the entry of an empty list", QByteArray("kPa"), QByteArray(" <empty>"));
    row("unknown, 15 characters", QByteArray("kPa"), QByteArray("ABCDEFGHIJKLMNO"));
}

void TableUnits::unlike_and_unknown_units_pass_values_on()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    const auto cfg = std::make_unique<ZERL_CFG>();
    set_text(cfg->table.eng_units, from);
    fill_table(cfg.get());
    change_units(cfg.get(), to.toStdString());
    for (std::size_t i = 0; i < std::size(READINGS); ++i)
        QCOMPARE(cfg->long_current.y[i], READINGS[i]);
    QCOMPARE(QByteArray(cfg->table.eng_units), to);
}

// Where a scale has a zero point of its own a digit in the last place weighs
// what it weighs at the distance from the other's zero: 0.001 DEG_C is 273.151
// DEG_K, and no double in between holds more of it.
void TableUnits::there_and_back_over_every_pair()
{
    const hostsim::UnitCatalogue units =
        hostsim::parse_unit_catalogue(hostsim::default_unit_catalogue_text(), nullptr);
    const auto cfg = std::make_unique<ZERL_CFG>();
    int pairs = 0;
    for (const hostsim::CatalogueUnit &a : units) {
        for (const hostsim::CatalogueUnit &b : units) {
            if (a.dimension != b.dimension)
                continue;
            ++pairs;
            fill_table(cfg.get());
            const auto before = std::make_unique<LONG_TABLE>(cfg->long_current);
            set_text(cfg->table.eng_units, a.keyword.c_str());
            const double zero = converted(b.keyword.c_str(), a.keyword.c_str(), 0.0);
            change_units(cfg.get(), b.keyword);
            change_units(cfg.get(), a.keyword);
            QCOMPARE(QByteArray(cfg->table.eng_units), QByteArray(a.keyword.c_str()));
            for (std::size_t i = 0; i < std::size(READINGS); ++i) {
                const double y = before->y[i];
                const double allowed = 4.0 * ulp_of(std::fmax(std::fabs(y), std::fabs(y - zero)));
                QVERIFY2(std::fabs(cfg->long_current.y[i] - y) <= allowed,
                         qPrintable(QString("%1 %2 by way of %3: %4")
                                        .arg(y)
                                        .arg(a.keyword.c_str(), b.keyword.c_str())
                                        .arg(cfg->long_current.y[i], 0, 'g', 17)));
            }
            QCOMPARE(std::memcmp(cfg->long_current.x, before->x, sizeof before->x), 0);
        }
    }
    QVERIFY(pairs > 700);
}

void TableUnits::display_class_data()
{
    const auto add = test_columns<QByteArray, int>("keyword", "number");
    const auto row = [&](const char *keyword, int number) {
        add(keyword, QByteArray(keyword), number);
    };
    row("%", 4);
    row("deg_F", 1);
    row("DEG_F", 1);
    row("deg_K", 1);
    row("Deg_k", 1);
    row("F", 1);
    row("f", 1);
    row("deg_C", 2);
    row("deg_R", 2);
    row("DEG_R", 2);
    row("C", 2);
    row("c", 2);
    row("K", 5); // bare: only its long form stands in the table
    row("R", 5);
    row("LB-FT", 3);
    row("N-M", 3);
    row("oz-in", 3);
    row("kPa", 0);
    row("IN_HG", 0);
    row("PCT", 5);
    row("FRAC", 5);
    row("SEC", 5);
    row("KG/HR", 5);
    row("JOULE", 5); // energy is no torque
    row("none", 5);
    row("FURLONG", 5);
    row(" <empty>", 5);
    add("nothing", QByteArray(""), 5);
    add("16 characters", QByteArray(16, 'P'), 5);
}

void TableUnits::display_class()
{
    QFETCH(QByteArray, keyword);
    QTEST(classify_unit(keyword), "number");
}

LOOP_TEST(TableUnits);
#include "test_tableunits.moc"
