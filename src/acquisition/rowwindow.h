// SPDX-License-Identifier: GPL-3.0-or-later
//
// What a point row asks of the window that it stands in. The main window
// implements it, so that a row can be built without knowing that window.
// GUI thread only.
#ifndef ACQUISITION_ROWWINDOW_H
#define ACQUISITION_ROWWINDOW_H

#include <cstdint>

class QMutex;
struct ZERL_CFG;

class RowWindow
{
public:
    virtual ~RowWindow() = default;

    virtual QMutex *table_mutex() const = 0;

    // Judges the record's sensor range: non-zero when it is valid. *reason
    // receives 0 or the fault's number.
    virtual int check_sensor_range(uint32_t *reason) = 0;

    // Takes the present reading and the value (engineering units) as point
    // `index`; non-zero when the point stands.
    virtual int store_point(ZERL_CFG *cfg, int32_t index, double value) = 0;

    virtual void update_plot(ZERL_CFG *cfg) = 0;
    virtual void sync_type_controls(const ZERL_CFG *cfg) = 0;
    virtual void show_coefficients(const ZERL_CFG *cfg) = 0;
    virtual void show_serial_number() = 0;
    // Whether all points are captured.
    virtual void show_record_ready() = 0;
    // Empties the advice; its colour stays.
    virtual void empty_next_step() = 0;
    // Neither decision is suggested any more.
    virtual void suggest_no_decision() = 0;
};

#endif
