#include "harness/job.hpp"

#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>

int statusOfJob(const std::function<void(pid_t shell)>& work) {
    std::signal(SIGTTOU, SIG_IGN);
    const pid_t shell = getpid();
    const pid_t job = fork();
    if (job == 0) {
        setpgid(0, 0);
        tcsetpgrp(STDIN_FILENO, getpid());
        work(shell);
        std::exit(0);
    }
    int status = -1;
    waitpid(job, &status, WUNTRACED);
    if (WIFSTOPPED(status)) {
        kill(job, SIGKILL);
    }
    return status;
}
