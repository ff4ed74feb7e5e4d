// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the main window shows, as plain values: what the model says that it
// shows, and what it really shows.
#ifndef WALK_VIEW_H
#define WALK_VIEW_H

#include <array>

#include <QString>
#include <QStringList>

#include "host/tablerecord.h"

class MainWindow;

namespace walk
{

constexpr int ROWS = TABLE_POINTS;
constexpr int COEFF_LABELS = 8;

struct Row {
    QString value; // of the reference field
    QString mv;
    QString style; // of the reference field
    QString saved_style;
    QString caption;
    QString caption_style;
    double previous_mv = 0.0;
    int status = 0;
    int previous_status = 0;
    int state = 0;
    int previous_state = 0;
    // Not compared: the counts that the last capture as a new point has grown, and
    // the value as the program wrote or took it last.
    bool counted_current = false;
    bool counted_range = false;
    QString written;
    bool shown = false;
};

struct Box {
    QString text;
    QString style;
    QString copy; // in g_ws_block
};

enum { AS_FOUND, AFTER_SERVICE, TABLE_UPDATED, VERIFICATION, NEW_CORRELATION, BOXES };

struct Button {
    bool enabled = false;
    QString style;
};

struct CoeffLabel {
    bool shown = false;
    QString text;
};

struct View {
    std::array<Row, ROWS> rows;
    std::array<Box, BOXES> boxes;
    Button record;
    Button reuse;
    Button adjust;
    bool line_report = false;
    bool menu_statistics = false;
    bool cal_statistics = false;
    bool point_statistics = false;
    QString next_step;
    QString next_step_style;

    int channel = -1; // of the combo's item, -1 for its first line
    int type = 0;
    bool type_enabled = false;
    bool range_item = true;
    int degrees = 0; // items "1" upward
    int degree = -1; // index
    bool degree_enabled = false;
    int range = 0;
    bool range_enabled = false;
    bool coefficients = false; // their frame
    std::array<CoeffLabel, COEFF_LABELS> coeff;

    QString points_text;
    QString averaging_text;
    QString technician;
    QString standard;
    QString serial;
    QString units;
    QString table_name;
    int row_objects = 0;
    bool curves_removed = false;
    bool open = true;
};

View look(const MainWindow &window);

// "field: modelled, but is real" for each field that differs, at most a few.
QStringList differences(const View &modelled, const View &real);

} // namespace walk

#endif
