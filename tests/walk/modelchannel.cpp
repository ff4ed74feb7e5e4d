// SPDX-License-Identifier: GPL-3.0-or-later
//
// The model's channel: leaving one, binding another, reading its table, giving
// it up.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/operations.h"
#include "walk/model.h"

namespace walk
{

namespace
{

constexpr double SPAN_END = 100.0; // of a range that was repaired

void set_text(char *field, const char *text, std::size_t size)
{
    const std::size_t length = std::min(std::strlen(text), size - 1);
    std::memcpy(field, text, length);
    field[length] = '\0';
}

// A straight line through the first range's points; as many entries as there
// are points go into the target, past its coefficients from the 19th on.
void fit_line_into(const POLY_RANGE_RECORD &points, POLY_RANGE_RECORD *target)
{
    double line[TABLE_POINTS] = {};
    const int n = points.num_points;
    polynomialfit(n, 2, points.x, points.y, line);
    std::memcpy(reinterpret_cast<char *>(target) + 8, line,
                static_cast<std::size_t>(n) * sizeof line[0]);
    target->num_coeffs = static_cast<int16_t>(n);
}

double tolerance(const TABLE_RECORD &table, const char *token)
{
    double span = std::fabs(table.sensor_range_max - table.sensor_range_min);
    units_dbl_keyword_convrt(table.sensor_units, &span, table.eng_units, span);
    double fraction = 0.0;
    units_token_convert(token, "FRAC", &fraction);
    return span * fraction;
}

void set_tolerances(TABLE_RECORD *table)
{
    table->ooa_bias = table->oot_bias = table->soot_bias = 0.0;
    table->ooa_tol = tolerance(*table, ".25[PCT]");
    table->oot_tol = tolerance(*table, "1[PCT]");
    table->soot_tol = tolerance(*table, "2[PCT]");
}

void start_statistics(Session *it)
{
    for (int i = 0; i < 2; ++i) {
        POINT_STATISTICS &point = it->stats[i];
        point.mv_at_capture = point.eu_mean = point.eu_std = point.eu_max = -999.0;
        point.eu_min = 999.0;
    }
}

bool range_is_empty(const TABLE_RECORD &table)
{
    return std::fabs(table.sensor_range_min - table.sensor_range_max) <= 1e-6;
}

} // namespace

const QString WHITE = QStringLiteral("background-color: white");
const QString READY = QStringLiteral("background-color: rgb(126,232,255)");
const QString IDLE = QStringLiteral("background-color: rgb(238, 238,238)");
const QString STAMP = QStringLiteral("(moment of the step)");

Model::Model(std::map<int, Channel> channels, Technician &technician)
    : m_channels(std::move(channels)), m_technician(technician)
{
}

void Model::begin_step()
{
    gave_up = rebuilt = bound = false;
    for (auto &[stem, own] : files) {
        own.added.clear();
        own.tbl_written = false;
        own.tables_gone = 0;
    }
}

void Model::tell(const QString &text)
{
    ask({QStringLiteral("Information"), text, {QStringLiteral("OK")}});
}

void Model::pick(int channel)
{
    set_channel_item(channel);
}

void Model::set_channel_item(int channel)
{
    if (view.channel == channel)
        return;
    view.channel = channel;
    channel_slot();
}

void Model::channel_slot()
{
    Session local = session;
    view.curves_removed = false;
    cal_type_changed = 1;
    const int old_channel = session.channel;
    if (view.channel < 0) {
        no_channel();
        return;
    }
    local.channel = view.channel;
    if (!m_reverting) {
        if (!may_leave()) {
            revert(old_channel);
            return;
        }
        clear_next_step();
    }
    bind_channel(&local);
    bind(local);
}

void Model::no_channel()
{
    if (first_select != 0) {
        show_no_channel();
        hide_rows();
        first_select = 0;
        return;
    }
    ask({QString(),
         QStringLiteral("Please select a valid channel number and name"),
         {QStringLiteral("OK")}});
    revert(session.channel);
}

void Model::show_no_channel()
{
    view.adjust.enabled = false;
    view.reuse.enabled = false;
    view.serial.clear();
    view.units.clear();
}

bool Model::may_leave()
{
    const QStringList buttons{QStringLiteral("OK"), QStringLiteral("Cancel")};
    switch (unfinished()) {
    case 1:
        if (ask({QStringLiteral("Captured Points Not Recorded"),
                 QStringLiteral("Captured points have not been recorded.\n\nClick OK to leave this "
                                "channel anyway or Cancel to return and record data."),
                 buttons}))
            return true;
        captured = static_cast<int>(std::count_if(
            view.rows.begin(), view.rows.end(), [](const Row &row) { return row.style != WHITE; }));
        return false;
    case 2:
        return ask({QStringLiteral("Incomplete Calibration"),
                    QStringLiteral("The calibration is incomplete.\n\nClick OK to leave this "
                                   "channel anyway or Cancel to return and complete the "
                                   "calibration."),
                    buttons});
    case 3:
        return ask({QStringLiteral("Table Information Modified"),
                    QStringLiteral("The table information has been modified and will not be saved "
                                   "without updating the calibration table.\n\nClick OK to leave "
                                   "this channel anyway or Cancel to return and update the "
                                   "calibration."),
                    buttons});
    default:
        return true;
    }
}

void Model::revert(int channel)
{
    for (Row &row : view.rows)
        row.saved_style = row.style;
    m_reverting = true;
    set_channel_item(channel);
    m_reverting = false;
}

void Model::bind(const Session &loaded)
{
    const Session local = loaded;
    view.table_name = QString::fromUtf8(local.table.table_name);
    view.menu_statistics = false;
    view.cal_statistics = false;
    session = local;
    start_statistics(&session);
    sync(local);
    show_table_fields();
    if (m_reverting) {
        for (Row &row : view.rows)
            row.style = WHITE;
    } else {
        captured = 0;
        reset_view(true);
        write_rows();
        clear_next_step();
    }
    if (range_is_empty(session.table))
        repair_range();
}

void Model::bind_channel(Session *it)
{
    it->stem = m_channels.at(it->channel).table;
    if (!load(it)) {
        set_text(it->table.description, "No Description", sizeof it->table.description);
        it->current.flags = 0;
        it->current.num_points = 0;
    }
    take_into_work(it);
    captured = 0;
}

bool Model::load(Session *it)
{
    std::memset(&it->table, 0, sizeof it->table);
    if (!read(it))
        return false;
    TABLE_RECORD &table = it->table;
    POLY_RANGE_RECORD &first = table.poly[0];
    switch (table.table_type) {
    case TABLE_SCALED:
        tell(QStringLiteral("Table will be converted to an INTERP table on save.\n"
                            "The newly read table is a SCALED table type"));
        table.table_type = TABLE_INTERP;
        first.num_points = 2;
        first.y[0] = 0.0;
        first.x[1] = 100.0;
        first.y[1] = first.x[0] * 100.0;
        first.x[0] = 0.0;
        break;
    case TABLE_INTERP:
        fit_line_into(first, &first);
        sort_by_mv(&first);
        break;
    case TABLE_POLY:
        if (first.num_coeffs == 0)
            fit_line_into(first, &table.poly[range_of(table)]);
        sort_by_mv(&first);
        break;
    case TABLE_POLY_RANGE:
        for (int16_t r = 0; r < POLY_RANGES; ++r) {
            if (table.poly[r].num_coeffs <= 0)
                continue;
            table.poly_range_index = r;
            std::memcpy(&it->current, &table.poly[r], sizeof table.poly[r]);
            compute_long_table(&table, &it->current);
            return true;
        }
        return true; // no range in use: no long table
    default:
        return true;
    }
    compute_long_table(&table, &it->current);
    return true;
}

// The archive's record wins over the table's for all but two texts.
bool Model::read(Session *it)
{
    const Files &own = files[it->stem];
    if (own.in_force == nullptr) {
        if (own.tbl != nullptr)
            it->table = *own.tbl;
        return own.tbl != nullptr;
    }
    it->table = *own.in_force;
    if (own.tbl == nullptr)
        return true;
    const TABLE_RECORD tbl = *own.tbl;
    std::memcpy(it->table.mua_instance_name, tbl.mua_instance_name, sizeof tbl.mua_instance_name);
    std::memcpy(it->table.description, tbl.description, sizeof tbl.description);
    if (it->table.table_type == TABLE_TYPE_UNKNOWN)
        it->table.table_type = tbl.table_type;
    compare_files(it->table, tbl, it->stem);
    return true;
}

void Model::compare_files(const TABLE_RECORD &archived, const TABLE_RECORD &tbl,
                          const std::string &stem)
{
    const QString path = QStringLiteral("/cell/tables/") + QString::fromStdString(stem);
    const QString tbl_name = path + QStringLiteral(".tbl");
    const QString save_name = path + QStringLiteral(".save");
    if (archived.table_type != tbl.table_type)
        tell(QStringLiteral("<%1> table type differs from <%2> ").arg(tbl_name, save_name));
    else if (archived.table_type == TABLE_INTERP &&
             archived.poly[0].num_points != tbl.poly[0].num_points)
        tell(QStringLiteral("%1 pts diff from %2 ADJUST cal").arg(tbl_name, save_name));
    else if (archived.table_type == TABLE_POLY &&
             archived.poly[0].num_coeffs != tbl.poly[0].num_coeffs)
        tell(QStringLiteral("%1 num coeff of polynomial differ from %2").arg(tbl_name, save_name));
}

void Model::take_into_work(Session *it)
{
    for (int i = it->current.num_points; i < TABLE_POINTS; ++i)
        it->current.x[i] = it->current.y[i] = 0.0;
    it->previous = it->current;
    it->table.worst_status = 0;
    set_tolerances(&it->table);
    num_points = it->current.num_points;
    it->redraw_all = 1;
    it->table_dirty = 0;
    bound = true;
    touch_nothing();
}

// Serves a capture and a binding alike: true when the range was repaired.
bool Model::range_dialog()
{
    TABLE_RECORD &table = session.table;
    session.table_dirty = 0;
    num_points = session.current.num_points;
    ask({QStringLiteral("Update Data"),
         QStringLiteral("The Sensor Lower and Upper Range Values are the same.\n\nPress OK to "
                        "update Table Information"),
         {QStringLiteral("OK")}});
    if (!m_technician.repairs_range(session.channel))
        return false;
    ask({QStringLiteral("Clearing Calibration Data"),
         QStringLiteral("Changes may affect the calibration.\n\nCalibration data will be cleared."),
         {QStringLiteral("OK")}});
    table.sensor_range_min = 0.0;
    table.sensor_range_max = SPAN_END;
    session.table_dirty = 1;
    set_tolerances(&table);
    view.serial = QString::fromUtf8(table.sensor_serial_no);
    return true;
}

void Model::repair_range()
{
    if (range_dialog())
        reset_view(true);
    else
        give_up();
}

void Model::give_up()
{
    set_channel_item(-1);
    set_type_item(0);
    set_range_item(0);
    show_no_channel();
    view.line_report = false;
    view.row_objects += ROWS;
    hide_rows();
    view.coefficients = false;
    view.table_name.clear();
    view.points_text.clear();
    view.type_enabled = false;
    view.range_enabled = false;
    first_select = 1;
    view.curves_removed = true;
    gave_up = true;
}

void Model::show_table_fields()
{
    view.serial = QString::fromUtf8(session.table.sensor_serial_no);
    view.units = QString::fromUtf8(session.table.eng_units);
    view.points_text = QString::number(working_range(session.table).num_points);
    write_rows();
}

void Model::recompute()
{
    compute_long_table(&session.table, &session.current);
    take_into_work(&session);
    captured = 0;
    start_statistics(&session);
    sync(session);
    order_text = degree_text();
    show_table_fields();
    update_plot();
    reset_view(false);
    write_rows();
    clear_next_step();
}

} // namespace walk
