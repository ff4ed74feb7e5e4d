// SPDX-License-Identifier: GPL-3.0-or-later
//
// The measurement system under test: the range that a verification is meant to
// cover. GUI thread only; there is no lock.
#ifndef RECORDS_MEASUREMENTSYSTEM_H
#define RECORDS_MEASUREMENTSYSTEM_H

#include <array>

#include <QString>

#include "frame/line_rpt.h"
#include "frame/zerl_cfg.h"

enum ExpectedValue {
    EXPECTED_RANGE_MIN, // nominal validation range
    EXPECTED_RANGE_MAX,
    EXPECTED_MIN,
    EXPECTED_MAX,
    EXPECTED_VALUES
};

// One text for each value, as entered, in engineering units.
using ExpectedTexts = std::array<QString, EXPECTED_VALUES>;

// What the fields start from: the table's smallest and largest y, twice, in
// general notation with 6 significant digits.
ExpectedTexts expected_texts(const TABLE_RECORD &table);

// Stores the four in both records, in their order, up to the first that is no
// number: it is stored as 0 and returned, and those behind it keep what they had.
// EXPECTED_VALUES when all were numbers. How they relate is not looked at.
ExpectedValue store_expected_values(const ExpectedTexts &texts, ENV_BLOCK *expected,
                                    LINE_RPT *report);

// What to tell of a value that is no number.
QString invalid_value_text(ExpectedValue value);

#endif
