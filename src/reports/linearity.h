// SPDX-License-Identifier: GPL-3.0-or-later
//
// Linearity verification after 40 CFR 1065.307: the operation that fills its
// record. GUI thread only; there is no lock.
#ifndef REPORTS_LINEARITY_H
#define REPORTS_LINEARITY_H

#include "frame/line_rpt.h"

// Computes g_line_rpt from the captured points of the session and writes the
// dump under /ram. A dump that cannot be written costs one log entry, nothing
// else.
void calc_line_rpt_values(ZERL_CFG *cfg);

#endif
