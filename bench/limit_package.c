#define _GNU_SOURCE
#include "limit_package.h"

#include <fcntl.h>
#include <spawn.h>
#include <stdlib.h>
#include <string.h>
#include <sys/wait.h>
#include <unistd.h>

release_t release;

static char file[4096];  // the release file, its values cut out in place

// The value of a "KEY=value" line, without its quotes.
static char* value(char* line, const char* key) {
    const size_t length = strlen(key);
    if (strncmp(line, key, length) != 0) {
        return NULL;
    }
    char* to = line + length;
    for (const char* from = to; *from != '\0'; ++from) {
        if (*from != '"' && *from != '\r') {
            *to++ = *from;
        }
    }
    *to = '\0';
    return line + length;
}

bool readReleaseFile(void) {
    const int input = open("../releasefile-information.txt", O_RDONLY | O_CLOEXEC);
    const ssize_t length = read(input, file, sizeof file - 1);
    close(input);
    char* rest = NULL;
    for (char* line = length > 0 ? strtok_r(file, "\n", &rest) : NULL; line != NULL;
         line = strtok_r(NULL, "\n", &rest)) {
        char* found = NULL;
        if ((found = value(line, "VARN_RELEASE=")) != NULL) {
            release.firmware = found;
        } else if ((found = value(line, "SDR_RELEASE=")) != NULL) {
            release.sdr = found;
        } else if ((found = value(line, "SYSTEM=")) != NULL) {
            release.systemName = found;
        } else if ((found = value(line, "IMAGE_NAME=")) != NULL) {
            release.image = found;
        }
    }
    return release.firmware != NULL && release.sdr != NULL && release.systemName != NULL &&
           release.image != NULL;
}

bool isImageThere(void) {
    static char path[4200] = "../";
    strcat(path, release.image);
    return access(path, F_OK) == 0;
}

int runCoreProgram(void) {
    static char path[4096] = "PATH=", term[128] = "TERM=", directory[4200] = "PWD=";
    strncat(path, getenv("PATH"), sizeof path - sizeof "PATH=");
    strncat(term, getenv("TERM"), sizeof term - sizeof "TERM=");
    if (getcwd(directory + 4, 4096) == NULL) {
        return -1;
    }
    char* const words[] = {"./varnflash", "/ispfr", NULL};
    char* const variables[] = {path, term, directory, "LANG=en_US.UTF-8", NULL};
    pid_t child = 0;
    int status = 0;
    if (posix_spawn(&child, words[0], NULL, NULL, words, variables) != 0 ||
        waitpid(child, &status, 0) != child || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}
