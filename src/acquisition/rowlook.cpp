// SPDX-License-Identifier: GPL-3.0-or-later
#include "acquisition/rowlook.h"

#include "acquisition/pointinfo.h"
#include "calibration/classification.h"
#include "frame/zerl_cfg.h"
#include "window/styles.h"

namespace
{

void reset_row(PointInfo *row)
{
    row->set_value_style(QLatin1String(STYLE_WHITE));
    row->set_caption(QStringLiteral("Capture"));
    row->status = 0;
}

void follow_point_state(PointInfo *row, int32_t point_state)
{
    switch (point_state) {
    case POINT_AS_IN_TABLE:
        row->set_caption(QStringLiteral("Capture"));
        row->status = 0;
        break;
    case POINT_NEW:
        row->set_value_style(QLatin1String(STYLE_WHITE));
        row->set_caption(QStringLiteral("Capture New"));
        row->status = 0;
        break;
    case POINT_CAPTURED:
        row->set_caption(QStringLiteral("Undo"));
        row->status = row->previous_status;
        break;
    default:
        break;
    }
}

} // namespace

void reset_rows(const QList<PointInfo *> &rows)
{
    for (int i = 0; i < MAX_POINTS; ++i)
        reset_row(rows.at(i));
}

void follow_point_states(const QList<PointInfo *> &rows, const int32_t *states)
{
    for (int i = 0; i < MAX_POINTS; ++i)
        follow_point_state(rows.at(i), states[i]);
}

void set_row_status(PointInfo *row, uint16_t status)
{
    row->status = status;
    row->set_value_style(QLatin1String(status_style(status)));
}
