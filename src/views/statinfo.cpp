// SPDX-License-Identifier: GPL-3.0-or-later
#include "views/statinfo.h"

#include "ui_statinfo.h"
#include "views/statisticscells.h"

StatInfo::StatInfo(int16_t row, QWidget *parent)
    : QWidget(parent), ui(std::make_unique<Ui::StatInfo>()), index(row)
{
    ui->setupUi(this);
    ui->lblIndexNum->setNum(index + 1);
}

StatInfo::~StatInfo() = default;

void StatInfo::set_cell_widths(int number, int value)
{
    for (BoxedLabel *label : findChildren<BoxedLabel *>())
        label->setFixedWidth(label == ui->lblIndexNum ? number : value);
}

void StatInfo::setCurrentCalibration(double value)
{
    ui->lblCurrentCalibration->setText(difference_text(value));
}

void StatInfo::setPreviousCalibration(double value)
{
    ui->lblPreviousCalibration->setText(difference_text(value));
}

void StatInfo::setStraightLineApprox(double value)
{
    ui->lblStriaghtLineApprox->setText(difference_text(value));
}

void StatInfo::setCurrentToPrevious(double value)
{
    ui->lblCurrentToPrevious->setText(difference_text(value));
}

void StatInfo::setCurrentToStraightLine(double value)
{
    ui->lblCurrentToStraightLine->setText(difference_text(value));
}

void StatInfo::setPreviousToStraightLine(double value)
{
    ui->lblPreviousToStriaghtLine->setText(difference_text(value));
}
