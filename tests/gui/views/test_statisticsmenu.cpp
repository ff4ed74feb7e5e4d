// SPDX-License-Identifier: GPL-3.0-or-later
//
// The statistics menu: what its entries open over a captured channel, and that
// the views leave everything as it is.
#include <cmath>
#include <thread>

#include "gui/frame/testwindow.h"
#include "gui/views/statisticsview.h"
#include "support/testmain.h"
#include "views/currentcalibrationstatsdialog.h"
#include "views/pointstatsdialog.h"
#include "views/polyregressiondialog.h"
#include "views/statinfo.h"

namespace
{

struct View {
    const char *slot;
    const char *title;
    const char *class_name;
};

constexpr View VIEWS[] = {
    {"on_actionStatistics_Chart_triggered", "Current Calibration Statistics",
     "CurrentCalibrationStatsDialog"},
    {"on_actionPoint_Statistics_triggered", "Calibration Point Statistics", "PointStatsDialog"},
    {"on_actionCal_Statistics_Chart_triggered", "Polynomial Regression Information",
     "PolyRegressionDialog"},
};

void view_rows()
{
    QTest::addColumn<int>("number");
    for (int i = 0; i < 3; ++i)
        QTest::newRow(VIEWS[i].title) << i;
}

} // namespace

class StatisticsMenu : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void entries_open_their_views_data();
    void entries_open_their_views();
    void calibration_statistics_of_captured_points();
    void point_statistics_of_captured_points();
    void polynomial_regression_of_captured_points();
    void nothing_changes_data() { view_rows(); }
    void nothing_changes();
    void views_take_no_lock_data() { view_rows(); }
    void views_take_no_lock();
    void opened_before_any_channel_is_bound();

private:
    // Binds the channel and captures all its points at the millivolts given,
    // each with the value given.
    void capture_all(int channel, const QVector<QPointF> &points);
    // Opens the view by its slot and hands it over; Ok closes it.
    void open(const char *slot, const QString &title, const BoxAnswerer::Visit &look);

    std::unique_ptr<TestWindow> m_it;
};

void StatisticsMenu::capture_all(int channel, const QVector<QPointF> &points)
{
    m_it->bind_afresh(channel);
    for (int i = 0; i < points.size(); ++i)
        QVERIFY(m_it->capture(i, points[i].x(), points[i].y()));
    QVERIFY(m_it->form->menuStatistics->isEnabled());
}

void StatisticsMenu::open(const char *slot, const QString &title, const BoxAnswerer::Visit &look)
{
    BoxAnswerer answerer;
    answerer.expect_dialog(title, [&](QDialog *view) {
        look(view);
        auto *buttons = view->findChild<QDialogButtonBox *>(QStringLiteral("buttonBox"));
        QTest::mouseClick(buttons->button(QDialogButtonBox::Ok), Qt::LeftButton);
        QVERIFY(!view->isVisible());
    });
    QVERIFY(QMetaObject::invokeMethod(m_it->window, slot));
    QCOMPARE(answerer.remaining(), 0);
}

void StatisticsMenu::entries_open_their_views_data()
{
    const auto row = test_columns<QString, int>("action", "number");
    row("Statistics Chart ...", "actionStatistics_Chart", 0);
    row("Point Statistics", "actionPoint_Statistics", 1);
    row("Polynomial Regression Info", "actionCal_Statistics_Chart", 2);
}

void StatisticsMenu::entries_open_their_views()
{
    QFETCH(QString, action);
    QFETCH(int, number);
    auto *entry = m_it->window->findChild<QAction *>(action);
    const bool enabled = entry->isEnabled();
    entry->setEnabled(true); // the first one never is
    bool modal = false;
    QString class_name;
    BoxAnswerer answerer;
    answerer.expect_dialog(VIEWS[number].title, [&](QDialog *view) {
        modal = view->isModal();
        class_name = QString::fromLatin1(view->metaObject()->className());
        QCOMPARE(view->parentWidget(), static_cast<QWidget *>(m_it->window));
    });
    entry->trigger();
    entry->setEnabled(enabled);
    QCOMPARE(answerer.remaining(), 0);
    QVERIFY(modal);
    QCOMPARE(class_name, QString::fromLatin1(VIEWS[number].class_name));
    QVERIFY(m_it->window->findChildren<QDialog *>().isEmpty()); // none is kept
}

// The table reads 0.02 kPa a millivolt.
void StatisticsMenu::calibration_statistics_of_captured_points()
{
    capture_all(1, {{50., 0.}, {2500., 51.}, {5000., 102.}});
    QVERIFY(m_it->ticks(2)); // the straight line follows
    open(VIEWS[0].slot, VIEWS[0].title, [](QDialog *view) {
        const auto rows = view->findChildren<StatInfo *>();
        QCOMPARE(rows.size(), 3);
        QCOMPARE(label_text(rows[0], "lblCurrentToPrevious"), QString("    1.00"));
        QCOMPARE(label_text(rows[1], "lblCurrentCalibration"), QString("   51.00"));
        QCOMPARE(label_text(rows[1], "lblPreviousCalibration"), QString("   50.00"));
        QCOMPARE(label_text(rows[1], "lblCurrentToPrevious"), QString("    1.00"));
        QCOMPARE(label_text(rows[2], "lblCurrentToPrevious"), QString("    2.00"));
    });
}

void StatisticsMenu::point_statistics_of_captured_points()
{
    capture_all(1, {{10., 0.}, {2510., 50.}, {4990., 100.}});
    const double mean = g_cfg->point_stats[1].eu_mean;
    QVERIFY(mean != 50.);
    open(VIEWS[1].slot, VIEWS[1].title, [mean](QDialog *view) {
        const auto *table = part<QTableWidget>(view, "tblCalInfo");
        QCOMPARE(table->rowCount(), 3);
        QCOMPARE(table_row(table, 1),
                 (QStringList{"2", QString::number(mean, 'g', 6), "2510", "0", "2510", "2510"}));
    });
}

// Channel 4 is a POLY table on 0.01 x + 0.000001 x^2.
void StatisticsMenu::polynomial_regression_of_captured_points()
{
    capture_all(4,
                {{10., 0.}, {1000., 11.}, {2000., 24.}, {3000., 39.}, {4000., 56.}, {5000., 75.}});
    QVERIFY(m_it->form->actionCal_Statistics_Chart->isEnabled());
    QVERIFY(m_it->ticks(2)); // the polynomial follows
    QStringList estimates;
    for (int opened = 0; opened < 2; ++opened) {
        open(VIEWS[2].slot, VIEWS[2].title, [&estimates](QDialog *view) {
            const auto *table = part<QTableWidget>(view, "tblCalInfo");
            QCOMPARE(table->rowCount(), 6);
            QCOMPARE(table->item(2, 1)->text(), QString("2000.000"));
            QVERIFY(part<QLabel>(view, "lblCoeff2Value")->isVisible());
            QVERIFY(!part<QLabel>(view, "lblCoeff3Value")->isVisible());
            estimates += label_text(view, "lblSEEValue");
        });
    }
    QCOMPARE(estimates.size(), 2);
    QVERIFY(estimates[0].toDouble() > 0.);
    QVERIFY(qAbs(estimates[1].toDouble() / estimates[0].toDouble() - std::sqrt(2.)) < 1e-4);
}

void StatisticsMenu::nothing_changes()
{
    QFETCH(int, number);
    capture_all(1, {{10., 0.}, {2500., 50.}, {5000., 100.}});
    m_it->window->table_mutex()->lock(); // no pass meanwhile
    QApplication::processEvents();
    const ZERL_CFG kept = *g_cfg;
    open(VIEWS[number].slot, VIEWS[number].title, [](QDialog *) {});
    const bool same = std::memcmp(&kept, g_cfg, sizeof kept) == 0;
    m_it->window->table_mutex()->unlock();
    QVERIFY(same);
    QCOMPARE(g_captured_points, 3);
}

void StatisticsMenu::views_take_no_lock()
{
    QFETCH(int, number);
    bool sampled = false;
    open(VIEWS[number].slot, VIEWS[number].title, [&](QDialog *) {
        std::thread other([&] {
            sampled = m_it->window->table_mutex()->tryLock(DEADLINE_MS);
            if (sampled)
                m_it->window->table_mutex()->unlock();
        });
        other.join();
    });
    QVERIFY(sampled);
}

void StatisticsMenu::opened_before_any_channel_is_bound()
{
    const int16_t count = g_cfg->long_current.num_points;
    g_cfg->long_current.num_points = 0; // as before the first binding
    for (const View &view : VIEWS)
        open(view.slot, view.title, [](QDialog *dialog) { QVERIFY(dialog->isVisible()); });
    g_cfg->long_current.num_points = count;
}

WINDOW_TEST(StatisticsMenu);
#include "test_statisticsmenu.moc"
