// SPDX-License-Identifier: GPL-3.0-or-later
//
// When the polynomial is fitted anew, what it is drawn over, and which bytes of
// the table in work count as a change.
#include <cmath>

#include <QtTest>

#include "calibration/linefit.h"
#include "gui/frame/testwindow.h"
#include "gui/views/plotlook.h"
#include "host/operations.h"
#include "support/testmain.h"

namespace
{

// No least-squares fit of the points of channel 4.
constexpr double STORED[] = {1.5, 0.02, 3e-6};
constexpr double SCRIBBLE = -12345.0;

} // namespace

class PlotPoly : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void cleanup();
    void stored_coefficients_survive_the_binding();
    void redraw_fits_the_stored_coefficients_anew();
    void capture_fits_the_stored_coefficients_anew();
    void change_of_type_holds_the_fit_off_once();
    void drawn_from_the_first_x_to_the_last_as_they_stand();
    void bytes_that_count_as_a_change_data();
    void bytes_that_count_as_a_change();

private:
    void bind_stored();
    void hold();
    bool holds_stored() const;

    std::unique_ptr<TestWindow> m_it;
    bool m_held = false;
};

void PlotPoly::cleanup()
{
    if (m_held)
        m_it->window->table_mutex()->unlock();
    m_held = false;
}

// From here on updates come from the test alone.
void PlotPoly::hold()
{
    m_it->window->table_mutex()->lock();
    m_held = true;
    QApplication::processEvents(); // the ticks that were on their way
}

void PlotPoly::bind_stored()
{
    m_it->forget_work();
    m_it->restore_tables();
    {
        const QSignalBlocker blocker(m_it->form->cboCurrentChannel);
        m_it->form->cboCurrentChannel->setCurrentIndex(0);
    }
    const QByteArray path = TestWindow::table_path("four", ".tbl").toLocal8Bit();
    auto table = std::make_unique<TABLE_RECORD>();
    QCOMPARE(read_table(path.constData(), table.get()) & 0xffff, 0);
    table->table_type = TABLE_POLY;
    table->poly_range_index = 0;
    table->poly[0].num_coeffs = 3;
    std::memcpy(table->poly[0].coeffs, STORED, sizeof STORED);
    QCOMPARE(create_table(path.constData(), table.get()), 0);
    // One record alone is what binding reads without a question.
    QFile::remove(TestWindow::table_path("four", ".save"));
    m_it->pick(4);
    QVERIFY(m_it->ticks(3));
    QCOMPARE(g_cfg->table.table_type, uint16_t(TABLE_POLY));
    QCOMPARE(m_it->form->cboOrderOfPolynomial->currentText(), QStringLiteral("2"));
}

bool PlotPoly::holds_stored() const
{
    return g_cfg->table.poly[0].num_coeffs == 3 &&
           std::memcmp(g_cfg->table.poly[0].coeffs, STORED, sizeof STORED) == 0;
}

void PlotPoly::stored_coefficients_survive_the_binding()
{
    bind_stored();
    QVERIFY(m_it->reading(1500.0));
    QVERIFY(m_it->ticks(3));
    QVERIFY(holds_stored());
    QCOMPARE(g_cal_type_changed, int16_t(0)); // used up by the first update
    QCOMPARE(m_it->form->lblCoeff0Value->text(), QStringLiteral("1.5"));
    QCOMPARE(m_it->form->lblCoeff2Value->text(), QStringLiteral("3e-06"));
    const QVector<QPointF> samples = samples_of(m_it->window->curve(CURVE_POLYNOMIAL));
    QCOMPARE(samples.first().y(), 1.5);
    QVERIFY(std::fabs(samples.last().y() - (1.5 + 100.0 + 75.0)) < 1e-9);
}

void PlotPoly::redraw_fits_the_stored_coefficients_anew()
{
    bind_stored();
    hold();
    QVERIFY(holds_stored());
    QCOMPARE(g_cal_type_changed, int16_t(0));
    m_it->window->update_plot(g_cfg);
    QVERIFY(holds_stored()); // nothing has changed
    g_cfg->redraw_all = 1;
    m_it->window->update_plot(g_cfg);
    const POLY_RANGE_RECORD &range = g_cfg->table.poly[0];
    QCOMPARE(range.num_coeffs, int16_t(3));
    QVERIFY(std::fabs(range.coeffs[0]) < 1e-9);
    QVERIFY(std::fabs(range.coeffs[1] - 0.01) < 1e-12);
    QVERIFY(std::fabs(range.coeffs[2] - 1e-6) < 1e-15);
}

void PlotPoly::capture_fits_the_stored_coefficients_anew()
{
    bind_stored();
    QVERIFY(holds_stored());
    BoxAnswerer answerer;
    QVERIFY(m_it->capture(1, 1100.0, 0.01 * 1100.0 + 1e-6 * 1100.0 * 1100.0));
    QCOMPARE(g_cfg->long_current.x[1], 1100.0);
    QVERIFY(m_it->ticks(2));
    const POLY_RANGE_RECORD &range = g_cfg->table.poly[0];
    QCOMPARE(range.num_coeffs, int16_t(3));
    QVERIFY(std::fabs(range.coeffs[0]) < 1e-9);
    QVERIFY(std::fabs(range.coeffs[1] - 0.01) < 1e-12);
    QVERIFY(std::fabs(range.coeffs[2] - 1e-6) < 1e-15);
    QCOMPARE(answerer.met().size(), 0);
}

void PlotPoly::change_of_type_holds_the_fit_off_once()
{
    bind_stored();
    hold();
    g_cal_type_changed = 1;
    g_cfg->redraw_all = 1;
    m_it->window->update_plot(g_cfg);
    QVERIFY(holds_stored());
    QCOMPARE(g_cal_type_changed, int16_t(0));
    g_cfg->redraw_all = 1;
    m_it->window->update_plot(g_cfg);
    QVERIFY(!holds_stored());
}

void PlotPoly::drawn_from_the_first_x_to_the_last_as_they_stand()
{
    m_it->bind_afresh(4);
    QVERIFY(m_it->ticks(2));
    hold();
    g_cfg->table.poly[0].x[0] = g_cfg->long_current.x[0] = 1500.0; // above its neighbour
    g_cfg->table.poly[0].x[5] = g_cfg->long_current.x[5] = 3500.0; // below its neighbour
    g_cfg->redraw_all = 1;
    m_it->window->update_plot(g_cfg);
    QCOMPARE(g_cfg->plot_poly.count, uint16_t(101));
    QCOMPARE(g_cfg->plot_poly.pairs[0].x, 1500.0);
    QCOMPARE(g_cfg->plot_poly.pairs[100].x, 3500.0);
    for (const QPointF &sample : samples_of(m_it->window->curve(CURVE_POLYNOMIAL)))
        QVERIFY(sample.x() >= 1500.0 && sample.x() <= 3500.0 + 1e-9);
}

void PlotPoly::bytes_that_count_as_a_change_data()
{
    test_columns<int, bool>("offset", "counts");
    const auto row = [](const char *name, size_t offset, bool counts) {
        QTest::newRow(name) << static_cast<int>(offset) << counts;
    };
    row("x of the first point", offsetof(LONG_TABLE, x), true);
    row("x of an unused point", offsetof(LONG_TABLE, x) + 63 * sizeof(double), true);
    row("y of an unused point", offsetof(LONG_TABLE, y) + 63 * sizeof(double), true);
    row("slope of the first point", offsetof(LONG_TABLE, slope), true);
    row("between slope and intercept", offsetof(LONG_TABLE, reserved_1536), true);
    row("intercept of the first point", offsetof(LONG_TABLE, intercept), true);
    row("number of points", offsetof(LONG_TABLE, num_points), true);
    row("last compared byte", 2567, true);
    row("first byte that is not compared", 2568, false);
    row("before the flags", offsetof(LONG_TABLE, flags) - 1, false);
    row("flags", offsetof(LONG_TABLE, flags), false);
    row("behind the flags", offsetof(LONG_TABLE, reserved_7184), false);
    row("last byte of all", sizeof(LONG_TABLE) - 1, false);
}

void PlotPoly::bytes_that_count_as_a_change()
{
    QFETCH(int, offset);
    QFETCH(bool, counts);
    m_it->bind_afresh(4);
    QVERIFY(m_it->ticks(2));
    hold();
    m_it->window->update_plot(g_cfg);
    QCOMPARE(g_cfg->redraw_all, uint16_t(0));
    double *const drawn[] = {&g_cfg->plot_current.pairs[0].y, &g_cfg->plot_fit.pairs[0].y,
                             &g_cfg->plot_poly.pairs[0].y, &g_cfg->long_fit.y[0]};
    for (double *value : drawn)
        *value = SCRIBBLE;
    m_it->form->lblCoeff1Value->setText(QStringLiteral("scribble"));
    m_it->window->update_plot(g_cfg);
    for (const double *value : drawn)
        QCOMPARE(*value, SCRIBBLE); // a steady table
    auto *const bytes = reinterpret_cast<uint8_t *>(&g_cfg->long_current);
    bytes[offset] = static_cast<uint8_t>(bytes[offset] ^ 1U);
    m_it->window->update_plot(g_cfg);
    for (const double *value : drawn)
        QCOMPARE(*value != SCRIBBLE, counts);
    QCOMPARE(m_it->form->lblCoeff1Value->text() != QStringLiteral("scribble"), counts);
    bytes[offset] = static_cast<uint8_t>(bytes[offset] ^ 1U);
    m_it->window->update_plot(g_cfg);
}

WINDOW_TEST(PlotPoly);
#include "test_plotpoly.moc"
