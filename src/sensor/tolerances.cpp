// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensor/tolerances.h"

#include <clocale>
#include <cmath>
#include <cstdlib>
#include <cstring>

#include "frame/functions.h"
#include "host/operations.h"
#include "sensor/unitkeywords.h"

QString none_instance_name;
QString ooa_bias_token;
QString ooa_tolerance_token;
QString oot_bias_token;
QString oot_tolerance_token;
QString soot_bias_token;
QString soot_tolerance_token;
uint16_t mua_instance_index = 0;

const TokenWarning SENSOR_UNITS_WARNING = {
    "Warning", "Defaulting to the NONE MUA Instance Name and Tolerance values.\n\n"
               "The tolerance units are not compatible with the sensor units."};
const TokenWarning TABLE_UNITS_WARNING = {
    "Warning", "Defaulting to the NONE MUA Instance Name and Tolerance values.\n\n"
               "The tolerance units are not compatible with the calibration table units."};
const TokenWarning BIAS_UNITS_WARNING = {
    "Warning", "Defaulting to the NONE MUA Instance Name and Bias values.\n\n"
               "The found units are not compatible."};

namespace
{

constexpr char FRACTION[] = "FRAC";

// Behind the "[" stand at most 16 characters, the closing bracket among them.
constexpr std::size_t BRACKETED_SIZE = TOKEN_UNIT_SIZE + 1;

char token_scratch[TOKEN_SIZE];
char unit_scratch[BRACKETED_SIZE];

struct SplitToken {
    double value = 0.0;
    char unit[TOKEN_UNIT_SIZE] = "";
};

// A token has a decimal point whatever the user's locale has.
double number_of(const char *text)
{
    static const locale_t plain = newlocale(LC_NUMERIC_MASK, "C", nullptr);
    return strtod_l(text, nullptr, plain);
}

SplitToken read_token(const char *token)
{
    SplitToken split;
    char value_text[TOKEN_SIZE];
    split_value_token(token, value_text, split.unit);
    split.value = number_of(value_text);
    return split;
}

double as_fraction(const char *token, double value)
{
    units_token_convert(token, FRACTION, &value);
    return value;
}

} // namespace

void set_none_instance_tokens()
{
    none_instance_name = QStringLiteral("none");
    ooa_bias_token = QStringLiteral("0[PCT]");
    ooa_tolerance_token = QStringLiteral(".25[PCT]");
    oot_bias_token = QStringLiteral("0[PCT]");
    oot_tolerance_token = QStringLiteral("1[PCT]");
    soot_bias_token = QStringLiteral("0[PCT]");
    soot_tolerance_token = QStringLiteral("2[PCT]");
}

const QString &none_tolerance_token(int tolerance_class)
{
    return of_class(tolerance_class, ooa_tolerance_token, oot_tolerance_token,
                    soot_tolerance_token);
}

const QString &none_bias_token(int tolerance_class)
{
    return of_class(tolerance_class, ooa_bias_token, oot_bias_token, soot_bias_token);
}

void split_value_token(const char *token, char *value_text, char *unit_text)
{
    copyn(__FILE__, __LINE__, token_scratch, token, sizeof token_scratch);
    char *const bracket = std::strchr(token_scratch, '[');
    if (bracket == nullptr) {
        copyn(__FILE__, __LINE__, value_text, token_scratch, TOKEN_SIZE);
        return;
    }
    copyn(__FILE__, __LINE__, unit_scratch, bracket + 1, sizeof unit_scratch);
    *bracket = '\0';
    copyn(__FILE__, __LINE__, value_text, token_scratch, TOKEN_SIZE);
    const std::size_t length = std::strlen(unit_scratch);
    if (length > 0)
        unit_scratch[length - 1] = '\0';
    copyn(__FILE__, __LINE__, unit_text, unit_scratch, TOKEN_UNIT_SIZE);
}

TokenReading read_tolerance(const char *token, const char *token_after_w2,
                            const TABLE_RECORD &table)
{
    const double span = converted(table.sensor_units, table.eng_units,
                                  std::fabs(table.sensor_range_max - table.sensor_range_min));
    const SplitToken split = read_token(token);
    if (same_dimension(split.unit, table.sensor_units)) {
        if (units_agree(split.unit, table.eng_units))
            return {converted(split.unit, table.eng_units, split.value), nullptr};
        return {span * as_fraction(token_after_w2, split.value), &TABLE_UNITS_WARNING};
    }
    const bool is_fraction = same_dimension(split.unit, FRACTION);
    return {span * as_fraction(token, split.value), is_fraction ? nullptr : &SENSOR_UNITS_WARNING};
}

TokenReading read_bias(const char *token, const TABLE_RECORD &table)
{
    const SplitToken split = read_token(token);
    if (same_dimension(split.unit, table.sensor_units))
        return {converted(split.unit, table.sensor_units, split.value), nullptr};
    const bool is_fraction = same_dimension(split.unit, FRACTION);
    return {as_fraction(token, split.value), is_fraction ? nullptr : &BIAS_UNITS_WARNING};
}

double get_tolerance_value(int tolerance_class, ZERL_CFG *cfg)
{
    const QByteArray token = none_tolerance_token(tolerance_class).toUtf8();
    const TokenReading reading = read_tolerance(token, token, cfg->table);
    if (reading.warning != nullptr) {
        show_warning(reading.warning->title, reading.warning->text);
        mua_instance_index = 0;
    }
    return reading.value;
}

double get_bias_value(int tolerance_class, ZERL_CFG *cfg)
{
    // A bias's warning is made and then dropped on purpose: no judgement reads
    // the biases, so nobody is stopped for one. The index stays as it is.
    return read_bias(none_bias_token(tolerance_class).toUtf8(), cfg->table).value;
}

void load_tolerances_and_biases(ZERL_CFG *cfg)
{
    refresh_limits(
        &cfg->table, [cfg](int tolerance_class) { return get_bias_value(tolerance_class, cfg); },
        [cfg](int tolerance_class) { return get_tolerance_value(tolerance_class, cfg); });
}
