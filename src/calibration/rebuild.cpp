// SPDX-License-Identifier: GPL-3.0-or-later
//
// The host's rebuild of its run-time tables.
#include "calibration/tablestore.h"

#include <list>

#include <QProcess>
#include <QThread>

#include "frame/functions.h"
#include "frame/hostlink.h"
#include "frame/zerl_callbacks.h"

int32_t g_rebuild_wait_ms = REBUILD_WAIT_MS;

namespace
{

// The process is not waited for, not looked at and never deleted.
void start_rebuild()
{
    static auto &rebuilds = *new std::list<QProcess *>; // lives as long as they do
    auto *process = new QProcess;
    rebuilds.push_back(process);
    process->start(QStringLiteral("/vornax/bin/bld_tables"), QStringList(), QIODevice::ReadWrite);
}

} // namespace

void rebuild_tables(ZERL_CFG *cfg)
{
    start_rebuild();
    QThread::msleep(static_cast<unsigned long>(g_rebuild_wait_ms));
    const int32_t attached = attach_host_memories();
    if (is_failure(attached)) {
        log_error(__FILE__, __LINE__, 1, attached,
                  "Failure Initializing Shared Memory after Table Rebuild");
        return;
    }
    const int32_t units = units_init_access(1);
    if (is_failure(units)) {
        log_error(__FILE__, __LINE__, 1, units,
                  "Failure Re-initializing Units after Table Rebuild");
        return;
    }
    if (g_callbacks.rebind_channel != nullptr && g_callbacks.rebind_channel(cfg) == 0)
        cfg->table_dirty = 0;
}
