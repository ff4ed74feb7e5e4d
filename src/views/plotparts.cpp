// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/plotparts.h"

#include <algorithm>
#include <cmath>

#include <QFontMetricsF>
#include <QPainter>

#include <qwt_text_engine.h>

#include "views/fittedtext.h"

namespace
{

// An invalid rectangle, which Qwt leaves out when it scales the axes.
const QRectF NO_RECTANGLE(1.0, 1.0, -2.0, -2.0);

constexpr auto ONE_LINE = static_cast<QwtText::TextFormat>(QwtText::OtherFormat + 1);

class OneLineEngine : public QwtTextEngine
{
public:
    double heightForWidth(const QFont &font, int, const QString &, double) const override
    {
        return QFontMetricsF(font).height();
    }

    QSizeF textSize(const QFont &font, int, const QString &text) const override
    {
        const QFontMetricsF metrics(font);
        return {metrics.horizontalAdvance(text), metrics.height()};
    }

    // Never chosen for a text that does not ask for it.
    bool mightRender(const QString &) const override { return false; }

    void textMargins(const QFont &, const QString &, double &left, double &right, double &top,
                     double &bottom) const override
    {
        left = right = top = bottom = 0.0;
    }

    void draw(QPainter *painter, const QRectF &rect, int flags, const QString &text) const override
    {
        const FittedText fitted = fitted_text(painter->font(), text, rect.width(), 0.0);
        painter->save();
        painter->setFont(fitted.font);
        painter->drawText(rect, flags | Qt::TextSingleLine, fitted.text);
        painter->restore();
    }
};

} // namespace

QRectF FiniteCurve::boundingRect() const
{
    QRectF bounds = NO_RECTANGLE;
    for (std::size_t i = 0; i < dataSize(); ++i) {
        const QPointF point = sample(static_cast<int>(i));
        if (!std::isfinite(point.x()) || !std::isfinite(point.y()))
            continue;
        if (bounds.width() < 0.0)
            bounds = QRectF(point, point);
        bounds.setLeft(std::min(bounds.left(), point.x()));
        bounds.setRight(std::max(bounds.right(), point.x()));
        bounds.setTop(std::min(bounds.top(), point.y()));
        bounds.setBottom(std::max(bounds.bottom(), point.y()));
    }
    return bounds;
}

QwtText one_line_title(const QString &text)
{
    // The engine belongs to Qwt from here on.
    static const bool registered = [] {
        QwtText::setTextEngine(ONE_LINE, new OneLineEngine);
        return true;
    }();
    static_cast<void>(registered);
    QwtText title(text, ONE_LINE);
    title.setRenderFlags(Qt::AlignCenter);
    return title;
}
