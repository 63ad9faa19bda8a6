"""Keeps the report of a run, in a folder of its own: report.csv, report.json and report.xml (JUnit).

  report.py start FOLDER PROCESS < NAMES   makes the folder of the run of ansible-playbook, PROCESS, below
                                           FOLDER, once; prints its path and the run's identifier as JSON
  report.py rows RUN_FOLDER < ROWS         sets what is known of some servers, an object of objects
  report.py names RUN_FOLDER < IDENTITIES  which server came first with each identity, by name, as JSON
  report.py summary RUN_FOLDER < ROWS      does so, too; prints them, how many of each outcome there are in
                                           the run, and what to do next

What cannot be written is said, and the results are printed all the same.
"""

import contextlib
import csv
import fcntl
import io
import json
import os
import re
import shutil
import sys
import time
from xml.etree import ElementTree

COLUMNS = ("server", "outcome", "seconds", "line", "release", "sha256", "start", "end")
UNTRIED = {"outcome": "not tried", "seconds": 0, "line": "", "release": "", "sha256": "", "start": "", "end": ""}
GOOD = ("flashed", "flashed before", "unchanged", "checked")
ADVICE = {
    "refused": "Read what the core program says, in SERVER.log; remove the cause, and run the same command again.",
    "not started": "Nothing was begun. Remove the cause that the line names, and run the same command again.",
    "not tried": "Run the same command again.",
    "same server": "Leave one of the names out of the inventory.",
    "unclear": "Look at the controllers first. Then run the same command again, once, with\n"
               "  -e varn_firmware_acknowledge={servers}",
    "not rebooted": "Look at the controllers first. Then run the same command again, once, with\n"
                    "  -e varn_firmware_acknowledge={servers}",
}
ESCAPE_SEQUENCE = re.compile(r"\x1b(\[[0-?]*[ -/]*[@-~]|\][^\x07\x1b]*(\x07|\x1b\\)|[ -/]*[0-~])")
CONTROL = re.compile(r"[\x00-\x1f\x7f-\x9f\u2028\u2029\ud800-\udfff\ufffe\uffff]")


def plain(text):
    """One line of text without control characters, whatever a server has sent."""
    return " ".join(CONTROL.sub(" ", ESCAPE_SEQUENCE.sub("", text)).split())


def now():
    return time.strftime("%Y-%m-%dT%H:%M:%S%z")


# ---- formats ---------------------------------------------------------------

def cell(value):
    """A spreadsheet would calculate what begins like a formula."""
    return "'" + value if str(value).startswith(("=", "+", "-", "@")) else value


def as_csv(rows):
    text = io.StringIO()
    table = csv.writer(text, lineterminator="\n")
    table.writerow(COLUMNS)
    table.writerows([cell(row[column]) for column in COLUMNS] for row in rows)
    return text.getvalue()


def as_junit(rows):
    """CI servers and dashboards show it: a test case for each server."""
    count = {"failures": 0, "skipped": 0}
    suite = ElementTree.Element("testsuite", name="varn_firmware", tests=str(len(rows)))
    for row in rows:
        case = ElementTree.SubElement(suite, "testcase", classname="varn_firmware",
                                      name=plain(row["server"]), time=str(row["seconds"]))
        said = f"{row['outcome']}: {row['line']}"
        if row["outcome"] == "not tried":
            count["skipped"] += 1
            ElementTree.SubElement(case, "skipped", message=said)
        elif row["outcome"] not in GOOD:
            count["failures"] += 1
            ElementTree.SubElement(case, "failure", message=said)
        else:
            ElementTree.SubElement(case, "system-out").text = said
    for name, value in count.items():
        suite.set(name, str(value))
    return ElementTree.tostring(suite, encoding="unicode") + "\n"


def replace(path, text):
    """A reader sees the old file or the new one, never half of it."""
    with open(path + ".new", "w", encoding="utf-8") as file:
        file.write(text)
    os.replace(path + ".new", path)


# ---- a report --------------------------------------------------------------

@contextlib.contextmanager
def locked(folder):
    descriptor = os.open(folder, os.O_RDONLY)
    try:
        fcntl.flock(descriptor, fcntl.LOCK_EX)
        yield
    finally:
        os.close(descriptor)


def read_json(path):
    """What the file holds, {} if there is none. A damaged one is moved aside."""
    try:
        with open(path, encoding="utf-8") as file:
            return json.load(file)
    except FileNotFoundError:
        return {}
    except ValueError:
        os.replace(path, f"{path}.damaged-{time.time_ns()}")
        return {}


def read_rows(folder):
    """The rows by server. They are kept as a list, in the order of the inventory."""
    path = folder + "/report.json"
    rows = read_json(path)
    try:
        return {row["server"]: {column: row[column] for column in COLUMNS} for row in rows}
    except (TypeError, KeyError):
        os.replace(path, f"{path}.damaged-{time.time_ns()}")
        return {}


def set_rows(folder, changes):
    """Changes rows, given as objects by server: what is not mentioned stays. Returns them."""
    with locked(folder):
        rows = read_rows(folder)
        for server, change in changes.items():
            row = {"server": server, **UNTRIED, **rows.get(server, {}), **change}
            row.update(seconds=int(row["seconds"]), line=plain(row["line"]))
            rows[server] = row
        table = list(rows.values())
        replace(folder + "/report.json", json.dumps(table, indent=4) + "\n")
        replace(folder + "/report.csv", as_csv(table))
        replace(folder + "/report.xml", as_junit(table))
    return {server: rows[server] for server in changes}


# ---- a run -----------------------------------------------------------------

def start_of(process):
    """When a process has started, in clock ticks since the boot; empty, if it has ended."""
    try:
        with open(f"/proc/{process}/stat", encoding="utf-8", errors="replace") as file:
            return file.read().rpartition(")")[2].split()[19]
    except OSError:
        return ""


def make_run(folder, process):
    """The folder of a run carries the time of its first call. Its file "run" says whose it is."""
    owner = {"process": int(process), "start": start_of(process)}
    for name in sorted(os.listdir(folder), reverse=True):
        run = read_json(f"{folder}/{name}/run.json") if os.path.isdir(f"{folder}/{name}") and name != "latest" else {}
        if run.get("owner") == owner:
            return f"{folder}/{name}", run["run"]
        if run and start_of(run["owner"]["process"]) != run["owner"]["start"]:
            shutil.rmtree(f"{folder}/{name}/packages", ignore_errors=True)
    name = stem = time.strftime("%Y-%m-%dT%H-%M-%S")
    number = 1
    while os.path.lexists(f"{folder}/{name}"):
        number += 1
        name = f"{stem}-{number}"
    os.mkdir(f"{folder}/{name}")
    run = f"{name}-{os.urandom(3).hex()}"
    replace(f"{folder}/{name}/run.json", json.dumps({"run": run, "owner": owner}) + "\n")
    with contextlib.suppress(FileNotFoundError):
        os.unlink(folder + "/latest.new")
    os.symlink(name, folder + "/latest.new")
    os.replace(folder + "/latest.new", folder + "/latest")
    return f"{folder}/{name}", run


def start(folder, process, names):
    os.makedirs(folder, exist_ok=True)
    with locked(folder):
        path, run = make_run(folder, process)
    known = read_rows(path)
    set_rows(path, {name: {} for name in names if name not in known})
    flashed = sum(row["outcome"] == "flashed" for row in known.values())
    return {"folder": path, "run": run, "flashed": flashed, "player": process, "player_start": start_of(process)}


def first_names(folder, identities):
    """A server that is in the inventory under two names is flashed under the first one only."""
    with locked(folder):
        seen = read_json(folder + "/identities.json")
        first = {name: seen.setdefault(identity, name) for name, identity in identities.items()}
        replace(folder + "/identities.json", json.dumps(seen, indent=4) + "\n")
    return first


def write_rows(folder, changes):
    """Says why not, or nothing."""
    try:
        set_rows(folder, changes)
        return []
    except OSError as failure:
        return [f"The report cannot be written: {failure}"]


def summary(folder, changes):
    complaint = write_rows(folder, changes)
    with contextlib.suppress(OSError):
        changes = {**read_rows(folder), **changes}
    servers = {}
    for server, row in changes.items():
        servers.setdefault(row["outcome"], []).append(server)
    lines = [f"{server}: {row['outcome']}, {row['seconds']} s: {plain(row['line'])}" for server, row in changes.items()
             if row["outcome"] != "not tried"]
    lines += [", ".join(f"{len(names)} {outcome}" for outcome, names in servers.items()) + f"; see {folder}"]
    bad = set(servers) - {*GOOD, "not tried"}  # without any, the run goes on
    for outcome, advice in ADVICE.items():
        if bad and outcome in servers:
            lines += f"{outcome}: {advice}".format(servers=",".join(servers[outcome])).splitlines()
    return {"lines": complaint + lines, "good": set(servers) <= set(GOOD)}


def main(action, *words):
    os.umask(0o077)
    given = json.load(sys.stdin)
    actions = {"start": start, "rows": write_rows, "names": first_names, "summary": summary}
    result = actions[action](*words, given)
    print(json.dumps(result))


if __name__ == "__main__":
    main(*sys.argv[1:])
