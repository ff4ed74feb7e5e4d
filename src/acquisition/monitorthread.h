// SPDX-License-Identifier: GPL-3.0-or-later
//
// The monitor thread: the only thing that looks at the live signal. Ten times a
// second it adds the bound channel's millivolts to a FIFO as long as the
// averaging time, has the host compute the statistics, converts them through
// the bound table and tells the window.
#ifndef ACQUISITION_MONITORTHREAD_H
#define ACQUISITION_MONITORTHREAD_H

#include <QMutex>
#include <QThread>

#include "frame/zerl_cfg.h"
#include "host/samplingrecord.h"

enum { SAMPLES_PER_SECOND = 10, MONITOR_PERIOD_MS = 100, DEFAULT_FIFO_SIZE = 100 };

// Owned by the monitor thread, touched under the table mutex only.
extern FIFO_RECORD g_fifo_y;
extern FIFO_RECORD g_fifo_x;
extern STAT_RECORD g_stat_xy;
extern STAT_RECORD g_stat_spare;

// Frees the former buffers and allocates four zeroed ones of g_fifo_size.
void alloc_fifos();

// One reading (mV) through the table in engineering units. *hint is the search
// position of the interpolation. Unknown types give 0.0.
double convert_reading(uint16_t table_type, uint16_t *hint, const ZERL_CFG *cfg, double mv);

class monitorThread : public QThread
{
    Q_OBJECT

public:
    // Borrows the table mutex. Sets g_fifo_size to 100 samples and allocates.
    explicit monitorThread(QMutex *table_mutex);
    ~monitorThread() override;

    void set_sleep_ms(int16_t ms);
    QMutex *table_mutex() const { return m_table_mutex; }

    // One pass: sample, compute, convert, then the signal.
    void sample_pass();

signals:
    void plotInfo(ZERL_CFG *cfg);

protected:
    // Makes passes without end; the thread ends with the process.
    void run() override;

private:
    QMutex *m_table_mutex;
    int16_t m_sleep_ms;
};

// The program's one monitor thread. It and the mutex that it borrows outlive the
// window: they are never stopped or deleted.
extern monitorThread *g_monitor_thread;

#endif
