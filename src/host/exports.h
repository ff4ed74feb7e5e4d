/* SPDX-License-Identifier: GPL-3.0-or-later
 *
 * Symbols that the program defines and the host's runtime refers to, and the
 * one pointer that goes the other way.
 */
#ifndef HOST_EXPORTS_H
#define HOST_EXPORTS_H

#include "host/memories.h"

HOST_BEGIN

/* Attached memories; the records belong to the host and are only read. */
extern const AI_REAL_RECORD *Ai_real;
extern const MV_RECORD *Mv;
extern const SYS_ATTR_RECORD *Sys_attr;
extern const void *Sched_attr;

/* For the runtime alone; the program neither reads nor writes them. */
extern int16_t Override_enable;
extern int16_t Spec_file_line_count;

/* Version text of the program. */
extern const char *VORNAX_VER __attribute__((weak));

/* Defined by the runtime: the units catalogue, filled by link_to_memory. */
extern const UNIT_RECORD *Unit_mem;

HOST_END

#endif
