// SPDX-License-Identifier: GPL-3.0-or-later
//
// How a point row shows the state of its point and its judgement.
#ifndef ACQUISITION_ROWLOOK_H
#define ACQUISITION_ROWLOOK_H

#include <cstdint>

#include <QList>

class PointInfo;

// The first 64 rows as they stand before any capture: white, "Capture", status 0.
void reset_rows(const QList<PointInfo *> &rows);

// The first 64 rows follow the states of their points (table.point_state, 64 of
// them). A state that is none of the three leaves its row alone.
void follow_point_states(const QList<PointInfo *> &rows, const int32_t *states);

// Notes the status of a point, 0 to 3, in its row and paints the value field.
void set_row_status(PointInfo *row, uint16_t status);

#endif
