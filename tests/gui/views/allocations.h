// SPDX-License-Identifier: GPL-3.0-or-later
//
// Counts what a thread takes from the heap, libraries included. To be included
// by one source of a program: it defines the program's malloc.
#ifndef GUI_VIEWS_ALLOCATIONS_H
#define GUI_VIEWS_ALLOCATIONS_H

#include <cstddef>

#ifdef __SANITIZE_ADDRESS__
// Of the sanitizer's library; not every compiler brings its header.
extern "C" int __sanitizer_install_malloc_and_free_hooks(
    void (*on_malloc)(const volatile void *memory, std::size_t size),
    void (*on_free)(const volatile void *memory));
#endif

namespace
{
__attribute__((tls_model("initial-exec"))) thread_local long taken_from_the_heap = 0;

long allocations_of_this_thread()
{
#ifdef __SANITIZE_ADDRESS__
    // The sanitizer's own heap tells by a hook.
    static const int installed = __sanitizer_install_malloc_and_free_hooks(
        [](const volatile void *, std::size_t) { ++taken_from_the_heap; },
        [](const volatile void *) {});
    (void)installed;
#endif
    return taken_from_the_heap;
}
} // namespace

#ifndef __SANITIZE_ADDRESS__
extern "C" {
void *__libc_malloc(std::size_t size);
void *__libc_calloc(std::size_t count, std::size_t size);
void *__libc_realloc(void *memory, std::size_t size);

void *malloc(std::size_t size)
{
    ++taken_from_the_heap;
    return __libc_malloc(size);
}
void *calloc(std::size_t count, std::size_t size)
{
    ++taken_from_the_heap;
    return __libc_calloc(count, size);
}
void *realloc(void *memory, std::size_t size)
{
    ++taken_from_the_heap;
    return __libc_realloc(memory, size);
}
}
#endif

#endif
