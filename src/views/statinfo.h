// SPDX-License-Identifier: GPL-3.0-or-later
//
// One row of the calibration statistics.
#ifndef VIEWS_STATINFO_H
#define VIEWS_STATINFO_H

#include <memory>

#include <QWidget>

namespace Ui
{
class StatInfo;
}

class StatInfo : public QWidget
{
    Q_OBJECT

public:
    // `row` counts from 0 and is shown counting from 1.
    StatInfo(int16_t row, QWidget *parent);
    ~StatInfo() override;

    int16_t row_index() const { return index; }

    // Makes the cells that wide: number of the point, and values. Both in pixels.
    void set_cell_widths(int number, int value);

    // Each takes a value in engineering units and shows it with 2 decimals.
    void setCurrentCalibration(double value);
    void setPreviousCalibration(double value);
    void setStraightLineApprox(double value);
    void setCurrentToPrevious(double value);
    void setCurrentToStraightLine(double value);
    void setPreviousToStraightLine(double value);

private:
    std::unique_ptr<Ui::StatInfo> ui;
    int16_t index;
};

#endif
