// SPDX-License-Identifier: GPL-3.0-or-later
#include "reports/linearity.h"

#include <QDateTime>

#include "reports/linearitydump.h"
#include "reports/linearityfigures.h"

void calc_line_rpt_values(ZERL_CFG *cfg)
{
    const LinearityFigures figures = linearity_figures(
        cfg->point_stats, cfg->long_current.num_points, cfg->table.eng_units, g_line_rpt);
    g_line_rpt = figures.record;
    write_linearity_dump(linearity_dump_path(cfg->table.table_name, QDateTime::currentDateTime()),
                         linearity_dump(figures));
}
