/* SPDX-License-Identifier: GPL-3.0-or-later
 *
 * The shared memories that the host publishes: their numbers and the record
 * layouts, as far as they are known. All integers are little-endian, floating
 * point numbers IEEE 754 doubles. n is the channel number throughout.
 */
#ifndef HOST_MEMORIES_H
#define HOST_MEMORIES_H

#include <assert.h>
#include <stddef.h>
#include <stdint.h>

#include "host/layout.h"

/* Memory numbers, as get_shrd_mem and link_to_memory take them. */
enum {
    MEMORY_SYS_ATTR = 1,
    MEMORY_AI_TRANSFER = 3,
    MEMORY_MILLIVOLTS = 5,
    MEMORY_AI_REAL = 6,
    MEMORY_DISPLAY_STRINGS = 31,
    MEMORY_CAL_TABLES = 35,
    MEMORY_UNITS = 43,
    MEMORY_SCHEDULER = 60
};

/* AI_REAL: one record for each analog input channel. */
typedef struct AI_REAL_RECORD {
    uint8_t reserved_0[50];
    uint16_t active; /* 1: the channel is active and is offered */
    uint8_t reserved_52[12];
    char label[96];
    char units[16]; /* engineering units of the channel */
    uint8_t reserved_176[214];
} AI_REAL_RECORD;
HOST_SIZE(AI_REAL_RECORD, 390);
HOST_OFFSET(AI_REAL_RECORD, active, 50);
HOST_OFFSET(AI_REAL_RECORD, label, 64);
HOST_OFFSET(AI_REAL_RECORD, units, 160);

/* MILLIVOLTS: one record for each channel. The host updates mv at any time. */
typedef struct MV_RECORD {
    double mv; /* present reading, mV */
    uint8_t reserved_8[424];
} MV_RECORD;
HOST_SIZE(MV_RECORD, 432);
HOST_OFFSET(MV_RECORD, mv, 0);

/* System attributes: one record. */
typedef struct SYS_ATTR_RECORD {
    uint8_t reserved_0[1400];
    int16_t channel_count; /* valid channels are 0 to channel_count - 1 */
    uint8_t reserved_1402[288];
    char test_cell_name[64];
    uint8_t reserved_1754[294];
} SYS_ATTR_RECORD;
HOST_SIZE(SYS_ATTR_RECORD, 2048);
HOST_OFFSET(SYS_ATTR_RECORD, channel_count, 1400);
HOST_OFFSET(SYS_ATTR_RECORD, test_cell_name, 1690);

/* AI_TRANSFER: one record for each channel. */
typedef struct AI_TRANSFER_RECORD {
    uint8_t reserved_0[8];
    double filter_coeff;
    uint8_t reserved_16[32];
    int32_t sample_rate;
    uint8_t reserved_52[20];
    char table_name[80]; /* stem of the channel's table files */
    uint8_t reserved_152[224];
} AI_TRANSFER_RECORD;
HOST_SIZE(AI_TRANSFER_RECORD, 376);
HOST_OFFSET(AI_TRANSFER_RECORD, filter_coeff, 8);
HOST_OFFSET(AI_TRANSFER_RECORD, sample_rate, 48);
HOST_OFFSET(AI_TRANSFER_RECORD, table_name, 72);

/* DISPLAY_STRINGS: one record. */
typedef struct DISPLAY_STRINGS_RECORD {
    uint8_t reserved_0[14698];
    char host_name[64];
    uint8_t reserved_14762[622];
} DISPLAY_STRINGS_RECORD;
HOST_SIZE(DISPLAY_STRINGS_RECORD, 15384);
HOST_OFFSET(DISPLAY_STRINGS_RECORD, host_name, 14698);

/* Units catalogue: up to UNIT_RECORDS records, ended by a blank keyword. */
enum { UNIT_RECORDS = 700 };
typedef struct UNIT_RECORD {
    uint8_t reserved_0[16];
    int32_t code;
    uint8_t reserved_20[4];
    char keyword[16];
} UNIT_RECORD;
HOST_SIZE(UNIT_RECORD, 40);
HOST_OFFSET(UNIT_RECORD, code, 16);
HOST_OFFSET(UNIT_RECORD, keyword, 24);

/* What stands behind the address of a host variable. */
typedef struct VARIABLE_RECORD {
    double value;
    uint8_t reserved_8[152];
    char units[16]; /* native unit of the value */
    uint8_t reserved_176[24];
} VARIABLE_RECORD;
HOST_SIZE(VARIABLE_RECORD, 200);
HOST_OFFSET(VARIABLE_RECORD, value, 0);
HOST_OFFSET(VARIABLE_RECORD, units, 160);

#endif
