// SPDX-License-Identifier: GPL-3.0-or-later
//
// Takes random steps on the real window and on the model of it, and compares
// the two after each.
#ifndef WALK_WALKER_H
#define WALK_WALKER_H

#include <deque>
#include <memory>
#include <random>
#include <vector>

#include "gui/frame/testwindow.h"
#include "walk/model.h"
#include "walk/tablefiles.h"

namespace walk
{

struct Step {
    enum Kind {
        Pick,
        Reading,
        Press,
        TypeAndPress,
        Type,
        Edit,
        Count,
        Averaging,
        TableType,
        Degree,
        Range,
        Technician,
        Standard,
        Record,
        Adjust,
        Reuse,
        Exit,
        Tick,
        NewFiles
    };
    Step(Kind what = Tick, int which = 0, const QString &typed = {}, double reading = 0.0)
        : kind(what), number(which), text(typed), mv(reading)
    {
    }

    Kind kind;
    int number; // channel, row or index
    QString text;
    double mv;
};

class Walker : public Technician
{
public:
    Walker(TestWindow &window, uint64_t seed);

    // Empty, or what does not agree after the step.
    QString step();

    const Model &model() const { return *m_model; }
    int steps() const { return m_steps; }
    int questions() const { return m_questions; }
    // How often each question was met, by its text.
    const std::map<QString, int> &asked() const { return m_asked; }
    // The last steps with what was met in each.
    QStringList last_steps() const;

private:
    // A box or dialog that the model foretells, and what is done in it.
    struct Meeting {
        enum Kind { Box, RecordDialog, UndoDialog, RangeDialog };
        Kind kind = Box;
        Question question = {};
        bool first_button = false;
        bool accepts = false;
        std::vector<RecordPress> presses = {};
        bool tick = false; // comes while it is open
    };

    bool answers(const Question &question) override;
    bool reverts() override;
    void meets_record_dialog() override;
    RecordPress next_press(int before) override;
    bool repairs_range(int channel) override;
    Meeting &meets(Meeting::Kind kind, const Question &question);

    int below(int count);
    bool chance(int percent) { return below(100) < percent; }

    // Choice of a step.
    Step choose();
    Step choose_kind();
    Step choose_channel();
    Step choose_press();
    Step choose_undo();
    Step choose_record();
    int row_to_capture();
    double choose_mv();
    QString choose_reference(double mv);
    QString choose_count();
    QString one_of(const QStringList &texts);

    void foresee(const Step &step);
    void drive(const Step &step);
    void press_return(QLineEdit *field);
    void new_reading(double mv);
    void settle();
    void work_tick();

    void expect_meetings();
    void visit(QDialog *dialog, const Meeting &meeting);
    void visit_box(QDialog *dialog, const Meeting &meeting);
    void visit_record_dialog(QDialog *dialog, const Meeting &meeting);
    void visit_range_dialog(QDialog *dialog, const Meeting &meeting);

    QString compare();
    void learn_moments();
    void differ(const QString &what);
    void compare_session();
    void compare_invariants();

    TestWindow &m_it;
    std::mt19937_64 m_random;
    std::unique_ptr<Model> m_model;
    TableFiles m_files;
    BoxAnswerer m_answerer;
    std::deque<Meeting> m_meetings;
    QStringList m_faults;
    std::deque<QString> m_log;
    qint64 m_began = 0; // seconds since the epoch
    int m_steps = 0;
    int m_questions = 0;
    std::map<QString, int> m_asked;
    int m_given_up = 0;
    int m_range_refusals = 0; // in the step that runs
};

} // namespace walk

#endif
