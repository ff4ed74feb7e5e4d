// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the walker does next.
#include <cmath>

#include "host/operations.h"
#include "walk/walker.h"

namespace walk
{

namespace
{

// A give-up appends 64 rows for good; memory is measured behind these steps.
constexpr int LAST_GIVE_UP = 900;
constexpr int MAX_GIVEN_UP = 8;
constexpr int STEPS_TO_NEW_FILES = 2500; // the archives grow with every record

const int USUAL_CHANNELS[] = {0, 0, 1, 4, 5, 8, 9, 9, 10, 11, 12, 13};
const int CHANNEL_WITHOUT_TABLE = 3;
const int CHANNEL_WITH_EQUAL_LIMITS = 6;

} // namespace

int Walker::below(int count)
{
    return static_cast<int>(m_random() % static_cast<uint64_t>(count));
}

QString Walker::one_of(const QStringList &texts)
{
    return texts.at(below(texts.size()));
}

Step Walker::choose()
{
    if (m_steps > 0 && m_steps % STEPS_TO_NEW_FILES == 0)
        return {Step::NewFiles};
    if (m_model->session.stem.empty())
        return chance(20) ? Step{Step::Pick, -1} : choose_channel();
    return choose_kind();
}

Step Walker::choose_kind()
{
    struct Weighed {
        int weight;
        Step::Kind kind;
    };
    static const Weighed weights[] = {
        {36, Step::TypeAndPress}, {2, Step::Press},   {2, Step::Type},   {3, Step::Edit},
        {3, Step::Reading},       {4, Step::Pick},    {3, Step::Count},  {2, Step::Averaging},
        {3, Step::TableType},     {3, Step::Degree},  {3, Step::Range},  {1, Step::Technician},
        {1, Step::Standard},      {14, Step::Record}, {8, Step::Adjust}, {7, Step::Reuse},
        {2, Step::Exit},          {4, Step::Tick},
    };
    int total = 0;
    for (const Weighed &it : weights)
        total += it.weight;
    int at = below(total);
    const Weighed *chosen = weights;
    while (at >= chosen->weight)
        at -= (chosen++)->weight;
    const View &view = m_model->view;
    // Without a name nothing is recorded, so it does not stay away for long.
    if (view.technician.isEmpty() && chance(15))
        return {Step::Technician, 0, QStringLiteral("Jane Doe")};
    if (view.standard.isEmpty() && chance(15))
        return {Step::Standard, 0, QStringLiteral("WS-17")};
    switch (chosen->kind) {
    case Step::TypeAndPress:
        return choose_press();
    case Step::Press:
        return choose_undo();
    case Step::Type:
    case Step::Edit: {
        const int row = row_to_capture();
        if (row < 0)
            return {Step::Tick};
        return {chosen->kind, row, choose_reference(m_model->mv.at(m_model->session.channel))};
    }
    case Step::Reading:
        return {Step::Reading, 0, {}, choose_mv()};
    case Step::Pick:
        return choose_channel();
    case Step::Count:
        return {Step::Count, 0, choose_count()};
    case Step::Averaging:
        return {Step::Averaging, 0,
                one_of({"5", "30", "10", "7", "4", "31", "", "abc", "-5", "10.5",
                        "99999999999999999999"})};
    case Step::TableType:
        return view.type_enabled ? Step{Step::TableType, below(view.range_item ? 3 : 2)}
                                 : Step{Step::Tick};
    case Step::Degree:
        return view.degree_enabled && view.degrees > 0 ? Step{Step::Degree, below(view.degrees)}
                                                       : Step{Step::Tick};
    case Step::Range:
        return view.range_enabled ? Step{Step::Range, below(POLY_RANGES)} : Step{Step::Tick};
    case Step::Technician:
        return {Step::Technician, 0,
                one_of({"Jane Doe", "J. \"Quoted\" Roe", "Ann Other",
                        "Technician with a name "
                        "beyond thirty-one"})};
    case Step::Standard:
        return {Step::Standard, 0,
                one_of({"WS-17", "WS-204", "", "Dead weight tester number 12345"})};
    default:
        return {chosen->kind};
    }
}

Step Walker::choose_channel()
{
    const View &view = m_model->view;
    if (chance(12))
        return {Step::Pick, -1};
    if (m_given_up < MAX_GIVEN_UP && m_steps < LAST_GIVE_UP && chance(12)) {
        // Without a table nothing but a give-up leads back, and that is on offer
        // while the first pick of no channel is quiet.
        if (m_model->first_select != 0 && chance(40))
            return {Step::Pick, CHANNEL_WITHOUT_TABLE};
        return {Step::Pick, CHANNEL_WITH_EQUAL_LIMITS};
    }
    const int count = static_cast<int>(sizeof USUAL_CHANNELS / sizeof USUAL_CHANNELS[0]);
    const int channel = USUAL_CHANNELS[below(count)];
    return {Step::Pick, channel == view.channel ? USUAL_CHANNELS[below(count)] : channel};
}

// A row on show, most often the first that waits for its capture; -1 without.
int Walker::row_to_capture()
{
    std::vector<int> shown;
    int first = -1;
    for (int i = 0; i < ROWS; ++i) {
        const Row &row = m_model->view.rows[static_cast<std::size_t>(i)];
        if (!row.shown)
            continue;
        shown.push_back(i);
        if (first < 0 && row.caption != QLatin1String("Undo"))
            first = i;
    }
    if (shown.empty())
        return -1;
    return first >= 0 && chance(75)
               ? first
               : shown[static_cast<std::size_t>(below(static_cast<int>(shown.size())))];
}

// Thousandths of a millivolt over the table's extent, or those of a point.
double Walker::choose_mv()
{
    const LONG_TABLE &current = m_model->session.current;
    double highest = 10.0;
    for (int i = 0; i < current.num_points; ++i)
        highest = std::max(highest, std::fabs(current.x[i]));
    if (current.num_points > 0 && chance(8))
        return current.x[below(current.num_points)];
    return below(static_cast<int>(std::min(highest, 10000.0) * 1100.0)) / 1000.0;
}

// Off what the former table says by any of the four judgements, or no number.
QString Walker::choose_reference(double mv)
{
    if (chance(4))
        return one_of({"", "abc", "12,5", "1e3", "-5", " 7 "});
    const Session &it = m_model->session;
    const double limits[] = {0.0, it.table.ooa_tol, it.table.oot_tol, it.table.soot_tol,
                             3.0 * it.table.soot_tol};
    const int status = chance(45) ? 0 : below(4);
    const double part = (1 + below(98)) / 100.0;
    double error = limits[status] + part * (limits[status + 1] - limits[status]);
    if (chance(50))
        error = -error;
    uint16_t hint = 0;
    const double value = linear_interp(&hint, &it.previous, 0, mv) + error;
    return QString::number(value, 'g', 10);
}

QString Walker::choose_count()
{
    if (chance(15))
        return one_of({"", "1", "65", "10.5", "abc", "-3", "99999999999999999999", "0"});
    if (chance(15))
        return QString::number(2 + below(63));
    return QString::number(2 + below(6));
}

Step Walker::choose_press()
{
    const int row = row_to_capture();
    if (row < 0)
        return {Step::Tick};
    const double mv = choose_mv();
    if (chance(15))
        return {Step::Press, row};
    return {Step::TypeAndPress, row, choose_reference(mv), mv};
}

Step Walker::choose_undo()
{
    std::vector<int> rows;
    for (int i = 0; i < ROWS; ++i) {
        const Row &row = m_model->view.rows[static_cast<std::size_t>(i)];
        if (row.shown && row.caption == QLatin1String("Undo"))
            rows.push_back(i);
    }
    if (rows.empty())
        return {Step::Tick};
    return {Step::Press, rows[static_cast<std::size_t>(below(static_cast<int>(rows.size())))]};
}

Walker::Meeting &Walker::meets(Meeting::Kind kind, const Question &question)
{
    ++m_questions;
    m_meetings.emplace_back();
    Meeting &meeting = m_meetings.back();
    meeting.kind = kind;
    meeting.question = question;
    meeting.tick = chance(25);
    if (meeting.tick)
        m_model->tick();
    return meeting;
}

bool Walker::answers(const Question &question)
{
    Meeting &meeting = meets(Meeting::Box, question);
    const bool first = question.buttons.size() == 1 || chance(70);
    // What names a point or a file is one text each.
    const bool named =
        question.text.contains(QLatin1Char('#')) || question.text.contains(QLatin1String("/cell/"));
    ++m_asked[named ? question.text.left(12) : question.text];
    meeting.first_button = first;
    return first;
}

bool Walker::reverts()
{
    Meeting &meeting = meets(Meeting::UndoDialog, {QStringLiteral("Undo Action"), {}, {}});
    meeting.accepts = chance(60);
    return meeting.accepts;
}

void Walker::meets_record_dialog()
{
    meets(Meeting::RecordDialog, {QStringLiteral("Record Calibration Data"), {}, {}});
}

RecordPress Walker::next_press(int before)
{
    RecordPress press;
    const int kind = below(20);
    if (before < 4 && kind > 1) {
        const RecordPress::Kind kinds[] = {RecordPress::AsFound, RecordPress::AfterService,
                                           RecordPress::Verification, RecordPress::NewCorrelation};
        press.kind = kind == 2 && before == 0 ? RecordPress::None : kinds[kind % 4];
        press.description =
            chance(35) ? QString()
                       : one_of({"as it was found", "bearings rotated",
                                 "a description that goes on beyond the eighty characters that the "
                                 "record holds of one"});
    }
    // Boxes that came since belong to this dialog.
    for (Meeting &meeting : m_meetings) {
        if (meeting.kind == Meeting::RecordDialog)
            meeting.presses.push_back(press);
    }
    return press;
}

bool Walker::repairs_range(int channel)
{
    Meeting &meeting = meets(Meeting::RangeDialog,
                             {QStringLiteral("Transducer Calibration Configuration"), {}, {}});
    // A refusal may bring the dialog back; the second time the range is repaired.
    meeting.accepts = channel == CHANNEL_WITH_EQUAL_LIMITS && (m_range_refusals > 0 || chance(50));
    if (!meeting.accepts)
        ++m_range_refusals;
    return meeting.accepts;
}

} // namespace walk
