// SPDX-License-Identifier: GPL-3.0-or-later
//
// The unit catalogue: the keywords that the host publishes, in four lists. GUI
// thread; the lists are built once a session and only read from then on.
#ifndef SENSOR_UNITCATALOGUE_H
#define SENSOR_UNITCATALOGUE_H

#include <cstdint>

#include <QByteArrayList>

#include "frame/zerl_cfg.h"

// Lists in the order in which they are shown and searched. It is not the order
// of the codes: times, 700 to 799, stand before the others.
enum { UNITS_TEMPERATURE = 0, UNITS_PRESSURE = 1, UNITS_TIME = 2, UNITS_OTHER = 3 };

// Builds the lists, unless that is done, and takes the keyword to start from
// into value_units: table_units when value_units_override is set, otherwise the
// sensor's units. Returns its list and row; 0 and 0, and value_units empty,
// when no list has it. Without the host's memory each list is " <empty>".
void load_unit_lists(ZERL_CFG *cfg, int16_t *category, int16_t *row);

// The first entry, list after list, that begins with the keyword, case-sensitive.
// False, and both left alone, when there is none or the keyword is empty.
bool find_unit(const ZERL_CFG *cfg, int16_t *category, int16_t *row, const char *keyword);

// The keywords of a list (0 to 3) in their order, in the host's bytes.
QByteArrayList unit_list(const ZERL_CFG *cfg, int category);

// True when value_units holds a unit; an empty one is logged.
bool unit_is_picked(const ZERL_CFG *cfg);

// Converts the y values of long_current in place from the table's units to
// value_units, which become the table's; x (mV), the table record's own points
// and what stands behind the last point are left alone. Without the table mutex:
// the monitor thread reads old values or new ones, each whole.
void convert_table_values(ZERL_CFG *cfg);

// Display class of a unit: 4 percent, 1 and 2 temperatures, 3 torque, 0
// pressure, 5 anything else.
int32_t classify_unit(const char *keyword);

#endif
