// SPDX-License-Identifier: GPL-3.0-or-later
#include "hostsim/runtime/pageguard.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <mutex>

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace hostsim
{

namespace
{

// begin is set last and cleared first: the handler looks at the others behind
// it only.
struct Guarded {
    std::atomic<std::uintptr_t> begin{0};
    std::atomic<std::size_t> size{0};
    std::atomic<bool> writable{false};
    std::atomic<const char *> copy{nullptr};
    std::atomic<bool> lost{false};
};

// No construction at run time: a handler may look at any moment.
Guarded guarded[GUARDED_MAPPINGS];
struct sigaction former = {};
std::size_t page_size = 0;

// The last page belongs to the mapping as a whole.
Guarded *guard_at(std::uintptr_t address)
{
    for (Guarded &one : guarded) {
        const std::uintptr_t begin = one.begin.load();
        if (begin != 0 && address >= begin &&
            (address - begin) / page_size <= (one.size.load() - 1) / page_size)
            return &one;
    }
    return nullptr;
}

// By the kernel's own calls, as in a handler nothing else is safe. The page is
// made elsewhere and moved, so that no thread sees it half filled.
bool replace_page(Guarded *one, std::uintptr_t page)
{
    const long made = syscall(SYS_mmap, nullptr, page_size, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (made == -1)
        return false;
    const std::size_t offset = page - one->begin.load();
    const std::size_t size = one->size.load();
    const char *const copy = one->copy.load();
    if (copy != nullptr && offset < size)
        std::memcpy(reinterpret_cast<void *>(made), copy + offset,
                    std::min(page_size, size - offset));
    if (!one->writable.load())
        syscall(SYS_mprotect, made, page_size, PROT_READ);
    one->lost.store(true);
    return syscall(SYS_mremap, made, page_size, page_size, MREMAP_MAYMOVE | MREMAP_FIXED, page) !=
           -1;
}

void pass_on(int number, siginfo_t *info, void *context)
{
    if ((former.sa_flags & SA_SIGINFO) != 0) {
        former.sa_sigaction(number, info, context);
    } else if (former.sa_handler != SIG_DFL && former.sa_handler != SIG_IGN) {
        former.sa_handler(number);
    } else {
        // The access is made again, and ends the process as it would have.
        struct sigaction standard = {};
        standard.sa_handler = SIG_DFL;
        sigaction(number, &standard, nullptr);
    }
}

void on_bus_error(int number, siginfo_t *info, void *context)
{
    const int kept = errno;
    const auto address = reinterpret_cast<std::uintptr_t>(info->si_addr);
    Guarded *const one = guard_at(address);
    if (one == nullptr || !replace_page(one, address - address % page_size))
        pass_on(number, info, context);
    errno = kept;
}

void install_handler()
{
    page_size = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
    struct sigaction action = {};
    action.sa_sigaction = on_bus_error;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_RESTART;
    sigaction(SIGBUS, &action, &former);
}

} // namespace

void guard_pages(void *base, std::size_t size, bool writable, const char *copy)
{
    static std::once_flag once;
    std::call_once(once, install_handler);
    for (Guarded &one : guarded) {
        if (one.begin.load() != 0)
            continue;
        one.size.store(size);
        one.writable.store(writable);
        one.copy.store(copy);
        one.lost.store(false);
        one.begin.store(reinterpret_cast<std::uintptr_t>(base));
        return;
    }
}

void end_guard(const void *base)
{
    if (Guarded *const one = guard_at(reinterpret_cast<std::uintptr_t>(base)))
        one->begin.store(0);
}

void replace_pages(const void *base)
{
    const auto begin = reinterpret_cast<std::uintptr_t>(base);
    Guarded *const one = guard_at(begin);
    for (std::size_t at = 0; one != nullptr && at < one->size.load(); at += page_size)
        replace_page(one, begin + at);
}

bool pages_lost(const void *base)
{
    const Guarded *const one = guard_at(reinterpret_cast<std::uintptr_t>(base));
    return one != nullptr && one->lost.load();
}

} // namespace hostsim
