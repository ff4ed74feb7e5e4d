// SPDX-License-Identifier: GPL-3.0-or-later
//
// The window and its views in the large type of a dense screen.
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QStyleOptionComboBox>

#include "gui/frame/testwindow.h"
#include "gui/views/plottitle.h"
#include "gui/views/statisticsview.h"
#include "support/testmain.h"
#include "views/currentcalibrationstatsdialog.h"
#include "views/pointstatsdialog.h"
#include "views/polyregressiondialog.h"
#include "views/statinfo.h"
#include "views/statisticstable.h"

namespace
{

// Longest figure of six digits.
constexpr double LONGEST = -1.23456e-300;

// A list's field has its own place beside the arrow.
bool is_cut(const QComboBox *combo)
{
    QStyleOptionComboBox option;
    option.initFrom(combo);
    option.subControls = QStyle::SC_All;
    const QRect field = combo->style()->subControlRect(QStyle::CC_ComboBox, &option,
                                                       QStyle::SC_ComboBoxEditField, combo);
    const QFontMetrics metrics = combo->fontMetrics();
    return metrics.horizontalAdvance(combo->currentText()) > field.width() ||
           metrics.height() > field.height();
}

bool is_cut(const QWidget *widget)
{
    if (const auto *combo = qobject_cast<const QComboBox *>(widget))
        return is_cut(combo);
    const auto *label = qobject_cast<const QLabel *>(widget);
    const bool shows_text = label != nullptr ? !label->wordWrap() && !label->text().isEmpty()
                                             : qobject_cast<const QPushButton *>(widget) != nullptr;
    return shows_text && (widget->width() < widget->sizeHint().width() ||
                          widget->height() < widget->sizeHint().height());
}

// Names of the parts on show that are too small for their texts.
QStringList cut_parts(const QWidget &window)
{
    QStringList names;
    for (const QWidget *widget : window.findChildren<QWidget *>()) {
        if (widget->isVisible() && is_cut(widget))
            names += widget->objectName();
    }
    return names;
}

// Headings and cells that are narrower than their texts.
QStringList cut_cells(const QTableWidget *table)
{
    QStringList texts;
    const QFontMetrics metrics(table->font());
    for (int column = 0; column < table->columnCount(); ++column) {
        const int width = table->columnWidth(column);
        if (width < table->horizontalHeader()->sectionSizeHint(column))
            texts += table->horizontalHeaderItem(column)->text();
        for (int row = 0; row < table->rowCount(); ++row) {
            const QString text = table->item(row, column)->text();
            if (width < metrics.horizontalAdvance(text) + 6)
                texts += text;
        }
    }
    return texts;
}

} // namespace

class LargeType : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase() { m_it.reset(); }
    void type_is_large();
    void nothing_in_the_window_is_cut();
    void title_fits_and_the_canvas_stays_data() { title_rows(); }
    void title_fits_and_the_canvas_stays();
    void calibration_statistics_have_no_scroll_bar_across();
    void headings_of_the_calibration_statistics_are_whole();
    void point_statistics_are_whole();
    void point_statistics_on_a_wide_screen();
    void regression_is_whole();
    void columns_need_no_more_than_their_texts();
    void view_is_not_widened_past_the_screen();

private:
    std::unique_ptr<TestWindow> m_it;
};

void LargeType::initTestCase()
{
    m_it = std::make_unique<TestWindow>();
    m_it->bind_afresh(0);
    QVERIFY(QTest::qWaitForWindowExposed(m_it->window));
    for (POINT_STATISTICS &point : g_cfg->point_stats)
        point.eu_mean = point.mv_mean = point.mv_std = point.mv_min = point.mv_max = LONGEST;
}

void LargeType::type_is_large()
{
    QCOMPARE(m_it->window->logicalDpiY(), 144);
}

void LargeType::nothing_in_the_window_is_cut()
{
    for (const int channel : {0, 5}) {
        m_it->bind_afresh(channel);
        const QStringList cut = cut_parts(*m_it->window);
        QVERIFY2(cut.isEmpty(), qPrintable(cut.join(", ")));
    }
    m_it->bind_afresh(0);
}

void LargeType::title_fits_and_the_canvas_stays()
{
    check_title(m_it->form->dataPlot);
}

void LargeType::calibration_statistics_have_no_scroll_bar_across()
{
    CurrentCalibrationStatsDialog view(nullptr);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    const auto *area = part<QScrollArea>(&view, "scrollArea");
    QVERIFY(!area->horizontalScrollBar()->isVisible());
    view.resize(view.width(), 250); // with a scroll bar beside the rows
    QTRY_VERIFY(area->verticalScrollBar()->isVisible());
    QVERIFY(!area->horizontalScrollBar()->isVisible());
}

void LargeType::headings_of_the_calibration_statistics_are_whole()
{
    CurrentCalibrationStatsDialog view(nullptr);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QList<QLabel *> headings = view.findChildren<QLabel *>(QString(), Qt::FindDirectChildrenOnly);
    QCOMPARE(headings.size(), 9);
    for (const QLabel *heading : headings) {
        for (const QString &word : heading->text().split(' '))
            QVERIFY2(heading->fontMetrics().horizontalAdvance(word) <= heading->width(),
                     qPrintable(word));
    }
    const auto *row = view.findChild<StatInfo *>();
    const auto *cell = part<QLabel>(row, "lblPreviousToStriaghtLine");
    const auto *over = part<QLabel>(&view, "lblPreviousToSL");
    QCOMPARE(cell->mapTo(&view, QPoint()).x(), over->mapTo(&view, QPoint()).x());
    QCOMPARE(cell->width(), over->width());
}

void LargeType::point_statistics_are_whole()
{
    PointStatsDialog view(nullptr);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QCOMPARE(cut_cells(part<QTableWidget>(&view, "tblCalInfo")), QStringList());
}

void LargeType::point_statistics_on_a_wide_screen()
{
    PointStatsDialog view(nullptr);
    const auto *table = part<QTableWidget>(&view, "tblCalInfo");
    view.resize(width_of_columns(table) + 100, view.height());
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QVERIFY(!table->horizontalScrollBar()->isVisible());
    QCOMPARE(cut_cells(table), QStringList());
}

void LargeType::regression_is_whole()
{
    g_cfg->table.table_type = TABLE_POLY;
    PolyRegressionDialog view(nullptr);
    g_cfg->table.table_type = TABLE_INTERP;
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QCOMPARE(cut_cells(part<QTableWidget>(&view, "tblCalInfo")), QStringList());
    QCOMPARE(cut_parts(view), QStringList());
}

// So that neither view is widened for nothing, or keeps a scroll bar once it is.
void LargeType::columns_need_no_more_than_their_texts()
{
    for (const bool filled : {false, true}) {
        QTableWidget table(filled ? 1 : 0, 3);
        table.verticalHeader()->hide();
        table.horizontalHeader()->setStretchLastSection(true);
        table.setHorizontalHeaderLabels({"A", "B", "Heading"});
        for (int column = 0; filled && column < 3; ++column)
            table.setItem(0, column, new QTableWidgetItem("1234567890123"));
        table.resize(5000, 300);
        table.resizeColumnsToContents();
        keep_room_for(&table, QString());
        QCOMPARE(cut_cells(&table), QStringList());
        const int width = width_of_columns(&table);
        QVERIFY2(width < 900, qPrintable(QString::number(width)));
        table.resize(width, 300);
        table.show();
        QVERIFY(QTest::qWaitForWindowExposed(&table));
        QVERIFY(!table.horizontalScrollBar()->isVisible());
        QCOMPARE(cut_cells(&table), QStringList());
    }
}

void LargeType::view_is_not_widened_past_the_screen()
{
    const int most = QApplication::primaryScreen()->availableGeometry().width();
    QWidget view;
    view.resize(300, 200);
    widen(&view, 200);
    QCOMPARE(view.size(), QSize(300, 200));
    widen(&view, 400);
    QCOMPARE(view.size(), QSize(400, 200));
    widen(&view, most + 100);
    QCOMPARE(view.size(), QSize(most, 200));
}

static int run(int argc, char **argv)
{
    qputenv("QT_FONT_DPI", "144");
    QApplication application(argc, argv);
    LargeType test;
    return QTest::qExec(&test, argc, argv);
}
TEST_WITH_MAIN(run);

#include "test_largetype.moc"
