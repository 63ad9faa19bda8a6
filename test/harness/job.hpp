#pragma once

#include <sys/types.h>

#include <functional>

/// Plays a shell for a job: runs it in the foreground of the terminal at standard input. SIGTTOU is
/// ignored by both from here on, so each may give the terminal to the other.
/// @param work what the job does, with the process group of the shell
/// @return the wait status of the job, which is killed if it has stopped
int statusOfJob(const std::function<void(pid_t shell)>& work);
