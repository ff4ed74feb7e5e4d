/* SPDX-License-Identifier: GPL-3.0-or-later
 *
 * The calibration table record and the long table: wire formats of the host's
 * table operations. Reserved spans belong to the host; they are carried
 * through as read.
 */
#ifndef HOST_TABLERECORD_H
#define HOST_TABLERECORD_H

#include <stdint.h>

#include "host/layout.h"

enum {
    TABLE_POINTS = 64, /* points that a range or a long table holds */
    POLY_RANGES = 8,
    POLY_COEFFS = 18 /* coefficients that a range holds */
};

enum { TABLE_INTERP = 0, TABLE_POLY = 1, TABLE_SCALED = 2, TABLE_POLY_RANGE = 7 };
enum { TABLE_TYPE_UNKNOWN = 65535 }; /* in an archive record only */

/* The step of the calibration process that a record was saved for. */
enum {
    SAVE_AS_FOUND = 3,
    SAVE_AFTER_SERVICE = 5,
    SAVE_VERIFICATION = 6,
    SAVE_ADJUSTED = 7,
    SAVE_REUSED = 8,
    SAVE_NEW_CORRELATION = 9
};

typedef struct POLY_RANGE_RECORD {
    int16_t num_coeffs; /* degree + 1; 0: the range is not in use */
    uint8_t reserved_2[6];
    double coeffs[POLY_COEFFS]; /* lowest power first */
    double x[TABLE_POINTS];     /* mV */
    double y[TABLE_POINTS];     /* engineering units */
    int16_t num_points;
    uint8_t reserved_1178[6];
} POLY_RANGE_RECORD;
HOST_SIZE(POLY_RANGE_RECORD, 1184);
HOST_OFFSET(POLY_RANGE_RECORD, num_coeffs, 0);
HOST_OFFSET(POLY_RANGE_RECORD, coeffs, 8);
HOST_OFFSET(POLY_RANGE_RECORD, x, 152);
HOST_OFFSET(POLY_RANGE_RECORD, y, 664);
HOST_OFFSET(POLY_RANGE_RECORD, num_points, 1176);

typedef struct TABLE_RECORD {
    POLY_RANGE_RECORD poly[POLY_RANGES];
    uint8_t reserved_9472[10752];
    double y_min; /* smallest and largest y of the points at the last save */
    double y_max;
    uint8_t reserved_20240[24];
    int64_t last_cal_time; /* seconds since the epoch */
    uint8_t reserved_20272[8];
    int16_t poly_range_index; /* range in work, 0 to 7 */
    uint16_t table_type;
    uint8_t reserved_20284[4];
    char description[32];
    char qie[32]; /* working standard */
    char verified_by[32];
    char cal_comment[80];
    char sensor_model[32];
    char sensor_serial_no[32];
    double sensor_range_min; /* in sensor_units */
    double sensor_range_max;
    char sensor_units[16];
    char table_name[80]; /* stem of the table files */
    char eng_units[16];
    uint8_t reserved_20656[96];
    char mua_instance_name[80];
    double ooa_bias;
    double ooa_tol; /* limits in engineering units */
    uint8_t reserved_20848[112];
    double oot_bias;
    double oot_tol;
    uint8_t reserved_20976[112];
    double soot_bias;
    double soot_tol;
    uint8_t reserved_21104[624];
    uint16_t last_save_type;
    uint16_t worst_status; /* 0 to 3 */
    uint8_t reserved_21732[4];
    int32_t point_state[TABLE_POINTS];
} TABLE_RECORD;
HOST_SIZE(TABLE_RECORD, 21992);
HOST_OFFSET(TABLE_RECORD, poly, 0);
HOST_OFFSET(TABLE_RECORD, y_min, 20224);
HOST_OFFSET(TABLE_RECORD, y_max, 20232);
HOST_OFFSET(TABLE_RECORD, last_cal_time, 20264);
HOST_OFFSET(TABLE_RECORD, poly_range_index, 20280);
HOST_OFFSET(TABLE_RECORD, table_type, 20282);
HOST_OFFSET(TABLE_RECORD, description, 20288);
HOST_OFFSET(TABLE_RECORD, qie, 20320);
HOST_OFFSET(TABLE_RECORD, verified_by, 20352);
HOST_OFFSET(TABLE_RECORD, cal_comment, 20384);
HOST_OFFSET(TABLE_RECORD, sensor_model, 20464);
HOST_OFFSET(TABLE_RECORD, sensor_serial_no, 20496);
HOST_OFFSET(TABLE_RECORD, sensor_range_min, 20528);
HOST_OFFSET(TABLE_RECORD, sensor_range_max, 20536);
HOST_OFFSET(TABLE_RECORD, sensor_units, 20544);
HOST_OFFSET(TABLE_RECORD, table_name, 20560);
HOST_OFFSET(TABLE_RECORD, eng_units, 20640);
HOST_OFFSET(TABLE_RECORD, mua_instance_name, 20752);
HOST_OFFSET(TABLE_RECORD, ooa_bias, 20832);
HOST_OFFSET(TABLE_RECORD, ooa_tol, 20840);
HOST_OFFSET(TABLE_RECORD, oot_bias, 20960);
HOST_OFFSET(TABLE_RECORD, oot_tol, 20968);
HOST_OFFSET(TABLE_RECORD, soot_bias, 21088);
HOST_OFFSET(TABLE_RECORD, soot_tol, 21096);
HOST_OFFSET(TABLE_RECORD, last_save_type, 21728);
HOST_OFFSET(TABLE_RECORD, worst_status, 21730);
HOST_OFFSET(TABLE_RECORD, point_state, 21736);

/* The working form of a calibration: the points with a straight segment each. */
typedef struct LONG_TABLE {
    double x[TABLE_POINTS];     /* mV */
    double y[TABLE_POINTS];     /* engineering units */
    double slope[TABLE_POINTS]; /* engineering units per mV */
    double reserved_1536[TABLE_POINTS];
    double intercept[TABLE_POINTS]; /* engineering units */
    int16_t num_points;
    uint8_t reserved_2562[4620];
    uint16_t flags;
    uint8_t reserved_7184[288];
} LONG_TABLE;
HOST_SIZE(LONG_TABLE, 7472);
HOST_OFFSET(LONG_TABLE, x, 0);
HOST_OFFSET(LONG_TABLE, y, 512);
HOST_OFFSET(LONG_TABLE, slope, 1024);
HOST_OFFSET(LONG_TABLE, intercept, 2048);
HOST_OFFSET(LONG_TABLE, num_points, 2560);
HOST_OFFSET(LONG_TABLE, flags, 7182);

#endif
