// SPDX-License-Identifier: GPL-3.0-or-later
//
// The session record. One calibration session is one record in memory, plain
// and without owned pointers, so that it can be copied whole: channel binding
// loads a table into a copy and publishes it in one block copy under the table
// mutex. The record and the three smaller blocks beside it are allocated once,
// zero-filled, and live until the process ends.
//
// Threads: the GUI thread writes the record; the monitor thread writes only
// live_mv, live_eu, monitor_pass_done and g_sample, under the table mutex.
// What a pass reads is written under that mutex too, or whole (frame/relaxed.h).
#ifndef FRAME_ZERL_CFG_H
#define FRAME_ZERL_CFG_H

#include <QMetaType>
#include <QString>

#include "host/tablerecord.h"

class MainWindow;
class InputDevice;

enum { POLY_SAMPLES = 101, UNIT_CATEGORIES = 4, UNIT_NAMES = 700, MAX_POINTS = TABLE_POINTS };

// Extent of the values seen on one axis of the plot. All 80 bytes take part in
// the comparison that tells a change.
struct AXIS_RANGE {
    uint8_t reserved_0[8];
    uint16_t changed;
    uint8_t reserved_10[38];
    double min;
    double max;
    double step_unit;
    int16_t divisions;
    uint8_t reserved_74[6];
};
HOST_SIZE(AXIS_RANGE, 80);
HOST_OFFSET(AXIS_RANGE, changed, 8);
HOST_OFFSET(AXIS_RANGE, min, 48);
HOST_OFFSET(AXIS_RANGE, max, 56);
HOST_OFFSET(AXIS_RANGE, step_unit, 64);
HOST_OFFSET(AXIS_RANGE, divisions, 72);

struct PLOT_PAIR {
    double x; // mV
    double y; // engineering units
};

// Samples of one curve of the plot.
template <int Pairs> struct PLOT_SAMPLES {
    uint8_t reserved_0[2];
    uint16_t count;
    uint8_t reserved_4[4];
    PLOT_PAIR pairs[Pairs];
};
using PLOT_CURVE = PLOT_SAMPLES<MAX_POINTS>;
using POLY_PLOT_CURVE = PLOT_SAMPLES<POLY_SAMPLES>;
HOST_SIZE(PLOT_CURVE, 8 + 64 * 16);
HOST_OFFSET(PLOT_CURVE, count, 2);
HOST_OFFSET(PLOT_CURVE, pairs, 8);
HOST_SIZE(POLY_PLOT_CURVE, 8 + 101 * 16);
HOST_OFFSET(POLY_PLOT_CURVE, count, 2);
HOST_OFFSET(POLY_PLOT_CURVE, pairs, 8);

// Statistics of one point at its capture; the slots behind the named ones stay
// zero.
struct POINT_STATISTICS {
    double mv_at_capture;
    double mv_mean;
    double mv_std;
    double mv_min;
    double mv_max;
    double eu_reference;
    double eu_mean;
    double eu_std; // the number of mv_std, deliberately not converted
    double eu_min;
    double eu_max;
    double reserved_10[8];
};
HOST_SIZE(POINT_STATISTICS, 18 * 8);

struct ZERL_CFG {
    int16_t channel;
    TABLE_RECORD table;
    LONG_TABLE long_fit;      // best straight line through long_current
    LONG_TABLE long_previous; // the calibration to compare with
    LONG_TABLE long_current;  // the calibration being worked on
    AXIS_RANGE x_axis_range;
    AXIS_RANGE y_axis_range;
    uint16_t monitor_pass_done;
    PLOT_CURVE plot_previous;
    PLOT_CURVE plot_current;
    PLOT_CURVE plot_fit;
    POLY_PLOT_CURVE plot_poly;
    char table_units[16];
    char tbl_path[100];
    char save_path[100];
    char old_path[100];
    double live_mv; // mean over the averaging window, mV
    double live_eu; // live_mv through the bound table, engineering units
    uint16_t unsaved_flag;
    uint16_t units_loaded;
    const char *unit_category_names[UNIT_CATEGORIES];
    const char *unit_names[UNIT_CATEGORIES][UNIT_NAMES]; // in the host's unit memory
    int16_t unit_counts[UNIT_CATEGORIES];
    uint16_t value_units_override;
    uint16_t redraw_all;
    uint16_t table_dirty;
    char value_units[16];
    POINT_STATISTICS point_stats[MAX_POINTS];
};

// Moments of the calibration process, "MM/dd/yyyy hh:mm:ss" or empty.
struct WS_BLOCK {
    char as_found_time[80];
    char after_service_time[80];
    char adjust_calibration_time[80];
    char verification_time[80];
    char new_correlation_time[80];
};

enum { REPORT_EMAILS = 25, REPORT_EMAIL_SIZE = 1024 };

// Image of the specs file. Humidity stands before barometer here and behind it
// in the file.
struct SPECS_BLOCK {
    char temperature_var_name[80];
    char humidity_var_name[80];
    char barometer_var_name[80];
    char report_email[REPORT_EMAILS][REPORT_EMAIL_SIZE];
    int32_t report_email_count;
};

// Values of the measurement system under test, engineering units.
struct ENV_BLOCK {
    double validation_nominal_range_min;
    double validation_nominal_range_max;
    double min_expected_val;
    double max_expected_val;
};
HOST_SIZE(ENV_BLOCK, 4 * 8);

// Statistics of the last monitor pass.
struct SAMPLE_RECORD {
    double reserved_0;
    double mv_mean;
    double mv_std;
    double mv_min;
    double mv_max;
    double reserved_5;
    double eu_mean; // follows the table's type
    double eu_std;  // the number of mv_std, deliberately not converted
    double eu_min;  // always interpolated through long_current, like eu_max
    double eu_max;
};
HOST_SIZE(SAMPLE_RECORD, 80);

extern ZERL_CFG *g_cfg;
extern WS_BLOCK *g_ws_block;
extern SPECS_BLOCK *g_specs;
extern ENV_BLOCK *g_env;

extern MainWindow *g_main_window;
extern InputDevice *g_input_device; // null unless g_touch_input
extern bool g_touch_input;          // touch screen cell
extern int16_t g_first_select;      // 1 until the quiet path for no channel was taken
extern int16_t g_num_points;        // point rows in use
extern int32_t g_captured_points;   // rows holding a capture not yet recorded
extern uint8_t g_monitor_enabled;   // 0: the next pass starts its statistics afresh
extern uint16_t g_monitor_run;      // 1: a pass samples
extern uint32_t g_fifo_size;        // averaging window, samples (10 a second)
extern SAMPLE_RECORD g_sample;
extern QString g_poly_order_text;  // degree on show in cboOrderOfPolynomial
extern int16_t g_cal_type_changed; // the next live fit takes the stored coefficients

// Allocates the four blocks, zero-filled, in the order record, process times,
// specs, environment.
void allocate_session();

// The second copy of the record's pointer; null until initialisation has run.
void set_cfg_pointer(ZERL_CFG *cfg);
ZERL_CFG *get_cfg_pointer();

// table_dirty as a 16-bit value; when it is non-zero unsaved_flag rises too.
uint16_t table_dirty_noticed(ZERL_CFG *cfg);

// Points of the range that the table's type works with: poly[poly_range_index]
// for POLY_RANGE, otherwise poly[0].
const POLY_RANGE_RECORD &range_in_work(const TABLE_RECORD &table);

// Start values of the statistics of points 0 and 1, the only two that a binding
// resets.
void reset_point_statistics(ZERL_CFG *cfg);

// Counts and indices kept within their arrays, whatever the record holds:
// poly_range_index within 0 to 7, points and rows within 0 to 64.
int range_index(const TABLE_RECORD &table);
int point_count(const LONG_TABLE &long_table);
int points_of(const POLY_RANGE_RECORD &range);
int rows_in_use(); // g_num_points

Q_DECLARE_METATYPE(ZERL_CFG *)

#endif
