// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/currentcalibrationstatsdialog.h"

#include <algorithm>

#include <QScrollBar>

#include "calibration/comparison.h"
#include "ui_currentcalibrationstatsdialog.h"
#include "views/boxedlabel.h"
#include "views/statinfo.h"
#include "views/statisticscells.h"

namespace
{

constexpr double WIDE_VALUE = 1234567.0; // shown in ordinary type, with its sign

// Its longest word, or what the form gives it.
int heading_width(const QLabel *heading)
{
    int width = heading->maximumWidth();
    for (const QString &word : heading->text().split(QLatin1Char(' ')))
        width = std::max(width, heading->fontMetrics().horizontalAdvance(word) + 2);
    return width;
}

} // namespace

CurrentCalibrationStatsDialog::CurrentCalibrationStatsDialog(QWidget *parent)
    : QDialog(parent), ui(std::make_unique<Ui::CurrentCalibrationStatsDialog>()),
      cfg(g_cfg != nullptr ? g_cfg : get_cfg_pointer())
{
    ui->setupUi(this);
    const int count = point_count(cfg->long_current);
    add_rows(count);
    fit_columns();
    for (int i = 0; i < count; ++i)
        compute_row(i);
    connect(ui->scrollArea->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &CurrentCalibrationStatsDialog::show_rows_in_reach);
}

CurrentCalibrationStatsDialog::~CurrentCalibrationStatsDialog() = default;

void CurrentCalibrationStatsDialog::add_rows(int count)
{
    for (int i = 0; i < count; ++i) {
        auto *row = new StatInfo(static_cast<int16_t>(i), ui->scrollAreaWidgetContents);
        // Showing them takes longer than making them, so each waits for its turn
        // in the place that it will have.
        QSizePolicy policy = row->sizePolicy();
        policy.setRetainSizeWhenHidden(true);
        row->setSizePolicy(policy);
        row->hide();
        m_rows.append(row);
        ui->verticalLayout->addWidget(row);
    }
}

// The form's widths are those of ordinary type; larger type takes wider columns,
// and the view is as wide as they are.
void CurrentCalibrationStatsDialog::fit_columns()
{
    QLabel *const values[] = {ui->lblCurrentCal,        ui->lblPreviousCal, ui->lblStraightLine,
                              ui->lblCurrentToPrevious, ui->lblCurrentToSL, ui->lblPreviousToSL};
    const int number = heading_width(ui->lblCurrentCal_2);
    int value = BoxedLabel::width_for(font(), difference_text(-WIDE_VALUE));
    for (const QLabel *heading : values)
        value = std::max(value, heading_width(heading));
    if (number > ui->lblCurrentCal_2->maximumWidth() || value > ui->lblCurrentCal->maximumWidth()) {
        ui->lblCurrentCal_2->setFixedWidth(number);
        for (QLabel *heading : values)
            heading->setFixedWidth(value);
        for (StatInfo *row : m_rows)
            row->set_cell_widths(number, value);
    }
    // A vertical scroll bar must not bring a horizontal one.
    const QScrollBar *bar = ui->scrollArea->verticalScrollBar();
    const int beside = bar->sizeHint().width() + 2 * ui->scrollArea->frameWidth();
    if (!m_rows.isEmpty())
        ui->scrollArea->setMinimumWidth(m_rows.first()->minimumSizeHint().width() + beside);
}

void CurrentCalibrationStatsDialog::resizeEvent(QResizeEvent *event)
{
    QDialog::resizeEvent(event);
    show_rows_in_reach();
}

// The window's height covers what the scrolled part can show of it.
void CurrentCalibrationStatsDialog::show_rows_in_reach()
{
    if (m_rows.isEmpty())
        return;
    const int row_height = m_rows.first()->sizeHint().height();
    const int top = ui->scrollArea->verticalScrollBar()->value();
    const int last = std::min((top + height()) / row_height + 1, m_rows.size());
    for (int i = std::max(top / row_height, 0); i < last; ++i)
        m_rows.at(i)->show();
}

void CurrentCalibrationStatsDialog::compute_row(int i)
{
    StatInfo *row = m_rows.at(i);
    const CurveComparison point =
        compare_point(cfg->long_current, cfg->long_previous, cfg->long_fit, i);
    row->setCurrentCalibration(point.current);
    row->setCurrentToStraightLine(point.current_to_straight_line);
    row->setStraightLineApprox(point.straight_line);
    row->setCurrentToPrevious(point.current_to_previous);
    row->setPreviousCalibration(point.previous);
    row->setPreviousToStraightLine(point.previous_to_straight_line);
}
