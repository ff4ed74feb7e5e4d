// SPDX-License-Identifier: GPL-3.0-or-later
//
// The judgement of a captured point against the calibration that the channel
// had when the work began.
#ifndef CALIBRATION_CLASSIFICATION_H
#define CALIBRATION_CLASSIFICATION_H

#include "frame/zerl_cfg.h"

enum {
    STATUS_NO_ADJUSTMENT = 0,
    STATUS_OUT_OF_ADJUSTMENT = 1,
    STATUS_OUT_OF_TOLERANCE = 2,
    STATUS_SIGNIFICANTLY_OUT = 3
};

// What the former calibration says for point `index`, less the value really
// applied; engineering units.
double point_error(const ZERL_CFG &cfg, int32_t index);

// Error and tolerance in engineering units. The limit itself is within, and so
// is an error that is not a number.
bool within_tolerance(double error, double tolerance);

// The first limit that the error keeps decides, whatever their order.
uint16_t status_of_error(double error, double ooa_tol, double oot_tol, double soot_tol);

// True when point `index` of the session lies within the tolerance.
bool point_within(int32_t index, double tolerance);

// Status 0 to 3 of point `index` of the record.
uint16_t point_status(const ZERL_CFG &cfg, int32_t index);

// Style sheet of a widget judged with that status.
const char *status_style(uint16_t status);

#endif
