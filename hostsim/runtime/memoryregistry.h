// SPDX-License-Identifier: GPL-3.0-or-later
//
// The memories that this process has mapped or published, for memory.cpp and
// hostwatch.cpp.
#ifndef HOSTSIM_RUNTIME_MEMORYREGISTRY_H
#define HOSTSIM_RUNTIME_MEMORYREGISTRY_H

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <utility>
#include <vector>

#include <sys/stat.h>

#include "hostsim/runtime/fileaccess.h"
#include "hostsim/runtime/mapping.h"

namespace hostsim
{

// A mapping is known by device and inode of its object. Being mapped keeps the
// inode in use, so no later object can be taken for it.
struct Known {
    Known(Descriptor object_file, const struct stat &object, std::int32_t memory, bool for_writing)
        : file(std::move(object_file)), device(object.st_dev), inode(object.st_ino), id(memory),
          total(static_cast<std::size_t>(object.st_size)), writable(for_writing)
    {
    }

    Descriptor file;
    dev_t device;
    ino_t inode;
    std::int32_t id;
    std::size_t total; // bytes of the object, header included
    bool writable;
    char *base = nullptr;
    std::size_t reserved = 0;     // bytes from base on
    std::unique_ptr<char[]> copy; // what a page that gets lost is restored from
    bool loss_told = false;
    unsigned order = 0; // of being mapped
    Mapping mapping = {};
};

struct Registry {
    std::mutex mutex;
    std::vector<std::unique_ptr<Known>> known; // mapping numbers count from 1
    std::map<std::int32_t, Descriptor> published;
    unsigned mapped = 0;
    bool death_told = false; // until a living cell is met
    int count_told = 0;      // channel_count that did not agree
};

Registry &registry();

// What follows is called with the registry's lock held.

// Whether someone keeps the object locked. To ask is to try a shared lock, which
// disturbs nobody else who asks.
bool is_locked(int file);

// Each fault gets one entry in the log.
void tell_death(Registry *all);
void tell_losses(Registry *all);
void tell_counts(Registry *all);

} // namespace hostsim

#endif
