// SPDX-License-Identifier: GPL-3.0-or-later
//
// What is asked before work is left, by Exit and by the choice of another
// channel, for every state of captured points, modified table and the three
// boxes that count; and what each answer really does.
#include <QtTest>

#include "gui/calibration/processpanel.h"
#include "support/testmain.h"

namespace
{

// The question for As-Found, After-Service and Table Updated empty or filled, in
// the order 000, 001, ... 111; '-' is none. Exit and leaving ask alike.
struct Guard {
    int captured;
    bool modified;
    const char *questions;
};

const Guard GUARDS[] = {
    {0, false, "--2-2-2-"},
    {0, true, "3-2-2-2-"},
    {7, false, "--2-2-2-"},
    {7, true, "11111111"},
};

} // namespace

class GuardRows : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<ProcessPanel>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void exit_asks_data() { add_rows(); }
    void exit_asks();
    void leaving_asks_data() { add_rows(); }
    void leaving_asks();

private:
    static void add_rows();
    void set_up();
    void check_cancelled_leave(char question);

    std::unique_ptr<ProcessPanel> m_it;
};

void GuardRows::init()
{
    m_it->bind();
    m_it->it.window->show();
}

void GuardRows::add_rows()
{
    static const char *const filled_boxes[] = {"no box",
                                               "Table Updated",
                                               "After-Service",
                                               "After-Service and Table Updated",
                                               "As-Found",
                                               "As-Found and Table Updated",
                                               "As-Found and After-Service",
                                               "all three boxes"};
    test_columns<int, bool, QByteArray, char>("captured", "modified", "boxes", "question");
    for (const Guard &guard : GUARDS) {
        for (int filled = 0; filled < 8; ++filled) {
            const QByteArray boxes = QByteArray::number(8 + filled, 2).mid(1) + "00";
            const char question = guard.questions[filled];
            QTest::addRow("%s, %s, %s filled: %s", guard.captured > 0 ? "captured" : "not captured",
                          guard.modified ? "modified" : "nothing unsaved", filled_boxes[filled],
                          question == '-'   ? "no question"
                          : question == '1' ? "points not recorded"
                          : question == '2' ? "incomplete"
                                            : "table modified")
                << guard.captured << guard.modified << boxes << question;
        }
    }
}

// Two rows are coloured, whatever is counted as captured.
void GuardRows::set_up()
{
    QFETCH(int, captured);
    QFETCH(bool, modified);
    QFETCH(QByteArray, boxes);
    m_it->set_boxes(boxes.constData());
    m_it->set_buttons(true, true);
    m_it->captured(1);
    m_it->it.window->row(0)->set_value_style(QStringLiteral("background-color: white"));
    g_captured_points = captured;
    g_cfg->table_dirty = modified ? 1 : 0;
}

void GuardRows::exit_asks()
{
    QFETCH(char, question);
    const QByteArray mark = question == '-' ? QByteArray() : QByteArray("G") + question;
    for (const bool goes_on : {false, true}) {
        set_up();
        const PanelLook before = m_it->look();
        const int counted = g_captured_points;
        BoxAnswerer answerer;
        ProcessPanel::expect(&answerer, mark.constData(), goes_on);
        m_it->it.form->actionExit->trigger();
        QCOMPARE(answerer.met().size(), mark.isEmpty() ? 0 : 1); // nothing further is asked
        if (!mark.isEmpty())
            ProcessPanel::check_box(answerer.met().first(), mark.constData());
        QCOMPARE(m_it->it.window->isVisible(), !goes_on && !mark.isEmpty());
        m_it->check(before, AS_FOUND, NOTHING_CHANGED);
        QCOMPARE(g_captured_points, counted);
        m_it->it.window->show();
    }
}

// Back on the channel, which was read again: the captured values are gone, the
// captions stay, the fields are white, the process panel stays as it was.
void GuardRows::check_cancelled_leave(char question)
{
    QCOMPARE(m_it->it.form->cboCurrentChannel->currentIndex(), m_it->it.item_of(1));
    QCOMPARE(g_cfg->channel, int16_t(1));
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    for (int i = 0; i < MAX_POINTS; ++i) {
        const PointInfo *const row = m_it->it.window->row(i);
        QCOMPARE(row->value_style(), QStringLiteral("background-color: white"));
        QCOMPARE(row->saved_style, i == 1 || i == 2 ? QStringLiteral("background-color: rgb(9,9,9)")
                                                    : QStringLiteral("background-color: white"));
        QCOMPARE(row->caption(), i < 3 ? QStringLiteral("Undo") : QStringLiteral("Capture"));
    }
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(g_cfg->long_current.y[i], 50.0 * i);
        QCOMPARE(g_cfg->table.poly[0].y[i], 50.0 * i);
    }
    QVERIFY2(question != '-', "without a question there is nothing to cancel");
}

void GuardRows::leaving_asks()
{
    QFETCH(char, question);
    const QByteArray mark = question == '-' ? QByteArray() : QByteArray("L") + question;
    QVector<int> counts;
    QObject probe;
    // This form of the signal comes ahead of the one that the slot is on: away
    // from the channel, and back to it.
    connect(m_it->it.form->cboCurrentChannel, QOverload<int>::of(&QComboBox::currentIndexChanged),
            &probe, [&counts](int) { counts += g_captured_points; });
    if (!mark.isEmpty()) {
        set_up();
        const int counted = g_captured_points;
        const PanelLook before = m_it->look();
        BoxAnswerer answerer;
        ProcessPanel::expect(&answerer, mark.constData(), false);
        m_it->it.pick(0);
        QCOMPARE(answerer.met().size(), 1);
        ProcessPanel::check_box(answerer.met().first(), mark.constData());
        m_it->check(before, AS_FOUND, NOTHING_CHANGED);
        check_cancelled_leave(question);
        // Only the first question counts the coloured rows before the reading.
        QCOMPARE(counts, (QVector<int>{counted, question == '1' ? 2 : counted}));
    }
    set_up();
    BoxAnswerer answerer;
    ProcessPanel::expect(&answerer, mark.constData(), true);
    m_it->it.pick(0);
    QCOMPARE(answerer.met().size(), mark.isEmpty() ? 0 : 1); // nothing further is asked
    QCOMPARE(g_cfg->channel, int16_t(0));
    QCOMPARE(m_it->it.form->lblNextStep->text(), QString());
    QCOMPARE(m_it->it.form->lblNextStep->styleSheet(),
             QStringLiteral("background-color: rgb(255,252,239)"));
    for (int i = 0; i < 5; ++i)
        QCOMPARE(m_it->box(i)->text(), QString());
    QVERIFY(!m_it->it.form->btnAdjustCalibration->isEnabled());
    QVERIFY(!m_it->it.form->btnReuseCalibration->isEnabled());
    QVERIFY(!QFile::exists(QStringLiteral("/cell/tables/one.save")));
}

WINDOW_TEST(GuardRows);
#include "test_guardrows.moc"
