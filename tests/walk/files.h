// SPDX-License-Identifier: GPL-3.0-or-later
//
// The table files of one channel as the model knows them: no text, only what
// the tables say.
#ifndef WALK_FILES_H
#define WALK_FILES_H

#include <memory>
#include <vector>

#include "host/tablerecord.h"

namespace walk
{

// Stands for the moment of a step, which the model cannot know beforehand.
constexpr int64_t TIME_OF_STEP = INT64_MIN;

using Record = std::shared_ptr<const TABLE_RECORD>; // null: there is none

struct Files {
    Record tbl;
    Record in_force;           // newest archive record that put a table in force
    bool archive = false;      // there is a .save
    bool history = false;      // there is a .old
    bool tbl_written = false;  // by the step that runs
    std::vector<Record> added; // to the archive by the step that runs
    int tables_gone = 0;       // to the history by the step that runs
};

// A record as the host stores it: counts within what a reader accepts.
Record stored(const TABLE_RECORD &record, int save_type = -1);

// The record's points in ascending order of x.
void sort_by_mv(POLY_RANGE_RECORD *range);

} // namespace walk

#endif
