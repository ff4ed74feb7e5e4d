// SPDX-License-Identifier: GPL-3.0-or-later
//
// Both decision tables in the window, each cell: kind of data recorded last
// against the worst status that the rows show, answered Yes and answered No.
#include <QtTest>

#include "gui/calibration/processpanel.h"
#include "support/testmain.h"

namespace
{

// Question, and the colours of the boxes Table Updated and After-Service, which
// then reads "N/A"; '=' leaves the box alone.
struct Cell {
    const char *question;
    char table_updated;
    char after_service;
};

struct Line {
    char event;
    int save_type;
    const char *name;
    Cell by_status[4];
};

constexpr Cell NO_COLOUR = {"", '=', '='};

const Line TABLE[] = {
    {ADJUST, 3, "As-Found", {{"Q1", 'g', 'g'}, {"", 'g', 'g'}, {"Q2", 'r', 'g'}, {"Q2", 'r', 'g'}}},
    {ADJUST, 5, "After-Service", {{"", 'g', '='}, {"", 'g', '='}, {"", 'g', '='}, {"", 'g', '='}}},
    {ADJUST,
     6,
     "Verification",
     {{"Q5", 'g', '='}, {"Q5", 'g', '='}, {"Q5", 'g', '='}, {"Q5", 'g', '='}}},
    {ADJUST, 7, "adjustment", {NO_COLOUR, NO_COLOUR, NO_COLOUR, NO_COLOUR}},
    {ADJUST, 8, "re-use", {NO_COLOUR, NO_COLOUR, NO_COLOUR, NO_COLOUR}},
    {ADJUST, 9, "New Correlation", {NO_COLOUR, NO_COLOUR, NO_COLOUR, NO_COLOUR}},
    {ADJUST, 0, "nothing yet", {NO_COLOUR, NO_COLOUR, NO_COLOUR, NO_COLOUR}},
    {REUSE, 3, "As-Found", {{"", 'g', 'g'}, {"Q3", 'y', 'y'}, {"Q4", 'r', 'r'}, {"Q4", 'r', 'r'}}},
    {REUSE,
     5,
     "After-Service",
     {{"", 'g', '='}, {"Q3", 'y', '='}, {"Q4", 'r', '='}, {"Q4", 'r', '='}}},
    {REUSE,
     6,
     "Verification",
     {{"Q6", 'g', '='}, {"Q5", 'g', '='}, {"Q5", 'g', '='}, {"Q5", 'g', '='}}},
    {REUSE, 7, "adjustment", {NO_COLOUR, NO_COLOUR, NO_COLOUR, NO_COLOUR}},
    {REUSE, 8, "re-use", {NO_COLOUR, NO_COLOUR, NO_COLOUR, NO_COLOUR}},
    {REUSE, 9, "New Correlation", {NO_COLOUR, NO_COLOUR, NO_COLOUR, NO_COLOUR}},
    {REUSE, 0, "nothing yet", {NO_COLOUR, NO_COLOUR, NO_COLOUR, NO_COLOUR}},
};

} // namespace

class DecisionRows : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<ProcessPanel>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init() { m_it->bind(); }
    void decision_data();
    void decision();

private:
    std::unique_ptr<ProcessPanel> m_it;
};

void DecisionRows::decision_data()
{
    QTest::addColumn<int>("line");
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("goes_on");
    for (int i = 0; i < static_cast<int>(std::size(TABLE)); ++i) {
        const Line &line = TABLE[i];
        const char *const button = line.event == ADJUST ? "Adjust" : "Re-Use";
        for (int status = 0; status < 4; ++status) {
            if (*line.by_status[status].question == '\0') {
                QTest::addRow("%s, %s at status %d", button, line.name, status)
                    << i << status << true;
                continue;
            }
            for (const bool goes_on : {true, false})
                QTest::addRow("%s, %s at status %d, %s", button, line.name, status,
                              goes_on ? "Yes" : "No")
                    << i << status << goes_on;
        }
    }
}

void DecisionRows::decision()
{
    QFETCH(int, line);
    QFETCH(int, status);
    QFETCH(bool, goes_on);
    const Line &row = TABLE[line];
    const Cell &cell = row.by_status[status];
    m_it->set_boxes("11111");
    m_it->set_buttons(true, true);
    m_it->captured(status);
    g_cfg->table.last_save_type = static_cast<uint16_t>(row.save_type);
    const PanelLook before = m_it->look();
    m_it->press(row.event, cell.question, goes_on);
    if (!goes_on) {
        m_it->check(before, row.event, NOTHING_CHANGED);
        QCOMPARE(int(g_cfg->table.last_save_type), row.save_type);
        QCOMPARE(int(g_cfg->table.worst_status), status); // computed at the press
        return;
    }
    const char texts[] = {'=', cell.after_service == '=' ? '=' : 'N', 't', '=', '=', '\0'};
    const char colours[] = {'=', cell.after_service, cell.table_updated, '=', '=', '\0'};
    const int saved = row.event == ADJUST ? SAVE_ADJUSTED : SAVE_REUSED;
    m_it->check(before, row.event, {texts, colours, "ii", "11", "=", saved});
    QCOMPARE(int(g_cfg->table.last_save_type), saved); // as read back from the archive
    QCOMPARE(g_cfg->table.worst_status, uint16_t(0));
    QCOMPARE(g_captured_points, 0);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(m_it->it.window->row(i)->caption(), QStringLiteral("Capture"));
        QCOMPARE(m_it->it.window->row(i)->value_style(),
                 QStringLiteral("background-color: rgb(0,255,0)"));
        QCOMPARE(g_cfg->long_current.y[i], 50.0 * i + (row.event == ADJUST ? 0.125 : 0.0));
    }
}

WINDOW_TEST(DecisionRows);
#include "test_decisionrows.moc"
