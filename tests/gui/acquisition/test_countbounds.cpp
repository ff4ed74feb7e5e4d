// SPDX-License-Identifier: GPL-3.0-or-later
//
// Table and long table count their points each by itself: a refused capture of a
// late row lets the two differ, and no point is lost for that.
#include <QtTest>

#include "frame/tablelock.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"
#include "window/styles.h"

class CountBounds : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void row_64_refused_first_costs_no_point();
    void undo_takes_back_the_count_that_has_grown();
    void undo_behind_a_full_table_leaves_its_count();

private:
    PointInfo *row(int i) const { return m_it->window->row(i); }
    void type_count(const QString &count);
    void refuse_row_64();
    void revert(int i);

    std::unique_ptr<TestWindow> m_it;
};

void CountBounds::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
    m_it->window->monitor()->set_sleep_ms(1);
}

// Five points from 0 to 5000 mV, none captured.
void CountBounds::init()
{
    m_it->bind_afresh(0);
    for (int i = 0; i < MAX_POINTS; ++i) {
        g_cfg->table.point_state[i] = POINT_AS_IN_TABLE;
        row(i)->state = row(i)->previous_state = POINT_AS_IN_TABLE;
    }
}

void CountBounds::type_count(const QString &count)
{
    m_it->form->txtNumPoints->setText(count);
    QTest::keyClick(m_it->form->txtNumPoints, Qt::Key_Return);
}

// Refused at the millivolts of row 3, then taken: the long table reaches to row
// 64, the table has grown by the one point.
void CountBounds::refuse_row_64()
{
    type_count(QStringLiteral("64"));
    BoxAnswerer answerer;
    answerer.expect_title(QStringLiteral("Information"));
    QVERIFY(m_it->capture(63, 2500.0, 630.0));
    QCOMPARE(answerer.met().size(), 1);
    QVERIFY(m_it->capture(63, 31500.0, 630.0));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(64));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(6));
}

void CountBounds::revert(int i)
{
    BoxAnswerer answerer;
    answerer.expect_dialog(QStringLiteral("Undo Action"), [](QDialog *dialog) {
        dialog->findChild<QPushButton *>(QStringLiteral("btnRevert"))->click();
    });
    m_it->button(i)->click();
}

void CountBounds::row_64_refused_first_costs_no_point()
{
    refuse_row_64();
    const BoxAnswerer answerer;
    for (int i = 0; i < 63; ++i)
        QVERIFY(m_it->capture(i, 500.0 * i + 7.0, 10.0 * i));
    QCOMPARE(g_captured_points, 64);
    QCOMPARE(m_it->form->btnRecordData->styleSheet(), QLatin1String(STYLE_READY));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(64));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(64));
    QCOMPARE(m_it->form->txtNumPoints->text(), QStringLiteral("64"));
    for (int i = 0; i < 63; ++i)
        QCOMPARE(g_cfg->table.poly[0].x[i], 500.0 * i + 7.0);
    QCOMPARE(g_cfg->table.poly[0].x[63], 31500.0);
    QCOMPARE(g_cfg->long_current.x[63], 31500.0);
    QCOMPARE(g_cfg->long_current.y[63], 630.0);
}

void CountBounds::undo_takes_back_the_count_that_has_grown()
{
    refuse_row_64();
    QVERIFY(m_it->capture(5, 5500.0, 110.0));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(7));
    revert(5);
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(6));
    QCOMPARE(row(5)->caption(), QStringLiteral("Capture New"));
    QVERIFY(m_it->capture(5, 5500.0, 110.0));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(7));
}

// The other way round: 64 points in the table, fewer in the long one.
void CountBounds::undo_behind_a_full_table_leaves_its_count()
{
    m_it->bind_afresh(8);
    row(10)->state = POINT_NEW;
    {
        const TableLock hold(m_it->window->table_mutex());
        g_cfg->long_current.num_points = 20;
    }
    QVERIFY(m_it->capture(10, 1050.0, 21.0));
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(64));
    revert(10);
    QCOMPARE(g_cfg->table.poly[0].num_points, int16_t(64));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(64));
}

WINDOW_TEST(CountBounds);
#include "test_countbounds.moc"
