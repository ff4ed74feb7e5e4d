// SPDX-License-Identifier: GPL-3.0-or-later
//
// Every unit of the catalogue against the constants that define it.
#include <QtTest>

#include <atomic>
#include <cmath>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "host/operations.h"
#include "hostsim/runtime/unitcatalogue.h"
#include "support/testmain.h"

namespace
{

// Defined constants: the avoirdupois pound, the international foot, standard
// gravity and the conventional millimetre of mercury are exact.
constexpr long double POUND = 0.45359237L;
constexpr long double INCH = 0.0254L;
constexpr long double FOOT = 0.3048L;
constexpr long double GRAVITY = 9.80665L;
constexpr long double MERCURY = 13595.1L;
constexpr long double POUND_FORCE = POUND * GRAVITY;
constexpr long double PI = 3.14159265358979323846L;
constexpr long double GALLON = 231.0L * INCH * INCH * INCH;

// One unit of the keyword in the basis of its dimension.
struct Defined {
    const char *keyword;
    const char *basis;
    long double factor;
};

const Defined SCALES[] = {
    {"DELTA_F", "DELTA_C", 5.0L / 9.0L},
    {"DELTA_C", "DELTA_F", 1.8L},
    {"kPa", "Pa", 1000.0L},
    {"PSI", "Pa", POUND_FORCE / (INCH * INCH)},
    {"IN_HG", "Pa", MERCURY *GRAVITY *INCH},
    {"MM_HG", "Pa", MERCURY *GRAVITY * 0.001L},
    {"CM_HG", "Pa", MERCURY *GRAVITY * 0.01L},
    {"IN_H2O", "Pa", 1000.0L * GRAVITY *INCH},
    {"MM_H2O", "Pa", GRAVITY},
    {"CM_H2O", "Pa", 10.0L * GRAVITY},
    {"Pa", "kPa", 0.001L},
    {"hPa", "Pa", 100.0L},
    {"MPa", "Pa", 1e6L},
    {"BAR", "Pa", 1e5L},
    {"MBAR", "Pa", 100.0L},
    {"TORR", "Pa", 101325.0L / 760.0L},
    {"ATM", "Pa", 101325.0L},
    {"TECH_ATM", "Pa", 1e4L * GRAVITY},
    {"PSF", "Pa", POUND_FORCE / (FOOT * FOOT)},
    {"KSI", "Pa", 1000.0L * POUND_FORCE / (INCH * INCH)},
    {"DYN/CM2", "Pa", 0.1L},
    {"SEC", "MSEC", 1000.0L},
    {"MSEC", "SEC", 0.001L},
    {"USEC", "SEC", 1e-6L},
    {"MIN", "SEC", 60.0L},
    {"HR", "SEC", 3600.0L},
    {"DAY", "SEC", 86400.0L},
    {"WEEK", "SEC", 604800.0L},
    {"none", "none", 1.0L},
    {"PCT", "FRAC", 0.01L},
    {"%", "FRAC", 0.01L},
    {"FRAC", "PCT", 100.0L},
    {"PPM", "FRAC", 1e-6L},
    {"PPB", "FRAC", 1e-9L},
    {"LB", "kg", POUND},
    {"OZ", "kg", POUND / 16.0L},
    {"GRAIN", "kg", POUND / 7000.0L},
    {"SLUG", "kg", POUND_FORCE / FOOT},
    {"SHORT_TON", "kg", 2000.0L * POUND},
    {"kg", "GRAM", 1000.0L},
    {"GRAM", "kg", 0.001L},
    {"MG", "kg", 1e-6L},
    {"TONNE", "kg", 1000.0L},
    {"LBF", "N", POUND_FORCE},
    {"OZF", "N", POUND_FORCE / 16.0L},
    {"N", "kN", 0.001L},
    {"kN", "N", 1000.0L},
    {"KGF", "N", GRAVITY},
    {"DYNE", "N", 1e-5L},
    {"LB-FT", "N-M", POUND_FORCE *FOOT},
    {"LB-IN", "N-M", POUND_FORCE *INCH},
    {"OZ-IN", "N-M", POUND_FORCE *INCH / 16.0L},
    {"N-M", "LB-FT", 1.0L / (POUND_FORCE * FOOT)},
    {"KGF-M", "N-M", GRAVITY},
    {"m", "mm", 1000.0L},
    {"mm", "m", 0.001L},
    {"cm", "m", 0.01L},
    {"km", "m", 1000.0L},
    {"MICRON", "m", 1e-6L},
    {"INCH", "m", INCH},
    {"FT", "m", FOOT},
    {"YD", "m", 3.0L * FOOT},
    {"MILE", "m", 5280.0L * FOOT},
    {"THOU", "m", 0.001L * INCH},
    {"IN2", "M2", INCH *INCH},
    {"FT2", "M2", FOOT *FOOT},
    {"CM2", "M2", 1e-4L},
    {"M2", "CM2", 1e4L},
    {"LITER", "M3", 0.001L},
    {"CC", "M3", 1e-6L},
    {"M3", "LITER", 1000.0L},
    {"IN3", "M3", INCH *INCH *INCH},
    {"FT3", "M3", FOOT *FOOT *FOOT},
    {"GAL", "M3", GALLON},
    {"QT", "M3", GALLON / 4.0L},
    {"RPM", "RAD/S", PI / 30.0L},
    {"RAD/S", "RPM", 30.0L / PI},
    {"DEG/S", "RAD/S", PI / 180.0L},
    {"REV/S", "RPM", 60.0L},
    {"HZ", "KHZ", 0.001L},
    {"KHZ", "HZ", 1000.0L},
    {"RADIAN", "ARC_DEG", 180.0L / PI},
    {"ARC_DEG", "RADIAN", PI / 180.0L},
    {"M/S", "KM/H", 3.6L},
    {"KM/H", "M/S", 1.0L / 3.6L},
    {"MPH", "M/S", 5280.0L * FOOT / 3600.0L},
    {"FT/S", "M/S", FOOT},
    {"FT/MIN", "M/S", FOOT / 60.0L},
    {"M/S2", "GEE", 1.0L / GRAVITY},
    {"GEE", "M/S2", GRAVITY},
    {"CFM", "L/S", FOOT *FOOT *FOOT * 1000.0L / 60.0L},
    {"GPM", "L/S", GALLON * 1000.0L / 60.0L},
    {"LPM", "L/S", 1.0L / 60.0L},
    {"L/S", "LPM", 60.0L},
    {"CC/MIN", "LPM", 0.001L},
    {"M3/HR", "L/S", 1000.0L / 3600.0L},
    {"LB/HR", "KG/S", POUND / 3600.0L},
    {"LB/MIN", "KG/S", POUND / 60.0L},
    {"KG/HR", "KG/S", 1.0L / 3600.0L},
    {"KG/S", "KG/HR", 3600.0L},
    {"G/S", "KG/S", 0.001L},
    {"WATT", "kW", 0.001L},
    {"kW", "WATT", 1000.0L},
    {"HP", "WATT", 550.0L * POUND_FORCE *FOOT},
    {"BTU", "JOULE", 1055.05585262L},
    {"JOULE", "kJ", 0.001L},
    {"kJ", "JOULE", 1000.0L},
    {"KWH", "kJ", 3600.0L},
    {"CAL", "JOULE", 4.1868L},
    {"VOLT", "mV", 1000.0L},
    {"mV", "VOLT", 0.001L},
    {"AMP", "mA", 1000.0L},
    {"mA", "AMP", 0.001L},
    {"OHM", "KOHM", 0.001L},
    {"KOHM", "OHM", 1000.0L},
    {"KG/M3", "G/CC", 0.001L},
    {"G/CC", "KG/M3", 1000.0L},
    {"LB/FT3", "KG/M3", POUND / (FOOT * FOOT * FOOT)},
};

// Kelvin = (reading + origin) * size.
struct Temperature {
    const char *keyword;
    long double origin;
    long double size;
};
const Temperature TEMPERATURES[] = {
    {"DEG_F", 459.67L, 5.0L / 9.0L}, {"F", 459.67L, 5.0L / 9.0L},
    {"DEG_C", 273.15L, 1.0L},        {"C", 273.15L, 1.0L},
    {"DEG_K", 0.0L, 1.0L},           {"K", 0.0L, 1.0L},
    {"DEG_R", 0.0L, 5.0L / 9.0L},    {"R", 0.0L, 5.0L / 9.0L},
};

// The value in the other unit; a failure fails the test.
double converted(const char *from, const char *to, double value)
{
    double out = qQNaN();
    const int32_t result = units_dbl_keyword_convrt(from, &out, to, value);
    if (result != 0)
        qFatal("no conversion from %s to %s", from, to);
    return out;
}

// A unit's size, counted in the first unit of its dimension that SCALES names.
struct Size {
    std::string root;
    long double size;
};

std::map<std::string, Size> sizes_of_all()
{
    std::map<std::string, Size> sizes;
    const auto spread = [&sizes] {
        bool grew = false;
        for (const Defined &unit : SCALES) {
            const auto of_unit = sizes.find(unit.keyword);
            const auto of_basis = sizes.find(unit.basis);
            if (of_unit == sizes.end() && of_basis != sizes.end()) {
                sizes[unit.keyword] = {of_basis->second.root, of_basis->second.size * unit.factor};
                grew = true;
            } else if (of_unit != sizes.end() && of_basis == sizes.end()) {
                sizes[unit.basis] = {of_unit->second.root, of_unit->second.size / unit.factor};
                grew = true;
            }
        }
        return grew;
    };
    for (const Defined &unit : SCALES) {
        if (sizes.count(unit.keyword) == 0)
            sizes[unit.keyword] = {unit.keyword, 1.0L};
        while (spread()) {
        }
    }
    for (const Temperature &unit : TEMPERATURES)
        sizes[unit.keyword] = {"temperature", unit.size};
    return sizes;
}

// Within so many units in the last place of the expected number.
bool near(double value, long double expected, int ulps)
{
    const auto rounded = static_cast<double>(expected);
    const double ulp = std::nextafter(std::fabs(rounded), HUGE_VAL) - std::fabs(rounded);
    return std::fabs(static_cast<long double>(value) - expected) <=
           static_cast<long double>(ulp * ulps);
}

} // namespace

class UnitScales : public QObject
{
    Q_OBJECT

private slots:
    void every_unit_of_the_catalogue_is_tested();
    void scales_data();
    void scales();
    void every_pair_of_the_catalogue();
    void temperatures_data();
    void temperatures();
    void many_threads_at_once();
};

void UnitScales::every_unit_of_the_catalogue_is_tested()
{
    std::set<std::string> tested;
    for (const Defined &unit : SCALES)
        tested.insert(unit.keyword);
    for (const Temperature &unit : TEMPERATURES)
        tested.insert(unit.keyword);
    std::set<std::string> present;
    for (const auto &unit :
         hostsim::parse_unit_catalogue(hostsim::default_unit_catalogue_text(), nullptr))
        present.insert(unit.keyword);
    QCOMPARE(present == tested, true);
}

void UnitScales::scales_data()
{
    QTest::addColumn<int>("row");
    int row = 0;
    for (const Defined &unit : SCALES)
        QTest::newRow(unit.keyword) << row++;
}

void UnitScales::scales()
{
    QFETCH(int, row);
    const Defined &unit = SCALES[row];
    for (const double value : {1.0, 29.92, -101.325, 1e6, 1e-9, 0.0}) {
        const auto exact = static_cast<long double>(value);
        QVERIFY(near(converted(unit.keyword, unit.basis, value), exact * unit.factor, 4));
        QVERIFY(near(converted(unit.basis, unit.keyword, value), exact / unit.factor, 4));
    }
}

// Units of one dimension to 12 digits of their defined ratio, others not at all.
void UnitScales::every_pair_of_the_catalogue()
{
    const std::map<std::string, Size> sizes = sizes_of_all();
    for (const auto &[from, source] : sizes) {
        for (const auto &[to, target] : sizes) {
            const bool alike = source.root == target.root;
            const std::string pair = from + " to " + to;
            QVERIFY2((units_dimension_check_key(from.c_str(), to.c_str()) == 0) == alike,
                     pair.c_str());
            if (!alike || source.root == "temperature")
                continue; // those have zero points, see temperatures
            for (const double value : {1.0, -29.92, 1e6}) {
                const long double expected =
                    static_cast<long double>(value) * source.size / target.size;
                const long double error =
                    static_cast<long double>(converted(from.c_str(), to.c_str(), value)) - expected;
                QVERIFY2(std::fabs(error) <= 1e-12L * std::fabs(expected), pair.c_str());
            }
        }
    }
}

void UnitScales::temperatures_data()
{
    test_columns<int, int>("from", "to");
    const int count = static_cast<int>(std::size(TEMPERATURES));
    for (int from = 0; from < count; ++from) {
        for (int to = 0; to < count; ++to)
            QTest::addRow("%s to %s", TEMPERATURES[from].keyword, TEMPERATURES[to].keyword)
                << from << to;
    }
}

void UnitScales::temperatures()
{
    QFETCH(int, from);
    QFETCH(int, to);
    const Temperature &source = TEMPERATURES[from];
    const Temperature &target = TEMPERATURES[to];
    for (const double value : {-459.67, -273.15, -40.0, 0.0, 1.0, 32.0, 98.6, 212.0, 1832.0}) {
        const long double kelvin = (static_cast<long double>(value) + source.origin) * source.size;
        const long double expected = kelvin / target.size - target.origin;
        const double result = converted(source.keyword, target.keyword, value);
        // The expectation itself is rounded at the size of the zero points.
        QVERIFY2(std::fabs(static_cast<long double>(result) - expected) <=
                     1e-15L * std::fabs(expected) + 1e-16L,
                 qPrintable(QString::number(value)));
    }
}

void UnitScales::many_threads_at_once()
{
    std::vector<std::thread> threads;
    std::atomic<int> wrong{0};
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&wrong] {
            for (int turn = 0; turn < 20; ++turn) {
                for (const Defined &unit : SCALES) {
                    double out = 0.0;
                    if (units_dbl_keyword_convrt(unit.keyword, &out, unit.basis, 1.0) != 0 ||
                        !near(out, unit.factor, 4))
                        ++wrong;
                }
                units_init_access(1);
            }
        });
    }
    for (std::thread &thread : threads)
        thread.join();
    QCOMPARE(wrong.load(), 0);
}

PLAIN_TEST(UnitScales);
#include "test_unitscales.moc"
