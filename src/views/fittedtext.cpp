// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/fittedtext.h"

#include <algorithm>
#include <cmath>

#include <QFontInfo>
#include <QFontMetricsF>

namespace
{

constexpr qreal STEP = 0.5;  // points
constexpr qreal LEAST = 1.0; // points that a font takes

bool fits(const QFont &font, const QString &text, qreal width)
{
    return QFontMetricsF(font).horizontalAdvance(text) <= width;
}

} // namespace

FittedText fitted_text(const QFont &font, const QString &text, qreal width, qreal smallest)
{
    FittedText fitted = {font, text, false};
    if (fits(font, text, width))
        return fitted;
    const qreal least = std::max(smallest, LEAST);
    const qreal full = QFontInfo(font).pointSizeF();
    // Widths are proportional to the size except for rounding, which the steps make up for.
    const qreal share = width / QFontMetricsF(font).horizontalAdvance(text);
    const qreal start = std::min(std::max(full * share, LEAST) + STEP, full);
    const int steps = static_cast<int>(std::floor((start - least) / STEP));
    for (int i = 0; i <= steps; ++i) {
        fitted.font.setPointSizeF(start - i * STEP);
        if (fits(fitted.font, text, width))
            return fitted;
    }
    fitted.font.setPointSizeF(std::min(least, full));
    if (smallest <= 0.0 || fits(fitted.font, text, width))
        return fitted;
    fitted.text = QFontMetricsF(fitted.font).elidedText(text, Qt::ElideRight, width);
    fitted.cut = true;
    return fitted;
}
