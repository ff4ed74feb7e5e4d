// SPDX-License-Identifier: GPL-3.0-or-later
//
// Runs a piece of a test in a process of its own.
#ifndef TESTS_HOSTSIM_RUNTIME_CHILD_H
#define TESTS_HOSTSIM_RUNTIME_CHILD_H

#include <csignal>
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

// A process that has done something and goes on living, until it is killed.
class LivingChild
{
public:
    template <typename Function> explicit LivingChild(Function function)
    {
        int ends[2] = {-1, -1};
        if (pipe(ends) != 0)
            return;
        m_pid = fork();
        if (m_pid == 0) {
            const char done = function() ? 'y' : 'n';
            if (write(ends[1], &done, 1) != 1)
                _exit(1);
            for (;;)
                pause();
        }
        char answer = 'n';
        close(ends[1]);
        m_done = read(ends[0], &answer, 1) == 1 && answer == 'y';
        close(ends[0]);
    }
    ~LivingChild() { kill(); }
    LivingChild(const LivingChild &) = delete;
    LivingChild &operator=(const LivingChild &) = delete;

    bool done() const { return m_done; } // what the function said
    void kill()
    {
        if (m_pid <= 0)
            return;
        ::kill(m_pid, SIGKILL);
        waitpid(m_pid, nullptr, 0);
        m_pid = -1;
    }

private:
    pid_t m_pid = -1;
    bool m_done = false;
};

#endif
