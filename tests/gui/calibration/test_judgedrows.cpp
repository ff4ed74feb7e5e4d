// SPDX-License-Identifier: GPL-3.0-or-later
//
// The judgement of points as the rows show it. The channel's table is y = x on
// 0 to 100 with a sensor span of 100, so the limits are 0.25, 1 and 2.
#include <cmath>
#include <limits>

#include <QtTest>

#include "calibration/classification.h"
#include "calibration/zerl_util.h"
#include "gui/frame/testwindow.h"
#include "support/testmain.h"
#include "window/styles.h"

namespace
{
const QByteArray STRAIGHT = R"(
channel 0
  label "Straight"
  units kPa
  table straight
  record INTERP
  points 0:0 25:25 50:50 75:75 100:100
  sensor kPa 0 100 MODEL SERIAL
channel 1
  label "Beside"
  units kPa
  table beside
  record INTERP
  points 0:0 100:100
  sensor kPa 0 100 MODEL SERIAL
)";
} // namespace

class JudgedRows : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(STRAIGHT); }
    void cleanupTestCase() { m_it.reset(); }
    void init();
    void status_of_a_point_data();
    void status_of_a_point();
    void judged_against_the_table_at_binding();
    void worst_status_whatever_the_order_of_the_rows_data();
    void worst_status_whatever_the_order_of_the_rows();
    void rows_above_the_count_never_count();
    void no_rows_leave_the_worst_status_alone();
    void rejudged_after_the_table_was_rewritten_from_the_points();
    void rows_above_the_count_are_not_rejudged();

private:
    void set_point(int i, double mv, double value)
    {
        g_cfg->long_current.x[i] = mv;
        g_cfg->long_current.y[i] = value;
    }

    std::unique_ptr<TestWindow> m_it;
};

void JudgedRows::init()
{
    m_it->bind_afresh(0);
    QCOMPARE(g_cfg->table.ooa_tol, 0.25);
    QCOMPARE(g_cfg->table.oot_tol, 1.0);
    QCOMPARE(g_cfg->table.soot_tol, 2.0);
}

void JudgedRows::status_of_a_point_data()
{
    const auto row = test_columns<double, double, int, QString>("mv", "value", "status", "style");
    const QString green = QStringLiteral("background-color: rgb(0,255,0)");
    const QString yellow = QStringLiteral("background-color: rgb(255, 255, 127)");
    const QString orange = QStringLiteral("background-color: rgb(255,170,0)");
    const QString red = QStringLiteral("background-color: rgb(255, 78, 78)");
    row("error exactly 0.25", 50.0, 50.25, 0, green);
    row("51.5 for 50", 50.0, 51.5, 2, orange);
    row("52.01 for 50", 50.0, 52.01, 3, red);
    row("not a number is within", 50.0, std::numeric_limits<double>::quiet_NaN(), 0, green);
}

void JudgedRows::status_of_a_point()
{
    QFETCH(double, mv);
    QFETCH(double, value);
    QFETCH(int, status);
    set_point(2, mv, value);
    uint16_t found = 99;
    QWidget widget;
    classify_point(m_it->window, 2, &widget, &found);
    QCOMPARE(int(found), status);
    QTEST(widget.styleSheet(), "style");
    QCOMPARE(point_within(2, 0.25), status == 0);
}

// The yardstick stands still while points are captured.
void JudgedRows::judged_against_the_table_at_binding()
{
    QVERIFY(m_it->capture(1, 28.0, 25.0)); // 3 off
    QCOMPARE(m_it->window->row(1)->status, uint16_t(3));
    QCOMPARE(g_cfg->long_previous.x[1], 25.0);
    QVERIFY(m_it->capture(2, 26.0, 26.1));
    QCOMPARE(m_it->window->row(2)->status, uint16_t(0));
}

void JudgedRows::worst_status_whatever_the_order_of_the_rows_data()
{
    const auto add = test_columns<QVector<int>, int>("statuses", "worst");
    add("orange first", QVector<int>{2, 0, 1, 0, 0}, 2);
    add("orange last", QVector<int>{0, 1, 0, 1, 2}, 2);
    add("orange in the middle", QVector<int>{0, 0, 2, 0, 1}, 2);
    add("all green", QVector<int>{0, 0, 0, 0, 0}, 0);
    add("red alone in the first row", QVector<int>{3, 0, 0, 0, 0}, 3);
}

void JudgedRows::worst_status_whatever_the_order_of_the_rows()
{
    QFETCH(QVector<int>, statuses);
    for (int i = 0; i < statuses.size(); ++i)
        m_it->window->row(i)->status = static_cast<uint16_t>(statuses.at(i));
    for (const uint16_t before : {uint16_t(0), uint16_t(3)}) {
        g_cfg->table.worst_status = before;
        compute_worst_status(m_it->window);
        QTEST(int(g_cfg->table.worst_status), "worst");
    }
}

void JudgedRows::rows_above_the_count_never_count()
{
    m_it->window->row(5)->status = 3; // the sixth of five
    m_it->window->row(63)->status = 3;
    m_it->window->row(4)->status = 1;
    compute_worst_status(m_it->window);
    QCOMPARE(g_cfg->table.worst_status, uint16_t(1));
    m_it->window->row(5)->status = 0;
    m_it->window->row(63)->status = 0;
}

void JudgedRows::no_rows_leave_the_worst_status_alone()
{
    g_num_points = 0;
    g_cfg->table.worst_status = 2;
    compute_worst_status(m_it->window);
    QCOMPARE(g_cfg->table.worst_status, uint16_t(2));
}

void JudgedRows::rejudged_after_the_table_was_rewritten_from_the_points()
{
    for (int i = 0; i < 5; ++i)
        QVERIFY(m_it->capture(i, 25.0 * i + 1.5, 25.0 * i));
    for (int i = 0; i < 5; ++i)
        QCOMPARE(m_it->window->row(i)->status, uint16_t(2));
    g_cfg->long_previous = g_cfg->long_current;
    reclassify_rows(m_it->window);
    for (int i = 0; i < 5; ++i) {
        QCOMPARE(m_it->window->row(i)->status, uint16_t(0));
        QCOMPARE(m_it->window->row(i)->value_style(),
                 QStringLiteral("background-color: rgb(0,255,0)"));
    }
}

void JudgedRows::rows_above_the_count_are_not_rejudged()
{
    m_it->window->row(5)->status = 3;
    m_it->window->row(5)->set_value_style(QLatin1String(STYLE_READY));
    reclassify_rows(m_it->window);
    QCOMPARE(m_it->window->row(5)->status, uint16_t(3));
    QCOMPARE(m_it->window->row(5)->value_style(), QLatin1String(STYLE_READY));
    QCOMPARE(m_it->window->row(4)->value_style(), QStringLiteral("background-color: rgb(0,255,0)"));
}

WINDOW_TEST(JudgedRows);
#include "test_judgedrows.moc"
