// SPDX-License-Identifier: GPL-3.0-or-later
//
// Tables for the tests of the table files.
#ifndef UNIT_CALIBRATION_TABLERECORDS_H
#define UNIT_CALIBRATION_TABLERECORDS_H

#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <QByteArray>

#include "frame/zerl_cfg.h"
#include "hostsim/runtime/tablefile.h"

using Points = std::vector<std::pair<double, double>>; // mV, engineering units

inline void set_points(POLY_RANGE_RECORD *range, const Points &points)
{
    range->num_points = static_cast<int16_t>(points.size());
    for (std::size_t i = 0; i < points.size() && i < TABLE_POINTS; ++i) {
        range->x[i] = points[i].first;
        range->y[i] = points[i].second;
    }
}

inline void set_coeffs(POLY_RANGE_RECORD *range, const std::vector<double> &coeffs)
{
    range->num_coeffs = static_cast<int16_t>(coeffs.size());
    for (std::size_t i = 0; i < coeffs.size() && i < POLY_COEFFS; ++i)
        range->coeffs[i] = coeffs[i];
}

inline void set_points(LONG_TABLE *table, const Points &points)
{
    table->num_points = static_cast<int16_t>(points.size());
    for (std::size_t i = 0; i < points.size() && i < TABLE_POINTS; ++i) {
        table->x[i] = points[i].first;
        table->y[i] = points[i].second;
    }
}

// count points on y = 2x + 1 from 10 mV on, 10 mV apart.
inline Points line_points(int count)
{
    Points points;
    for (int i = 1; i <= count; ++i)
        points.emplace_back(10.0 * i, 20.0 * i + 1.0);
    return points;
}

inline std::unique_ptr<TABLE_RECORD> make_table(int type, const Points &points = {})
{
    auto table = std::make_unique<TABLE_RECORD>();
    table->table_type = static_cast<uint16_t>(type);
    qstrncpy(table->table_name, "flow", sizeof table->table_name);
    qstrncpy(table->eng_units, "kPa", sizeof table->eng_units);
    qstrncpy(table->description, "Flow meter", sizeof table->description);
    set_points(&table->poly[0], points);
    return table;
}

// A record of an archive or history file with what its block says of itself.
struct StoredRecord {
    TABLE_RECORD table;
    hostsim::BlockInfo info;
};

// All whole records of a file's bytes; a damaged one counts as a record of type
// 65534.
inline std::vector<StoredRecord> stored_records(const QByteArray &bytes)
{
    std::vector<StoredRecord> records;
    std::string_view data(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    while (!data.empty()) {
        std::size_t size = 0;
        const hostsim::Stretch kind = hostsim::first_stretch(data, &size);
        if (kind != hostsim::Stretch::Blank) {
            records.emplace_back();
            hostsim::BlockFault fault;
            if (!hostsim::parse_block(data.substr(0, size), &records.back().table,
                                      &records.back().info, &fault))
                records.back().table.table_type = 65534;
        }
        data.remove_prefix(size);
    }
    return records;
}

// One archive block as the host would write it, of any type.
inline QByteArray archive_block(const TABLE_RECORD &table, int save_type)
{
    TABLE_RECORD record = table;
    record.last_save_type = static_cast<uint16_t>(save_type);
    hostsim::BlockInfo info;
    info.who = "J. Doe";
    info.when = "2026-03-01T09:30:00Z";
    info.program = "1.0.0";
    info.save_type = save_type;
    return QByteArray::fromStdString(hostsim::write_block(record, info));
}

#endif
