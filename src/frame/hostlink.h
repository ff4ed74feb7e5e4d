// SPDX-License-Identifier: GPL-3.0-or-later
//
// The link to the host: its shared memories and its variables. GUI thread only.
#ifndef FRAME_HOSTLINK_H
#define FRAME_HOSTLINK_H

#include "host/exports.h"
#include "host/operations.h"

extern const AI_TRANSFER_RECORD *g_ai_transfer;
extern const DISPLAY_STRINGS_RECORD *g_display_strings;
extern const void *g_cal_tables;
extern const void *g_cal_tables_base; // set to g_cal_tables by a complete attach

// Attaches the seven memories in order; 0 when all are attached. The first that
// fails is shown to the user and ends the series with -1; what was attached so far
// stays attached. Nothing is ever released.
int32_t attach_host_memories();

// Looks a host variable up: 1 and *address set, or 0, a log entry, and *address
// as it was. Behind the address stands a VARIABLE_RECORD.
int32_t find_var_address(const char *name, void **address);

#endif
