// SPDX-License-Identifier: GPL-3.0-or-later
//
// How the calibration plot looks once it is set up: curves, symbols, legend,
// axes and canvas, with and without lines.
#include <cmath>
#include <limits>

#include <qwt_legend.h>
#include <qwt_legend_label.h>
#include <qwt_plot_layout.h>
#include <qwt_scale_div.h>
#include <qwt_symbol.h>

#include <QtTest>

#include "gui/frame/testwindow.h"
#include "gui/views/plotlook.h"
#include "gui/views/plottitle.h"
#include "support/testmain.h"
#include "views/fittedtext.h"

class PlotLook : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { m_it = std::make_unique<TestWindow>(); }
    void cleanupTestCase() { m_it.reset(); }
    void curves_data();
    void curves();
    void symbols_data();
    void symbols();
    void all_attached_in_the_order_of_creation();
    void legend();
    void canvas_and_axes();
    void first_binding_shows_the_best_fit();
    void interp_draws_the_current_point_on_top();
    void interp_to_poly_changes_legend_and_lines();
    void poly_to_interp_brings_the_lines_back();
    void title_of_the_left_axis_is_the_unit();
    void units_of_the_left_axis_are_plain_text();
    void title_fits_and_the_canvas_stays_data() { title_rows(); }
    void title_fits_and_the_canvas_stays();
    void title_is_in_its_own_type_where_that_fits();
    void samples_that_are_no_numbers_leave_the_axes_alone_data();
    void samples_that_are_no_numbers_leave_the_axes_alone();

private:
    QwtPlot *plot() const { return m_it->form->dataPlot; }
    QStringList legend_titles() const;

    std::unique_ptr<TestWindow> m_it;
};

QStringList PlotLook::legend_titles() const
{
    QApplication::sendPostedEvents();
    QStringList titles;
    for (const QwtLegendLabel *label : plot()->legend()->findChildren<QwtLegendLabel *>()) {
        if (!label->isHidden())
            titles += label->text().text();
    }
    titles.sort();
    return titles;
}

void PlotLook::curves_data()
{
    const auto row = test_columns<QString, QColor, int>("title", "colour", "line");
    row("captured: red, solid", "Captured", QColor(Qt::red), int(Qt::SolidLine));
    row("previous: blue, dash", "Previous", QColor(Qt::blue), int(Qt::DashLine));
    row("best fit: green, dash-dot-dot", "BestFit", QColor(Qt::green), int(Qt::DashDotDotLine));
    row("current point: black, no line", "Current Point", QColor(Qt::black), int(Qt::NoPen));
    row("polynomial: dark grey, dash-dot", "Polynomial", QColor(Qt::darkGray),
        int(Qt::DashDotLine));
    QCOMPARE(int(CURVE_COUNT), 5);
}

// The rows stand in the order of creation.
void PlotLook::curves()
{
    QFETCH(QString, title);
    const QwtPlotCurve *found = nullptr;
    for (int i = 0; i < CURVE_COUNT; ++i) {
        if (m_it->window->curve(i)->title().text() == title)
            found = m_it->window->curve(i);
    }
    QVERIFY(found != nullptr);
    QTEST(found->pen().color(), "colour");
    QTEST(int(found->pen().style()), "line");
    QVERIFY(found->testRenderHint(QwtPlotItem::RenderAntialiased));
    QVERIFY(found->testLegendAttribute(QwtPlotCurve::LegendShowSymbol));
    QCOMPARE(found->plot(), plot());
}

void PlotLook::symbols_data()
{
    const auto row = test_columns<int, int, int>("curve", "shape", "size");
    row("Captured", int(CURVE_CAPTURED), int(QwtSymbol::Ellipse), 10);
    row("Previous", int(CURVE_PREVIOUS), int(QwtSymbol::Diamond), 10);
    row("BestFit", int(CURVE_BEST_FIT), int(QwtSymbol::Diamond), 10);
    row("Current Point", int(CURVE_CURRENT_POINT), int(QwtSymbol::Diamond), 10);
    row("Polynomial", int(CURVE_POLYNOMIAL), int(QwtSymbol::Cross), 6);
}

void PlotLook::symbols()
{
    QFETCH(int, curve);
    QFETCH(int, size);
    const QwtPlotCurve *found = m_it->window->curve(curve);
    const QwtSymbol *symbol = found->symbol();
    QVERIFY(symbol != nullptr);
    QTEST(int(symbol->style()), "shape");
    QCOMPARE(symbol->size(), QSize(size, size));
    QCOMPARE(symbol->brush().color(), found->pen().color());
    QCOMPARE(symbol->brush().style(), Qt::SolidPattern);
    QCOMPARE(symbol->pen().color(), found->pen().color());
    QCOMPARE(symbol->pen().style(), found->pen().style());
    QCOMPARE(symbol->pen().width(), 0);
    QCOMPARE(symbol->pen().capStyle(), Qt::SquareCap);
    QCOMPARE(symbol->pen().joinStyle(), Qt::BevelJoin);
}

void PlotLook::all_attached_in_the_order_of_creation()
{
    QCOMPARE(curves_on_show(plot()),
             (QStringList{"Captured", "Previous", "BestFit", "Current Point", "Polynomial"}));
}

void PlotLook::legend()
{
    const auto *legend = qobject_cast<QwtLegend *>(plot()->legend());
    QVERIFY(legend != nullptr);
    QCOMPARE(legend->frameStyle() & QFrame::Shape_Mask, int(QFrame::Box));
    QCOMPARE(plot()->plotLayout()->legendPosition(), QwtPlot::BottomLegend);
    QCOMPARE(legend_titles(),
             (QStringList{"BestFit", "Captured", "Current Point", "Polynomial", "Previous"}));
}

void PlotLook::canvas_and_axes()
{
    QCOMPARE(plot()->canvasBackground().color(), QColor(Qt::white));
    QCOMPARE(plot()->axisTitle(QwtPlot::xBottom).text(), QStringLiteral("Millivolts (mv)"));
    QCOMPARE(plot()->axisTitle(QwtPlot::yLeft).text(), QString());
    QCOMPARE(plot()->title().text(), QString());
}

void PlotLook::first_binding_shows_the_best_fit()
{
    m_it->pick(0);
    QVERIFY(m_it->reading(2500.0));
    QTRY_COMPARE_WITH_TIMEOUT(plot()->title().text(),
                              QStringLiteral("Current Point: 2500.0000 / 50.0000"), DEADLINE_MS);
    QCOMPARE(legend_titles(), (QStringList{"BestFit", "Captured", "Current Point", "Previous"}));
}

void PlotLook::interp_draws_the_current_point_on_top()
{
    QCOMPARE(curves_on_show(plot()),
             (QStringList{"Captured", "Previous", "BestFit", "Current Point"}));
    QCOMPARE(m_it->window->curve(CURVE_CAPTURED)->pen().style(), Qt::SolidLine);
    QCOMPARE(m_it->window->curve(CURVE_PREVIOUS)->pen().style(), Qt::DashLine);
}

void PlotLook::interp_to_poly_changes_legend_and_lines()
{
    m_it->form->cboCalType->setCurrentIndex(1);
    QTRY_COMPARE_WITH_TIMEOUT(g_cfg->redraw_all, uint16_t(0), DEADLINE_MS);
    QCOMPARE(legend_titles(), (QStringList{"Captured", "Current Point", "Polynomial", "Previous"}));
    // The current point is not attached anew: it keeps its place.
    QCOMPARE(curves_on_show(plot()),
             (QStringList{"Captured", "Previous", "Current Point", "Polynomial"}));
    for (const int curve : {CURVE_CAPTURED, CURVE_PREVIOUS}) {
        const QwtPlotCurve *points = m_it->window->curve(curve);
        QCOMPARE(points->pen().style(), Qt::NoPen);
        QCOMPARE(points->symbol()->pen().style(), Qt::NoPen); // the outline goes too
        QCOMPARE(points->symbol()->brush().style(), Qt::SolidPattern);
    }
    QCOMPARE(m_it->window->curve(CURVE_POLYNOMIAL)->pen().style(), Qt::DashDotLine);
    QCOMPARE(samples_of(m_it->window->curve(CURVE_POLYNOMIAL)).size(), 101);
}

void PlotLook::poly_to_interp_brings_the_lines_back()
{
    m_it->form->cboCalType->setCurrentIndex(0);
    QTRY_COMPARE_WITH_TIMEOUT(g_cfg->redraw_all, uint16_t(0), DEADLINE_MS);
    QCOMPARE(m_it->window->curve(CURVE_CAPTURED)->pen().style(), Qt::SolidLine);
    QCOMPARE(m_it->window->curve(CURVE_CAPTURED)->symbol()->pen().style(), Qt::SolidLine);
    QCOMPARE(m_it->window->curve(CURVE_PREVIOUS)->pen().style(), Qt::DashLine);
    QCOMPARE(m_it->window->curve(CURVE_PREVIOUS)->symbol()->pen().style(), Qt::DashLine);
    QCOMPARE(curves_on_show(plot()),
             (QStringList{"Captured", "Previous", "BestFit", "Current Point"}));
}

void PlotLook::title_of_the_left_axis_is_the_unit()
{
    QCOMPARE(plot()->axisTitle(QwtPlot::yLeft).text(), QStringLiteral("kPa"));
    m_it->bind_afresh(9);
    QTRY_COMPARE_WITH_TIMEOUT(plot()->axisTitle(QwtPlot::yLeft).text(), QStringLiteral("DEG_C"),
                              DEADLINE_MS);
}

// Measured, because rich text gives itself away by its size.
void PlotLook::units_of_the_left_axis_are_plain_text()
{
    m_it->bind_afresh(0);
    qstrncpy(g_cfg->table.eng_units, "<h1>kPa</h1>", sizeof g_cfg->table.eng_units);
    g_cfg->redraw_all = 1;
    QTRY_COMPARE_WITH_TIMEOUT(plot()->axisTitle(QwtPlot::yLeft).text(), QString("<h1>kPa</h1>"),
                              DEADLINE_MS);
    const QwtText title = plot()->axisTitle(QwtPlot::yLeft);
    QwtText plain("<h1>kPa</h1>", QwtText::PlainText);
    plain.setFont(title.font());
    QCOMPARE(title.textSize(), plain.textSize());
    QCOMPARE(title.font(), plot()->axisTitle(QwtPlot::xBottom).font());
    m_it->bind_afresh(9);
}

void PlotLook::title_fits_and_the_canvas_stays()
{
    check_title(plot());
}

void PlotLook::title_is_in_its_own_type_where_that_fits()
{
    const FittedText ordinary =
        fitted_text(plot()->titleLabel()->font(), "Current Point:   1.5000 /  1.5000",
                    plot()->titleLabel()->width(), 0);
    QCOMPARE(ordinary.font, plot()->titleLabel()->font());
    QCOMPARE(ordinary.font.pointSize(), 14);
    QVERIFY(ordinary.font.bold());
}

void PlotLook::samples_that_are_no_numbers_leave_the_axes_alone_data()
{
    const auto row = test_columns<int, bool, double>("index", "in_x", "value");
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    row("first y", 0, false, nan);
    row("y in the midst", 2, false, nan);
    row("first x", 0, true, nan);
    row("infinite y", 3, false, inf);
    row("infinite x below", 1, true, -inf);
}

void PlotLook::samples_that_are_no_numbers_leave_the_axes_alone()
{
    QFETCH(int, index);
    QFETCH(bool, in_x);
    QFETCH(double, value);
    m_it->bind_afresh(0); // five points of 0 to 100 kPa
    QTRY_COMPARE_WITH_TIMEOUT(g_cfg->redraw_all, uint16_t(0), DEADLINE_MS);
    (in_x ? g_cfg->long_current.x : g_cfg->long_current.y)[index] = value;
    g_cfg->redraw_all = 1;
    QTRY_COMPARE_WITH_TIMEOUT(g_cfg->redraw_all, uint16_t(0), DEADLINE_MS);
    const QwtPlotCurve *captured = m_it->window->curve(CURVE_CAPTURED);
    const QPointF sample = captured->sample(index);
    QVERIFY(!std::isfinite(in_x ? sample.x() : sample.y())); // it stays among them
    const QRectF bounds = captured->boundingRect();
    QCOMPARE(bounds.right(), 5000.0);
    QCOMPARE(bounds.bottom(), 100.0);
    plot()->updateAxes();
    const QwtInterval axis = plot()->axisScaleDiv(QwtPlot::yLeft).interval().normalized();
    QVERIFY2(axis.maxValue() >= 100.0 && axis.maxValue() <= 200.0,
             qPrintable(QString::number(axis.maxValue())));
    m_it->bind_afresh(9);
}

WINDOW_TEST(PlotLook);
#include "test_plotlook.moc"
