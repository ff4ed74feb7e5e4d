// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/pointstatsdialog.h"

#include "ui_pointstatsdialog.h"
#include "views/statisticscells.h"
#include "views/statisticstable.h"

PointStatsDialog::PointStatsDialog(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::PointStatsDialog>()),
      cfg(g_cfg != nullptr ? g_cfg : get_cfg_pointer())
{
    ui->setupUi(this);
    // Headings make the widths; there is room for the longest value.
    ui->tblCalInfo->resizeColumnsToContents();
    keep_room_for(ui->tblCalInfo, figure_text(-1.23456e-300));
    const QMargins margins = layout()->contentsMargins();
    widen(this, width_of_columns(ui->tblCalInfo) + 2 * ui->scrollArea->frameWidth() +
                    margins.left() + margins.right());
    fill();
}

PointStatsDialog::~PointStatsDialog() = default;

void PointStatsDialog::fill()
{
    const int count = point_count(cfg->long_current);
    renew_rows(ui->tblCalInfo, count);
    for (int i = 0; i < count; ++i)
        fill_row(ui->tblCalInfo, i, stability_cells(i, cfg->point_stats[i]));
}
