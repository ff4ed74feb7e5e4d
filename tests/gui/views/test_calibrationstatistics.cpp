// SPDX-License-Identifier: GPL-3.0-or-later
//
// The view that holds the calibration under way against the previous one.
#include <limits>

#include <QGridLayout>
#include <QHelpEvent>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolTip>

#include "calibration/linefit.h"
#include "gui/views/statisticsview.h"
#include "support/testmain.h"
#include "views/boxedlabel.h"
#include "views/currentcalibrationstatsdialog.h"
#include "views/statinfo.h"

namespace
{

// Labels of a row with their columns, and the headings over them.
struct Column {
    const char *name;
    const char *heading;
    const char *heading_text;
    int column;
};

constexpr Column COLUMNS[] = {
    {"lblIndexNum", "lblCurrentCal_2", "Point Number", 1},
    {"lblCurrentCalibration", "lblCurrentCal", "Current Calibration", 2},
    {"lblPreviousCalibration", "lblPreviousCal", "Previous Calibration", 3},
    {"lblStriaghtLineApprox", "lblStraightLine", "Straight Line Approx", 4},
    {"lblCurrentToPrevious", "lblCurrentToPrevious", "Current to Previous", 6},
    {"lblCurrentToStraightLine", "lblCurrentToSL", "Current to Straight Line", 7},
    {"lblPreviousToStriaghtLine", "lblPreviousToSL", "Previous to Straight Line:", 8},
};

// A heading bears the name of a row's label too, so only the dialog's own count.
QLabel *heading(const QWidget &view, const char *name)
{
    return view.findChild<QLabel *>(QString::fromLatin1(name), Qt::FindDirectChildrenOnly);
}

QList<StatInfo *> rows_of(const QWidget &view)
{
    return part<QScrollArea>(&view, "scrollArea")->widget()->findChildren<StatInfo *>();
}

QStringList texts_of(const StatInfo *row)
{
    QStringList texts;
    for (const Column &column : COLUMNS)
        texts += label_text(row, column.name);
    return texts;
}

void set_points(LONG_TABLE *table, const QVector<QPointF> &points)
{
    table->num_points = static_cast<int16_t>(points.size());
    for (int i = 0; i < points.size(); ++i) {
        table->x[i] = points[i].x();
        table->y[i] = points[i].y();
    }
}

} // namespace

class CalibrationStatistics : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void form();
    void row_form();
    void setters();
    void no_points_headings_only();
    void every_cell();
    void previous_calibration_with_fewer_points();
    void current_equal_to_previous();
    void values_that_are_no_numbers();
    void sixty_four_points();
    void odd_counts_data();
    void odd_counts();
    void labels_stand_under_their_headings();
    void few_rows_stand_at_the_top();
    void every_row_in_view_is_shown_wherever_it_is_scrolled();
    void wide_values_are_never_shown_wrong_data();
    void wide_values_are_never_shown_wrong();
    void tool_tip_shows_the_whole_of_a_value_that_is_cut();
    void opened_twice();
    void record_by_the_second_pointer();
    void closing();
};

// The line 10 + 0.1 x, given as the fit; 60 at 500 mV.
void CalibrationStatistics::init()
{
    begin_session();
    set_points(&g_cfg->long_current, {{0., 11.}, {500., 57.}, {1000., 112.}});
    set_points(&g_cfg->long_previous, {{0., 10.}, {400., 46.}, {1000., 100.}});
    set_points(&g_cfg->long_fit, {{0., 10.}, {500., 60.}, {1000., 110.}});
}

void CalibrationStatistics::form()
{
    const CurrentCalibrationStatsDialog view(nullptr);
    QCOMPARE(view.windowTitle(), QStringLiteral("Current Calibration Statistics"));
    QCOMPARE(heading(view, "label")->text(), QStringLiteral("Calibration Statistics"));
    QCOMPARE(heading(view, "label_2")->text(), QStringLiteral("Standard Deviation"));
    for (const Column &column : COLUMNS)
        QCOMPARE(heading(view, column.heading)->text(), QString::fromLatin1(column.heading_text));
    const auto *rows = part<QLayout>(&view, "verticalLayout");
    QVERIFY(rows != nullptr);
    QCOMPARE(rows->count(), 3);
    for (int i = 0; i < 3; ++i)
        QCOMPARE(rows->itemAt(i)->widget(), static_cast<QWidget *>(rows_of(view)[i]));
    QVERIFY(ok_alone(&view));
}

void CalibrationStatistics::row_form()
{
    const StatInfo row(4, nullptr);
    QCOMPARE(row.row_index(), int16_t(4));
    QCOMPARE(label_text(&row, "lblIndexNum"), QStringLiteral("5"));
    auto *grid = qobject_cast<QGridLayout *>(row.layout());
    QVERIFY(grid != nullptr);
    for (const Column &column : COLUMNS) {
        auto *label = part<QLabel>(&row, column.name);
        QVERIFY2(label != nullptr, column.name);
        QCOMPARE(label->frameShape(), QFrame::Box);
        QCOMPARE(label->minimumHeight(), 27);
        QCOMPARE(label->maximumHeight(), 27);
        QCOMPARE(grid->itemAtPosition(0, column.column)->widget(), static_cast<QWidget *>(label));
    }
    QVERIFY(grid->itemAtPosition(0, 5)->spacerItem() != nullptr);
    QCOMPARE(row.findChildren<QLabel *>().size(), 7);
}

void CalibrationStatistics::setters()
{
    StatInfo row(0, nullptr);
    row.setCurrentCalibration(1.);
    row.setPreviousCalibration(-2.);
    row.setStraightLineApprox(3.456);
    row.setCurrentToPrevious(4.);
    row.setCurrentToStraightLine(50000.);
    row.setPreviousToStraightLine(6.);
    QCOMPARE(texts_of(&row), (QStringList{"1", "    1.00", "   -2.00", "    3.46", "    4.00",
                                          "50000.00", "    6.00"}));
}

void CalibrationStatistics::no_points_headings_only()
{
    g_cfg->long_current.num_points = 0;
    CurrentCalibrationStatsDialog view(nullptr);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QVERIFY(rows_of(view).isEmpty());
    for (const Column &column : COLUMNS)
        QVERIFY(heading(view, column.heading)->isVisible());
}

// The former curve reads 55 at 500 mV; its own 400 mV lie at 50 on the line.
void CalibrationStatistics::every_cell()
{
    const CurrentCalibrationStatsDialog view(nullptr);
    const QList<StatInfo *> rows = rows_of(view);
    QCOMPARE(rows.size(), 3);
    QCOMPARE(texts_of(rows[0]), (QStringList{"1", "   11.00", "   10.00", "   10.00", "    1.00",
                                             "    1.00", "    0.00"}));
    QCOMPARE(texts_of(rows[1]), (QStringList{"2", "   57.00", "   46.00", "   60.00", "    2.00",
                                             "    3.00", "    4.00"}));
    QCOMPARE(texts_of(rows[2]), (QStringList{"3", "  112.00", "  100.00", "  110.00", "   12.00",
                                             "    2.00", "   10.00"}));
}

// Its unused slots are zero, as a table load leaves them.
void CalibrationStatistics::previous_calibration_with_fewer_points()
{
    g_cfg->long_previous = {};
    set_points(&g_cfg->long_previous, {{0., 10.}, {1000., 100.}});
    const CurrentCalibrationStatsDialog view(nullptr);
    QCOMPARE(texts_of(rows_of(view)[1]), (QStringList{"2", "   57.00", "  100.00", "   60.00",
                                                      "    2.00", "    3.00", "   10.00"}));
    QCOMPARE(texts_of(rows_of(view)[2]), (QStringList{"3", "  112.00", "    0.00", "  110.00",
                                                      "   12.00", "    2.00", "    0.00"}));
    // A value left there stands bare.
    g_cfg->long_previous.y[2] = -8.25;
    const CurrentCalibrationStatsDialog bare(nullptr);
    QCOMPARE(label_text(rows_of(bare)[2], "lblPreviousCalibration"), QString("   -8.25"));
    QCOMPARE(label_text(rows_of(bare)[2], "lblPreviousToStriaghtLine"), QString("    8.25"));
}

void CalibrationStatistics::current_equal_to_previous()
{
    g_cfg->long_previous = g_cfg->long_current;
    const CurrentCalibrationStatsDialog view(nullptr);
    QCOMPARE(rows_of(view).size(), 3);
    for (const StatInfo *row : rows_of(view))
        QCOMPARE(label_text(row, "lblCurrentToPrevious"), QStringLiteral("    0.00"));
}

void CalibrationStatistics::values_that_are_no_numbers()
{
    g_cfg->long_current.y[2] = std::numeric_limits<double>::quiet_NaN();
    g_cfg->long_previous.y[2] = std::numeric_limits<double>::infinity();
    const CurrentCalibrationStatsDialog view(nullptr);
    QCOMPARE(texts_of(rows_of(view)[2]), (QStringList{"3", "     nan", "     inf", "  110.00",
                                                      "     nan", "     nan", "     inf"}));
    QCOMPARE(label_text(rows_of(view)[0], "lblCurrentCalibration"), QString("   11.00"));
}

void CalibrationStatistics::sixty_four_points()
{
    QVector<QPointF> points;
    for (int i = 0; i < MAX_POINTS; ++i)
        points.append({10. * i, 2. * i});
    set_points(&g_cfg->long_current, points);
    set_points(&g_cfg->long_previous, points);
    compute_long_fit(&g_cfg->long_current, &g_cfg->long_fit);
    const CurrentCalibrationStatsDialog view(nullptr);
    const QList<StatInfo *> rows = rows_of(view);
    QCOMPARE(rows.size(), 64);
    for (int i = 0; i < MAX_POINTS; ++i) {
        const QString value = QString::asprintf("%8.2f", 2. * i);
        const QString zero = QStringLiteral("    0.00");
        QCOMPARE(rows[i]->row_index(), static_cast<int16_t>(i));
        QCOMPARE(texts_of(rows[i]),
                 (QStringList{QString::number(i + 1), value, value, value, zero, zero, zero}));
    }
}

void CalibrationStatistics::odd_counts_data()
{
    const auto row = test_columns<int, int>("count", "rows");
    row("more than a table holds", 65, 64);
    row("a negative count", -1, 0);
}

void CalibrationStatistics::odd_counts()
{
    QFETCH(int, count);
    g_cfg->long_current.num_points = static_cast<int16_t>(count);
    const CurrentCalibrationStatsDialog view(nullptr);
    QTEST(rows_of(view).size(), "rows");
}

void CalibrationStatistics::labels_stand_under_their_headings()
{
    set_points(&g_cfg->long_current, QVector<QPointF>(MAX_POINTS, {1., 1234567.}));
    CurrentCalibrationStatsDialog view(nullptr);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    const auto span = [&view](const QWidget *widget) {
        const int left = widget->mapTo(&view, QPoint(0, 0)).x();
        return QPair<int, int>(left, left + widget->width());
    };
    const StatInfo *row = rows_of(view)[0];
    for (const Column &column : COLUMNS) {
        const auto *label = part<QLabel>(row, column.name);
        const QLabel *over = heading(view, column.heading);
        QCOMPARE(span(label), span(over));
        QVERIFY2(over->heightForWidth(over->width()) <= over->height(), column.heading);
        const int text = label->fontMetrics().horizontalAdvance(label->text());
        QVERIFY2(text < label->contentsRect().width(), column.name);
        for (const QString &word : over->text().split(' '))
            QVERIFY(over->fontMetrics().horizontalAdvance(word) <= over->width());
    }
    // Over the first three value columns and over the last three.
    QCOMPARE(span(heading(view, "label")),
             qMakePair(span(heading(view, "lblCurrentCal")).first,
                       span(heading(view, "lblStraightLine")).second));
    QCOMPARE(span(heading(view, "label_2")),
             qMakePair(span(heading(view, "lblCurrentToPrevious")).first,
                       span(heading(view, "lblPreviousToSL")).second));
    QVERIFY(!part<QScrollArea>(&view, "scrollArea")->horizontalScrollBar()->isVisible());
}

void CalibrationStatistics::few_rows_stand_at_the_top()
{
    CurrentCalibrationStatsDialog view(nullptr);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    const QList<StatInfo *> rows = rows_of(view);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(rows[i]->height(), 31);
        QCOMPARE(rows[i]->mapTo(rows[0]->parentWidget(), QPoint(0, 0)).y(), 31 * i);
    }
}

void CalibrationStatistics::every_row_in_view_is_shown_wherever_it_is_scrolled()
{
    set_points(&g_cfg->long_current, QVector<QPointF>(MAX_POINTS, {1., 2.}));
    CurrentCalibrationStatsDialog view(nullptr);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    auto *area = part<QScrollArea>(&view, "scrollArea");
    QScrollBar *bar = area->verticalScrollBar();
    QCOMPARE(bar->maximum(), 64 * 31 - area->viewport()->height()); // each has its place
    const auto all_shown = [&] {
        const QRect seen = area->viewport()->rect();
        int in_view = 0;
        for (const StatInfo *row : rows_of(view)) {
            if (!seen.intersects({row->mapTo(area->viewport(), QPoint(0, 0)), row->size()}))
                continue;
            if (!row->isVisible())
                return false;
            ++in_view;
        }
        return in_view >= seen.height() / 31;
    };
    QVERIFY(all_shown());
    for (int value : {700, bar->maximum(), 1}) {
        bar->setValue(value);
        QVERIFY(all_shown());
    }
    QVERIFY(rows_of(view)[63]->isVisible());
    CurrentCalibrationStatsDialog grown(nullptr);
    grown.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grown));
    grown.resize(grown.width(), 2200);
    QTRY_VERIFY(rows_of(grown)[63]->isVisible());
}

void CalibrationStatistics::wide_values_are_never_shown_wrong_data()
{
    const auto row = test_columns<double, bool, bool>("value", "smaller", "cut");
    row("ordinary", -1234567.0, false, false);
    row("19 characters", 1e15, true, false);
    row("the same below zero", -1e15, true, false);
    row("64 characters", 1e60, true, true);
    row("longest", -1.7e308, true, true);
}

void CalibrationStatistics::wide_values_are_never_shown_wrong()
{
    QFETCH(double, value);
    g_cfg->long_current.y[0] = value;
    CurrentCalibrationStatsDialog view(nullptr);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    const auto *label = part<BoxedLabel>(rows_of(view)[0], "lblCurrentCalibration");
    const QString whole = QString::asprintf("%8.2f", value);
    QCOMPARE(label->text(), whole);
    const FittedText shown = label->shown();
    const QFontMetrics metrics(shown.font);
    QVERIFY(metrics.horizontalAdvance(shown.text) <= label->contentsRect().width());
    QTEST(shown.font.pointSizeF() < label->font().pointSizeF(), "smaller");
    QTEST(shown.cut, "cut");
    QVERIFY(shown.font.pointSizeF() >= 6.0);
    if (shown.cut) {
        QVERIFY(shown.text.endsWith(QChar(0x2026)));
        QVERIFY(whole.startsWith(shown.text.chopped(1)));
    } else {
        QCOMPARE(shown.text, whole);
    }
    // What is painted stays off the box on either side.
    const QImage image = const_cast<BoxedLabel *>(label)->grab().toImage();
    for (const int x : {2, image.width() - 3}) {
        for (int y = 1; y < image.height() - 1; ++y)
            QCOMPARE(image.pixel(x, y), image.pixel(1, 1));
    }
}

void CalibrationStatistics::tool_tip_shows_the_whole_of_a_value_that_is_cut()
{
    g_cfg->long_current.y[0] = 1e60;
    CurrentCalibrationStatsDialog view(nullptr);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    const auto tip_of = [&view](const char *name) {
        auto *label = part<QLabel>(rows_of(view)[0], name);
        QHelpEvent event(QEvent::ToolTip, QPoint(5, 5), label->mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(label, &event);
        const QString tip = QToolTip::text();
        QToolTip::hideText();
        return tip;
    };
    QCOMPARE(tip_of("lblCurrentCalibration").remove('\n'), QString::asprintf("%.2f", 1e60));
    QTRY_VERIFY(!QToolTip::isVisible());
    QCOMPARE(tip_of("lblPreviousCalibration"), QString());
}

void CalibrationStatistics::opened_twice()
{
    const ZERL_CFG kept = *g_cfg;
    {
        const CurrentCalibrationStatsDialog view(nullptr);
        QCOMPARE(rows_of(view).size(), 3);
    }
    QVERIFY(std::memcmp(&kept, g_cfg, sizeof kept) == 0); // it changes nothing
    g_cfg->long_current.y[1] = 58.5;
    const CurrentCalibrationStatsDialog view(nullptr);
    QCOMPARE(rows_of(view).size(), 3);
    QCOMPARE(texts_of(rows_of(view)[1]), (QStringList{"2", "   58.50", "   46.00", "   60.00",
                                                      "    3.50", "    1.50", "    4.00"}));
}

void CalibrationStatistics::record_by_the_second_pointer()
{
    ZERL_CFG *const kept = g_cfg;
    g_cfg = nullptr;
    const CurrentCalibrationStatsDialog view(nullptr);
    g_cfg = kept;
    QCOMPARE(rows_of(view).size(), 3);
}

void CalibrationStatistics::closing()
{
    CurrentCalibrationStatsDialog view(nullptr);
    check_closing(&view);
}

WINDOW_TEST(CalibrationStatistics);
#include "test_calibrationstatistics.moc"
