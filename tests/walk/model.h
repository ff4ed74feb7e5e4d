// SPDX-License-Identifier: GPL-3.0-or-later
//
// A plain model of a calibration: what each step of a technician makes of the
// window, the session record and the table files, and what is asked meanwhile.
// It is written from the rules of the process and shares nothing with the
// program but the layouts and the arithmetic of the host.
#ifndef WALK_MODEL_H
#define WALK_MODEL_H

#include <map>
#include <string>

#include "frame/zerl_cfg.h"
#include "walk/files.h"
#include "walk/view.h"

namespace walk
{

// A message box: title, text, buttons with the default last.
struct Question {
    QString title;
    QString text;
    QStringList buttons;
};

// One press of Record in the recording dialog; none of the kinds is possible.
struct RecordPress {
    enum Kind { Cancel, None, AsFound, AfterService, Verification, NewCorrelation };
    Kind kind = Cancel;
    QString description;
};

// Who answers. Asked in the order in which boxes and dialogs come.
class Technician
{
public:
    virtual ~Technician() = default;
    // Whether the box was answered with its first button.
    virtual bool answers(const Question &question) = 0;
    virtual bool reverts() = 0; // in the undo dialog
    virtual void meets_record_dialog() = 0;
    // What is done next in it; stays is whether it was still open afterwards.
    virtual RecordPress next_press(int before) = 0;
    virtual bool repairs_range(int channel) = 0; // in the table information
};

struct Channel {
    std::string table; // stem of its files
    std::string units;
};

// What the session record and the values beside it hold.
struct Session {
    int channel = 0;
    TABLE_RECORD table = {};
    LONG_TABLE current = {};
    LONG_TABLE previous = {};
    std::string stem; // of the paths; empty before the first channel
    int unsaved_flag = 0;
    int redraw_all = 0;
    int table_dirty = 0;
    POINT_STATISTICS stats[TABLE_POINTS] = {};
};

class Model
{
public:
    Model(std::map<int, Channel> channels, Technician &technician);

    // The steps of a technician.
    void pick(int channel); // -1: the list's first line
    void press_row(int row);
    void type_value(int row, const QString &text); // not left yet
    void edit_value(int row, const QString &text);
    void enter_count(const QString &text);
    void enter_averaging(const QString &text);
    void choose_type(int index);
    void choose_degree(int index);
    void choose_range(int index);
    void record_data();
    void adjust() { decide(true); }
    void reuse() { decide(false); }
    void exit();
    void tick(); // the monitor thread's, worked off

    // Whether the step that just ran appended rows, or ran the host's rebuild:
    // each keeps memory for good.
    void begin_step();

    View view;
    Session session;
    std::map<std::string, Files> files;
    std::map<int, double> mv; // present reading of each channel

    int first_select = 1;
    int num_points = 0;
    int captured = 0;
    uint32_t fifo_size = 100;
    int cal_type_changed = 0;
    QString order_text;

    bool gave_up = false; // in the step that runs
    bool rebuilt = false;
    bool bound = false; // table loaded, or recomputed, as the last thing
    // Coordinates that capture, undo, edit or count wrote since the load, and the
    // range that they were written to.
    bool touched_x[TABLE_POINTS] = {};
    bool touched_y[TABLE_POINTS] = {};
    int touched_range = 0;

private:
    // Channel.
    void set_channel_item(int channel);
    void channel_slot();
    void no_channel();
    bool may_leave();
    void revert(int channel);
    void bind(const Session &loaded);
    void bind_channel(Session *it);
    bool load(Session *it);
    bool read(Session *it);
    void compare_files(const TABLE_RECORD &archived, const TABLE_RECORD &tbl,
                       const std::string &stem);
    void take_into_work(Session *it);
    void repair_range();
    bool range_dialog();
    void give_up();
    void show_no_channel();
    void show_table_fields();
    void write_rows();
    void write_value(int row);

    // Rows.
    void capture(int row);
    bool store_point(int row, double value);
    void undo(int row);
    void finish_point(int row);
    void touch(int row, bool x, bool y);
    void touch_nothing();
    void classify(int row);
    void record_ready();
    void clear_captions();
    void show_rows();
    void hide_rows();
    void caption(Row *row, const char *text);

    // Type controls.
    void sync(const Session &it);
    void set_type_item(int index);
    void type_slot();
    void set_degree_item(int index);
    void select_degree(int degree);
    void degree_slot();
    void set_range_item(int index);
    void range_slot();
    void recompute();
    QString degree_text() const;
    void refit();
    void update_plot();
    void show_coefficients(const Session &it);

    // Process.
    void reset_view(bool clear_rows);
    int unfinished();
    void compute_worst();
    void stamp(int box);
    void empty_box(int box);
    void clear_next_step();
    bool record_press(const RecordPress &press, bool done);
    void record_as_found();
    void record_after_service();
    void record_verification();
    void finish_recording(int box, int save_type);
    void take_names();
    void decide(bool adjusting);
    void save(int save_type);
    void save_reused();
    void set_extent();
    void archive(int save_type);
    void rebuild();

    bool ask(const Question &question) { return m_technician.answers(question); }
    void tell(const QString &text);
    Files &own_files() { return files[session.stem]; }

    std::map<int, Channel> m_channels;
    Technician &m_technician;
    bool m_reverting = false;
    bool m_degree_blocked = false;
    unsigned char m_last_seen[2568] = {}; // of long_current, by the plot
};

extern const QString WHITE;
extern const QString READY;
extern const QString IDLE;

// Text of a number in a row.
QString row_number(double value);
int range_of(const TABLE_RECORD &table);
// The range that the table's type works with.
const POLY_RANGE_RECORD &working_range(const TABLE_RECORD &table);

// The moment of a step in a process box, until it is known.
extern const QString STAMP;

} // namespace walk

#endif
