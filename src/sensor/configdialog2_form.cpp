// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensor/configdialog2_form.h"

#include <cmath>
#include <cstring>

#include "frame/functions.h"
#include "host/operations.h"

namespace
{

bool differs(const QByteArray &text, const char *field)
{
    return std::strcmp(text.constData(), field) != 0;
}

bool texts_differ(const SensorForm &form, const TABLE_RECORD &table)
{
    return differs(form.description, table.description) ||
           differs(form.serial_number, table.sensor_serial_no) ||
           differs(form.model, table.sensor_model) || differs(form.units, table.sensor_units);
}

template <std::size_t Size> bool store_text(const QByteArray &text, char (&field)[Size])
{
    const bool changed = differs(text, field);
    copyn(__FILE__, __LINE__, field, text.constData(), Size);
    trim_text(field);
    return changed;
}

bool store_limit(double limit, double *field)
{
    const bool changed = !nearly_equal(limit, *field);
    *field = limit;
    return changed;
}

} // namespace

bool change_affects_calibration(const SensorForm &form, const TABLE_RECORD &table)
{
    return texts_differ(form, table) || !nearly_equal(form.lower, table.sensor_range_min) ||
           !nearly_equal(form.upper, table.sensor_range_max);
}

bool cancel_loses_changes(const SensorForm &form, const TABLE_RECORD &table)
{
    if (texts_differ(form, table))
        return true;
    if (!std::isnan(form.lower) && !std::isnan(table.sensor_range_min))
        return !nearly_equal(form.lower, table.sensor_range_min);
    return !std::isnan(form.upper) && !std::isnan(table.sensor_range_max) &&
           !nearly_equal(form.upper, table.sensor_range_max);
}

bool store_sensor_form(const SensorForm &form, TABLE_RECORD *table)
{
    bool changed = store_text(form.description, table->description);
    changed |= store_text(form.serial_number, table->sensor_serial_no);
    changed |= store_text(form.model, table->sensor_model);
    changed |= store_text(form.units, table->sensor_units);
    changed |= store_limit(form.lower, &table->sensor_range_min);
    changed |= store_limit(form.upper, &table->sensor_range_max);
    return changed;
}
