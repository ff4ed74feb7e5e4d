// SPDX-License-Identifier: GPL-3.0-or-later
#include "acquisition/channelbinding.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>

#include "acquisition/monitorthread.h"
#include "calibration/tableload.h"
#include "frame/functions.h"
#include "frame/hostlink.h"
#include "frame/tablelock.h"

namespace
{

bool channel_usable(int16_t channel)
{
    char text[200];
    if (channel < 0 || channel >= Sys_attr->channel_count) {
        std::snprintf(text, sizeof text, "Channel '%d' is Out of Range", channel);
        show_information(text);
        return false;
    }
    if (Ai_real[channel].active == 0) {
        std::snprintf(text, sizeof text, "Channel '%d' is not Active", channel);
        show_information(text);
        return false;
    }
    return true;
}

template <std::size_t Size>
void make_path(char (&path)[Size], const char *table_name, const char *extension)
{
    std::snprintf(path, Size, "/cell/tables/%.79s%s", table_name, extension);
}

// Name, units and paths as the host publishes them for the channel. The read
// that follows replaces the name and the units with those of the file.
void take_names(ZERL_CFG *cfg)
{
    TABLE_RECORD &table = cfg->table;
    copyn(__FILE__, __LINE__, table.table_name, g_ai_transfer[cfg->channel].table_name,
          sizeof table.table_name);
    copyn(__FILE__, __LINE__, table.eng_units, Ai_real[cfg->channel].units, sizeof table.eng_units);
    make_path(cfg->tbl_path, table.table_name, ".tbl");
    make_path(cfg->save_path, table.table_name, ".save");
    make_path(cfg->old_path, table.table_name, ".old");
}

void read_table_into(ZERL_CFG *cfg)
{
    if (is_failure(load_channel_table(cfg))) {
        copyn(__FILE__, __LINE__, cfg->table.description, "No Description",
              sizeof cfg->table.description);
        cfg->long_current.flags = 0;
        cfg->long_current.num_points = 0;
        return;
    }
    copyn(__FILE__, __LINE__, cfg->table_units, cfg->table.eng_units, sizeof cfg->table_units);
}

// Null before the monitor thread is made: then there is nobody to hold off.
QMutex *table_mutex()
{
    return g_monitor_thread != nullptr ? g_monitor_thread->table_mutex() : nullptr;
}

// "%5d  -  %s" by hand: a list may hold 32,767 of them.
QString item_text(int channel, const char *label, std::size_t label_size)
{
    char text[160];
    char digits[12];
    const char *end = std::to_chars(digits, std::end(digits), channel).ptr;
    const auto width = static_cast<std::size_t>(end - digits);
    std::size_t length = width < 5 ? 5 - width : 0;
    std::memset(text, ' ', length);
    std::memcpy(text + length, digits, width);
    length += width;
    std::memcpy(text + length, "  -  ", 5);
    length += 5;
    const std::size_t label_length = strnlen(label, std::min(label_size, sizeof text - length));
    std::memcpy(text + length, label, label_length);
    return QString::fromUtf8(text, static_cast<int>(length + label_length));
}

} // namespace

QString channel_item_prefix(int channel)
{
    return item_text(channel, "", 0);
}

QStringList channel_items()
{
    const int count = Sys_attr->channel_count;
    QStringList items;
    items.reserve(count + 1);
    items.append(QStringLiteral("Select A Channel"));
    for (int n = 0; n < count; ++n) {
        if (Ai_real[n].active == 1)
            items.append(item_text(n, Ai_real[n].label, sizeof Ai_real[n].label));
    }
    return items;
}

bool channel_of_item(const QString &text, int16_t *channel)
{
    const QStringList parts = text.split(QLatin1Char(' '), Qt::SkipEmptyParts);
    bool is_number = false;
    const int16_t number = parts.isEmpty() ? int16_t(0) : parts.first().toShort(&is_number);
    if (is_number)
        *channel = number;
    return is_number;
}

int32_t bind_channel(ZERL_CFG *cfg)
{
    const bool usable = channel_usable(cfg->channel);
    if (usable) {
        take_names(cfg);
        read_table_into(cfg);
        take_table_into_work(cfg);
    }
    g_captured_points = 0;
    return usable ? 0 : -1;
}

void bind_active_channel(ZERL_CFG *cfg)
{
    // A channel that a rebuild removed is not active either.
    const bool published = cfg->channel >= 0 && cfg->channel < Sys_attr->channel_count;
    if (published && Ai_real[cfg->channel].active == 1)
        bind_channel(cfg);
}

void publish_record(ZERL_CFG *copy, ZERL_CFG *record)
{
    const TableLock lock(table_mutex());
    copy->live_mv = record->live_mv;
    copy->live_eu = record->live_eu;
    copy->monitor_pass_done = record->monitor_pass_done;
    *record = *copy;
}

int32_t rebind_channel(ZERL_CFG *cfg)
{
    // A copy, so that the passes meanwhile go on by the former table.
    const auto local = std::make_unique<ZERL_CFG>();
    {
        const TableLock lock(table_mutex());
        *local = *cfg;
    }
    const int32_t result = bind_channel(local.get());
    if (result == 0) {
        local->table_dirty = 0;
        publish_record(local.get(), cfg);
    }
    return result;
}
