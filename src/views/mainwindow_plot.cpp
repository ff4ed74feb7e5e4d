// SPDX-License-Identifier: GPL-3.0-or-later
//
// The calibration plot. Curves take raw samples, so nothing is copied into
// them; nothing is computed or drawn unless something has changed.
#include "frame/mainwindow.h"

#include <cmath>
#include <cstring>
#include <limits>

#include <qwt_legend.h>
#include <qwt_plot.h>
#include <qwt_plot_curve.h>
#include <qwt_symbol.h>

#include "calibration/axisrange.h"
#include "calibration/linefit.h"
#include "calibration/plotcurve.h"
#include "calibration/polycurve.h"
#include "calibration/zerl_util.h"
#include "frame/functions.h"
#include "frame/relaxed.h"
#include "frame/tablelock.h"
#include "ui_mainwindow.h"
#include "views/plotparts.h"

namespace
{

// The part of long_current whose change is a change of the table: x to
// num_points, with the number's padding.
constexpr std::size_t COMPARED_BYTES = 2568;

// What the plot last showed. GUI thread only.
unsigned char last_long_current[COMPARED_BYTES] = {};
int64_t last_live_mv = 0;
int64_t last_live_eu = 0;

struct CurveLook {
    const char *title;
    Qt::GlobalColor colour;
    Qt::PenStyle line;
    QwtSymbol::Style shape;
    int size; // pixels
};

constexpr CurveLook LOOKS[CURVE_COUNT] = {
    {"Captured", Qt::red, Qt::SolidLine, QwtSymbol::Ellipse, 10},
    {"Previous", Qt::blue, Qt::DashLine, QwtSymbol::Diamond, 10},
    {"BestFit", Qt::green, Qt::DashDotDotLine, QwtSymbol::Diamond, 10},
    {"Current Point", Qt::black, Qt::NoPen, QwtSymbol::Diamond, 10},
    {"Polynomial", Qt::darkGray, Qt::DashDotLine, QwtSymbol::Cross, 6},
};

// The reading times 1000, cut to a whole number: changes below 0.001 do not
// count.
int64_t thousandths(double reading)
{
    const double scaled = reading * 1000.0;
    if (!(std::fabs(scaled) < 9.0e18))
        return std::numeric_limits<int64_t>::min();
    return static_cast<int64_t>(scaled);
}

bool table_differs(const LONG_TABLE &table)
{
    return std::memcmp(last_long_current, &table, COMPARED_BYTES) != 0;
}

// Plain, whatever the host's text looks like, and in the axis title's own font.
void set_units_title(QwtPlot *plot, const QString &units)
{
    QwtText title = plot->axisTitle(QwtPlot::yLeft);
    title.setText(units, QwtText::PlainText);
    plot->setAxisTitle(QwtPlot::yLeft, title);
}

bool shows_polynomial(const QComboBox *type)
{
    return type->currentIndex() == 1 || type->currentIndex() == 2;
}

} // namespace

void MainWindow::setup_plot()
{
    QwtPlot *plot = ui->dataPlot;
    plot->setCanvasBackground(Qt::white);
    auto *legend = new QwtLegend;
    legend->setFrameStyle(QFrame::Box | QFrame::Plain);
    plot->insertLegend(legend, QwtPlot::BottomLegend);
    plot->setAxisTitle(QwtPlot::xBottom, QStringLiteral("Millivolts (mv)"));
    for (int i = 0; i < CURVE_COUNT; ++i) {
        const CurveLook &look = LOOKS[i];
        m_pens[i] = QPen(QBrush(look.colour), 0, look.line, Qt::SquareCap, Qt::BevelJoin);
        m_curves[i] = new FiniteCurve(QString::fromLatin1(look.title));
        m_symbols[i] =
            new QwtSymbol(look.shape, QBrush(look.colour), m_pens[i], QSize(look.size, look.size));
        m_curves[i]->setRenderHint(QwtPlotItem::RenderAntialiased);
        m_curves[i]->setLegendAttribute(QwtPlotCurve::LegendShowSymbol);
        m_curves[i]->setPen(m_pens[i]);
        m_curves[i]->setSymbol(m_symbols[i]);
        m_curves[i]->attach(plot);
    }
}

// A curve leaves the plot when it goes, and takes its symbol with it.
void MainWindow::delete_curves()
{
    for (int i = 0; i < CURVE_COUNT; ++i) {
        delete m_curves[i];
        m_curves[i] = nullptr;
        m_symbols[i] = nullptr;
    }
}

void MainWindow::remove_curves()
{
    delete_curves();
    curves_removed = true;
    ui->dataPlot->setTitle(QString());
    ui->dataPlot->setAxisTitle(QwtPlot::yLeft, QString());
    ui->dataPlot->replot();
}

void MainWindow::auto_scale_plot()
{
    ui->dataPlot->replot();
    ui->dataPlot->setAxisAutoScale(QwtPlot::yLeft, true);
    ui->dataPlot->setAxisAutoScale(QwtPlot::xBottom, true);
}

// Events that were queued before the curves went do nothing.
void MainWindow::draw_plots_info(ZERL_CFG *cfg)
{
    if (!curves_removed)
        update_plot(cfg);
}

bool MainWindow::track_table(ZERL_CFG *cfg)
{
    LONG_TABLE &current = cfg->long_current;
    if (cfg->redraw_all == 0 && !table_differs(current))
        return false;
    update_axis_range(&cfg->x_axis_range, current.x, point_count(current));
    update_axis_range(&cfg->y_axis_range, current.y, point_count(current));
    compute_long_fit(&current, &cfg->long_fit);
    if (shows_polynomial(ui->cboCalType))
        refit_polynomial(cfg);
    show_coefficients(cfg);
    std::memcpy(last_long_current, &current, COMPARED_BYTES);
    return true;
}

// From the first x to the last as they stand, or over 0 to 10000 mV without
// points.
void MainWindow::refit_polynomial(ZERL_CFG *cfg)
{
    const LONG_TABLE &current = cfg->long_current;
    const int count = point_count(current);
    const bool has_points = range_in_work(cfg->table).num_points != 0;
    const double from = has_points ? current.x[0] : 0.0;
    double to = 10000.0;
    if (has_points)
        to = count > 0 ? current.x[count - 1] : 0.0;
    double y_min = 0.0;
    double y_max = 0.0;
    update_poly_curve(cfg, &cfg->plot_poly, &y_min, &y_max, has_points, from, to);
}

bool MainWindow::track_reading(AXIS_RANGE *axis, double reading, bool redraw, int64_t *last)
{
    const int64_t whole = thousandths(reading);
    if (!redraw && whole == *last)
        return false;
    update_axis_range(axis, &reading, 1);
    *last = whole;
    return true;
}

void MainWindow::update_plot(ZERL_CFG *cfg)
{
    if (curves_removed)
        return;
    TableLock lock(m_table_mutex);
    const bool redraw = cfg->redraw_all != 0;
    const double live_mv = relaxed_load(cfg->live_mv);
    const double live_eu = relaxed_load(cfg->live_eu);
    const bool table_changed = track_table(cfg);
    const bool x_moved = track_reading(&cfg->x_axis_range, live_mv, redraw, &last_live_mv);
    const bool y_moved = track_reading(&cfg->y_axis_range, live_eu, redraw, &last_live_eu);
    const bool point_moved = x_moved || y_moved;
    if (point_moved || redraw) {
        ui->dataPlot->setTitle(one_line_title(
            QString::asprintf("Current Point: %8.4f /%8.4f", live_mv, live_eu).left(79)));
    }
    const bool rescale = cfg->x_axis_range.changed != 0 || cfg->y_axis_range.changed != 0;
    if (rescale || redraw || table_changed || force_rescale) {
        if (redraw)
            set_units_title(ui->dataPlot, record_text(cfg->table.eng_units));
        redraw_curves(cfg, rescale || redraw || force_rescale);
    }
    if (point_moved || redraw || rescale) {
        m_point_x = live_mv;
        m_point_y = live_eu;
        set_current_point_samples();
    }
    lock.unlock();
    // A change of the table alone waits for the next movement of the reading.
    if (point_moved || redraw || rescale)
        ui->dataPlot->replot();
    cfg->redraw_all = 0;
}

void MainWindow::redraw_curves(ZERL_CFG *cfg, bool scale_axes)
{
    if (scale_axes) {
        ui->dataPlot->setAxisAutoScale(QwtPlot::xBottom, true);
        ui->dataPlot->setAxisAutoScale(QwtPlot::yLeft, true);
        cfg->x_axis_range.changed = 0;
        cfg->y_axis_range.changed = 0;
        force_rescale = false;
        fill_plot_curve(&cfg->long_previous, &cfg->plot_previous);
        set_curve_samples(cfg->plot_previous, CURVE_PREVIOUS);
    }
    fill_plot_curve(&cfg->long_fit, &cfg->plot_fit);
    set_curve_samples(cfg->plot_fit, CURVE_BEST_FIT);
    fill_plot_curve(&cfg->long_current, &cfg->plot_current);
    set_curve_samples(cfg->plot_current, CURVE_CAPTURED);
    set_fit_curve(cfg->plot_poly, !shows_polynomial(ui->cboCalType));
}

void MainWindow::set_curve_samples(const PLOT_CURVE &curve, int curve_index)
{
    for (int i = 0; i < MAX_POINTS; ++i) {
        curve_x[curve_index][i] = curve.pairs[i].x;
        curve_y[curve_index][i] = curve.pairs[i].y;
    }
    m_curves[curve_index]->setRawSamples(curve_x[curve_index], curve_y[curve_index], MAX_POINTS);
}

void MainWindow::set_current_point_samples()
{
    m_curves[CURVE_CURRENT_POINT]->setRawSamples(&m_point_x, &m_point_y, 1);
}

// On the curve and as the outline of its symbol: without a line the symbols lose
// their outlines too.
void MainWindow::apply_pen(int curve_index)
{
    m_curves[curve_index]->setPen(m_pens[curve_index]);
    m_symbols[curve_index]->setPen(m_pens[curve_index]);
}

void MainWindow::set_fit_curve(const POLY_PLOT_CURVE &curve, bool best_fit)
{
    QwtPlot *plot = ui->dataPlot;
    if (best_fit) {
        m_curves[CURVE_BEST_FIT]->attach(plot);
        m_curves[CURVE_POLYNOMIAL]->detach();
        m_curves[CURVE_CURRENT_POINT]->detach(); // attached again to be drawn on top
        m_curves[CURVE_CURRENT_POINT]->attach(plot);
    } else {
        for (int i = 0; i < POLY_SAMPLES; ++i) {
            poly_x[i] = curve.pairs[i].x;
            poly_y[i] = curve.pairs[i].y;
        }
        m_curves[CURVE_POLYNOMIAL]->setRawSamples(poly_x, poly_y, POLY_SAMPLES);
        m_curves[CURVE_BEST_FIT]->detach();
        m_curves[CURVE_POLYNOMIAL]->attach(plot);
    }
    m_pens[CURVE_CAPTURED].setStyle(best_fit ? Qt::SolidLine : Qt::NoPen);
    m_pens[CURVE_PREVIOUS].setStyle(best_fit ? Qt::DashLine : Qt::NoPen);
    apply_pen(CURVE_CAPTURED);
    apply_pen(CURVE_PREVIOUS);
}
