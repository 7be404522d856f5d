#include "KilledProcess.h"

#include <csignal>
#include <cstdio>
#include <sys/wait.h>
#include <unistd.h>

int CountUntilKilled(const std::function<void(const std::function<void()> &done)> &work, unsigned microseconds)
{
    int ends[2];
    if (pipe(ends) != 0)
        return -1;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0)
    {
        work([end = ends[1]] { static_cast<void>(write(end, "x", 1) == 1); });
        _exit(0);
    }
    close(ends[1]);
    usleep(microseconds);
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
    int count = 0;
    for (char byte = 0; read(ends[0], &byte, 1) == 1;)
        ++count;
    close(ends[0]);
    return count;
}
