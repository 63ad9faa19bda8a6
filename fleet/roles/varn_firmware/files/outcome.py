"""Judges how an update went, from all that is known of it. What is not proven is unclear."""

import re

# What flash-server.exp ends with, as it says at its top. Whatever else it ends with, ENTER may have been typed.
WRONG_USAGE = 2
SESSIONS = {0: "flashed", 1: "refused", 2: "not started", 3: "not started", 4: "unclear", 5: "lost"}

# What is known after a flash. A row says what one of them may hold, the first value is the harmless one.
FACTS = {
    "session": ("flashed", "refused", "not started", "unclear", "lost"),
    "ended": ("yes", "no", "unreachable"),         # the core program, and all that it has left
    "boot": ("same", "other", "unknown"),          # of the server, since the flash began
    "reboot": ("none", "done", "failed"),          # of the Varn
    "verified": ("none", "yes", "no", "failed"),   # the answer of varn_firmware_verify_command
}

# The first row that fits counts: the facts, the outcome, and what is added to the line of the session.
JUDGEMENTS = (
    ({"session": "not started"}, "not started", ""),
    ({"ended": "no"}, "unclear", "varnflash is still at work; wait, look at this controller, and start no other flash"),
    ({"ended": "unreachable"}, "unclear", "the server cannot be reached; look at this controller"),
    ({"boot": "other"}, "unclear", "the server was rebooted in the middle; look at this controller"),
    ({"boot": "unknown"}, "unclear", "was the server rebooted in the middle? Look at this controller"),
    ({"session": "unclear"}, "unclear", "varnflash has ended; look at this controller"),
    ({"session": "refused"}, "refused", ""),
    ({"verified": "no"}, "unclear", "varn_firmware_verify_match does not match; look at this controller"),
    ({"verified": "failed"}, "unclear", "varn_firmware_verify_command gives no answer; look at this controller"),
    ({"session": "lost", "verified": "none"}, "unclear", "varnflash has ended; look at this controller"),
    ({"reboot": "failed"}, "not rebooted", ""),
    ({"session": "lost", "verified": "yes"}, "flashed", "but it is verified"),
    ({"session": "flashed"}, "flashed", ""),
    ({}, "unclear", "look at this controller"),
)

# What a session that did not come to the menu ends with, and what to do for it.
ADVICE = {
    "PTY allocation request failed": 'set "PermitTTY yes" for this login in sshd_config(5)',
    "unknown terminal type": 'the server needs the terminfo of "xterm" (Debian\'s package ncurses-base)',
    "varnmenu: Permission denied": "is it mounted noexec?",
}


def session(server, status, printed):
    """What a session of flash-server.exp is in the facts, and its line. If it has not said so, too, it is lost."""
    found = SESSIONS.get(status, "lost")
    prefix = f"{server}: {'unclear' if found == 'lost' else found}: "
    if printed.startswith(prefix):
        line = printed[len(prefix):]
        advice = [todo for said, todo in ADVICE.items() if found == "not started" and said in line]
        return found, "; ".join([line.rstrip(), *advice])
    return "not started" if status == WRONG_USAGE else "lost", printed


def judge(facts):
    """The outcome, and what is to be added to the line of the session."""
    for condition, outcome, addition in JUDGEMENTS:
        if all(facts[name] == value for name, value in condition.items()):
            return outcome, addition
    raise AssertionError


def answer(status, output, match, statuses=(0,)):
    """What a command of the user's says: "yes", if a whole line of its output matches."""
    if status not in statuses:
        return "failed"
    return "yes" if any(re.fullmatch(match, line.strip()) for line in output.splitlines()) else "no"
