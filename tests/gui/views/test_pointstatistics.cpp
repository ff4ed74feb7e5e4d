// SPDX-License-Identifier: GPL-3.0-or-later
//
// The view of how steady each point was at its capture.
#include <limits>

#include <QScrollArea>
#include <QScrollBar>

#include "gui/views/statisticsview.h"
#include "support/testmain.h"
#include "views/pointstatsdialog.h"

class PointStatistics : public QObject
{
    Q_OBJECT

private slots:
    void init() { begin_session(); }
    void form();
    void no_points_a_table_with_headings_only();
    void every_cell();
    void measured_mean_stands_under_reference_point();
    void point_never_captured_shows_the_records_defaults();
    void exponent_of_a_small_value();
    void values_that_are_no_numbers();
    void columns_hold_the_longest_value();
    void odd_counts_data();
    void odd_counts();
    void opened_twice();
    void record_by_the_second_pointer();
    void closing();

private:
    static POINT_STATISTICS *capture(int count);
};

// Figures that tell column and row of each cell.
POINT_STATISTICS *PointStatistics::capture(int count)
{
    g_cfg->long_current.num_points = static_cast<int16_t>(count);
    for (int i = 0; i < count; ++i)
        g_cfg->point_stats[i] = {-1.,      1000. + i, 0.25 * i, 900. + i, 1100. + i, -2.,
                                 10.5 + i, -3.,       -4.,      -5.,      {}};
    return g_cfg->point_stats;
}

void PointStatistics::form()
{
    const PointStatsDialog view(nullptr);
    QCOMPARE(view.windowTitle(), QStringLiteral("Calibration Point Statistics"));
    QCOMPARE(label_text(&view, "label"),
             QStringLiteral("Individual Calibration Point Stability Statistics"));
    const auto *area = part<QScrollArea>(&view, "scrollArea");
    QVERIFY(area != nullptr);
    auto *table = part<QTableWidget>(area, "tblCalInfo");
    QVERIFY(table != nullptr);
    QCOMPARE(table_headings(table),
             (QStringList{"Point Number", "Reference Point", "MV Average", "MV Standard Deviation",
                          "MV Minimum", "MV Maximum"}));
    QVERIFY(ok_alone(&view));
    QCOMPARE(table->editTriggers(), QAbstractItemView::NoEditTriggers);
}

void PointStatistics::no_points_a_table_with_headings_only()
{
    const PointStatsDialog view(nullptr);
    const auto *table = part<QTableWidget>(&view, "tblCalInfo");
    QCOMPARE(table->rowCount(), 0);
    QCOMPARE(table->columnCount(), 6);
}

void PointStatistics::every_cell()
{
    capture(3);
    const PointStatsDialog view(nullptr);
    const auto *table = part<QTableWidget>(&view, "tblCalInfo");
    QCOMPARE(table->rowCount(), 3);
    QCOMPARE(table_row(table, 0), (QStringList{"1", "10.5", "1000", "0", "900", "1100"}));
    QCOMPARE(table_row(table, 1), (QStringList{"2", "11.5", "1001", "0.25", "901", "1101"}));
    QCOMPARE(table_row(table, 2), (QStringList{"3", "12.5", "1002", "0.5", "902", "1102"}));
    QVERIFY(first_two_are_centred(table));
}

void PointStatistics::measured_mean_stands_under_reference_point()
{
    POINT_STATISTICS *points = capture(1);
    points[0].eu_reference = 50.;
    points[0].eu_mean = 49.75;
    const PointStatsDialog view(nullptr);
    const auto *table = part<QTableWidget>(&view, "tblCalInfo");
    QCOMPARE(table->horizontalHeaderItem(1)->text(), QStringLiteral("Reference Point"));
    QCOMPARE(table->item(0, 1)->text(), QStringLiteral("49.75"));
}

void PointStatistics::point_never_captured_shows_the_records_defaults()
{
    g_cfg->long_current.num_points = 3;
    reset_point_statistics(g_cfg);
    const PointStatsDialog view(nullptr);
    const auto *table = part<QTableWidget>(&view, "tblCalInfo");
    QCOMPARE(table_row(table, 0), (QStringList{"1", "-999", "0", "0", "0", "0"}));
    QCOMPARE(table_row(table, 1), (QStringList{"2", "-999", "0", "0", "0", "0"}));
    QCOMPARE(table_row(table, 2), (QStringList{"3", "0", "0", "0", "0", "0"}));
}

void PointStatistics::exponent_of_a_small_value()
{
    capture(1)[0].mv_std = 0.000012345;
    const PointStatsDialog view(nullptr);
    QCOMPARE(part<QTableWidget>(&view, "tblCalInfo")->item(0, 3)->text(),
             QStringLiteral("1.2345e-05"));
}

void PointStatistics::values_that_are_no_numbers()
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double endless = std::numeric_limits<double>::infinity();
    capture(1)[0] = {nan, nan, nan, -endless, endless, nan, nan, nan, nan, nan, {}};
    const PointStatsDialog view(nullptr);
    QCOMPARE(table_row(part<QTableWidget>(&view, "tblCalInfo"), 0),
             (QStringList{"1", "nan", "nan", "nan", "-inf", "inf"}));
}

// The headings alone make the widths, so these leave room beforehand.
void PointStatistics::columns_hold_the_longest_value()
{
    QVector<int> widths;
    for (int count : {0, 1}) {
        POINT_STATISTICS *points = capture(count);
        points[0].mv_min = points[0].mv_std = points[0].eu_mean = -1.23456e-100;
        points[0].mv_max = points[0].mv_mean = points[0].mv_min;
        PointStatsDialog view(nullptr);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        auto *table = part<QTableWidget>(&view, "tblCalInfo");
        QVERIFY(nothing_is_cut(table));
        for (int column = 0; column < 6; ++column)
            widths.append(table->columnWidth(column));
        QVERIFY(!table->horizontalScrollBar()->isVisible());
    }
    QCOMPARE(widths.mid(0, 6), widths.mid(6, 6));
}

void PointStatistics::odd_counts_data()
{
    const auto row = test_columns<int, int>("count", "rows");
    row("64 points", 64, 64);
    row("more than a table holds", 65, 64);
    row("a negative count", -1, 0);
}

void PointStatistics::odd_counts()
{
    QFETCH(int, count);
    QFETCH(int, rows);
    capture(MAX_POINTS);
    g_cfg->long_current.num_points = static_cast<int16_t>(count);
    const PointStatsDialog view(nullptr);
    const auto *table = part<QTableWidget>(&view, "tblCalInfo");
    QCOMPARE(table->rowCount(), rows);
    if (rows > 0)
        QCOMPARE(table_row(table, 63), (QStringList{"64", "73.5", "1063", "15.75", "963", "1163"}));
}

void PointStatistics::opened_twice()
{
    POINT_STATISTICS *points = capture(2);
    const ZERL_CFG kept = *g_cfg;
    {
        const PointStatsDialog view(nullptr);
        QCOMPARE(part<QTableWidget>(&view, "tblCalInfo")->item(1, 2)->text(), QString("1001"));
    }
    QVERIFY(std::memcmp(&kept, g_cfg, sizeof kept) == 0); // it changes nothing
    points[1].mv_mean = 2000.;
    g_cfg->long_current.num_points = 1;
    const PointStatsDialog fewer(nullptr);
    QCOMPARE(part<QTableWidget>(&fewer, "tblCalInfo")->rowCount(), 1);
    g_cfg->long_current.num_points = 2;
    const PointStatsDialog view(nullptr);
    QCOMPARE(part<QTableWidget>(&view, "tblCalInfo")->item(1, 2)->text(), QString("2000"));
}

void PointStatistics::record_by_the_second_pointer()
{
    capture(2);
    ZERL_CFG *const kept = g_cfg;
    g_cfg = nullptr;
    const PointStatsDialog view(nullptr);
    g_cfg = kept;
    QCOMPARE(part<QTableWidget>(&view, "tblCalInfo")->rowCount(), 2);
}

void PointStatistics::closing()
{
    PointStatsDialog view(nullptr);
    check_closing(&view);
}

WINDOW_TEST(PointStatistics);
#include "test_pointstatistics.moc"
