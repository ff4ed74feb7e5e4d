// SPDX-License-Identifier: GPL-3.0-or-later
//
// Survives that a mapped object is cut short by someone else: the access to a
// page that is gone raises SIGBUS, and the page is then replaced by one of the
// process's own, with what a copy holds for it, otherwise zeros.
#ifndef HOSTSIM_RUNTIME_PAGEGUARD_H
#define HOSTSIM_RUNTIME_PAGEGUARD_H

#include <cstddef>

namespace hostsim
{

// Guards a mapping that begins at a page. copy: size bytes that stay as long as
// the mapping, or null. Beyond GUARDED_MAPPINGS of them it does nothing.
constexpr std::size_t GUARDED_MAPPINGS = 256;
void guard_pages(void *base, std::size_t size, bool writable, const char *copy);

void end_guard(const void *base);

// Replaces all pages: what is left of an object that was cut within a page reads
// as zeros there and raises nothing.
void replace_pages(const void *base);

// Whether a page of the mapping had to be replaced.
bool pages_lost(const void *base);

} // namespace hostsim

#endif
