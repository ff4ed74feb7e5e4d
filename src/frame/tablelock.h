// SPDX-License-Identifier: GPL-3.0-or-later
//
// Holds the table mutex for a scope. The mutex is recursive, so a holder may
// call what takes it again. A null mutex (no window yet) locks nothing.
#ifndef FRAME_TABLELOCK_H
#define FRAME_TABLELOCK_H

#include <QMutex>

#if defined(__SANITIZE_THREAD__)
// The thread sanitizer sees what was built with it, and the toolkit was not: it is
// told when the mutex is taken and given back.
#include <sanitizer/tsan_interface.h>
constexpr unsigned TABLE_LOCK_KIND = __tsan_mutex_write_reentrant | __tsan_mutex_linker_init;
#endif

class TableLock
{
public:
    explicit TableLock(QMutex *mutex) : m_mutex(mutex)
    {
        if (m_mutex == nullptr)
            return;
#if defined(__SANITIZE_THREAD__)
        __tsan_mutex_pre_lock(m_mutex, TABLE_LOCK_KIND);
        m_mutex->lock();
        __tsan_mutex_post_lock(m_mutex, TABLE_LOCK_KIND, 0);
#else
        m_mutex->lock();
#endif
    }
    ~TableLock()
    {
        unlock();
    }
    TableLock(const TableLock &) = delete;
    TableLock &operator=(const TableLock &) = delete;

    // Gives the mutex back before the scope ends.
    void unlock()
    {
        if (m_mutex == nullptr)
            return;
#if defined(__SANITIZE_THREAD__)
        __tsan_mutex_pre_unlock(m_mutex, 0);
        m_mutex->unlock();
        __tsan_mutex_post_unlock(m_mutex, 0);
#else
        m_mutex->unlock();
#endif
        m_mutex = nullptr;
    }

private:
    QMutex *m_mutex;
};

#endif
