// SPDX-License-Identifier: GPL-3.0-or-later
//
// The model's process: the view's reset, the guards, the four recordings, and
// the decisions of Adjust and Re-Use.
#include <algorithm>
#include <cstring>

#include "walk/model.h"

namespace walk
{

namespace
{

const QString YES = QStringLiteral("Yes");
const QString NO = QStringLiteral("No");
const QString OK = QStringLiteral("OK");
const QString CANCEL = QStringLiteral("Cancel");
const QString GREEN = QStringLiteral("background-color: rgb(0,255,0)");
const QString YELLOW = QStringLiteral("background-color: rgb(255, 255, 127)");
const QString ORANGE = QStringLiteral("background-color: rgb(255,170,0)");
const QString RED = QStringLiteral("background-color: rgb(255, 78, 78)");
const QString CAUTION = QStringLiteral("background-color: yellow");
const QString NO_ADVICE = QStringLiteral("background-color: rgb(255,252,239)");
const QString NOT_DONE = QStringLiteral("N/A");

QString colour(int status)
{
    const QString colours[] = {GREEN, YELLOW, ORANGE, RED};
    return colours[status];
}

template <std::size_t Size> void copy_text(char (&field)[Size], const QString &text)
{
    const QByteArray bytes = text.toUtf8().left(static_cast<int>(Size) - 1);
    std::memcpy(field, bytes.constData(), static_cast<std::size_t>(bytes.size()) + 1);
}

QString red(const char *text)
{
    return QStringLiteral("<font color='red'>%1</font>").arg(QLatin1String(text));
}

// What a recording of that kind suggests at that status: re-use, adjust, advice.
struct Advice {
    QString reuse;
    QString adjust;
    QString text;
};

Advice advice(int box, int status)
{
    const int column = std::min(status, 2);
    const Advice as_found[] = {
        {READY, IDLE, {}},
        {IDLE, READY, {}},
        {IDLE, IDLE, red("Channel is out of tolerance,<br>perform service and capture new data")}};
    const Advice after_service[] = {
        {READY, CAUTION,
         red("If channel or sensor hardware was changed,<br>adjust calibration rather than "
             "re-use.")},
        {IDLE, READY, {}},
        {IDLE, CAUTION,
         red("If shift in calibration is expected due to<br>service performed, adjust "
             "calibration")}};
    const Advice verification[] = {
        {IDLE, IDLE, red("Channel is within expected range")},
        {IDLE, IDLE, red("Channel is outside of expected range")},
        {IDLE, IDLE, red("Channel is out of tolerance,<br>perform service and capture new data.")}};
    if (box == AS_FOUND)
        return as_found[column];
    return box == AFTER_SERVICE ? after_service[column] : verification[column];
}

// What a decision asks, and what it paints; an empty style paints nothing.
struct Decision {
    QString title;
    QString question;
    QString table_updated;
    QString after_service;
};

const QString ADJUST_TITLE = QStringLiteral("Adjust Calibration?");
const QString REUSE_TITLE = QStringLiteral("Re-Use Calibration?");
const QString VERIFICATION_ONLY =
    QStringLiteral("This data was collected as verification, not for calibration.\n\n"
                   "Do you want to %1 anyway?");

Decision adjust_decision(int save_type, int status)
{
    switch (save_type) {
    case SAVE_AS_FOUND:
        if (status == 0)
            return {ADJUST_TITLE,
                    QStringLiteral("Data shows that this channel does not require adjustment.\n\n"
                                   "Do you want to adjust anyway?"),
                    GREEN, GREEN};
        if (status == 1)
            return {{}, {}, GREEN, GREEN};
        return {ADJUST_TITLE,
                QStringLiteral("Data shows that this channel needs service.\n\n"
                               "Do you want to adjust the calibration anyway?"),
                RED, GREEN};
    case SAVE_AFTER_SERVICE:
        return {{}, {}, GREEN, {}};
    case SAVE_VERIFICATION:
        return {ADJUST_TITLE, VERIFICATION_ONLY.arg(QLatin1String("adjust")), GREEN, {}};
    default:
        return {};
    }
}

Decision reuse_decision(int save_type, int status)
{
    const QString needs_adjusting =
        QStringLiteral("Data shows that this channel needs to be adjusted.\n\n"
                       "Do you want to re-use last calibration anyway?");
    const QString needs_service = QStringLiteral("Data shows that this channel needs service.\n\n"
                                                 "Do you want to re-use last calibration anyway?");
    const QString colours[] = {GREEN, YELLOW, RED, RED};
    const QString questions[] = {{}, needs_adjusting, needs_service, needs_service};
    const QString title = status > 0 ? REUSE_TITLE : QString();
    switch (save_type) {
    case SAVE_AS_FOUND:
        return {title, questions[status], colours[status], colours[status]};
    case SAVE_AFTER_SERVICE:
        return {title, questions[status], colours[status], {}};
    case SAVE_VERIFICATION:
        return {ADJUST_TITLE,
                VERIFICATION_ONLY.arg(QLatin1String(status == 0 ? "update cal" : "adjust")),
                GREEN,
                {}};
    default:
        return {};
    }
}

} // namespace

void Model::clear_next_step()
{
    view.next_step.clear();
    view.next_step_style = NO_ADVICE;
}

void Model::reset_view(bool clear_rows)
{
    for (int i = 0; i < ROWS; ++i) {
        Row &row = view.rows[static_cast<std::size_t>(i)];
        const int state = session.table.point_state[i];
        if (clear_rows || state == 1)
            row.style = WHITE;
        row.status = !clear_rows && state == 2 ? row.previous_status : 0;
        caption(&row, clear_rows || state == 0 ? "Capture" : state == 1 ? "Capture New" : "Undo");
    }
    for (int i = 0; i < BOXES; ++i) {
        Box &box = view.boxes[static_cast<std::size_t>(i)];
        box.text.clear();
        if (i == NEW_CORRELATION) // keeps its copy, and has no colour
            continue;
        box.copy.clear();
        box.style = WHITE;
    }
    view.adjust = {false, IDLE};
    view.reuse = {false, IDLE};
    view.record.style = IDLE;
    hide_rows();
    show_rows();
    session.table.worst_status = 0;
}

// 1 points, 2 a calibration, 3 table information; 0: nothing is unfinished.
int Model::unfinished()
{
    const auto dirty = [this] {
        if (session.table_dirty != 0)
            session.unsaved_flag = 1;
        return session.table_dirty != 0;
    };
    const auto filled = [this](std::size_t box) { return !view.boxes[box].text.isEmpty(); };
    if (captured > 0 && dirty())
        return 1;
    if ((filled(AS_FOUND) || filled(AFTER_SERVICE)) && !filled(TABLE_UPDATED))
        return 2;
    return !filled(TABLE_UPDATED) && dirty() ? 3 : 0;
}

void Model::exit()
{
    const QStringList buttons{OK, CANCEL};
    switch (unfinished()) {
    case 1:
        view.open = !ask({QStringLiteral("Captured Points Not Recorded"),
                          QStringLiteral("Captured points have not been recorded.\n\nClick OK to "
                                         "exit anyway or Cancel to return and record data."),
                          buttons});
        break;
    case 2:
        view.open = !ask({QStringLiteral("Incomplete Calibration"),
                          QStringLiteral("The calibration is incomplete.\n\nClick OK to exit "
                                         "anyway or Cancel to return and complete the "
                                         "calibration."),
                          buttons});
        break;
    case 3:
        view.open = !ask({QStringLiteral("Table Information Modified"),
                          QStringLiteral("The table information has been modified and will not be "
                                         "saved without updating the calibration table.\n\nClick "
                                         "OK to exit anyway or Cancel to return and update the "
                                         "calibration."),
                          buttons});
        break;
    default:
        view.open = false;
    }
}

void Model::compute_worst()
{
    if (num_points <= 0)
        return;
    int worst = 0;
    for (int i = 0; i < num_points; ++i)
        worst = std::max(worst, view.rows[static_cast<std::size_t>(i)].status);
    session.table.worst_status = static_cast<uint16_t>(worst);
}

void Model::record_data()
{
    clear_next_step();
    if (view.technician.isEmpty() || view.standard.isEmpty()) {
        ask({QStringLiteral("Information"),
             QStringLiteral("Please enter the Technician Name and Working Standard before "
                            "Recording data."),
             {OK}});
        return;
    }
    captured =
        static_cast<int>(std::count_if(view.rows.begin(), view.rows.end(), [](const Row &row) {
            return row.caption == QLatin1String("Undo");
        }));
    if (captured != num_points &&
        !ask({QStringLiteral("Warning"),
              QStringLiteral("You have attempted to Record Data without all points being "
                             "captured\n\nAre you sure you want to Record the data?"),
              {YES, NO}}))
        return;
    const bool done = !view.boxes[AS_FOUND].text.isEmpty();
    compute_worst();
    m_technician.meets_record_dialog();
    for (int before = 0;; ++before) {
        const RecordPress press = m_technician.next_press(before);
        if (press.kind == RecordPress::Cancel || record_press(press, done))
            return;
    }
}

// Whether the dialog closes.
bool Model::record_press(const RecordPress &press, bool done)
{
    if (press.kind == RecordPress::None)
        return false;
    if (press.description.isEmpty() && press.kind == RecordPress::AsFound && done) {
        ask({QStringLiteral("Duplicate As-Found Data"),
             QStringLiteral("Please describe why As-Found data is being\ncollected again in the "
                            "description box"),
             {OK}});
        return false;
    }
    if (press.description.isEmpty() && press.kind == RecordPress::AfterService) {
        ask({QStringLiteral("Service Description"),
             QStringLiteral("Please describe the service\nperformed in the description box"),
             {OK}});
        return false;
    }
    copy_text(session.table.cal_comment, press.description);
    if (press.kind == RecordPress::AsFound) {
        record_as_found();
    } else if (press.kind == RecordPress::AfterService) {
        record_after_service();
    } else if (press.kind == RecordPress::Verification) {
        record_verification();
    } else {
        stamp(NEW_CORRELATION);
        finish_recording(NEW_CORRELATION, SAVE_NEW_CORRELATION);
    }
    return true;
}

void Model::stamp(int box)
{
    view.boxes[static_cast<std::size_t>(box)].text = STAMP;
    view.boxes[static_cast<std::size_t>(box)].copy = STAMP;
}

void Model::empty_box(int box)
{
    view.boxes[static_cast<std::size_t>(box)] = {{}, WHITE, {}};
}

void Model::take_names()
{
    copy_text(session.table.qie, view.standard);
    copy_text(session.table.verified_by, view.technician);
}

void Model::finish_recording(int box, int save_type)
{
    clear_captions();
    take_names();
    save(save_type);
    if (box == NEW_CORRELATION)
        return;
    const int status = session.table.worst_status;
    const Advice given = advice(box, status);
    view.boxes[static_cast<std::size_t>(box)].style = colour(status);
    view.reuse.style = given.reuse;
    view.adjust.style = given.adjust;
    view.next_step = given.text;
}

void Model::record_as_found()
{
    const bool adjust_enabled = view.adjust.enabled;
    const bool reuse_enabled = view.reuse.enabled;
    view.adjust.enabled = view.reuse.enabled = true;
    if (!view.boxes[AFTER_SERVICE].text.isEmpty() && !view.boxes[TABLE_UPDATED].text.isEmpty()) {
        if (!ask({QStringLiteral("Warning"),
                  QStringLiteral("This channel has already been serviced or adjusted.\n\nAre you "
                                 "sure you want to record this as As-Found data?"),
                  {YES, NO}})) {
            view.adjust.enabled = adjust_enabled;
            view.reuse.enabled = reuse_enabled;
            return;
        }
        empty_box(AFTER_SERVICE);
        empty_box(TABLE_UPDATED);
        empty_box(VERIFICATION);
    }
    stamp(AS_FOUND);
    finish_recording(AS_FOUND, SAVE_AS_FOUND);
}

void Model::record_after_service()
{
    const bool adjust_enabled = view.adjust.enabled;
    const bool reuse_enabled = view.reuse.enabled;
    view.adjust.enabled = view.reuse.enabled = true;
    if (view.boxes[AS_FOUND].text.isEmpty()) {
        view.boxes[AS_FOUND] = {NOT_DONE, RED, NOT_DONE};
    } else if (!view.boxes[TABLE_UPDATED].text.isEmpty()) {
        if (!ask({QStringLiteral("Warning"),
                  QStringLiteral("This channel has already been adjusted.\n\nAre you sure you want "
                                 "to record this as After-Service data?"),
                  {OK, CANCEL}})) {
            view.adjust.enabled = adjust_enabled;
            view.reuse.enabled = reuse_enabled;
            return;
        }
        empty_box(TABLE_UPDATED);
        empty_box(VERIFICATION);
    }
    stamp(AFTER_SERVICE);
    finish_recording(AFTER_SERVICE, SAVE_AFTER_SERVICE);
}

void Model::record_verification()
{
    const bool adjust_enabled = view.adjust.enabled;
    const bool reuse_enabled = view.reuse.enabled;
    view.adjust.enabled = view.reuse.enabled = true;
    if (view.boxes[TABLE_UPDATED].text.isEmpty() &&
        !ask({QStringLiteral("Warning"),
              QStringLiteral("No adjustment has been made.\n\nAre you sure you want to record this "
                             "as Verification data?"),
              {YES, NO}})) {
        view.adjust.enabled = adjust_enabled;
        view.reuse.enabled = reuse_enabled;
        return;
    }
    stamp(VERIFICATION);
    finish_recording(VERIFICATION, SAVE_VERIFICATION);
}

void Model::decide(bool adjusting)
{
    if (!(adjusting ? view.adjust : view.reuse).enabled)
        return;
    compute_worst();
    const int save_type = session.table.last_save_type;
    const int status = session.table.worst_status;
    const Decision decision =
        adjusting ? adjust_decision(save_type, status) : reuse_decision(save_type, status);
    if (!decision.title.isEmpty() && !ask({decision.title, decision.question, {YES, NO}}))
        return;
    if (!decision.table_updated.isEmpty())
        view.boxes[TABLE_UPDATED].style = decision.table_updated;
    if (!decision.after_service.isEmpty())
        view.boxes[AFTER_SERVICE] = {NOT_DONE, decision.after_service, NOT_DONE};
    clear_captions();
    stamp(TABLE_UPDATED);
    view.adjust.style = IDLE;
    view.reuse.style = IDLE;
    take_names();
    if (adjusting)
        save(SAVE_ADJUSTED);
    else
        save_reused();
    rebuild();
    for (int i = 0; i < num_points; ++i)
        classify(i);
}

void Model::set_extent()
{
    double lowest = 999999.0;
    double highest = -999999.0;
    for (int i = 0; i < session.current.num_points; ++i) {
        lowest = std::min(lowest, session.current.y[i]);
        highest = std::max(highest, session.current.y[i]);
    }
    session.table.y_min = lowest;
    session.table.y_max = highest;
}

void Model::archive(int save_type)
{
    Files &own = own_files();
    const Record record = stored(session.table, save_type);
    own.archive = true;
    own.added.push_back(record);
    if (save_type >= SAVE_ADJUSTED)
        own.in_force = record;
}

void Model::save(int save_type)
{
    if (std::strcmp(session.table.table_name, "INACTIVE") != 0) {
        set_extent();
        archive(save_type);
        session.table.last_cal_time = TIME_OF_STEP;
        session.table.last_save_type = static_cast<uint16_t>(save_type);
        if (save_type == SAVE_ADJUSTED || save_type == SAVE_NEW_CORRELATION) {
            Files &own = own_files();
            own.history = true;
            own.tables_gone += own.tbl != nullptr ? 1 : 0;
            own.tbl = stored(session.table);
            own.tbl_written = true;
        }
    }
    session.unsaved_flag = 0;
    session.table_dirty = 0;
}

void Model::save_reused()
{
    if (std::strcmp(session.table.table_name, "INACTIVE") != 0) {
        POLY_RANGE_RECORD &range = session.table.poly[0];
        for (int i = 0; i < session.previous.num_points; ++i) {
            range.x[i] = session.previous.x[i];
            range.y[i] = session.previous.y[i];
        }
        range.num_points = session.previous.num_points;
        set_extent();
        archive(SAVE_REUSED);
    }
    session.unsaved_flag = 0;
    session.table_dirty = 0;
}

// A tick that comes while a box stands meanwhile still finds the former record.
void Model::rebuild()
{
    rebuilt = true;
    Session local = session;
    bind_channel(&local);
    local.table_dirty = 0;
    session = local;
}

} // namespace walk
