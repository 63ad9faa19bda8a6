// The least that a program has to do to show the main menu: the yardstick of the bench, nothing to
// ship. It takes what every menu must take from the system and draws the same bytes as varnmenu,
// but has no second menu, no documents, no flash, no care for signals and hardly any for errors.
// With any argument it also makes a watch for each key and leaves it open, as varnmenu must.

#define _GNU_SOURCE
#include <curses.h>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <stdbool.h>
#include <stdlib.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/wait.h>
#include <term.h>
#include <termios.h>
#include <unistd.h>

enum { red = 1, blue = 4, white = 7 };
enum { entryCount = 8, lineCount = 14 };

// In the order of the screen; an empty one is a blank line without a number.
static const char* const entries[] = {
    "Normal Flash of inactive Image with version validation",
    "Forced Normal Flash of 1st Image",
    "Forced Normal Flash of 2nd Image",
    "Emergency Flash of both Images",
    "",
    "Readme",
    "Legal Documents",
    "",
    "Reboot Varn",
    "Exit",
};

static struct {
    const char *clear, *hide, *show, *save, *toStart, *bold, *reverse, *reset, *up, *down;
    char white[16], onBlue[16], red[16], blue[16], toTop[16];
} sequence;

static char file[4096];  // the release file, its values cut out in place
static char *firmware, *sdr, *systemName, *image;

static char buffer[8192];  // one drawing
static size_t used;

static int selected;  // shown number of the highlighted entry, 0 for none

static void put(const char* text) {
    const size_t length = strlen(text);
    memcpy(buffer + used, text, length);
    used += length;
}

static void putDigit(int digit) { buffer[used++] = (char)('0' + digit); }

static bool flush(void) {
    const bool isWritten = write(STDOUT_FILENO, buffer, used) == (ssize_t)used;
    used = 0;
    return isWritten;
}

static void loadSequences(void) {
    sequence.clear = tigetstr("clear");
    sequence.hide = tigetstr("civis");
    sequence.show = tigetstr("cnorm");
    sequence.save = tigetstr("sc");
    sequence.toStart = tigetstr("cr");
    sequence.bold = tigetstr("bold");
    sequence.reverse = tigetstr("rev");
    sequence.reset = tigetstr("sgr0");
    sequence.up = tigetstr("kcuu1");
    sequence.down = tigetstr("kcud1");
    const char* foreground = tigetstr("setaf");
    strcpy(sequence.white, tparm(foreground, white, 0, 0, 0, 0, 0, 0, 0, 0));
    strcpy(sequence.red, tparm(foreground, red, 0, 0, 0, 0, 0, 0, 0, 0));
    strcpy(sequence.blue, tparm(foreground, blue, 0, 0, 0, 0, 0, 0, 0, 0));
    strcpy(sequence.onBlue, tparm(tigetstr("setab"), blue, 0, 0, 0, 0, 0, 0, 0, 0));
    strcpy(sequence.toTop, tparm(tigetstr("cuu"), lineCount, 0, 0, 0, 0, 0, 0, 0, 0));
}

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

static bool readReleaseFile(void) {
    const int input = open("../releasefile-information.txt", O_RDONLY | O_CLOEXEC);
    const ssize_t length = read(input, file, sizeof file - 1);
    close(input);
    char* rest = NULL;
    for (char* line = length > 0 ? strtok_r(file, "\n", &rest) : NULL; line != NULL;
         line = strtok_r(NULL, "\n", &rest)) {
        char* found = NULL;
        if ((found = value(line, "VARN_RELEASE=")) != NULL) {
            firmware = found;
        } else if ((found = value(line, "SDR_RELEASE=")) != NULL) {
            sdr = found;
        } else if ((found = value(line, "SYSTEM=")) != NULL) {
            systemName = found;
        } else if ((found = value(line, "IMAGE_NAME=")) != NULL) {
            image = found;
        }
    }
    return firmware != NULL && sdr != NULL && systemName != NULL && image != NULL;
}

static bool isImageThere(void) {
    static char path[4200] = "../";
    strcat(path, image);
    return access(path, F_OK) == 0;
}

// Its status, or -1.
static int runCoreProgram(void) {
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

static void putHeader(void) {
    put(sequence.bold);
    put(sequence.white);
    put(sequence.onBlue);
    put("       This tool will update Varn FW --> Rel. ");
    put(firmware);
    put("       \n");
    put(sequence.reset);
}

static void putEntries(void) {
    int number = 0;
    for (size_t i = 0; i < sizeof entries / sizeof *entries; ++i) {
        const bool isEntry = *entries[i] != '\0';
        if (isEntry) {
            put("[");
            putDigit(++number);
            put("] ");
        }
        const bool isHighlighted = isEntry && number == selected;
        put(isHighlighted ? sequence.reverse : "");
        put(entries[i]);
        put(isHighlighted ? sequence.reset : "");
        put("\n");
        put(sequence.reset);
    }
}

static void putFooter(void) {
    put(sequence.bold);
    put("> ");
    if (selected != 0) {
        putDigit(selected);
    }
    put("\n");
    put(sequence.reset);
    put(sequence.red);
    put("Varn-FW: ");
    put(firmware);
    put("  SDRR: ");
    put(sdr);
    put("  for ");
    put(systemName);
    put("  \n");
    put(sequence.reset);
    put(sequence.blue);
    put("(c) 2026 Varn Firmware Tools\n");
    put(sequence.reset);
}

static bool drawMenu(void) {
    putHeader();
    putEntries();
    putFooter();
    return flush();
}

static bool redrawMenu(void) {
    put(sequence.save);
    put(sequence.toStart);
    put(sequence.toTop);
    return drawMenu();
}

// False for a key that ends the menu.
static bool takeKey(const char* key, size_t length) {
    const bool isSequence = length > 2 && key[0] == '\033';
    if (isSequence && memcmp(key + 2, sequence.up + 2, length - 2) == 0) {
        selected = selected > 1 ? selected - 1 : 1;
    } else if (isSequence && memcmp(key + 2, sequence.down + 2, length - 2) == 0) {
        selected = selected < entryCount ? selected + 1 : entryCount;
    } else if (length == 1 && *key > '0' && *key <= '0' + entryCount) {
        selected = *key - '0';
    } else {
        return false;
    }
    return true;
}

static void awaitKeyByPoll(void) {
    struct pollfd keyboard = {STDIN_FILENO, POLLIN, 0};
    poll(&keyboard, 1, -1);
}

static void awaitKeyByWatch(void) {
    const int watch = epoll_create1(EPOLL_CLOEXEC);
    struct epoll_event event = {.events = EPOLLIN};
    epoll_ctl(watch, EPOLL_CTL_ADD, STDIN_FILENO, &event);
    epoll_wait(watch, &event, 1, -1);
    epoll_ctl(watch, EPOLL_CTL_DEL, STDIN_FILENO, NULL);
}

static void showMenu(void (*awaitKey)(void)) {
    put(sequence.clear);
    put(sequence.hide);
    put(sequence.reset);
    put(sequence.clear);
    put(sequence.hide);
    for (bool goesOn = drawMenu(); goesOn;) {
        char key[64];
        while (read(STDIN_FILENO, key, sizeof key) > 0) {
            // What was typed earlier is thrown away.
        }
        awaitKey();
        const ssize_t length = read(STDIN_FILENO, key, sizeof key);
        goesOn = length > 0 && takeKey(key, (size_t)length) && redrawMenu();
    }
    put(sequence.clear);
    put(sequence.show);
    flush();
}

int main(int argc, char** argv) {
    (void)argv;
    struct termios user;
    if (tcgetattr(STDIN_FILENO, &user) != 0) {
        return 1;
    }
    struct termios raw = user;
    raw.c_lflag &= ~(tcflag_t)(ISIG | ICANON | ECHO);
    raw.c_cc[VMIN] = 0;
    raw.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &raw);
    const bool isFit = setupterm(NULL, STDOUT_FILENO, NULL) == OK && readReleaseFile() &&
                       isImageThere() && access("./varnflash", F_OK) == 0 &&
                       runCoreProgram() == 0 && getuid() == 0;
    if (isFit) {
        loadSequences();
        showMenu(argc > 1 ? awaitKeyByWatch : awaitKeyByPoll);
    }
    tcsetattr(STDIN_FILENO, TCSANOW, &user);
    return 0;
}
