// SPDX-License-Identifier: GPL-3.0-or-later
//
// Where the three tolerances and their biases come from. Conversions are
// checked against the definition of the psi, 6.894757293168361 kPa.
#include <cstring>
#include <memory>

#include <QtTest>

#include "host/operations.h"
#include "sensor/tolerances.h"
#include "support/recorder.h"
#include "support/testmain.h"

namespace
{

constexpr double KPA_PER_PSI = 6.894757293168361;

const char *const W1 = "Defaulting to the NONE MUA Instance Name and Tolerance values.\n\n"
                       "The tolerance units are not compatible with the sensor units.";
const char *const W2 = "Defaulting to the NONE MUA Instance Name and Tolerance values.\n\n"
                       "The tolerance units are not compatible with the calibration table units.";
const char *const W3 = "Defaulting to the NONE MUA Instance Name and Bias values.\n\n"
                       "The found units are not compatible.";

std::unique_ptr<ZERL_CFG> session(double min, double max, const char *sensor, const char *table)
{
    auto cfg = std::make_unique<ZERL_CFG>();
    cfg->table.sensor_range_min = min;
    cfg->table.sensor_range_max = max;
    qstrncpy(cfg->table.sensor_units, sensor, sizeof cfg->table.sensor_units);
    qstrncpy(cfg->table.eng_units, table, sizeof cfg->table.eng_units);
    return cfg;
}

} // namespace

class Tolerances : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QCOMPARE(units_init_access(1) & 0xffff, 0); }
    void init();
    void cleanup();
    void none_instance();
    void token_of_class_data();
    void token_of_class();
    void split_data();
    void split();
    void none_tolerances_data();
    void none_tolerances();
    void percent_sensor_and_other_table();
    void tolerance_token_data();
    void tolerance_token();
    void fraction_after_a_warning_data();
    void fraction_after_a_warning();
    void tolerance_warning_resets_the_index_data();
    void tolerance_warning_resets_the_index();
    void bias_token_data();
    void bias_token();
    void bias_warning_is_made_and_not_shown();
    void refresh_stores_each_value_in_its_field();
    void refresh_overwrites_what_the_table_brought();
};

void Tolerances::init()
{
    set_none_instance_tokens();
    mua_instance_index = 7;
    clear_recorded();
}

void Tolerances::cleanup()
{
    set_none_instance_tokens();
    mua_instance_index = 0;
}

void Tolerances::none_instance()
{
    QCOMPARE(none_instance_name, QString("none"));
    QCOMPARE(ooa_bias_token, QString("0[PCT]"));
    QCOMPARE(ooa_tolerance_token, QString(".25[PCT]"));
    QCOMPARE(oot_bias_token, QString("0[PCT]"));
    QCOMPARE(oot_tolerance_token, QString("1[PCT]"));
    QCOMPARE(soot_bias_token, QString("0[PCT]"));
    QCOMPARE(soot_tolerance_token, QString("2[PCT]"));
}

void Tolerances::token_of_class_data()
{
    const auto row = test_columns<int, QString, QString>("tolerance_class", "tolerance", "bias");
    row("1 is out of adjustment", 1, ".25[PCT]", "4[PCT]");
    row("2 is out of tolerance", 2, "1[PCT]", "5[PCT]");
    row("3 is significantly out", 3, "2[PCT]", "6[PCT]");
    row("0 is significantly out", 0, "2[PCT]", "6[PCT]");
    row("4 is significantly out", 4, "2[PCT]", "6[PCT]");
    row("-1 is significantly out", -1, "2[PCT]", "6[PCT]");
}

void Tolerances::token_of_class()
{
    QFETCH(int, tolerance_class);
    ooa_bias_token = "4[PCT]";
    oot_bias_token = "5[PCT]";
    soot_bias_token = "6[PCT]";
    QTEST(none_tolerance_token(tolerance_class), "tolerance");
    QTEST(none_bias_token(tolerance_class), "bias");
}

void Tolerances::split_data()
{
    const auto row = test_columns<QByteArray, QByteArray, QByteArray>("token", "value", "unit");
    row("number and unit", ".25[PCT]", ".25", "PCT");
    row("no bracket: all is value, unit stays", "12.5", "12.5", "before");
    row("nothing at all: unit stays", "", "", "before");
    row("no number", "[kPa]", "", "kPa");
    row("nothing behind the bracket", "5[", "5", "");
    row("empty brackets", "5[]", "5", "");
    row("the last character goes, whatever it is", "5[PCT", "5", "PC");
    row("only the last character goes", "5[PCT]x", "5", "PCT]");
    row("the first bracket counts", "1[a[b]", "1", "a[b");
    row("blanks are kept", " 5 [ PCT ]", " 5 ", " PCT ");
    row("unit of 15 characters", "1[ABCDEFGHIJKLMNO]", "1", "ABCDEFGHIJKLMNO");
    row("16 characters are taken behind the bracket", "1[ABCDEFGHIJKLMNOPQRS]", "1",
        "ABCDEFGHIJKLMNO");
    row("79 characters fit", QByteArray(79, '1'), QByteArray(79, '1'), "before");
    row("80 characters are cut", QByteArray(80, '1'), QByteArray(79, '1'), "before");
    row("a bracket behind the cut is not seen", QByteArray(80, '1') + "[PCT]", QByteArray(79, '1'),
        "before");
}

void Tolerances::split()
{
    QFETCH(QByteArray, token);
    char value[TOKEN_SIZE] = "before";
    char unit[TOKEN_UNIT_SIZE] = "before";
    split_value_token(token, value, unit);
    QTEST(QByteArray(value), "value");
    QTEST(QByteArray(unit), "unit");
}

void Tolerances::none_tolerances_data()
{
    // per_percent: tolerance of one percent
    const auto row = test_columns<double, double, QByteArray, QByteArray, double>(
        "min", "max", "sensor", "table", "per_percent");
    row("0 to 100 in the table's units", 0, 100, "kPa", "kPa", 1.0);
    row("0 to 1000", 0, 1000, "kPa", "kPa", 10.0);
    row("-50 to 150: the limits' difference", -50, 150, "kPa", "kPa", 2.0);
    row("limits reversed: the difference is absolute", 100, 0, "kPa", "kPa", 1.0);
    row("limits equal", 40, 40, "kPa", "kPa", 0.0);
    row("a limit that is no number", qQNaN(), 100, "kPa", "kPa", qQNaN());
    row("span converted to the table's units", 0, 100, "PSI", "kPa", KPA_PER_PSI);
    row("and the other way", 0, 100, "kPa", "PSI", 1.0 / KPA_PER_PSI);
    row("a percent sensor: tolerances are absolute", 0, 50, "PCT", "PCT", 1.0);
    row("a fraction sensor: absolute, as fractions", 0, 50, "FRAC", "FRAC", 0.01);
    row("the span of a temperature is converted with the zero point", 0, 100, "DEG_C", "DEG_F",
        2.12);
    row("no sensor units: the span stands as it is", 0, 100, "", "kPa", 1.0);
}

void Tolerances::none_tolerances()
{
    QFETCH(double, min);
    QFETCH(double, max);
    QFETCH(QByteArray, sensor);
    QFETCH(QByteArray, table);
    QFETCH(double, per_percent);
    auto cfg = session(min, max, sensor, table);
    load_tolerances_and_biases(cfg.get());
    QCOMPARE(cfg->table.ooa_tol, 0.25 * per_percent);
    QCOMPARE(cfg->table.oot_tol, per_percent);
    QCOMPARE(cfg->table.soot_tol, 2.0 * per_percent);
    QCOMPARE(cfg->table.ooa_bias, 0.0);
    QCOMPARE(cfg->table.oot_bias, 0.0);
    QCOMPARE(cfg->table.soot_bias, 0.0);
    QCOMPARE(warning_texts(), QStringList());
    QCOMPARE(mua_instance_index, uint16_t(7));
}

void Tolerances::percent_sensor_and_other_table()
{
    auto cfg = session(0, 300, "PCT", "kPa");
    double span = 0.0;
    units_dbl_keyword_convrt("PCT", &span, "kPa", 300.0);
    load_tolerances_and_biases(cfg.get());
    QCOMPARE(warning_texts(), QStringList({W2, W2, W2}));
    QCOMPARE(warning_titles(), QStringList({"Warning", "Warning", "Warning"}));
    QCOMPARE(cfg->table.ooa_tol, span * 0.0025);
    QCOMPARE(cfg->table.oot_tol, span * 0.01);
    QCOMPARE(cfg->table.soot_tol, span * 0.02);
    QVERIFY(span > 0.0);
    QCOMPARE(mua_instance_index, uint16_t(0));
}

void Tolerances::tolerance_token_data()
{
    const auto row = test_columns<QByteArray, QByteArray, QByteArray, double, QString>(
        "token", "sensor", "table", "value", "warning");
    // The sensor's span is 200 of its units throughout.
    row("5 percent of the span", "5[PCT]", "kPa", "kPa", 10.0, nullptr);
    row("a fraction of the span", ".05[FRAC]", "kPa", "kPa", 10.0, nullptr);
    row("absolute, in table units", "2[PSI]", "kPa", "kPa", 2.0 * KPA_PER_PSI, nullptr);
    row("absolute, table in the token's unit", "2[PSI]", "kPa", "PSI", 2.0, nullptr);
    row("unlike the sensor", "3[DEG_F]", "kPa", "kPa", 600.0, W1);
    row("unlike the sensor, like the table", "3[DEG_F]", "kPa", "DEG_F", 600.0, W1);
    row("without a unit", "3", "kPa", "kPa", 600.0, W1);
    row("like the sensor, unlike the table", "3[kPa]", "kPa", "DEG_F", 600.0, W2);
    row("percent sensor, other table", "5[PCT]", "PCT", "kPa", 10.0, W2);
}

void Tolerances::tolerance_token()
{
    QFETCH(QByteArray, token);
    QFETCH(QByteArray, sensor);
    QFETCH(QByteArray, table);
    const auto cfg = session(-50, 150, sensor, table);
    const TokenReading reading = read_tolerance(token, token, cfg->table);
    QTEST(reading.value, "value");
    QTEST(reading.warning == nullptr ? QString() : QString(reading.warning->text), "warning");
}

void Tolerances::fraction_after_a_warning_data()
{
    const auto row = test_columns<QByteArray, QByteArray, QByteArray, double>("token", "sensor",
                                                                              "table", "value");
    row("no warning: the token", QByteArray("5[PCT]"), QByteArray("kPa"), QByteArray("kPa"), 10.0);
    row("unlike the sensor: the token", QByteArray("3[DEG_F]"), QByteArray("kPa"),
        QByteArray("kPa"), 600.0);
    row("unlike the table: the other token", QByteArray("5[PCT]"), QByteArray("PCT"),
        QByteArray("kPa"), 14.0);
}

void Tolerances::fraction_after_a_warning()
{
    QFETCH(QByteArray, token);
    QFETCH(QByteArray, sensor);
    QFETCH(QByteArray, table);
    const auto cfg = session(-50, 150, sensor, table);
    QTEST(read_tolerance(token, "7[PCT]", cfg->table).value, "value");
}

void Tolerances::tolerance_warning_resets_the_index_data()
{
    const auto row =
        test_columns<QString, QByteArray, QStringList, int>("token", "table", "warnings", "index");
    row("no warning", "5[PCT]", QByteArray("kPa"), QStringList(), 7);
    row("unlike the sensor", "3[DEG_F]", QByteArray("kPa"), QStringList(W1), 0);
    row("unlike the table", "3[kPa]", QByteArray("DEG_F"), QStringList(W2), 0);
}

void Tolerances::tolerance_warning_resets_the_index()
{
    QFETCH(QString, token);
    QFETCH(QByteArray, table);
    oot_tolerance_token = token;
    auto cfg = session(-50, 150, "kPa", table);
    get_tolerance_value(CLASS_OOT, cfg.get());
    QTEST(warning_texts(), "warnings");
    QTEST(int(mua_instance_index), "index");
}

void Tolerances::bias_token_data()
{
    const auto row =
        test_columns<QString, QByteArray, QByteArray, double>("token", "sensor", "table", "value");
    row("a percentage stays a bare fraction", "5[PCT]", "kPa", "kPa", 0.05);
    row("a fraction too", ".05[FRAC]", "kPa", "kPa", 0.05);
    row("absolute: in sensor units, not the table's", "2[PSI]", "kPa", "PSI", 2.0 * KPA_PER_PSI);
    row("absolute: the table's units are not checked", "2[PSI]", "kPa", "DEG_F", 2.0 * KPA_PER_PSI);
    row("percent sensor", "5[PCT]", "PCT", "kPa", 5.0);
    row("unlike the sensor: the number as it stands", "3[DEG_F]", "kPa", "kPa", 3.0);
}

void Tolerances::bias_token()
{
    QFETCH(QString, token);
    QFETCH(QByteArray, sensor);
    QFETCH(QByteArray, table);
    soot_bias_token = token;
    auto cfg = session(-50, 150, sensor, table);
    QTEST(get_bias_value(CLASS_SOOT, cfg.get()), "value");
    QCOMPARE(warning_texts(), QStringList());
    QCOMPARE(mua_instance_index, uint16_t(7));
}

void Tolerances::bias_warning_is_made_and_not_shown()
{
    ooa_bias_token = "3[DEG_F]";
    auto cfg = session(0, 100, "kPa", "kPa");
    const TokenReading reading = read_bias("3[DEG_F]", cfg->table);
    QVERIFY(reading.warning != nullptr);
    QCOMPARE(QString(reading.warning->title), QString("Warning"));
    QCOMPARE(QString(reading.warning->text), QString(W3));
    QVERIFY(read_bias("3[PCT]", cfg->table).warning == nullptr);
    QVERIFY(read_bias("3[PSI]", cfg->table).warning == nullptr);
    QCOMPARE(get_bias_value(CLASS_OOA, cfg.get()), 3.0);
    QCOMPARE(warning_texts(), QStringList());
    QCOMPARE(mua_instance_index, uint16_t(7));
}

void Tolerances::refresh_stores_each_value_in_its_field()
{
    ooa_bias_token = "1[PCT]";
    ooa_tolerance_token = "2[PCT]";
    oot_bias_token = "3[PCT]";
    oot_tolerance_token = "4[PCT]";
    soot_bias_token = "5[PCT]";
    soot_tolerance_token = "6[PCT]";
    auto cfg = session(0, 1000, "kPa", "kPa");
    auto expected = std::make_unique<ZERL_CFG>(*cfg);
    load_tolerances_and_biases(cfg.get());
    QCOMPARE(cfg->table.ooa_bias, 0.01);
    QCOMPARE(cfg->table.ooa_tol, 20.0);
    QCOMPARE(cfg->table.oot_bias, 0.03);
    QCOMPARE(cfg->table.oot_tol, 40.0);
    QCOMPARE(cfg->table.soot_bias, 0.05);
    QCOMPARE(cfg->table.soot_tol, 60.0);

    // Nothing else in the record moves, the gaps between the fields included.
    TABLE_RECORD &table = expected->table;
    table.ooa_bias = cfg->table.ooa_bias;
    table.ooa_tol = cfg->table.ooa_tol;
    table.oot_bias = cfg->table.oot_bias;
    table.oot_tol = cfg->table.oot_tol;
    table.soot_bias = cfg->table.soot_bias;
    table.soot_tol = cfg->table.soot_tol;
    QCOMPARE(std::memcmp(&cfg->table, &table, sizeof table), 0);
}

void Tolerances::refresh_overwrites_what_the_table_brought()
{
    auto cfg = session(0, 100, "kPa", "kPa");
    TABLE_RECORD &table = cfg->table;
    table.ooa_bias = table.ooa_tol = table.oot_bias = 99.0;
    table.oot_tol = table.soot_bias = table.soot_tol = 99.0;
    load_tolerances_and_biases(cfg.get());
    QCOMPARE(table.ooa_bias, 0.0);
    QCOMPARE(table.ooa_tol, 0.25);
    QCOMPARE(table.oot_bias, 0.0);
    QCOMPARE(table.oot_tol, 1.0);
    QCOMPARE(table.soot_bias, 0.0);
    QCOMPARE(table.soot_tol, 2.0);
}

PLAIN_TEST(Tolerances);
#include "test_tolerances.moc"
