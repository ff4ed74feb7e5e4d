// SPDX-License-Identifier: GPL-3.0-or-later
//
// Whether the host behind the memories in use is still there and sound.
#include <atomic>
#include <chrono>
#include <cstring>

#include <sys/file.h>

#include "host/memories.h"
#include "host/operations.h"
#include "hostsim/runtime/log.h"
#include "hostsim/runtime/memoryheader.h"
#include "hostsim/runtime/memoryregistry.h"
#include "hostsim/runtime/pageguard.h"

namespace hostsim
{

namespace
{

constexpr auto WATCH_INTERVAL = std::chrono::milliseconds(500);

bool is_cut_short(const Known &known)
{
    return known.file.valid() && file_size(known.file.get()) < static_cast<off_t>(known.total);
}

// The mapping that readers were given last; null when there is none.
const Known *last_read(const Registry &all, std::int32_t id)
{
    for (auto known = all.known.rbegin(); known != all.known.rend(); ++known) {
        if ((*known)->id == id && !(*known)->writable)
            return known->get();
    }
    return nullptr;
}

} // namespace

bool is_locked(int file)
{
    if (flock(file, LOCK_SH | LOCK_NB) != 0)
        return true;
    flock(file, LOCK_UN);
    return false;
}

void tell_death(Registry *all)
{
    if (!all->death_told)
        log_error(__FILE__, __LINE__, 1, log_number(LogCode::HostLost),
                  "the host is lost: the cell that published the memories lives no more");
    all->death_told = true;
}

void tell_losses(Registry *all)
{
    for (const auto &known : all->known) {
        if (known->loss_told || !(pages_lost(known->base) || is_cut_short(*known)))
            continue;
        replace_pages(known->base);
        known->loss_told = true;
        log_error(__FILE__, __LINE__, 1, log_number(LogCode::HostLost),
                  "the host is lost: shared memory /vornax.%d was cut short", known->id);
    }
}

// The number of channels is compared with the records that exist.
void tell_counts(Registry *all)
{
    const Known *const attributes = last_read(*all, MEMORY_SYS_ATTR);
    if (attributes == nullptr)
        return;
    std::int16_t count = 0;
    __atomic_load(&static_cast<const SYS_ATTR_RECORD *>(attributes->mapping.payload)->channel_count,
                  &count, __ATOMIC_RELAXED);
    const std::pair<std::int32_t, std::size_t> records[] = {
        {MEMORY_AI_REAL, sizeof(AI_REAL_RECORD)},
        {MEMORY_MILLIVOLTS, sizeof(MV_RECORD)},
        {MEMORY_AI_TRANSFER, sizeof(AI_TRANSFER_RECORD)}};
    for (const auto &[id, size] : records) {
        const Known *const known = last_read(*all, id);
        if (known == nullptr || count <= 0 || count == all->count_told ||
            static_cast<std::size_t>(count) <= known->mapping.size / size)
            continue;
        log_error(__FILE__, __LINE__, 1, log_number(LogCode::MemoryRefused),
                  "channel_count is %d, and shared memory /vornax.%d holds %zu records: those "
                  "behind count as not active",
                  count, id, known->mapping.size / size);
        all->count_told = count;
    }
}

void watch_host()
{
    using Clock = std::chrono::steady_clock;
    static std::atomic<Clock::rep> next{0};
    const Clock::time_point now = Clock::now();
    if (now.time_since_epoch().count() < next.load(std::memory_order_relaxed))
        return;
    next.store((now + WATCH_INTERVAL).time_since_epoch().count(), std::memory_order_relaxed);
    Registry &all = registry();
    const std::lock_guard<std::mutex> lock(all.mutex);
    tell_losses(&all);
    tell_counts(&all);
    const Known *const readings = last_read(all, MEMORY_MILLIVOLTS);
    if (readings == nullptr)
        return;
    if (!is_locked(readings->file.get()))
        tell_death(&all);
    // Should its pages get lost, the readings stand still at these.
    if (!readings->loss_told && !is_cut_short(*readings))
        memcpy(readings->copy.get(), readings->base, readings->total);
}

} // namespace hostsim
