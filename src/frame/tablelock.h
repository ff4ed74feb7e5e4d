// SPDX-License-Identifier: GPL-3.0-or-later
//
// Holds the table mutex for a scope. The mutex is recursive, so a holder may
// call what takes it again. A null mutex (no window yet) locks nothing.
#ifndef FRAME_TABLELOCK_H
#define FRAME_TABLELOCK_H

#include <QMutex>

class TableLock
{
public:
    explicit TableLock(QMutex *mutex) : m_mutex(mutex)
    {
        if (m_mutex != nullptr)
            m_mutex->lock();
    }
    ~TableLock() { unlock(); }
    TableLock(const TableLock &) = delete;
    TableLock &operator=(const TableLock &) = delete;

    // Gives the mutex back before the scope ends.
    void unlock()
    {
        if (m_mutex != nullptr)
            m_mutex->unlock();
        m_mutex = nullptr;
    }

private:
    QMutex *m_mutex;
};

#endif
