// SPDX-License-Identifier: GPL-3.0-or-later
//
// Records and blocks for the tests of the table files.
#ifndef TESTS_UNIT_HOSTSIM_TABLES_TABLEFIXTURE_H
#define TESTS_UNIT_HOSTSIM_TABLES_TABLEFIXTURE_H

#include <cstring>
#include <random>

#include <QByteArray>

#include "host/operations.h"
#include "hostsim/runtime/tablefile.h"
#include "hostsim/runtime/tablelines.h"
#include "hostsim/runtime/tabletext.h"

namespace tablefixture
{

inline void set_text(char *field, std::size_t size, const QByteArray &text)
{
    std::memset(field, 0, size);
    std::memcpy(field, text.constData(), std::min(size - 1, static_cast<std::size_t>(text.size())));
}

// A sound INTERP table of three points.
inline TABLE_RECORD sound_record()
{
    TABLE_RECORD record = {};
    record.table_type = TABLE_INTERP;
    record.poly[0].num_points = 3;
    const double x[] = {0.0, 10.25, 20.5};
    const double y[] = {0.0, 50.0, 100.1};
    std::memcpy(record.poly[0].x, x, sizeof x);
    std::memcpy(record.poly[0].y, y, sizeof y);
    record.poly[0].num_coeffs = 2;
    record.poly[0].coeffs[1] = 4.8829268292682;
    record.y_max = 100.1;
    record.last_cal_time = 1772357400;
    record.last_save_type = SAVE_ADJUSTED;
    record.point_state[0] = 2;
    record.point_state[2] = 1;
    set_text(record.table_name, sizeof record.table_name, "torque_1");
    set_text(record.description, sizeof record.description, "Torque \"A\"");
    set_text(record.verified_by, sizeof record.verified_by, "J. Müller");
    set_text(record.eng_units, sizeof record.eng_units, "LB-FT");
    return record;
}

// Every byte of the record at random: nothing in it needs to make sense.
inline TABLE_RECORD random_record(std::mt19937_64 &random)
{
    TABLE_RECORD record;
    auto *bytes = reinterpret_cast<unsigned char *>(&record);
    for (std::size_t i = 0; i < sizeof record; ++i)
        bytes[i] = static_cast<unsigned char>(random());
    return record;
}

// The same, with most of it zero, as records usually are.
inline TABLE_RECORD sparse_record(std::mt19937_64 &random)
{
    TABLE_RECORD record = {};
    auto *bytes = reinterpret_cast<unsigned char *>(&record);
    for (int i = 0; i < 200; ++i)
        bytes[random() % sizeof record] = static_cast<unsigned char>(random());
    return record;
}

inline bool same(const TABLE_RECORD &a, const TABLE_RECORD &b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

inline bool is_zero(const TABLE_RECORD &record)
{
    const TABLE_RECORD zero = {};
    return same(record, zero);
}

inline QByteArray block_of(const TABLE_RECORD &record, int save_type = hostsim::NO_SAVE_TYPE)
{
    hostsim::BlockInfo info;
    info.who = "J. Doe";
    info.when = "2026-03-01T09:30:00Z";
    info.program = "1.0.0";
    info.save_type = save_type;
    return QByteArray::fromStdString(hostsim::write_block(record, info));
}

// A block as an archive holds it. The comment tells the records apart.
inline QByteArray archived(int save_type, const QByteArray &comment)
{
    TABLE_RECORD record = sound_record();
    record.last_save_type = static_cast<std::uint16_t>(save_type);
    set_text(record.cal_comment, sizeof record.cal_comment, comment);
    return block_of(record, save_type);
}

// The block with a text in it replaced and a check sum that agrees again.
inline QByteArray altered(QByteArray block, const QByteArray &from, const QByteArray &to)
{
    block.replace(from, to);
    const int closing = block.lastIndexOf("\nEND ") + 1;
    const std::string_view above(block.constData(), static_cast<std::size_t>(closing));
    return block.left(closing) + QByteArray::fromStdString(hostsim::closing_line(above)) + "\n";
}

} // namespace tablefixture

#endif
