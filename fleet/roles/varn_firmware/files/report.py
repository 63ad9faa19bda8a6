"""Keeps the report of a run, report.csv and report.json in FOLDER: a row for each server.

  report.py FOLDER
      Writes it anew. Standard input is a JSON object: a result (outcome, seconds, line) by server.

  report.py FOLDER SERVER RUN MEANWHILE OTHERWISE COMMAND [WORD...]
      Runs a session of flash-server.exp, and writes the row of SERVER as soon as it has ended: other
      sessions may take much longer. Until then the outcome of the row is MEANWHILE. OTHERWISE, unless
      it is empty, stands for each outcome but "flashed". The result is printed as JSON.
      RUN is the process of ansible-playbook. When it is gone, or at SIGINT, SIGTERM or SIGHUP, the
      session is ended; a core program that is writing goes on to its end.
"""

import csv
import fcntl
import io
import json
import os
import re
import signal
import subprocess
import sys
import time

COLUMNS = ("server", "outcome", "seconds", "line")
WRONG_USAGE = 2
ESCAPE_SEQUENCE = re.compile(r"\x1b(\[[0-?]*[ -/]*[@-~]|\][^\x07\x1b]*(\x07|\x1b\\)|[ -/]*[0-~])")
CONTROL = re.compile(r"[\x00-\x1f\x7f-\x9f\u2028\u2029]")


def plain(text):
    """One line of text without control characters, whatever a server has sent."""
    return " ".join(CONTROL.sub(" ", ESCAPE_SEQUENCE.sub("", text)).split())


def cell(value):
    """A spreadsheet would calculate what begins like a formula."""
    return "'" + value if str(value).startswith(("=", "+", "-", "@")) else value


def as_csv(rows):
    text = io.StringIO()
    table = csv.writer(text, lineterminator="\n")
    table.writerow(COLUMNS)
    table.writerows([cell(row[column]) for column in COLUMNS] for row in rows)
    return text.getvalue()


def replace(path, text):
    """A reader sees the old file or the new one, never half of it."""
    with open(path + ".new", "w", encoding="utf-8") as file:
        file.write(text)
    os.replace(path + ".new", path)


class Report:
    """The rows by server. A "with" block locks them against other sessions, and writes them at its end."""

    def __init__(self, folder):
        self.folder = folder
        self.rows = {}

    def __enter__(self):
        self.lock = os.open(self.folder, os.O_RDONLY)
        fcntl.flock(self.lock, fcntl.LOCK_EX)
        try:
            with open(self.folder + "/report.json", encoding="utf-8") as file:
                self.rows = {row["server"]: row for row in json.load(file)}
        except FileNotFoundError:
            pass
        return self

    def __exit__(self, failure, *_):
        if failure is None:
            rows = list(self.rows.values())
            replace(self.folder + "/report.json", json.dumps(rows, indent=4) + "\n")
            replace(self.folder + "/report.csv", as_csv(rows))
        os.close(self.lock)

    def set(self, server, outcome, seconds, line):
        self.rows[server] = dict(zip(COLUMNS, (server, outcome, seconds, plain(line))))
        return self.rows[server]


def on_signals(handle):
    """What is ignored, as under nohup, stays ignored."""
    for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
        if signal.getsignal(number) != signal.SIG_IGN:
            signal.signal(number, handle)


def run_session(server, run, command):
    """Returns the outcome and the line that go with it."""
    ended = []
    on_signals(lambda number, _: ended.append(number))
    # A session of its own: a key typed for ansible-playbook reaches nobody but this process.
    input_of_session, end_of_input = os.pipe()
    process = subprocess.Popen(
        command, stdin=input_of_session, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
        text=True, encoding="utf-8", errors="replace", start_new_session=True)
    os.close(input_of_session)
    while True:
        if end_of_input and (ended or not os.path.exists(f"/proc/{run}")):
            os.close(end_of_input)
            end_of_input = None
        try:
            printed = process.communicate(timeout=0.2)[0]
            break
        except subprocess.TimeoutExpired:
            pass
    for outcome in ("flashed", "refused", "not started", "unclear"):
        before, found, line = printed.partition(f"{server}: {outcome}: ")
        if found and not before:
            return outcome, line
    return "not started" if process.returncode == WRONG_USAGE else "unclear", printed


def session(folder, server, run, meanwhile, otherwise, *command):
    begin = time.monotonic()
    with Report(folder) as report:
        before = report.rows.get(server, {}).get("seconds", 0)
        report.set(server, meanwhile, before, "the run was ended during the session; look at this controller")
    outcome, line = run_session(server, run, command)
    if outcome != "flashed" and otherwise:
        outcome = otherwise
    with Report(folder) as report:
        row = report.set(server, outcome, before + round(time.monotonic() - begin), line)
    print(json.dumps(row))


def main(folder, *words):
    os.umask(0o077)
    if words:
        session(folder, *words)
        return
    results = json.load(sys.stdin)
    with Report(folder) as report:
        report.rows = {}
        for server, result in results.items():
            report.set(server, result["outcome"], result["seconds"], result["line"])


if __name__ == "__main__":
    main(*sys.argv[1:])
