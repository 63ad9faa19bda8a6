// The least that a program has to do to show the main menu: the yardstick of the bench, never
// shipped. It asks the system for what every menu needs and draws the same bytes as varnmenu, but
// has no second menu, no documents and no flash, ignores signals and hardly checks for errors.
//
//   limit             the bare menu
//   limit watch       opens an epoll descriptor for each key and never closes it, as varnmenu does
//   limit terminfo    also writes with putp, and makes for each key the same system calls

#include <curses.h>
#include <poll.h>
#include <stdbool.h>
#include <stdio.h>
#include <string.h>
#include <sys/epoll.h>
#include <sys/ioctl.h>
#include <term.h>
#include <termios.h>
#include <unistd.h>

#include "limit_package.h"

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

static enum { bare, watching, onTerminfo } form;

static struct termios ownMode;

static struct {
    const char *clear, *hide, *show, *save, *toStart, *bold, *reverse, *reset, *up, *down;
    char white[16], onBlue[16], red[16], blue[16], toTop[16];
} sequence;

static char buffer[8192];  // one drawing, which is one write
static size_t used;

static int selected;  // shown number of the highlighted entry, 0 for none

static void put(const char* text) {
    if (form == onTerminfo) {
        putp(text);
        return;
    }
    const size_t length = strlen(text);
    memcpy(buffer + used, text, length);
    used += length;
}

static void putDigit(int digit) { put((const char[]){(char)('0' + digit), '\0'}); }

static bool flush(void) {
    if (form == onTerminfo) {
        return fflush(stdout) == 0;
    }
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

static void putHeader(void) {
    put(sequence.bold);
    put(sequence.white);
    put(sequence.onBlue);
    put("       This tool will update Varn FW --> Rel. ");
    put(release.firmware);
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
    put(release.firmware);
    put("  SDRR: ");
    put(release.sdr);
    put("  for ");
    put(release.systemName);
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
    struct winsize window = {0};
    if (form == onTerminfo && ioctl(STDOUT_FILENO, TIOCGWINSZ, &window) == 0 &&
        window.ws_row <= lineCount) {
        put(sequence.clear);
    } else {
        put(sequence.save);
        put(sequence.toStart);
        put(sequence.toTop);
    }
    return drawMenu();
}

// Returns false for a key that ends the menu.
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

// Sets the mode again if somebody has changed it, and waits until the drawing has been sent.
static void settle(void) {
    struct termios now;
    if (tcgetattr(STDIN_FILENO, &now) == 0 && now.c_lflag != ownMode.c_lflag) {
        tcsetattr(STDIN_FILENO, TCSANOW, &ownMode);
    }
    tcdrain(STDOUT_FILENO);
}

// Discards what was typed before, or what follows the bytes of a key.
static void readRest(void) {
    char bytes[64];
    while (read(STDIN_FILENO, bytes, sizeof bytes) > 0) {
    }
}

static ssize_t readKey(char* key, size_t size) {
    const ssize_t length = read(STDIN_FILENO, key, size);
    if (form == onTerminfo && length > 0 && *key == '\033') {
        readRest();
    }
    return length;
}

static ssize_t awaitKeyByPoll(char* key, size_t size) {
    struct pollfd keyboard = {STDIN_FILENO, POLLIN, 0};
    readRest();
    poll(&keyboard, 1, -1);
    return readKey(key, size);
}

static ssize_t awaitKeyByWatch(char* key, size_t size) {
    const int watch = epoll_create1(EPOLL_CLOEXEC);
    struct epoll_event event = {.events = EPOLLIN};
    epoll_ctl(watch, EPOLL_CTL_ADD, STDIN_FILENO, &event);
    if (form == onTerminfo) {
        settle();
    }
    readRest();
    epoll_wait(watch, &event, 1, -1);
    const ssize_t length = readKey(key, size);
    epoll_ctl(watch, EPOLL_CTL_DEL, STDIN_FILENO, NULL);
    return length;
}

static void showMenu(void) {
    ssize_t (*const awaitKey)(char*, size_t) = form == bare ? awaitKeyByPoll : awaitKeyByWatch;
    put(sequence.clear);
    put(sequence.hide);
    put(sequence.reset);
    put(sequence.clear);
    put(sequence.hide);
    for (bool goesOn = drawMenu(); goesOn;) {
        char key[64];
        const ssize_t length = awaitKey(key, sizeof key);
        goesOn = length > 0 && takeKey(key, (size_t)length) && redrawMenu();
    }
    put(sequence.clear);
    put(sequence.show);
    flush();
}

int main(int argc, char** argv) {
    if (argc > 1) {
        form = strcmp(argv[1], "terminfo") == 0 ? onTerminfo : watching;
        setvbuf(stdout, buffer, _IOFBF, sizeof buffer);
    }
    struct termios user;
    if (tcgetattr(STDIN_FILENO, &user) != 0) {
        return 1;
    }
    ownMode = user;
    ownMode.c_lflag &= ~(tcflag_t)(ISIG | ICANON | ECHO);
    ownMode.c_cc[VMIN] = 0;
    ownMode.c_cc[VTIME] = 0;
    tcsetattr(STDIN_FILENO, TCSANOW, &ownMode);
    const bool isFit = setupterm(NULL, STDOUT_FILENO, NULL) == OK && readReleaseFile() &&
                       isImageThere() && access("./varnflash", F_OK) == 0 &&
                       runCoreProgram() == 0 && getuid() == 0;
    if (isFit) {
        loadSequences();
        showMenu();
    }
    tcsetattr(STDIN_FILENO, TCSANOW, &user);
    return 0;
}
