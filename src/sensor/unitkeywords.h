// SPDX-License-Identifier: GPL-3.0-or-later
//
// The host's units service as the sensor rules use it. Units are keywords.
#ifndef SENSOR_UNITKEYWORDS_H
#define SENSOR_UNITKEYWORDS_H

#include "host/operations.h"

// True when a value can be given in either unit: a unit that was not
// chosen yet, the empty keyword, agrees with any at the host.
inline bool units_agree(const char *a, const char *b)
{
    return (units_dimension_check_key(a, b) & 0xffff) == 0;
}

// True when values of one unit can be converted to the other: both are chosen.
inline bool same_dimension(const char *a, const char *b)
{
    return a[0] != '\0' && b[0] != '\0' && units_agree(a, b);
}

// The value in the other unit; unchanged when the two are unlike or unknown.
inline double converted(const char *from, const char *to, double value)
{
    double result = value;
    units_dbl_keyword_convrt(from, &result, to, value);
    return result;
}

#endif
