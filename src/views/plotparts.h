// SPDX-License-Identifier: GPL-3.0-or-later
//
// Parts of the plot that behave differently from Qwt's own.
#ifndef VIEWS_PLOTPARTS_H
#define VIEWS_PLOTPARTS_H

#include <qwt_plot_curve.h>
#include <qwt_text.h>

// A curve whose samples that are no finite numbers leave the axes alone. They
// stay among its samples.
class FiniteCurve : public QwtPlotCurve
{
public:
    using QwtPlotCurve::QwtPlotCurve;

    QRectF boundingRect() const override;
};

// Plain text of one line, whose height is that of its font at every length: what
// is too long for its place is drawn in smaller type, so that the canvas does
// not move with the reading.
QwtText one_line_title(const QString &text);

#endif
