// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/polyregressiondialog.h"

#include <algorithm>

#include "calibration/polydeviation.h"
#include "reports/linearity.h"
#include "ui_polyregressiondialog.h"
#include "views/statisticscells.h"
#include "views/statisticstable.h"
#include "window/coefficientlabels.h"

PolyRegressionDialog::PolyRegressionDialog(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::PolyRegressionDialog>()),
      cfg(g_cfg != nullptr ? g_cfg : get_cfg_pointer())
{
    ui->setupUi(this);
    ui->tblCalInfo->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
    fill_table();
    fill_coefficients();
    fill_regression();
    ui->tblCalInfo->resizeColumnsToContents();
    keep_room_for(ui->tblCalInfo, QString());
    const QMargins margins = layout()->contentsMargins();
    widen(this, width_of_columns(ui->tblCalInfo) + ui->horizontalLayout->spacing() +
                    ui->verticalLayout->sizeHint().width() + margins.left() + margins.right());
}

PolyRegressionDialog::~PolyRegressionDialog() = default;

void PolyRegressionDialog::calc_poly_r_squared()
{
    static_cast<void>(poly_r_squared(*cfg));
}

void PolyRegressionDialog::fill_table()
{
    calc_line_rpt_values(cfg);
    const int count = point_count(cfg->long_current);
    renew_rows(ui->tblCalInfo, count);
    // Whatever the index holds, also where the type does not use it.
    const POLY_RANGE_RECORD &range = cfg->table.poly[range_index(cfg->table)];
    for (int i = 0; i < count; ++i)
        fill_row(ui->tblCalInfo, i, deviation_cells(i, deviation_of(cfg->point_stats[i], range)));
}

void PolyRegressionDialog::fill_coefficients()
{
    const bool shown = cfg->table.table_type == TABLE_POLY;
    ui->grpCoeffInfo->setVisible(shown);
    if (!shown)
        return;
    const CoefficientLabels labels = coefficient_labels(*ui);
    const POLY_RANGE_RECORD &range = cfg->table.poly[0];
    const int count = std::clamp<int>(range.num_coeffs, 0, static_cast<int>(labels.size()));
    for (std::size_t i = 0; i < labels.size(); ++i) {
        const bool used = static_cast<int>(i) < count;
        labels[i].set_visible(used);
        if (used)
            labels[i].value->setText(figure_text(range.coeffs[i]));
    }
    // The straight line's, though it stands among the polynomial's coefficients.
    ui->lblRSquaredValue->setText(figure_text(g_line_rpt.r2));
}

void PolyRegressionDialog::fill_regression()
{
    const bool shown = cfg->table.table_type == TABLE_POLY;
    ui->grpLinearRegInfo->setVisible(shown);
    if (!shown)
        return;
    const LINE_RPT &line = g_line_rpt;
    // Crossed on purpose: technicians know these two rows by their places.
    ui->lblInterceptValue->setText(figure_text(line.a1));
    ui->lblSlopeValue->setText(figure_text(line.a0));
    ui->lblSEEValue->setText(figure_text(line.see));
    ui->lblr2Value->setText(figure_text(line.r2));
    ui->lblMaxAbsErrorValue->setText(figure_text(line.max_abs_error));
    ui->lblMaxRelErrorValue->setText(figure_text(100.0 * line.max_rel_error) + QLatin1Char('%'));
}
