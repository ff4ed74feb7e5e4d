// SPDX-License-Identifier: GPL-3.0-or-later
//
// Reads a plot: samples, curves on show, and how often it was drawn or retitled.
#ifndef GUI_VIEWS_PLOTLOOK_H
#define GUI_VIEWS_PLOTLOOK_H

#include <QEvent>
#include <QPointF>
#include <QStringList>
#include <QVector>

#include <qwt_plot.h>
#include <qwt_plot_canvas.h>
#include <qwt_plot_curve.h>
#include <qwt_text_label.h>

inline QVector<QPointF> samples_of(const QwtPlotCurve *curve)
{
    QVector<QPointF> samples;
    for (size_t i = 0; i < curve->dataSize(); ++i)
        samples.append(curve->sample(static_cast<int>(i)));
    return samples;
}

// Titles of the curves that the plot draws, in the order of drawing.
inline QStringList curves_on_show(const QwtPlot *plot)
{
    QStringList titles;
    for (const QwtPlotItem *item : plot->itemList(QwtPlotItem::Rtti_PlotCurve))
        titles.append(item->title().text());
    return titles;
}

// Counts what reaches the plot's canvas and its title.
class PlotWatch : public QObject
{
public:
    explicit PlotWatch(QwtPlot *plot) : m_canvas(plot->canvas()), m_title(plot->titleLabel())
    {
        m_canvas->installEventFilter(this);
        m_title->installEventFilter(this);
    }

    int paints = 0; // of the canvas
    int titles = 0; // paints of the title, and what asks for them

protected:
    bool eventFilter(QObject *object, QEvent *event) override
    {
        const QEvent::Type type = event->type();
        const bool draws = type == QEvent::Paint || type == QEvent::UpdateRequest;
        if (object == m_canvas && draws)
            ++paints;
        if (object == m_title && (draws || type == QEvent::LayoutRequest))
            ++titles;
        return QObject::eventFilter(object, event);
    }

private:
    QWidget *m_canvas;
    QWidget *m_title;
};

#endif
