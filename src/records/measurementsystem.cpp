// SPDX-License-Identifier: GPL-3.0-or-later
#include "records/measurementsystem.h"

namespace
{

struct Place {
    double ENV_BLOCK::*expected;
    double LINE_RPT::*report;
    const char *name;
};

const std::array<Place, EXPECTED_VALUES> PLACES = {{
    {&ENV_BLOCK::validation_nominal_range_min, &LINE_RPT::validation_nominal_range_min,
     "Validation Nominal Range Min"},
    {&ENV_BLOCK::validation_nominal_range_max, &LINE_RPT::validation_nominal_range_max,
     "Validation Nominal Range Max"},
    {&ENV_BLOCK::min_expected_val, &LINE_RPT::min_expected_val, "Min Expected Val"},
    {&ENV_BLOCK::max_expected_val, &LINE_RPT::max_expected_val, "Max Expected Val"},
}};

QString general_text(double value)
{
    return QString::number(value, 'g', 6);
}

} // namespace

ExpectedTexts expected_texts(const TABLE_RECORD &table)
{
    const QString smallest = general_text(table.y_min);
    const QString largest = general_text(table.y_max);
    return {smallest, largest, smallest, largest};
}

ExpectedValue store_expected_values(const ExpectedTexts &texts, ENV_BLOCK *expected,
                                    LINE_RPT *report)
{
    for (std::size_t i = 0; i < PLACES.size(); ++i) {
        bool is_number = false;
        const double parsed = texts[i].toDouble(&is_number);
        // A number beyond the range of a double comes as infinity.
        const double value = is_number ? parsed : 0.0;
        expected->*PLACES[i].expected = value;
        report->*PLACES[i].report = value;
        if (!is_number)
            return static_cast<ExpectedValue>(i);
    }
    return EXPECTED_VALUES;
}

QString invalid_value_text(ExpectedValue value)
{
    return QStringLiteral("An invalid value was entered for %1\n\n"
                          "The entered value must be a double")
        .arg(QLatin1String(PLACES[value].name));
}
