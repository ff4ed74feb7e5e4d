// SPDX-License-Identifier: GPL-3.0-or-later
//
// The limits that a calibration is judged against, and their biases. A named
// set of the six values is an MUA instance; there is one, the built-in NONE
// instance. Its values are tokens, a number and a unit keyword in square
// brackets, and are turned into numbers afresh whenever the sensor range, the
// units or the table change.
//
// The rule runs twice: for the record (the load operations, below) and for the
// table information dialog (ConfigDialog2's operations of the same names). Both
// are shells around read_tolerance and read_bias and differ in this alone:
//
//                              load operations      dialog
//   token                      NONE token           label's text (a NONE token)
//   token read as a fraction:
//     tolerance, after W2      NONE token           NONE token
//     all other paths          NONE token           label's text
//   mua_instance_index = 0     after W1 and W2      after W1 only
//   W3                         made, not shown      made, not shown
//
// GUI thread only: tokens and scratch buffers are process-wide and unguarded.
#ifndef SENSOR_TOLERANCES_H
#define SENSOR_TOLERANCES_H

#include <cstdint>

#include <QString>

#include "frame/zerl_cfg.h"

// Tolerance classes. Any other number than the first two means the third.
enum {
    CLASS_OOA = 1, // out of adjustment
    CLASS_OOT = 2, // out of tolerance
    CLASS_SOOT = 3 // significantly out of tolerance
};

// Sizes of a token and of its two halves, bytes with the terminator.
enum { TOKEN_SIZE = 80, TOKEN_UNIT_SIZE = 16 };

extern QString none_instance_name; // stored, never read
extern QString ooa_bias_token;
extern QString ooa_tolerance_token;
extern QString oot_bias_token;
extern QString oot_tolerance_token;
extern QString soot_bias_token;
extern QString soot_tolerance_token;

// Instance in force: every writer stores 0 and nothing reads it.
extern uint16_t mua_instance_index;

// The one of three values that belongs to a class.
template <typename Type>
const Type &of_class(int tolerance_class, const Type &ooa, const Type &oot, const Type &soot)
{
    switch (tolerance_class) {
    case CLASS_OOA:
        return ooa;
    case CLASS_OOT:
        return oot;
    default:
        return soot;
    }
}

// Sets the name and the six tokens of the NONE instance.
void set_none_instance_tokens();

// The NONE instance's token of a class.
const QString &none_tolerance_token(int tolerance_class);
const QString &none_bias_token(int tolerance_class);

// Splits a token such as ".25[PCT]" into value_text[TOKEN_SIZE] and
// unit_text[TOKEN_UNIT_SIZE]. The last character behind the "[" is dropped,
// whatever it is. Without a "[" the whole token is the value and unit_text stays
// as it was.
void split_value_token(const char *token, char *value_text, char *unit_text);

// A box with one OK button that a token's unit may call for.
struct TokenWarning {
    const char *title;
    const char *text;
};
extern const TokenWarning SENSOR_UNITS_WARNING; // W1
extern const TokenWarning TABLE_UNITS_WARNING;  // W2
extern const TokenWarning BIAS_UNITS_WARNING;   // W3

struct TokenReading {
    double value;
    const TokenWarning *warning; // null: none is called for
};

// Tolerance in the table's engineering units: a token in the sensor's dimension
// is absolute, any other a fraction of the absolute sensor span. token_after_w2
// is what serves as the fraction once W2 has been called for.
TokenReading read_tolerance(const char *token, const char *token_after_w2,
                            const TABLE_RECORD &table);

// Bias: a token in the sensor's dimension ends in sensor units, not the table's,
// and any other stays a bare fraction that no span multiplies.
TokenReading read_bias(const char *token, const TABLE_RECORD &table);

// The values of the NONE instance for the record's range and units; a
// tolerance's warning is shown.
double get_tolerance_value(int tolerance_class, ZERL_CFG *cfg);
double get_bias_value(int tolerance_class, ZERL_CFG *cfg);

// The one refresh sequence: bias(class) and tolerance(class) of each class in
// turn, each stored before the next is read.
template <typename Bias, typename Tolerance>
void refresh_limits(TABLE_RECORD *table, Bias bias, Tolerance tolerance)
{
    table->ooa_bias = bias(CLASS_OOA);
    table->ooa_tol = tolerance(CLASS_OOA);
    table->oot_bias = bias(CLASS_OOT);
    table->oot_tol = tolerance(CLASS_OOT);
    table->soot_bias = bias(CLASS_SOOT);
    table->soot_tol = tolerance(CLASS_SOOT);
}

// Refreshes the record's six values with the load operations.
void load_tolerances_and_biases(ZERL_CFG *cfg);

#endif
