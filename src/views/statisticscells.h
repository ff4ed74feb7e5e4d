// SPDX-License-Identifier: GPL-3.0-or-later
//
// Texts of the statistics views.
#ifndef VIEWS_STATISTICSCELLS_H
#define VIEWS_STATISTICSCELLS_H

#include <QStringList>

#include "calibration/polydeviation.h"
#include "frame/zerl_cfg.h"

// "%8.2f", the form of the calibration statistics.
QString difference_text(double value);

// The shorter of fixed and exponent, 6 significant digits.
QString figure_text(double value);

// Point number, measured mean in engineering units, then mean, standard
// deviation, minimum and maximum in mV. `index` counts from 0.
QStringList stability_cells(int index, const POINT_STATISTICS &point);

// Point number, x in mV, then measured y, computed y and their difference in
// engineering units, each with 3 decimals. `index` counts from 0.
QStringList deviation_cells(int index, const PointDeviation &point);

#endif
