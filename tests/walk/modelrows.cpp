// SPDX-License-Identifier: GPL-3.0-or-later
//
// The model's point rows: capture, undo, the reference value, the count.
#include <algorithm>
#include <cmath>

#include "host/operations.h"
#include "walk/model.h"

namespace walk
{

namespace
{

enum { AS_IN_TABLE = 0, NEW = 1, CAPTURED = 2 };

const char *const STATUS_STYLES[] = {
    "background-color: rgb(0,255,0)", "background-color: rgb(255, 255, 127)",
    "background-color: rgb(255,170,0)", "background-color: rgb(255, 78, 78)"};

bool equal(double a, double b)
{
    return std::fabs(a - b) <= 1e-6;
}

std::size_t at(int i)
{
    return static_cast<std::size_t>(i);
}

} // namespace

QString row_number(double value)
{
    return QString::asprintf("%8.4f", value);
}

int range_of(const TABLE_RECORD &table)
{
    return std::clamp<int>(table.poly_range_index, 0, POLY_RANGES - 1);
}

const POLY_RANGE_RECORD &working_range(const TABLE_RECORD &table)
{
    return table.poly[table.table_type == TABLE_POLY_RANGE ? range_of(table) : 0];
}

void Model::touch_nothing()
{
    std::fill(std::begin(touched_x), std::end(touched_x), false);
    std::fill(std::begin(touched_y), std::end(touched_y), false);
}

void Model::touch(int row, bool x, bool y)
{
    if (touched_range != range_of(session.table))
        touch_nothing();
    touched_range = range_of(session.table);
    touched_x[row] = touched_x[row] || x;
    touched_y[row] = touched_y[row] || y;
}

void Model::write_rows()
{
    for (int i = 0; i < ROWS; ++i) {
        write_value(i);
        view.rows[at(i)].mv = row_number(session.current.x[i]);
    }
}

void Model::write_value(int i)
{
    view.rows[at(i)].value = view.rows[at(i)].written = row_number(session.current.y[i]);
}

void Model::caption(Row *row, const char *text)
{
    row->caption = QLatin1String(text);
    row->caption_style = row->caption == QLatin1String("Undo") ? IDLE : READY;
}

void Model::show_rows()
{
    for (int i = 0; i < num_points; ++i)
        view.rows[at(i)].shown = true;
}

void Model::hide_rows()
{
    for (Row &row : view.rows)
        row.shown = false;
}

void Model::clear_captions()
{
    for (Row &row : view.rows)
        caption(&row, "Capture");
    captured = 0;
    view.record.style = IDLE;
}

void Model::type_value(int row, const QString &text)
{
    view.rows[at(row)].value = text;
}

void Model::edit_value(int row, const QString &text)
{
    view.rows[at(row)].value = text;
    if (text.trimmed() == view.rows[at(row)].written.trimmed())
        return; // a visit is no edit
    view.rows[at(row)].written = text;
    const double value = text.toDouble();
    session.table.poly[range_of(session.table)].y[row] = value;
    session.current.y[row] = value;
    session.redraw_all = 1;
    session.table_dirty = 0;
    touch(row, false, true);
    update_plot();
}

void Model::press_row(int row)
{
    if (view.rows[at(row)].caption.contains(QLatin1String("Capture")))
        capture(row);
    else
        undo(row);
}

void Model::capture(int i)
{
    if (equal(session.table.sensor_range_min, session.table.sensor_range_max)) {
        range_dialog();
        return;
    }
    Row &row = view.rows[at(i)];
    POLY_RANGE_RECORD &range = session.table.poly[range_of(session.table)];
    const bool grown = row.state == NEW;
    if (grown) {
        row.counted_current = session.current.num_points < TABLE_POINTS;
        row.counted_range = range.num_points < TABLE_POINTS;
        if (row.counted_current)
            ++session.current.num_points;
        if (row.counted_range)
            ++range.num_points;
    }
    const double former_mv = session.current.x[i];
    const QString former_style = row.style;
    row.previous_state = row.state;
    session.table.point_state[i] = CAPTURED;
    row.state = CAPTURED;
    session.redraw_all = 1;
    if (!store_point(i, row.value.toDouble()))
        return;
    if (grown)
        compute_long_table(&session.table, &session.current);
    view.next_step.clear();
    row.previous_mv = former_mv;
    row.saved_style = former_style;
    row.previous_status = row.status;
    ++captured;
    record_ready();
    caption(&row, "Undo");
    classify(i);
    sync(session);
    finish_point(i);
}

bool Model::store_point(int i, double value)
{
    LONG_TABLE &current = session.current;
    const double reading = mv.at(session.channel);
    if (equal(value, current.y[i]) && equal(reading, current.x[i]))
        return true;
    int hit = -1;
    for (int j = 0; j < current.num_points; ++j) {
        if (j != i && equal(reading, current.x[j]))
            hit = j;
    }
    if (hit >= 0) {
        tell(QString::asprintf("The new Mv value for position #%d of '%8.4f'\nis the same as the "
                               "current Mv value in position #%d.\n\nDuplicate Mv values are not "
                               "allowed.\n\nPlease try a different table value.",
                               i + 1, reading, hit + 1));
        return false;
    }
    POLY_RANGE_RECORD &range = session.table.poly[range_of(session.table)];
    current.y[i] = range.y[i] = value;
    current.x[i] = range.x[i] = reading;
    current.num_points = static_cast<int16_t>(std::max<int>(i + 1, current.num_points));
    touch(i, true, true);
    show_table_fields();
    update_plot();
    session.table_dirty = 1;
    return true;
}

void Model::undo(int i)
{
    if (!m_technician.reverts()) {
        finish_point(i);
        return;
    }
    Row &row = view.rows[at(i)];
    POLY_RANGE_RECORD &range = session.table.poly[range_of(session.table)];
    session.redraw_all = 1;
    row.mv = row_number(row.previous_mv);
    session.current.x[i] = range.x[i] = row.previous_mv;
    touch(i, true, false);
    const bool was_new = row.previous_state == NEW;
    // What was not counted is not taken back.
    if (was_new && row.counted_current)
        session.current.num_points =
            static_cast<int16_t>(std::max(0, session.current.num_points - 1));
    if (was_new && row.counted_range)
        range.num_points = static_cast<int16_t>(std::max(0, range.num_points - 1));
    compute_long_table(&session.table, &session.current);
    session.table.point_state[i] = row.state = row.previous_state;
    row.style = row.saved_style;
    session.table.worst_status = static_cast<uint16_t>(row.previous_status);
    --captured;
    update_plot();
    record_ready();
    caption(&row, was_new ? "Capture New" : "Capture");
    finish_point(i);
}

// After a capture, a revert and a cancelled undo alike.
void Model::finish_point(int i)
{
    view.adjust.style = IDLE;
    view.reuse.style = IDLE;
    const POLY_RANGE_RECORD &range = session.table.poly[range_of(session.table)];
    POINT_STATISTICS &point = session.stats[i];
    const double reading = mv.at(session.channel);
    point.eu_reference = range.y[i];
    point.mv_at_capture = range.x[i];
    point.mv_mean = point.mv_min = point.mv_max = reading;
    point.mv_std = point.eu_std = 0.0;
    show_coefficients(session);
}

void Model::classify(int i)
{
    uint16_t hint = 0;
    const double error =
        linear_interp(&hint, &session.previous, 0, session.current.x[i]) - session.current.y[i];
    const double limits[] = {session.table.ooa_tol, session.table.oot_tol, session.table.soot_tol};
    int status = 0;
    while (status < 3 && std::fabs(error) > limits[status])
        ++status;
    view.rows[at(i)].status = status;
    view.rows[at(i)].style = QLatin1String(STATUS_STYLES[status]);
}

void Model::record_ready()
{
    const bool ready = num_points <= captured;
    view.record.style = ready ? READY : IDLE;
    view.line_report = ready;
    view.menu_statistics = ready;
    if (!ready)
        view.cal_statistics = false;
    else if (session.table.table_type == TABLE_POLY)
        view.cal_statistics = true;
    if (ready)
        view.point_statistics = true;
}

void Model::enter_count(const QString &text)
{
    view.points_text = text;
    bool whole = false;
    const int wanted = text.toInt(&whole);
    if (!whole || wanted < 2 || wanted > ROWS) {
        ask({QStringLiteral("Invalid Calibration Points"),
             QStringLiteral("A invalid value for Calibration Points was entered\n\nPlease reenter "
                            "a Calibration Points value between 2 and 64"),
             {QStringLiteral("OK")}});
        view.points_text.clear();
        return;
    }
    LONG_TABLE &current = session.current;
    POLY_RANGE_RECORD &range = session.table.poly[range_of(session.table)];
    const int old = current.num_points;
    if (old != wanted)
        session.table_dirty = 1;
    if (old > wanted) {
        for (int i = wanted; i < ROWS; ++i)
            session.table.point_state[i] = view.rows[at(i)].state = NEW;
        current.num_points = range.num_points = static_cast<int16_t>(wanted);
        session.redraw_all = 1;
    }
    for (int i = old; i < wanted; ++i) {
        current.x[i] = range.x[i] = old > 0 ? current.x[old - 1] : 0.0;
        current.y[i] = range.y[i] = old > 0 ? current.y[old - 1] : 0.0;
        touch(i, true, true);
        session.table.point_state[i] = view.rows[at(i)].state = NEW;
        caption(&view.rows[at(i)], "Capture New");
        view.rows[at(i)].caption_style = WHITE;
        view.rows[at(old)].shown = true;
        view.rows[at(old)].status = 0;
        write_value(i);
        view.rows[at(i)].mv = row_number(current.x[i]);
        session.redraw_all = 1;
    }
    num_points = wanted;
    captured = 0;
    reset_view(false);
    sync(session);
}

void Model::enter_averaging(const QString &text)
{
    view.averaging_text = text;
    const long seconds = text.toLong();
    if (seconds < 5 || seconds > 30) {
        ask({QStringLiteral("Wrong Value Entered"),
             QStringLiteral("The entered Averaging Time must be between 5 and 30 seconds"),
             {QStringLiteral("OK")}});
        view.averaging_text = QStringLiteral("10");
    }
    fifo_size = static_cast<uint32_t>(view.averaging_text.toLong() * 10);
}

} // namespace walk
