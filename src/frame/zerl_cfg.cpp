// SPDX-License-Identifier: GPL-3.0-or-later
#include "frame/zerl_cfg.h"

#include <algorithm>
#include <cstdlib>

#include "frame/relaxed.h"

ZERL_CFG *g_cfg = nullptr;
WS_BLOCK *g_ws_block = nullptr;
SPECS_BLOCK *g_specs = nullptr;
ENV_BLOCK *g_env = nullptr;

MainWindow *g_main_window = nullptr;
InputDevice *g_input_device = nullptr;
bool g_touch_input = false;
int16_t g_first_select = 0;
int16_t g_num_points = 0;
int32_t g_captured_points = 0;
uint8_t g_monitor_enabled = 0;
uint16_t g_monitor_run = 0;
uint32_t g_fifo_size = 0;
SAMPLE_RECORD g_sample = {};
QString g_poly_order_text;
int16_t g_cal_type_changed = 0;

namespace
{
ZERL_CFG *cfg_pointer = nullptr;

template <typename Block> Block *allocate_block()
{
    return static_cast<Block *>(std::calloc(1, sizeof(Block)));
}
} // namespace

void allocate_session()
{
    g_cfg = allocate_block<ZERL_CFG>();
    g_ws_block = allocate_block<WS_BLOCK>();
    g_specs = allocate_block<SPECS_BLOCK>();
    g_env = allocate_block<ENV_BLOCK>();
}

void set_cfg_pointer(ZERL_CFG *cfg)
{
    cfg_pointer = cfg;
}

ZERL_CFG *get_cfg_pointer()
{
    return cfg_pointer;
}

uint16_t table_dirty_noticed(ZERL_CFG *cfg)
{
    if (cfg->table_dirty != 0)
        cfg->unsaved_flag = 1;
    return cfg->table_dirty;
}

int range_index(const TABLE_RECORD &table)
{
    return std::clamp<int>(relaxed_load(table.poly_range_index), 0, POLY_RANGES - 1);
}

int point_count(const LONG_TABLE &long_table)
{
    return std::clamp<int>(long_table.num_points, 0, MAX_POINTS);
}

int points_of(const POLY_RANGE_RECORD &range)
{
    return std::clamp<int>(range.num_points, 0, MAX_POINTS);
}

int rows_in_use()
{
    return std::clamp<int>(g_num_points, 0, MAX_POINTS);
}

const POLY_RANGE_RECORD &range_in_work(const TABLE_RECORD &table)
{
    return table.poly[table.table_type == TABLE_POLY_RANGE ? range_index(table) : 0];
}

void reset_point_statistics(ZERL_CFG *cfg)
{
    for (int i = 0; i < 2; ++i) {
        POINT_STATISTICS &point = cfg->point_stats[i];
        point.mv_at_capture = -999.0;
        point.eu_mean = -999.0;
        point.eu_std = -999.0;
        point.eu_min = 999.0;
        point.eu_max = -999.0;
    }
}
