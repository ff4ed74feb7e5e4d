// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/statisticscells.h"

namespace
{

QString fixed_text(double value)
{
    return QString::number(value, 'f', 3);
}

} // namespace

QString difference_text(double value)
{
    return QString::asprintf("%8.2f", value);
}

QString figure_text(double value)
{
    return QString::number(value, 'g', 6);
}

QStringList stability_cells(int index, const POINT_STATISTICS &point)
{
    // "Reference Point" is the measured mean, not the reference typed in.
    return {QString::number(index + 1), figure_text(point.eu_mean), figure_text(point.mv_mean),
            figure_text(point.mv_std),  figure_text(point.mv_min),  figure_text(point.mv_max)};
}

QStringList deviation_cells(int index, const PointDeviation &point)
{
    return {QString::number(index + 1), fixed_text(point.x), fixed_text(point.y),
            fixed_text(point.computed), fixed_text(point.deviation)};
}
