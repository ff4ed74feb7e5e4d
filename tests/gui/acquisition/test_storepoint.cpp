// SPDX-License-Identifier: GPL-3.0-or-later
//
// What makes a reading and a reference a point of the table, and what refuses
// them.
#include <QtTest>

#include "gui/frame/testwindow.h"
#include "support/testmain.h"

namespace
{
const QString INFORMATION = QStringLiteral("Information");

QString duplicate_text(int position, const char *mv, int other)
{
    return QStringLiteral(
               "The new Mv value for position #%1 of '%2'\nis the same as the current Mv "
               "value in position #%3.\n\nDuplicate Mv values are not allowed.\n\n"
               "Please try a different table value.")
        .arg(QString::number(position), QString::fromLatin1(mv), QString::number(other));
}
} // namespace

class StorePoint : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    // Five points from 0 to 5000 mV.
    void init() { m_it->bind_afresh(0); }
    void store_point_writes_both_tables();
    void store_point_writes_the_range_in_work();
    void store_point_of_the_same_point_changes_nothing();
    void store_point_compares_within_a_millionth();
    void store_point_raises_the_count();
    void duplicate_millivolts_are_refused();
    void last_hit_of_several_is_named();
    void points_behind_the_count_are_no_duplicates();
    void same_reference_at_other_millivolts_is_taken();
    void refusal_gives_the_mutex_back_before_the_message();
    void point_is_written_under_the_mutex();

private:
    PointInfo *row(int i) const { return m_it->window->row(i); }

    std::unique_ptr<TestWindow> m_it;
};

void StorePoint::store_point_writes_both_tables()
{
    QVERIFY(m_it->reading(1300.5));
    g_cfg->table_dirty = 0;
    QVERIFY(m_it->window->store_point(g_cfg, 1, 26.0) != 0);
    QCOMPARE(g_cfg->long_current.x[1], 1300.5);
    QCOMPARE(g_cfg->long_current.y[1], 26.0);
    QCOMPARE(g_cfg->table.poly[0].x[1], 1300.5);
    QCOMPARE(g_cfg->table.poly[0].y[1], 26.0);
    QCOMPARE(g_cfg->long_current.num_points, int16_t(5));
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    QCOMPARE(row(1)->mv_label()->text(), QStringLiteral("1300.5000"));
    QCOMPARE(row(1)->value_field()->text(), QStringLiteral(" 26.0000"));
}

void StorePoint::store_point_writes_the_range_in_work()
{
    m_it->bind_afresh(5);
    g_cfg->table.poly_range_index = 2;
    QVERIFY(m_it->reading(1111.0));
    QVERIFY(m_it->window->store_point(g_cfg, 1, 22.0) != 0);
    QCOMPARE(g_cfg->table.poly[2].x[1], 1111.0);
    QCOMPARE(g_cfg->table.poly[2].y[1], 22.0);
    QCOMPARE(g_cfg->table.poly[0].x[1], 0.0);
    QCOMPARE(g_cfg->long_current.x[1], 1111.0);
}

void StorePoint::store_point_of_the_same_point_changes_nothing()
{
    const BoxAnswerer answerer;
    QVERIFY(m_it->reading(1250.0));
    QTRY_COMPARE_WITH_TIMEOUT(g_cfg->redraw_all, uint16_t(0), DEADLINE_MS);
    g_cfg->table_dirty = 0;
    const LONG_TABLE before = g_cfg->long_current;
    const TABLE_RECORD table = g_cfg->table;
    QCOMPARE(m_it->window->store_point(g_cfg, 1, 25.0), 1);
    QVERIFY(std::memcmp(&before, &g_cfg->long_current, sizeof before) == 0);
    QVERIFY(std::memcmp(&table, &g_cfg->table, sizeof table) == 0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QVERIFY(answerer.met().isEmpty());
}

void StorePoint::store_point_compares_within_a_millionth()
{
    QVERIFY(m_it->reading(1250.0000005));
    g_cfg->table_dirty = 0;
    QCOMPARE(m_it->window->store_point(g_cfg, 1, 25.0000005), 1);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QCOMPARE(g_cfg->long_current.x[1], 1250.0);
    QVERIFY(m_it->window->store_point(g_cfg, 1, 25.00001) != 0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(1));
    QCOMPARE(g_cfg->long_current.y[1], 25.00001);
}

void StorePoint::store_point_raises_the_count()
{
    QVERIFY(m_it->reading(5500.0));
    QVERIFY(m_it->window->store_point(g_cfg, 7, 110.0) != 0);
    QCOMPARE(g_cfg->long_current.num_points, int16_t(8));
    QVERIFY(m_it->reading(5600.0));
    QVERIFY(m_it->window->store_point(g_cfg, 2, 112.0) != 0);
    QCOMPARE(g_cfg->long_current.num_points, int16_t(8));
}

void StorePoint::duplicate_millivolts_are_refused()
{
    QVERIFY(m_it->reading(3750.0));
    g_cfg->table_dirty = 0;
    const LONG_TABLE before = g_cfg->long_current;
    BoxAnswerer answerer;
    answerer.expect(INFORMATION, duplicate_text(2, "3750.0000", 4));
    QCOMPARE(m_it->window->store_point(g_cfg, 1, 26.0), 0);
    QCOMPARE(answerer.met().size(), 1);
    QVERIFY(std::memcmp(&before, &g_cfg->long_current, sizeof before) == 0);
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
}

void StorePoint::last_hit_of_several_is_named()
{
    QVERIFY(m_it->reading(7.125));
    for (const int i : {0, 2, 3})
        g_cfg->long_current.x[i] = 7.125 + i * 1e-7;
    BoxAnswerer answerer;
    answerer.expect(INFORMATION, duplicate_text(2, "  7.1250", 4));
    QCOMPARE(m_it->window->store_point(g_cfg, 1, 26.0), 0);
}

void StorePoint::points_behind_the_count_are_no_duplicates()
{
    const BoxAnswerer answerer;
    QVERIFY(m_it->reading(4321.0));
    g_cfg->long_current.x[5] = 4321.0;
    QVERIFY(m_it->window->store_point(g_cfg, 1, 26.0) != 0);
    QVERIFY(answerer.met().isEmpty());
}

void StorePoint::same_reference_at_other_millivolts_is_taken()
{
    const BoxAnswerer answerer;
    QVERIFY(m_it->reading(1300.0));
    QVERIFY(m_it->window->store_point(g_cfg, 1, 75.0) != 0); // point 4 has that reference
    QCOMPARE(g_cfg->long_current.y[1], g_cfg->long_current.y[3]);
    QVERIFY(answerer.met().isEmpty());
}

void StorePoint::refusal_gives_the_mutex_back_before_the_message()
{
    QVERIFY(m_it->reading(3750.0));
    relaxed_store(g_cfg->monitor_pass_done, uint16_t(0));
    bool sampled = false;
    QTimer::singleShot(0, this, [&sampled] {
        sampled = QTest::qWaitFor([] { return relaxed_load(g_cfg->monitor_pass_done) == 1; },
                                  DEADLINE_MS);
        QApplication::activeModalWidget()->close();
        auto *const box = qobject_cast<QMessageBox *>(QApplication::activeModalWidget());
        if (box != nullptr)
            box->accept();
    });
    QCOMPARE(m_it->window->store_point(g_cfg, 1, 26.0), 0);
    QVERIFY(sampled);
}

// The row's field is written in the midst of it.
void StorePoint::point_is_written_under_the_mutex()
{
    QVERIFY(m_it->reading(1300.5));
    int writes = 0;
    int free = 0;
    QObject probe;
    connect(row(1)->value_field(), &QLineEdit::textChanged, &probe, [&] {
        ++writes;
        free += m_it->mutex_is_free() ? 1 : 0;
    });
    QVERIFY(m_it->window->store_point(g_cfg, 1, 26.0) != 0);
    QCOMPARE(writes, 1);
    QCOMPARE(free, 0);
    QVERIFY(m_it->mutex_is_free());
}

WINDOW_TEST(StorePoint);
#include "test_storepoint.moc"
