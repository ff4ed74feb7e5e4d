// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/tablestore.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

#include "frame/functions.h"
#include "frame/relaxed.h"
#include "host/operations.h"

namespace
{

constexpr std::size_t NAME_SIZE = 352;
constexpr std::size_t DIFFERENCE_SIZE = 120;
constexpr std::size_t COMMAND_SIZE = 300;

void read_beside(const char *path, char (&tbl_name)[NAME_SIZE], char (&save_name)[NAME_SIZE])
{
    char directory[NAME_SIZE] = {};
    char name[NAME_SIZE] = {};
    char extension[NAME_SIZE] = {};
    char whole[NAME_SIZE];
    copyn(__FILE__, __LINE__, whole, path, sizeof whole);
    _splitpath(whole, nullptr, directory, name, extension);
    const QByteArray stem = QByteArray(directory) + QByteArray(name);
    copyn(__FILE__, __LINE__, save_name, (stem + ".save").constData(), sizeof save_name);
    copyn(__FILE__, __LINE__, tbl_name, (stem + ".tbl").constData(), sizeof tbl_name);
}

// An archive record holds all data but the two texts that always come from the
// .tbl, and its type may be left open.
void merge_from_tbl(TABLE_RECORD *table, const TABLE_RECORD &from_tbl)
{
    std::memcpy(table->mua_instance_name, from_tbl.mua_instance_name,
                sizeof table->mua_instance_name);
    std::memcpy(table->description, from_tbl.description, sizeof table->description);
    if (table->table_type == TABLE_TYPE_UNKNOWN)
        table->table_type = from_tbl.table_type;
}

// The two bounds are joined by and, so no difference is ever one: only a
// different number of points is reported, which is what operators rely on.
bool counts_as_difference(double d)
{
    return d <= -1e-7 && d >= 1e-7; // NOLINT(misc-redundant-expression)
}

bool points_differ(const POLY_RANGE_RECORD &a, const POLY_RANGE_RECORD &b)
{
    const int count = std::min<int>(a.num_points, MAX_POINTS);
    for (int i = 0; i < count; ++i) {
        if (counts_as_difference(a.x[i] - b.x[i]) || counts_as_difference(a.y[i] - b.y[i]))
            return true;
    }
    return false;
}

void check_points(const TABLE_RECORD *archived, const TABLE_RECORD *from_tbl, const char *tbl_name,
                  const char *save_name, const char *difference)
{
    if (archived->poly[0].num_points != from_tbl->poly[0].num_points) {
        show_information(difference);
        log_error(__FILE__, __LINE__, 1, 0,
                  "<%s> data does not agree with <%s> data\n not the same number of points",
                  tbl_name, save_name);
        return;
    }
    if (points_differ(archived->poly[0], from_tbl->poly[0])) {
        show_information(difference);
        log_error(__FILE__, __LINE__, 1, 0, "<%s> data does not agree with <%s> data", tbl_name,
                  save_name);
    }
}

// A table without points stores the two start values, so the wrong way round.
void store_extent(ZERL_CFG *cfg)
{
    double y_max = -999999.0;
    double y_min = 999999.0;
    const int count = point_count(cfg->long_current);
    for (int i = 0; i < count; ++i) {
        const double y = cfg->long_current.y[i];
        if (y > y_max)
            y_max = y;
        if (y < y_min)
            y_min = y;
    }
    cfg->table.y_min = y_min;
    cfg->table.y_max = y_max;
}

void tell_failed_update(const char *path)
{
    const QByteArray text = QByteArray("Unable to update the ") + path +
                            " file - due to an invalid calibration table type";
    show_information(text.constData());
}

void add_to_archive(ZERL_CFG *cfg, int32_t save_type)
{
    if (save_table_files_poly(cfg->save_path, &cfg->table, save_type) != 0)
        tell_failed_update(cfg->save_path);
}

bool names_no_table(const ZERL_CFG *cfg)
{
    return std::strcmp(cfg->table.table_name, "INACTIVE") == 0;
}

void clear_dirty(ZERL_CFG *cfg)
{
    cfg->unsaved_flag = 0;
    cfg->table_dirty = 0;
}

// The former table goes to the history, then the table is rewritten, also after
// a history that failed: the table in force comes first.
void replace_table(ZERL_CFG *cfg)
{
    const QByteArray command = history_command(cfg->tbl_path, cfg->old_path);
    if (std::system(command.constData()) == -1)
        tell_failed_update(cfg->old_path);
    create_table(cfg->tbl_path, &cfg->table);
}

template <std::size_t Size> void bound_text(char (&field)[Size])
{
    copyn(__FILE__, __LINE__, field, field, Size);
}

// A text that fills its field to the last byte would run into the next one.
void bound_texts(TABLE_RECORD *table)
{
    bound_text(table->description);
    bound_text(table->qie);
    bound_text(table->verified_by);
    bound_text(table->cal_comment);
    bound_text(table->sensor_model);
    bound_text(table->sensor_serial_no);
    bound_text(table->sensor_units);
    bound_text(table->table_name);
    bound_text(table->eng_units);
    bound_text(table->mua_instance_name);
}

int32_t read_files(const char *path, TABLE_RECORD *table)
{
    TABLE_RECORD *records[ARCHIVE_POINTERS] = {};
    void *aux[ARCHIVE_POINTERS] = {};
    char tbl_name[NAME_SIZE];
    char save_name[NAME_SIZE];
    read_beside(path, tbl_name, save_name);
    if (read_archive_file_poly(1, save_name, records, aux) < 1)
        return read_table(tbl_name, table);

    std::memcpy(table, records[0], sizeof *table);
    static TABLE_RECORD from_tbl; // 22 kB that need not lie on the stack; GUI thread only
    std::memset(&from_tbl, 0, sizeof from_tbl);
    if (!is_failure(read_table(tbl_name, &from_tbl))) {
        merge_from_tbl(table, from_tbl);
        check_table_against_archive(table, &from_tbl, tbl_name, save_name);
    }
    return 0;
}

} // namespace

QByteArray history_command(const char *tbl_path, const char *old_path)
{
    const QByteArray command = "cat " + for_shell(tbl_path) + " >> " + for_shell(old_path);
    // Quotes may take an odd name past the usual length; a cut command would
    // write to another file.
    const bool plain = plain_for_shell(tbl_path) && plain_for_shell(old_path);
    return plain ? command.left(static_cast<int>(COMMAND_SIZE) - 1) : command;
}

int32_t read_channel_table(const char *path, TABLE_RECORD *table)
{
    const int32_t status = read_files(path, table);
    bound_texts(table);
    return status;
}

void check_table_against_archive(const TABLE_RECORD *archived, const TABLE_RECORD *from_tbl,
                                 const char *tbl_name, const char *save_name)
{
    char difference[DIFFERENCE_SIZE];
    std::snprintf(difference, sizeof difference, "%s pts diff from %s ADJUST cal", tbl_name,
                  save_name);
    if (archived->table_type != from_tbl->table_type) {
        // The blank at the end belongs to the text.
        const QByteArray text =
            QByteArray("<") + tbl_name + "> table type differs from <" + save_name + "> ";
        show_information(text.constData());
    } else if (archived->table_type == TABLE_INTERP) {
        check_points(archived, from_tbl, tbl_name, save_name, difference);
    } else if (archived->table_type == TABLE_POLY &&
               archived->poly[0].num_coeffs != from_tbl->poly[0].num_coeffs) {
        const QByteArray text =
            QByteArray(tbl_name) + " num coeff of polynomial differ from " + save_name;
        show_information(text.constData());
    }
}

int32_t save_calibration(ZERL_CFG *cfg, int32_t save_type)
{
    if (!names_no_table(cfg)) {
        store_extent(cfg);
        add_to_archive(cfg, save_type);
        // Behind the archive write: the record just added does not hold them.
        cfg->table.last_cal_time = static_cast<int64_t>(std::time(nullptr));
        cfg->table.last_save_type = static_cast<uint16_t>(save_type);
        if (save_type == SAVE_ADJUSTED || save_type == SAVE_NEW_CORRELATION)
            replace_table(cfg);
    }
    clear_dirty(cfg);
    return 0;
}

int32_t save_reused_calibration(ZERL_CFG *cfg, int32_t save_type)
{
    if (!names_no_table(cfg)) {
        POLY_RANGE_RECORD &range = cfg->table.poly[0];
        const int count = point_count(cfg->long_previous);
        for (int i = 0; i < count; ++i) {
            relaxed_store(range.x[i], cfg->long_previous.x[i]);
            relaxed_store(range.y[i], cfg->long_previous.y[i]);
        }
        relaxed_store(range.num_points, cfg->long_previous.num_points);
        // The extent is that of the data just captured, not of the points
        // restored.
        store_extent(cfg);
        add_to_archive(cfg, save_type);
    }
    clear_dirty(cfg);
    return 0;
}
