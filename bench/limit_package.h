#pragma once

#include <stdbool.h>

// What limit.c takes from the firmware package around its working directory.

typedef struct {
    char *firmware, *sdr, *systemName, *image;
} release_t;

// The values of the release file, once it has been read.
extern release_t release;

bool readReleaseFile(void);
bool isImageThere(void);

// Runs the core program as varnmenu does at the start.
// Returns its status, or -1.
int runCoreProgram(void);
