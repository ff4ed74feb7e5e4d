// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/classification.h"

#include <algorithm>
#include <cmath>

#include "host/operations.h"

double point_error(const ZERL_CFG &cfg, int32_t index)
{
    uint16_t hint = 0;
    return linear_interp(&hint, &cfg.long_previous, 0, cfg.long_current.x[index]) -
           cfg.long_current.y[index];
}

// "Not greater" rather than "<=": an error that is not a number is within.
bool within_tolerance(double error, double tolerance)
{
    return !(std::fabs(error) > tolerance);
}

uint16_t status_of_error(double error, double ooa_tol, double oot_tol, double soot_tol)
{
    if (within_tolerance(error, ooa_tol))
        return STATUS_NO_ADJUSTMENT;
    if (within_tolerance(error, oot_tol))
        return STATUS_OUT_OF_ADJUSTMENT;
    if (within_tolerance(error, soot_tol))
        return STATUS_OUT_OF_TOLERANCE;
    return STATUS_SIGNIFICANTLY_OUT;
}

bool point_within(int32_t index, double tolerance)
{
    return within_tolerance(point_error(*g_cfg, index), tolerance);
}

uint16_t point_status(const ZERL_CFG &cfg, int32_t index)
{
    return status_of_error(point_error(cfg, index), cfg.table.ooa_tol, cfg.table.oot_tol,
                           cfg.table.soot_tol);
}

const char *status_style(uint16_t status)
{
    static const char *const styles[] = {
        "background-color: rgb(0,255,0)",
        "background-color: rgb(255, 255, 127)",
        "background-color: rgb(255,170,0)",
        "background-color: rgb(255, 78, 78)",
    };
    return styles[std::min<uint16_t>(status, STATUS_SIGNIFICANTLY_OUT)];
}
