// SPDX-License-Identifier: GPL-3.0-or-later
//
// Part of the hook: tells on standard output, "call NAME" a line, the calls
// whose order the start of the program owes to the host.
#include <cstdint>
#include <cstring>

#include <dlfcn.h>
#include <sys/mman.h>
#include <unistd.h>

#include <QString>

#include "host/operations.h"
#include "host/vornaxqt.h"

namespace
{

// By hand: the first of them comes before the toolkit is up.
void tell_call(const char *line)
{
    const std::size_t length = std::strlen(line);
    if (write(STDOUT_FILENO, line, length) != static_cast<ssize_t>(length))
        _exit(99); // nobody listens any more
}

template <typename Function> Function next(const char *name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

bool is_display_env_var_empty(QString program)
{
    tell_call("call is_display_env_var_empty\n");
    return next<bool (*)(QString)>("_Z24is_display_env_var_empty7QString")(program);
}

int32_t join_layer(int32_t layer)
{
    tell_call(layer == 3 ? "call join_layer 3\n" : "call join_layer of another layer\n");
    return next<int32_t (*)(int32_t)>("join_layer")(layer);
}

void exit_auth_failure()
{
    tell_call("call exit_auth_failure\n");
    next<void (*)()>("exit_auth_failure")();
    _exit(98);
}

int munlockall() noexcept
{
    tell_call("call munlockall\n");
    return next<int (*)()>("munlockall")();
}

// The first of the window's construction alone.
void *get_shrd_mem(int32_t id, int32_t options)
{
    static bool told = false;
    if (!told)
        tell_call("call get_shrd_mem\n");
    told = true;
    return next<void *(*)(int32_t, int32_t)>("get_shrd_mem")(id, options);
}
