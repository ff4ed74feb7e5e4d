/* SPDX-License-Identifier: GPL-3.0-or-later
 *
 * Records of the host's sampling statistics.
 */
#ifndef HOST_SAMPLINGRECORD_H
#define HOST_SAMPLINGRECORD_H

#include <stdint.h>

#include "host/layout.h"

typedef struct FIFO_RECORD {
    double *buffer;
    double *next;   /* next slot to be written; starts equal to buffer */
    uint32_t size;  /* capacity, samples */
    uint32_t count; /* samples held; reaches size and stays there */
} FIFO_RECORD;
HOST_SIZE(FIFO_RECORD, 24);
HOST_OFFSET(FIFO_RECORD, buffer, 0);
HOST_OFFSET(FIFO_RECORD, next, 8);
HOST_OFFSET(FIFO_RECORD, size, 16);
HOST_OFFSET(FIFO_RECORD, count, 20);

/* Opaque but for the two fields that the sampling pass writes. */
typedef struct STAT_RECORD {
    uint8_t reserved_0[200];
    double present_200; /* present reading, mV */
    uint8_t reserved_208[32];
    double present_240; /* the same */
    uint8_t reserved_248[1480];
} STAT_RECORD;
HOST_SIZE(STAT_RECORD, 1728);
HOST_OFFSET(STAT_RECORD, present_200, 200);
HOST_OFFSET(STAT_RECORD, present_240, 240);

/* Member numbers of get_stat_member. */
enum { STAT_MEAN = 0, STAT_MINIMUM = 1, STAT_MAXIMUM = 2, STAT_DEVIATION = 4, STAT_MEMBER_21 = 21 };

#endif
