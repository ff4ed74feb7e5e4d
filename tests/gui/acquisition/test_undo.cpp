// SPDX-License-Identifier: GPL-3.0-or-later
//
// What an undo leaves alone, taken or cancelled.
#include <QtTest>

#include "gui/frame/heldmutex.h"
#include "support/testmain.h"
#include "window/styles.h"

class Undo : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void undo_of_a_point_that_another_process_captured();
    void statistics_are_copied_without_the_mutex();
    void undo_leaves_the_rows_own_status();
    void undo_of_a_full_table_keeps_its_points();
    void undo_takes_back_one_point_for_each_that_was_counted();

private:
    PointInfo *row(int i) const { return m_it->window->row(i); }
    static void answer_undo(BoxAnswerer *answerer, const char *button);

    std::unique_ptr<TestWindow> m_it;
};

void Undo::init()
{
    m_it->bind_afresh(0);
    for (int i = 0; i < MAX_POINTS; ++i)
        row(i)->state = row(i)->previous_state = POINT_AS_IN_TABLE;
}

void Undo::answer_undo(BoxAnswerer *answerer, const char *button)
{
    answerer->expect_dialog(QStringLiteral("Undo Action"), [button](QDialog *dialog) {
        dialog->findChild<QPushButton *>(QLatin1String(button))->click();
    });
}

// The file says that it was captured, so the same count entered again offers to
// take it back; what it was before is not known here, and nothing was counted.
void Undo::undo_of_a_point_that_another_process_captured()
{
    m_it->bind_afresh(9);
    QCOMPARE(row(2)->caption(), QStringLiteral("Capture"));
    QCOMPARE(g_cfg->table.point_state[2], int32_t(POINT_CAPTURED));
    QCOMPARE(g_cfg->long_current.x[2], 20.0);
    QTest::keyClick(m_it->form->txtNumPoints, Qt::Key_Return);
    QCOMPARE(row(2)->caption(), QStringLiteral("Undo"));
    QCOMPARE(g_captured_points, 0);
    BoxAnswerer answerer;
    answer_undo(&answerer, "btnRevert");
    m_it->button(2)->click();
    QCOMPARE(g_cfg->long_current.x[2], 0.0);
    QCOMPARE(g_cfg->table.poly[0].x[2], 0.0);
    QCOMPARE(g_cfg->long_current.y[2], 200.0);
    QCOMPARE(row(2)->mv_label()->text(), QStringLiteral("  0.0000"));
    QCOMPARE(row(2)->caption(), QStringLiteral("Capture"));
    QCOMPARE(g_captured_points, -1);
}

// Another thread holds it, as a pass would, while the click works itself off.
void Undo::statistics_are_copied_without_the_mutex()
{
    QVERIFY(m_it->capture(1, 1300.0, 26.5));
    HeldMutex held(m_it.get());
    g_sample.mv_mean = 1234.5; // no pass writes it
    BoxAnswerer answerer;
    answer_undo(&answerer, "btnCancelUndo");
    m_it->button(1)->click();
    QCOMPARE(g_cfg->point_stats[1].mv_mean, 1234.5);
    QVERIFY(held.release());
}

// As the capture judged it, though point, colour and worst status go back.
void Undo::undo_leaves_the_rows_own_status()
{
    QVERIFY(m_it->capture(1, 1250.0, 27.5)); // 2.5 off
    QCOMPARE(row(1)->status, uint16_t(3));
    BoxAnswerer answerer;
    answer_undo(&answerer, "btnRevert");
    m_it->button(1)->click();
    QCOMPARE(row(1)->value_style(), QLatin1String(STYLE_WHITE));
    QCOMPARE(g_cfg->table.worst_status, uint16_t(0));
    QCOMPARE(row(1)->status, uint16_t(3));
}

// A count lowered in another channel has left the rows as new ones: they are
// still that in a table of 64 points, whose count cannot grow.
void Undo::undo_of_a_full_table_keeps_its_points()
{
    m_it->form->txtNumPoints->setText(QStringLiteral("4"));
    QTest::keyClick(m_it->form->txtNumPoints, Qt::Key_Return);
    m_it->bind_afresh(8);
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(64));
    for (int i = 20; i < 23; ++i) {
        QCOMPARE(row(i)->state, int32_t(POINT_NEW));
        QVERIFY(m_it->capture(i, 100.0 * i + 50.0, 2.0 * i + 1.0));
        QCOMPARE(row(i)->previous_state, int32_t(POINT_NEW));
        QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(64));
    }
    for (int i = 20; i < 23; ++i) {
        BoxAnswerer answerer;
        answer_undo(&answerer, "btnRevert");
        m_it->button(i)->click();
        QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(64));
        QCOMPARE(g_cfg->long_current.num_points, int16_t(64));
        QCOMPARE(row(i)->state, int32_t(POINT_NEW));
        QCOMPARE(row(i)->caption(), QStringLiteral("Capture New"));
    }
    QCOMPARE(g_cfg->long_current.x[63], 6300.0);
}

// The same row, once in a table with room and once in a full one.
void Undo::undo_takes_back_one_point_for_each_that_was_counted()
{
    m_it->form->txtNumPoints->setText(QStringLiteral("6"));
    QTest::keyClick(m_it->form->txtNumPoints, Qt::Key_Return);
    QVERIFY(m_it->capture(5, 5500.0, 110.0));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(6));
    BoxAnswerer answerer;
    answer_undo(&answerer, "btnRevert");
    m_it->button(5)->click();
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(5));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(5));
    m_it->bind_afresh(8);
    QVERIFY(m_it->capture(5, 550.0, 11.0));
    answer_undo(&answerer, "btnRevert");
    m_it->button(5)->click();
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(64));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(64));
}

WINDOW_TEST(Undo);
#include "test_undo.moc"
