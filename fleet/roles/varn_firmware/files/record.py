"""Keeps a server's record of its flashes, on that server: what a run has begun there outlasts the run.

  python3 record.py ACTION REQUEST      prints a JSON object; REQUEST is one, too

  look     what the server is, whether a flash is at work, and what the record says about this request
  begin    writes that the flash of this request begins, unless "look" would not go on any more
  end      writes the outcome of what has begun

The record is a file of root's in FOLDER. It is synced before a flash begins, and never half written.
Standard library only, for each Python from 3.5 on. Anything that goes wrong is said on standard error.
"""

import contextlib
import errno
import fcntl
import glob
import json
import os
import pwd
import stat
import sys
import time

FOLDER = "/var/lib/varn-firmware"
LOCK = "/run/varnmenu.lock"
BOOT_ID = "/proc/sys/kernel/random/boot_id"
MACHINE_ID = "/etc/machine-id"
CORE_PROGRAM = "varnflash"

# What a state of the record means for a new request, by: state, and whether it is the same package and entry.
# GO flashes. FLASHED is "flashed before", if the request does not say "again". What a person has to look at
# first (UNCLEAR, REBOOT) needs an acknowledgement.
GO, FLASHED, UNCLEAR, REBOOT = "go on", "flashed before", "unclear", "not rebooted"
DECISIONS = {
    # state          same     other
    "none":         (GO,      GO),
    "not started":  (GO,      GO),
    "refused":      (GO,      GO),
    "acknowledged": (GO,      GO),
    "flashed":      (FLASHED, GO),
    "rebooting":    (REBOOT,  REBOOT),
    "not rebooted": (REBOOT,  REBOOT),
    "begun":        (UNCLEAR, UNCLEAR),
    "unclear":      (UNCLEAR, UNCLEAR),
    "damaged":      (UNCLEAR, UNCLEAR),
}
TEXTS = ("state", "sha256", "release", "entry", "server", "run", "line", "boot_id", "machine_id", "begun", "ended")
WHAT_THE_PACKAGE_IS = ("sha256", "release", "entry", "server", "run")


class Refused(Exception):
    """With the sentence that the administrator is to read."""


# ---- what is decided -------------------------------------------------------

def decide(record, request):
    """What is to be done: one of the decisions above, or "same server"; and a line that says why."""
    state = record["state"]
    if record.get("run") == request["run"] and record["server"] != request["server"]:
        return "same server", "same server as " + record["server"]
    same = all(record.get(key) == request[key] for key in ("sha256", "entry"))
    decision = DECISIONS[state][0 if same else 1]
    if decision == FLASHED and request["again"] or decision in (UNCLEAR, REBOOT) and request["acknowledged"]:
        return GO, ""
    return decision, describe(state, record)


def describe(state, record):
    if state in DECISIONS and DECISIONS[state][0] == GO:
        return ""
    if state == "damaged":
        return "the record of this server cannot be used ({}); look at this server".format(record["line"])
    begun = "run {} of {}".format(record["run"], record["begun"])
    if state == "flashed":
        return "{}; flashed by {}".format(record["line"], begun)
    if state in ("begun", "rebooting"):
        what = "a flash" if state == "begun" else "a reboot of the Varn"
        return "{} of release {} was begun by {}, and nobody has seen its end".format(what, record["release"], begun)
    return "{} ({})".format(record["line"], begun)


# ---- the record ------------------------------------------------------------

def require_safe_folder(path):
    found = os.lstat(path)
    if not stat.S_ISDIR(found.st_mode) or found.st_uid != os.geteuid() or found.st_mode & 0o022:
        raise Refused("{} is a link, or somebody else may write there; it has to be a folder of root's"
                      .format(path))


@contextlib.contextmanager
def locked_folder(create):
    """A descriptor of the folder, locked meanwhile; None, if there is none and none is to be made."""
    folder = open_folder(create)
    try:
        if folder is not None:
            fcntl.flock(folder, fcntl.LOCK_EX)
        yield folder
    finally:
        if folder is not None:
            os.close(folder)


def open_folder(create):
    try:
        require_safe_folder(os.path.dirname(FOLDER))
        if create and not os.path.lexists(FOLDER):
            os.mkdir(FOLDER, 0o700)
        require_safe_folder(FOLDER)
        return os.open(FOLDER, os.O_RDONLY | os.O_DIRECTORY | os.O_NOFOLLOW)
    except FileNotFoundError:
        if create:
            raise
        return None


def damaged(reason):
    return {"state": "damaged", "line": reason}


def read_record(folder):
    """The record, which has all of TEXTS unless its state is "none" or "damaged"."""
    record = record_in(folder)
    if record.get("machine_id", content_of(MACHINE_ID)) != content_of(MACHINE_ID):
        return damaged("it is about another machine")  # a copied system, or one that was installed again
    return record


def record_in(folder):
    if folder is None:
        return {"state": "none"}
    try:
        file = os.open("record.json", os.O_RDONLY | os.O_NOFOLLOW | os.O_NONBLOCK, dir_fd=folder)
    except FileNotFoundError:
        return {"state": "none"}
    except OSError as error:
        return damaged(error.strerror)
    with os.fdopen(file, "rb") as content:
        found = os.fstat(file)
        if not stat.S_ISREG(found.st_mode) or found.st_uid != os.geteuid() or found.st_mode & 0o077:
            return damaged("it is not a file that only root can read and write")
        try:
            record = json.loads(content.read().decode())
        except ValueError:
            return damaged("it is no JSON")
    if not isinstance(record, dict) or sorted(record) != sorted(TEXTS) \
            or not all(isinstance(text, str) for text in record.values()) \
            or record["state"] not in DECISIONS or record["state"] in ("none", "damaged"):
        return damaged("it does not hold what it has to")
    return record


def write_synced(folder, name, text):
    """A reader sees the old file or the new one; after this, a loss of power does not take it back."""
    file = os.open(name + ".new", os.O_WRONLY | os.O_CREAT | os.O_TRUNC | os.O_NOFOLLOW, 0o600, dir_fd=folder)
    with os.fdopen(file, "w") as content:
        os.fchmod(file, 0o600)
        content.write(text)
        content.flush()
        os.fsync(file)
    os.rename(name + ".new", name, src_dir_fd=folder, dst_dir_fd=folder)
    os.fsync(folder)


def write_record(folder, record):
    write_synced(folder, "record.json", json.dumps({key: record[key] for key in TEXTS}, indent=4) + "\n")


# ---- what the server is ----------------------------------------------------

def content_of(path):
    """A process may be named with any bytes."""
    try:
        with open(path, errors="replace") as file:
            return file.read().strip()
    except OSError:
        return ""


def boot_id():
    found = content_of(BOOT_ID)
    if not found:
        raise Refused("{} cannot be read; it tells whether the server is rebooted during a flash".format(BOOT_ID))
    return found


def identity(folder, create):
    """Two names of one server have the same. The random part tells systems apart that were cloned."""
    path = FOLDER + "/id"
    if create and not os.path.lexists(path):
        write_synced(folder, "id", os.urandom(16).hex() + "\n")
    return " ".join([content_of(MACHINE_ID), boot_id(), content_of(path)])


# ---- a flash at work -------------------------------------------------------

def processes_of(name):
    """Those that have not ended: a zombie writes nothing."""
    found = []
    for path in glob.glob("/proc/[0-9]*/stat"):
        head, _, tail = content_of(path).rpartition(")")
        number, _, called = head.partition(" (")
        if called == name and tail.split()[:1] != ["Z"]:
            found.append(number)
    return sorted(found, key=int)


def at_work():
    """Says which flash is at work; empty, if there is none. The menu locks the file while one is."""
    try:
        lock = os.open(LOCK, os.O_RDONLY | os.O_NOFOLLOW | os.O_NONBLOCK)
    except FileNotFoundError:
        lock = None
    if lock is not None:
        try:
            fcntl.flock(lock, fcntl.LOCK_SH | fcntl.LOCK_NB)
        except OSError as error:
            if error.errno not in (errno.EWOULDBLOCK, errno.EACCES):
                raise
            return "another flash or reboot is at work there; \"fuser -v {}\" names it".format(LOCK)
        finally:
            os.close(lock)
    running = processes_of(CORE_PROGRAM)
    if running:
        return "{} is at work there already (process {}); wait until it has ended".format(
            CORE_PROGRAM, ", ".join(running))
    return ""


# ---- actions ---------------------------------------------------------------

def now():
    return time.strftime("%Y-%m-%dT%H:%M:%SZ", time.gmtime())


def request_part(request):
    return {key: request[key] for key in WHAT_THE_PACKAGE_IS}


def acknowledge(folder, record, request):
    """Kept at once: the next run knows it, even if nothing is flashed now."""
    if DECISIONS[record["state"]][0] in (UNCLEAR, REBOOT):
        write_record(folder, dict(
            dict.fromkeys(TEXTS, ""), **dict(
                request_part(request), state="acknowledged", line=describe(record["state"], record),
                ended=now(), machine_id=content_of(MACHINE_ID))))


def look(request):
    write = request["write"]
    with locked_folder(write) as folder:
        busy = at_work()
        record = read_record(folder)
        decision, line = decide(record, request)
        if write and request["acknowledged"] and decision == GO and not busy:
            acknowledge(folder, record, request)
        name = identity(folder, write)
    if decision == FLASHED and record["boot_id"] == boot_id():
        line += "; not rebooted since"
    return {"decision": decision, "line": line, "busy": busy, "identity": name,
            "boot_id": boot_id(), "boot_id_before": record.get("boot_id", ""),
            "machine": os.uname().machine}


def begin(request):
    with locked_folder(True) as folder:
        busy = at_work()
        if busy:
            raise Refused(busy)
        decision, line = decide(read_record(folder), request)
        if decision != GO:
            raise Refused("another run has been here: " + line)
        write_record(folder, dict(request_part(request), state="begun", line="", begun=now(), ended="",
                                  boot_id=boot_id(), machine_id=content_of(MACHINE_ID)))
    return {}


def end(request):
    with locked_folder(True) as folder:
        record = read_record(folder)
        if record["state"] not in ("begun", "rebooting") or record["run"] != request["run"] \
                or record["server"] != request["server"]:
            return {"written": False}  # it has not begun, or the record is not about this flash any more
        write_record(folder, dict(record, state=request["state"], line=request["line"], ended=now()))
    return {"written": True}


def require_root():
    if os.geteuid() != 0:
        raise Refused("logged in as {}; the menu works for root only: set ansible_user to root".format(
            pwd.getpwuid(os.geteuid()).pw_name))


def main(action, request):
    try:
        require_root()
        print(json.dumps({"look": look, "begin": begin, "end": end}[action](json.loads(request))))
    except (Refused, OSError) as failure:
        sys.exit(str(failure))


if __name__ == "__main__":
    main(*sys.argv[1:])
