#include "support/spawn_file_actions.hpp"

#include <unistd.h>

#include <initializer_list>

spawn_file_actions::~spawn_file_actions() {
    if (initialised) {
        posix_spawn_file_actions_destroy(&actions);
    }
}

void spawn_file_actions::openNullDevice(int openFlags) {
    initialised = posix_spawn_file_actions_init(&actions) == 0;
    if (initialised) {
        for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) {
            posix_spawn_file_actions_addopen(&actions, descriptor, "/dev/null", openFlags, 0);
        }
    }
}
