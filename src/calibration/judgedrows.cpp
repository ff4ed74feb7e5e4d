// SPDX-License-Identifier: GPL-3.0-or-later
#include "calibration/judgedrows.h"

#include <algorithm>

#include <QLineEdit>

#include "calibration/classification.h"
#include "frame/mainwindow.h"

void classify_point(MainWindow *, int32_t index, QWidget *widget, uint16_t *status_out)
{
    *status_out = point_status(*g_cfg, index);
    widget->setStyleSheet(QLatin1String(status_style(*status_out)));
}

void reclassify_rows(MainWindow *main)
{
    const int count = std::min<int>(g_num_points, MAX_POINTS);
    for (int i = 0; i < count; ++i)
        classify_point(main, i, main->row(i)->value_field(), &main->row(i)->status);
}

void compute_worst_status(MainWindow *main)
{
    const int count = std::min<int>(g_num_points, MAX_POINTS);
    uint16_t worst = 0;
    for (int i = 0; i < count; ++i)
        worst = std::max(worst, main->row(i)->status);
    if (count > 0)
        g_cfg->table.worst_status = worst;
}
