// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensor/sensorrange.h"

#include <cmath>
#include <strings.h>

#include "frame/functions.h"
#include "sensor/unitkeywords.h"

uint32_t sensor_range_reason(const TABLE_RECORD &table)
{
    const double lower = table.sensor_range_min;
    const double upper = table.sensor_range_max;
    if (lower > upper)
        return RANGE_REVERSED;
    if (nearly_equal(lower, upper))
        return RANGE_EMPTY;
    if (std::isnan(lower) || std::isnan(upper))
        return RANGE_NOT_A_NUMBER;
    if (table.sensor_units[0] == '\0')
        return RANGE_UNITS_MISSING;
    if (strcasecmp(table.sensor_units, "none") == 0)
        return RANGE_UNITS_NONE;
    if (!units_agree(table.sensor_units, table.eng_units))
        return RANGE_UNITS_UNLIKE;
    return RANGE_VALID;
}

uint32_t form_range_reason(const RangeForm &form, const char *eng_units)
{
    bool lower_read = false;
    bool upper_read = false;
    const double lower = form.lower.toDouble(&lower_read);
    const double upper = form.upper.toDouble(&upper_read);
    const QLatin1String not_a_number("nan");
    if (lower > upper)
        return RANGE_REVERSED;
    if (lower == upper)
        return RANGE_EMPTY;
    if (form.lower.contains(not_a_number) || form.upper.contains(not_a_number))
        return RANGE_NOT_A_NUMBER;
    if (!lower_read || !upper_read)
        return RANGE_UNREADABLE;
    const QString units = QString::fromUtf8(form.units);
    if (units.isEmpty())
        return RANGE_UNITS_MISSING;
    if (units.contains(QLatin1String("none"), Qt::CaseInsensitive))
        return RANGE_UNITS_NONE;
    if (!units_agree(form.units, eng_units))
        return RANGE_UNITS_UNLIKE;
    return RANGE_VALID;
}

QString range_update_text(uint32_t reason, const TABLE_RECORD &table)
{
    switch (reason) {
    case RANGE_REVERSED:
        return QStringLiteral("The Sensor Lower Range Value is greater than the Upper Range Value."
                              "\n\nPress OK to update Table Information");
    case RANGE_EMPTY:
        return QStringLiteral("The Sensor Lower and Upper Range Values are the same."
                              "\n\nPress OK to update Table Information");
    case RANGE_NOT_A_NUMBER:
        return QStringLiteral("The Sensor Lower and Upper Range Values are INVALID and need to be "
                              "updated.\n\nPress OK to update Table Information");
    case RANGE_UNITS_MISSING:
        return QStringLiteral("The Sensor Range Units must be specified."
                              "\n\nPress OK to update Table Information");
    case RANGE_UNITS_NONE:
        return QStringLiteral("The Sensor Range Units = NONE and need to be updated."
                              "\n\nPress OK to update Table Information");
    case RANGE_UNITS_UNLIKE:
        return QStringLiteral("The Sensor Range Units (%1) are not compatible with the table units "
                              "(%2).\n\nPress OK to update Table Information")
            .arg(record_text(table.sensor_units), record_text(table.eng_units));
    default:
        return {};
    }
}

QString range_refusal_title(uint32_t reason)
{
    return reason <= RANGE_UNREADABLE ? QStringLiteral("Invalid Sensor Range Limit VALUES")
                                      : QStringLiteral("Invalid Sensor Range UNITS");
}

QString range_refusal_text(uint32_t reason, const QString &units, const QString &eng_units)
{
    switch (reason) {
    case RANGE_REVERSED:
        return QStringLiteral("The entered value for the Sensor Range Lower Limit cannot be more "
                              "than the Sensor Range Upper Limit value"
                              "\n\nPlease reenter the Limit Values.");
    case RANGE_EMPTY:
        return QStringLiteral("The Sensor Range Lower and Upper Limit Values cannot be the same"
                              "\n\nPlease reenter the Limit Values.");
    case RANGE_NOT_A_NUMBER:
        return QStringLiteral("NAN is not an acceptable value for the Sensor Range Lower or Upper "
                              "Limit Values\n\nPlease reenter the Limit Values.");
    case RANGE_UNREADABLE:
        return QStringLiteral("Invalid data was entered for the Sensor Range Lower or Upper Limit "
                              "Values\n\nPlease reenter the Limit Values");
    case RANGE_UNITS_MISSING:
        return QStringLiteral("The Sensor Range Units must be specified"
                              "\n\nPlease reselect the Sensor Range Units.");
    case RANGE_UNITS_NONE:
        return QStringLiteral("The Sensor Range Units cannot be NONE"
                              "\n\nPlease reselect the Sensor Range Units.");
    case RANGE_UNITS_UNLIKE:
        return QStringLiteral("The Sensor Range Units (%1) are not compatible with the table units "
                              "(%2).\n\nPlease reselect the Sensor Range Units.")
            .arg(units, eng_units);
    default:
        return {};
    }
}
