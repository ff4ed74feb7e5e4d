// SPDX-License-Identifier: GPL-3.0-or-later
//
// Runs a piece of a test in a process of its own.
#ifndef TESTS_HOSTSIM_RUNTIME_CHILD_H
#define TESTS_HOSTSIM_RUNTIME_CHILD_H

#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

// Exit status of the function run in a child process, -1 when it was killed.
template <typename Function> int in_child(Function function)
{
    const pid_t child = fork();
    if (child == 0)
        _exit(function());
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFEXITED(status))
        return -1;
    return WEXITSTATUS(status);
}

#endif
