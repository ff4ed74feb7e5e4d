// SPDX-License-Identifier: GPL-3.0-or-later
#include "sensor/unitcatalogue.h"

#include <algorithm>
#include <cstring>
#include <strings.h>

#include "frame/functions.h"
#include "frame/relaxed.h"
#include "host/exports.h"
#include "host/operations.h"
#include "sensor/unitkeywords.h"

namespace
{

constexpr char EMPTY_LIST[] = " <empty>";

// A keyword of 16 bytes fills its field and has no terminator.
constexpr std::size_t KEYWORD_BYTES = sizeof(UNIT_RECORD::keyword);

bool is_blank(const char *keyword)
{
    char text[KEYWORD_BYTES + 1] = "";
    std::memcpy(text, keyword, KEYWORD_BYTES);
    return string_blank(text) != 0;
}

int category_of(int32_t code)
{
    if (code >= 700 && code <= 799)
        return UNITS_TIME;
    if (code > 199)
        return UNITS_OTHER;
    return code > 99 ? UNITS_PRESSURE : UNITS_TEMPERATURE;
}

void add_name(ZERL_CFG *cfg, int category, const char *name)
{
    cfg->unit_names[category][cfg->unit_counts[category]++] = name;
}

bool link_unit_memory()
{
    void *address = nullptr;
    const int32_t linked = link_to_memory(MEMORY_UNITS, &address);
    if (linked == 0) {
        log_error(__FILE__, __LINE__, 1, linked,
                  "Unable to link to Units shared memory.\nThe Units list will be unavailable");
        return false;
    }
    Unit_mem = static_cast<const UNIT_RECORD *>(address);
    return true;
}

void build_lists(ZERL_CFG *cfg)
{
    static const char *const names[UNIT_CATEGORIES] = {"Temperature", "Pressure", "Time", "Other"};
    std::copy(std::begin(names), std::end(names), cfg->unit_category_names);
    std::fill_n(cfg->unit_counts, UNIT_CATEGORIES, int16_t(0));
    if (link_unit_memory()) {
        for (int i = 0; i < UNIT_RECORDS && !is_blank(Unit_mem[i].keyword); ++i)
            add_name(cfg, category_of(Unit_mem[i].code), Unit_mem[i].keyword);
    } else {
        for (int category = 0; category < UNIT_CATEGORIES; ++category)
            add_name(cfg, category, EMPTY_LIST);
    }
    cfg->units_loaded = 1;
}

struct DisplayClass {
    const char *keyword;
    int32_t number;
};

// Fahrenheit goes with kelvin and Celsius with Rankine, deliberately.
constexpr DisplayClass DISPLAY_CLASSES[] = {{"%", 4},     {"deg_F", 1}, {"deg_K", 1}, {"F", 1},
                                            {"deg_C", 2}, {"deg_R", 2}, {"C", 2}};

} // namespace

void load_unit_lists(ZERL_CFG *cfg, int16_t *category, int16_t *row)
{
    if (cfg->units_loaded == 0)
        build_lists(cfg);
    const char *const start =
        cfg->value_units_override != 0 ? cfg->table_units : cfg->table.sensor_units;
    copyn(__FILE__, __LINE__, cfg->value_units, start, sizeof cfg->value_units);
    trim_text(cfg->value_units);
    if (find_unit(cfg, category, row, cfg->value_units))
        return;
    *category = 0;
    *row = 0;
    cfg->value_units[0] = '\0';
}

bool find_unit(const ZERL_CFG *cfg, int16_t *category, int16_t *row, const char *keyword)
{
    const std::size_t length = std::strlen(keyword);
    // No entry is longer, and one of 16 bytes ends without a terminator.
    if (length == 0 || length > KEYWORD_BYTES)
        return false;
    for (int16_t list = 0; list < UNIT_CATEGORIES; ++list) {
        for (int16_t entry = 0; entry < cfg->unit_counts[list]; ++entry) {
            if (std::strncmp(cfg->unit_names[list][entry], keyword, length) != 0)
                continue;
            *category = list;
            *row = entry;
            return true;
        }
    }
    return false;
}

QByteArrayList unit_list(const ZERL_CFG *cfg, int category)
{
    QByteArrayList names;
    if (category < 0 || category >= UNIT_CATEGORIES)
        return names;
    for (int i = 0; i < cfg->unit_counts[category]; ++i) {
        const char *const name = cfg->unit_names[category][i];
        names.append(QByteArray(name, static_cast<int>(strnlen(name, KEYWORD_BYTES))));
    }
    return names;
}

bool unit_is_picked(const ZERL_CFG *cfg)
{
    if (cfg->value_units[0] != '\0')
        return true;
    log_error(__FILE__, __LINE__, 1, 0, "Error: No units selected for table.");
    return false;
}

void convert_table_values(ZERL_CFG *cfg)
{
    LONG_TABLE &current = cfg->long_current;
    const int count = point_count(current);
    for (int i = 0; i < count; ++i) {
        relaxed_store(current.y[i],
                      converted(cfg->table.eng_units, cfg->value_units, current.y[i]));
    }
    copyn(__FILE__, __LINE__, cfg->table.eng_units, cfg->value_units, sizeof cfg->table.eng_units);
    cfg->redraw_all = 1;
}

int32_t classify_unit(const char *keyword)
{
    for (const DisplayClass &known : DISPLAY_CLASSES) {
        if (strcasecmp(keyword, known.keyword) == 0)
            return known.number;
    }
    if (same_dimension(keyword, "LB-FT"))
        return 3;
    int32_t code = -1;
    units_keyword_to_code(keyword, &code);
    return code >= 100 && code <= 199 ? 0 : 5;
}
