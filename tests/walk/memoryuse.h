// SPDX-License-Identifier: GPL-3.0-or-later
//
// Bytes of the heap that the program holds.
#ifndef WALK_MEMORYUSE_H
#define WALK_MEMORYUSE_H

#include <cstddef>

#ifdef __SANITIZE_ADDRESS__
// Of the sanitizer's library; not every compiler brings its header.
extern "C" std::size_t __sanitizer_get_current_allocated_bytes();
#else
#include <malloc.h>
#endif

namespace walk
{

inline long long held_bytes()
{
#ifdef __SANITIZE_ADDRESS__
    return static_cast<long long>(__sanitizer_get_current_allocated_bytes());
#else
    const struct mallinfo2 info = mallinfo2();
    return static_cast<long long>(info.uordblks + info.hblkhd);
#endif
}

} // namespace walk

#endif
