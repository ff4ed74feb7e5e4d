// SPDX-License-Identifier: GPL-3.0-or-later
//
// Another thread holds the table mutex, as a pass of the monitor would, while
// the window's thread works. No tick is drawn meanwhile: that would wait for it.
#ifndef GUI_FRAME_HELDMUTEX_H
#define GUI_FRAME_HELDMUTEX_H

#include <atomic>
#include <thread>

#include <QSemaphore>

#include "frame/tablelock.h"
#include "gui/frame/testwindow.h"

class HeldMutex
{
public:
    explicit HeldMutex(const TestWindow *it) : m_it(it)
    {
        QObject::disconnect(it->window->monitor(), &monitorThread::plotInfo, it->window, nullptr);
        QCoreApplication::removePostedEvents(it->window, QEvent::MetaCall);
        m_holder = std::thread([this] {
            const TableLock hold(m_it->window->table_mutex());
            m_held.release();
            m_in_time = m_done.tryAcquire(1, DEADLINE_MS);
        });
        m_held.acquire();
    }
    ~HeldMutex() { release(); }
    HeldMutex(const HeldMutex &) = delete;
    HeldMutex &operator=(const HeldMutex &) = delete;

    // False when the mutex had to be given back before: somebody waited for it.
    bool release()
    {
        if (m_holder.joinable()) {
            m_done.release();
            m_holder.join();
            QObject::connect(m_it->window->monitor(), SIGNAL(plotInfo(ZERL_CFG *)), m_it->window,
                             SLOT(draw_plots_info(ZERL_CFG *)));
        }
        return m_in_time;
    }

private:
    const TestWindow *m_it;
    QSemaphore m_held;
    QSemaphore m_done;
    std::atomic<bool> m_in_time{false};
    std::thread m_holder;
};

#endif
