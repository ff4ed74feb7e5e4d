// SPDX-License-Identifier: GPL-3.0-or-later
//
// What the choice of another range of a table does to the record and the window,
// and what a new correlation leaves of the former calibration.
#include <qwt_abstract_legend.h>
#include <qwt_legend_label.h>

#include <QtTest>

#include "frame/tablelock.h"
#include "gui/frame/testwindow.h"
#include "gui/views/plotlook.h"
#include "support/testmain.h"

namespace
{

constexpr char REBUILD_PROGRAM[] = "/vornax/bin/bld_tables";
constexpr char REBUILD_STARTED[] = "/cell/started";

// Puts a script in the place of the host's rebuild and the link back at the end.
class RebuildWatch
{
public:
    RebuildWatch() : m_target(QFile::symLinkTarget(QLatin1String(REBUILD_PROGRAM)))
    {
        QFile::remove(QLatin1String(REBUILD_STARTED));
        QFile::remove(QLatin1String(REBUILD_PROGRAM));
        write_file(QLatin1String(REBUILD_PROGRAM), "#!/bin/sh\necho run >>/cell/started\n");
        QFile::setPermissions(QLatin1String(REBUILD_PROGRAM), QFile::ReadOwner | QFile::ExeOwner);
    }
    ~RebuildWatch()
    {
        QFile::remove(QLatin1String(REBUILD_PROGRAM));
        QFile::link(m_target, QLatin1String(REBUILD_PROGRAM));
    }
    RebuildWatch(const RebuildWatch &) = delete;
    RebuildWatch &operator=(const RebuildWatch &) = delete;

    int starts() const { return read_file(QLatin1String(REBUILD_STARTED)).count("run"); }
    bool was_a_link() const { return !m_target.isEmpty(); }

private:
    QString m_target;
};

} // namespace

class RangeRecompute : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void points_of_the_range_become_both_tables();
    void earlier_work_is_forgotten();
    void statistics_of_the_first_two_points_start_anew();
    void limits_and_axes_start_anew();
    void window_follows_the_range();
    void coefficients_of_the_range_are_shown();
    void coefficients_are_hidden_for_interp();
    void polynomial_stands_in_the_legend();
    void new_correlation_keeps_the_former_calibration();

private:
    void bind_range_two();
    void choose_range_five();
    QStringList legend_titles() const;

    std::unique_ptr<TestWindow> m_it;
};

// Binding may put range 0 in work, since the slot of the type's combo runs
// meanwhile; range 2 is then chosen as a person does.
void RangeRecompute::bind_range_two()
{
    m_it->bind_afresh(5);
    {
        const QSignalBlocker blocker(m_it->form->cboPolyRangeIndex);
        m_it->form->cboPolyRangeIndex->setCurrentIndex(0);
    }
    m_it->form->cboPolyRangeIndex->setCurrentIndex(2);
    QVERIFY(m_it->ticks(2));
    QCOMPARE(g_cfg->table.poly_range_index, int16_t(2));
    QCOMPARE(g_cfg->long_current.num_points, int16_t(3));
    QCOMPARE(g_num_points, int16_t(3));
}

void RangeRecompute::choose_range_five()
{
    m_it->form->cboPolyRangeIndex->setCurrentIndex(5);
}

QStringList RangeRecompute::legend_titles() const
{
    QApplication::sendPostedEvents();
    QStringList titles;
    for (const QwtLegendLabel *label :
         m_it->form->dataPlot->legend()->findChildren<QwtLegendLabel *>()) {
        if (!label->isHidden())
            titles += label->text().text();
    }
    titles.sort();
    return titles;
}

void RangeRecompute::points_of_the_range_become_both_tables()
{
    bind_range_two();
    TableLock hold(m_it->window->table_mutex());
    for (int i = 4; i < MAX_POINTS; ++i)
        g_cfg->long_current.x[i] = g_cfg->long_current.y[i] = 7777.0;
    std::memset(static_cast<void *>(&g_cfg->long_previous), 0x5a, sizeof g_cfg->long_previous);
    choose_range_five();
    QCOMPARE(g_cfg->table.poly_range_index, int16_t(5));
    const LONG_TABLE &current = g_cfg->long_current;
    QCOMPARE(current.num_points, int16_t(4));
    for (int i = 0; i < MAX_POINTS; ++i) {
        QCOMPARE(current.x[i], i < 4 ? 2000.0 + 1000.0 * i : 0.0);
        QCOMPARE(current.y[i], i < 4 ? 40.0 + 20.0 * i : 0.0);
    }
    QCOMPARE(std::memcmp(&g_cfg->long_previous, &current, sizeof(LONG_TABLE)), 0);
    // Both are drawn so.
    for (const PLOT_CURVE *curve : {&g_cfg->plot_previous, &g_cfg->plot_current}) {
        QCOMPARE(curve->pairs[0].x, 2000.0);
        QCOMPARE(curve->pairs[63].x, 5000.0);
        QCOMPARE(curve->pairs[63].y, 100.0);
    }
}

void RangeRecompute::earlier_work_is_forgotten()
{
    bind_range_two();
    TableLock hold(m_it->window->table_mutex());
    g_cfg->table_dirty = 1;
    g_captured_points = 3;
    g_cfg->table.worst_status = 2;
    QLineEdit *const boxes[] = {m_it->form->txtAsFound, m_it->form->txtAfterService,
                                m_it->form->txtAdjustCalibration, m_it->form->txtVerificationData,
                                m_it->form->txtNewCorrelation};
    for (QLineEdit *box : boxes)
        box->setText(QStringLiteral("01/02/2024 03:04:05"));
    m_it->form->lblNextStep->setText(QStringLiteral("advice of the range before"));
    m_it->form->lblNextStep->setStyleSheet(QStringLiteral("background-color: red"));
    relaxed_store(g_monitor_run, static_cast<uint16_t>(0));
    choose_range_five();
    QCOMPARE(g_cfg->table_dirty, uint16_t(0));
    QCOMPARE(g_captured_points, 0);
    QCOMPARE(g_cfg->table.worst_status, uint16_t(0));
    QCOMPARE(g_num_points, int16_t(4));
    QCOMPARE(relaxed_load(g_monitor_run), uint16_t(1)); // a new pass
    for (const QLineEdit *box : boxes)
        QCOMPARE(box->text(), QString());
    QCOMPARE(m_it->form->lblNextStep->text(), QString());
    QCOMPARE(m_it->form->lblNextStep->styleSheet(),
             QStringLiteral("background-color: rgb(255,252,239)"));
}

void RangeRecompute::statistics_of_the_first_two_points_start_anew()
{
    bind_range_two();
    TableLock hold(m_it->window->table_mutex());
    for (int i = 0; i < 3; ++i) {
        POINT_STATISTICS &point = g_cfg->point_stats[i];
        for (double *value : {&point.mv_at_capture, &point.mv_mean, &point.eu_reference,
                              &point.eu_mean, &point.eu_std, &point.eu_min, &point.eu_max})
            *value = 12.5;
    }
    const POINT_STATISTICS third = g_cfg->point_stats[2];
    choose_range_five();
    for (int i = 0; i < 2; ++i) {
        const POINT_STATISTICS &point = g_cfg->point_stats[i];
        QCOMPARE(point.mv_at_capture, -999.0);
        QCOMPARE(point.eu_mean, -999.0);
        QCOMPARE(point.eu_std, -999.0);
        QCOMPARE(point.eu_max, -999.0);
        QCOMPARE(point.eu_min, 999.0);
        QCOMPARE(point.mv_mean, 12.5); // no start value of its own
        QCOMPARE(point.eu_reference, 12.5);
    }
    QCOMPARE(std::memcmp(&g_cfg->point_stats[2], &third, sizeof third), 0);
}

void RangeRecompute::limits_and_axes_start_anew()
{
    bind_range_two();
    TableLock hold(m_it->window->table_mutex());
    double *const limits[] = {&g_cfg->table.ooa_tol, &g_cfg->table.oot_tol, &g_cfg->table.soot_tol};
    const double bound[] = {*limits[0], *limits[1], *limits[2]};
    for (double *limit : limits)
        *limit = 4321.0;
    for (AXIS_RANGE *axis : {&g_cfg->x_axis_range, &g_cfg->y_axis_range}) {
        axis->min = -1e9;
        axis->max = 1e9;
    }
    choose_range_five();
    for (int i = 0; i < 3; ++i) {
        QVERIFY(bound[i] != 4321.0);
        QCOMPARE(*limits[i], bound[i]);
    }
    QVERIFY(g_cfg->x_axis_range.max >= 5000.0 && g_cfg->x_axis_range.max < 1e5);
    QVERIFY(g_cfg->x_axis_range.min > -1e5);
    QVERIFY(g_cfg->y_axis_range.max >= 100.0 && g_cfg->y_axis_range.max < 1e5);
    QVERIFY(g_cfg->y_axis_range.min > -1e5);
    QCOMPARE(g_cfg->x_axis_range.changed, uint16_t(0)); // worked off by the plot
    QCOMPARE(g_cfg->y_axis_range.changed, uint16_t(0));
    QCOMPARE(g_cfg->redraw_all, uint16_t(0));
}

void RangeRecompute::window_follows_the_range()
{
    bind_range_two();
    QCOMPARE(m_it->rows_shown(), 3);
    TableLock hold(m_it->window->table_mutex());
    m_it->form->txtNumPoints->setText(QStringLiteral("9"));
    m_it->window->row(1)->value_field()->setText(QStringLiteral("junk"));
    choose_range_five();
    QCOMPARE(m_it->form->txtNumPoints->text(), QStringLiteral("4"));
    QCOMPARE(m_it->rows_shown(), 4);
    for (int i = 0; i < 4; ++i) {
        QCOMPARE(m_it->window->row(i)->value_field()->text(),
                 QString::asprintf("%8.4f", 40.0 + 20.0 * i));
        QCOMPARE(m_it->window->row(i)->mv_label()->text(),
                 QString::asprintf("%8.4f", 2000.0 + 1000.0 * i));
    }
    QCOMPARE(m_it->form->cboCalType->currentText(), QStringLiteral("POLY_RANGE"));
    QCOMPARE(m_it->form->cboOrderOfPolynomial->currentText(), QStringLiteral("3"));
    QCOMPARE(g_poly_order_text, QStringLiteral("3"));
}

void RangeRecompute::coefficients_of_the_range_are_shown()
{
    bind_range_two();
    TableLock hold(m_it->window->table_mutex());
    choose_range_five();
    const POLY_RANGE_RECORD &range = g_cfg->table.poly[5];
    QCOMPARE(range.num_coeffs, int16_t(4)); // the last degree on offer
    QVERIFY(!m_it->form->coeffFrame->isHidden());
    for (int i = 0; i < 8; ++i) {
        const auto *name = m_it->window->findChild<QLabel *>(QStringLiteral("lblCoeff%1").arg(i));
        const auto *value =
            m_it->window->findChild<QLabel *>(QStringLiteral("lblCoeff%1Value").arg(i));
        QCOMPARE(name->isHidden(), i >= 4);
        QCOMPARE(value->isHidden(), i >= 4);
        if (i < 4)
            QCOMPARE(value->text(), QString::number(range.coeffs[i], 'g', 6));
    }
    QCOMPARE(m_it->form->lblCoeff1Value->text(), QStringLiteral("0.02"));
}

void RangeRecompute::coefficients_are_hidden_for_interp()
{
    bind_range_two();
    QVERIFY(!m_it->form->lblCoeff0->isHidden());
    m_it->bind_afresh(0);
    QVERIFY(m_it->ticks(2));
    QVERIFY(m_it->form->coeffFrame->isHidden());
    for (int i = 0; i < 8; ++i) {
        for (const char *name : {"lblCoeff%1", "lblCoeff%1Value"})
            QVERIFY(
                m_it->window->findChild<QLabel *>(QString::fromLatin1(name).arg(i))->isHidden());
    }
}

void RangeRecompute::polynomial_stands_in_the_legend()
{
    m_it->bind_afresh(0);
    QVERIFY(m_it->ticks(2));
    QVERIFY(legend_titles().contains(QStringLiteral("BestFit")));
    QVERIFY(!legend_titles().contains(QStringLiteral("Polynomial")));
    bind_range_two();
    const QStringList titles{"Captured", "Current Point", "Polynomial", "Previous"};
    QCOMPARE(legend_titles(), titles);
    choose_range_five();
    QCOMPARE(legend_titles(), titles);
    QVERIFY(!curves_on_show(m_it->form->dataPlot).contains(QStringLiteral("BestFit")));
}

void RangeRecompute::new_correlation_keeps_the_former_calibration()
{
    m_it->bind_afresh(0);
    QVERIFY(m_it->ticks(2));
    const RebuildWatch rebuild;
    QVERIFY(rebuild.was_a_link());
    BoxAnswerer answerer;
    QVERIFY(m_it->capture(1, 1260.0, 25.0));
    QCOMPARE(g_cfg->long_current.x[1], 1260.0);
    auto former = std::make_unique<LONG_TABLE>();
    std::memcpy(static_cast<void *>(former.get()), &g_cfg->long_previous, sizeof *former);
    QCOMPARE(former->x[1], 1250.0);
    const QByteArray table = read_file(TestWindow::table_path("zero", ".tbl"));
    m_it->window->record_new_correlation();
    QVERIFY(!m_it->form->txtNewCorrelation->text().isEmpty());
    QVERIFY(read_file(TestWindow::table_path("zero", ".tbl")) != table);
    QVERIFY(m_it->ticks(5));
    QCOMPARE(std::memcmp(&g_cfg->long_previous, former.get(), sizeof *former), 0);
    QCOMPARE(g_cfg->long_current.x[1], 1260.0);
    QCOMPARE(rebuild.starts(), 0);
    QCOMPARE(answerer.met().size(), 0);
    // The same watch sees a rebuild, which makes the new table the former one.
    rebuild_tables(g_cfg);
    QTRY_COMPARE_WITH_TIMEOUT(rebuild.starts(), 1, DEADLINE_MS);
    QCOMPARE(g_cfg->long_previous.x[1], 1260.0);
}

WINDOW_TEST(RangeRecompute);
#include "test_rangerecompute.moc"
