"""Updates one server through its menu, and does not trust its own eyes alone.

  session.py < JOB

JOB is a JSON object; vars/main.yml says what is in it. Prints the row of the server as JSON. The row is
written to the report at each step, so the report is right whenever the run is ended.

When the process of ansible-playbook is gone, or at SIGINT, SIGTERM or SIGHUP, the session at the menu is
ended; a core program that is writing goes on to its end, and the record on the server keeps that it has begun.
"""

import json
import os
import shlex
import signal
import subprocess
import sys
import time

import outcome as outcomes
import report

HERE = os.path.dirname(os.path.abspath(__file__))
RECORD = HERE + "/record.py"
DELAY = 2  # seconds between two looks at a server


class NoAnswer(Exception):
    """With what was said instead."""


class Session:
    def __init__(self, job):
        self.job = {key: int(value) if key.endswith(("_seconds", "_bytes", "patience")) else value
                    for key, value in job.items()}
        self.stopping = False
        self.begin, self.start = time.monotonic(), report.now()
        for number in (signal.SIGINT, signal.SIGTERM, signal.SIGHUP):
            if signal.getsignal(number) != signal.SIG_IGN:  # as under nohup
                signal.signal(number, self.stop)

    def stop(self, *_):
        self.stopping = True

    def is_stopped(self):
        if report.start_of(self.job["player"]) != self.job["player_start"]:
            self.stopping = True
        return self.stopping

    # ---- the report and the record

    def keep(self, outcome, line):
        """Writes the row and returns it. A full disk here must not hide what has happened there."""
        change = {"outcome": outcome, "line": line, "start": self.start, "end": report.now(),
                  "seconds": round(time.monotonic() - self.begin)}
        try:
            return report.set_rows(self.job["folder"], {self.job["server"]: change})[self.job["server"]]
        except OSError as failure:
            change["line"] = report.plain(f"{line}; the report cannot be written: {failure}")
            return {"server": self.job["server"], **change}

    def record(self, state, line):
        """Writes the record on the server. Returns what to add to the line, if that fails."""
        try:
            written = self.on_server("end", state=state, line=report.plain(line))["written"]
            return "" if written or state in ("refused", "not started") else "; its record is another one's by now"
        except NoAnswer as failure:
            return f"; its record still says that the flash has begun: {failure}"

    # ---- the server

    def record_command(self, action, **more):
        request = json.dumps({**self.job["request"], **more})
        words = " ".join(shlex.quote(word) for word in [self.job["python"], "-", action, request])
        return f"{self.job['ssh']} {shlex.quote(words)} <{shlex.quote(RECORD)}"

    def run(self, command):
        """Its exit status and output; None as status, when it takes too long."""
        try:
            done = subprocess.run(["sh", "-c", command], stdin=subprocess.DEVNULL, stdout=subprocess.PIPE,
                                  stderr=subprocess.PIPE, text=True, errors="replace", check=False,
                                  start_new_session=True, timeout=self.job["command_seconds"])
        except subprocess.TimeoutExpired:
            return None, "", "no answer in time"
        return done.returncode, done.stdout, done.stderr

    def on_server(self, action, **more):
        status, printed, complaint = self.run(self.record_command(action, **more))
        if status != 0:
            raise NoAnswer(report.plain(complaint or printed)[-300:] or f"status {status}")
        try:
            return json.loads(printed)
        except ValueError:
            raise NoAnswer(report.plain(printed)[-300:]) from None

    def ask(self, which):
        """The answer of a command of the user's, or "none"."""
        command = self.job[which + "_command"]
        if not command:
            return "none"
        status, printed, _ = self.run(f"{self.job['ssh']} {shlex.quote(command)}")
        return outcomes.answer(status, printed, self.job[which + "_match"], self.job[which + "_status"])

    # ---- the menu

    def at_menu(self, entry, success, before=""):
        """A session of flash-server.exp: what it is in the facts, and its line."""
        words = [HERE + "/flash-server.exp", "-w", "-n", self.job["server"], "-e", entry, "-d", success,
                 "-f", self.job["failure"], "-s", str(self.job["menu_seconds"]),
                 "-t", str(self.job["flash_seconds"]), "-l", self.job["log"], "-b", before,
                 "sh", "-c", self.job["menu"]]
        # A session of its own: a key typed for ansible-playbook reaches nobody but this process.
        input_of_session, end_of_input = os.pipe()
        process = subprocess.Popen(words, stdin=input_of_session, stdout=subprocess.PIPE, text=True,
                                   stderr=subprocess.STDOUT, errors="replace", start_new_session=True)
        os.close(input_of_session)
        while True:
            if end_of_input and self.is_stopped():
                os.close(end_of_input)
                end_of_input = None
            try:
                printed = process.communicate(timeout=0.2)[0]
                break
            except subprocess.TimeoutExpired:
                self.shorten_log(2 * self.job["log_bytes"])
        self.shorten_log(self.job["log_bytes"])
        return outcomes.session(self.job["server"], process.returncode, printed)

    def shorten_log(self, most):
        """A core program that says the same for hours fills no disk. The end is what matters."""
        try:
            if os.path.getsize(self.job["log"]) > most:
                with open(self.job["log"], "r+b") as log:
                    log.seek(-self.job["log_bytes"], os.SEEK_END)
                    end = log.read()
                    log.seek(0)
                    log.write(end)
                    log.truncate()
        except OSError:
            pass  # what is at stake here is the flash

    # ---- an update

    def await_end(self):
        """Looks, for the patience of the job, until the core program has ended."""
        ends = time.monotonic() + self.job["patience"]
        while True:
            try:
                seen = self.on_server("look", write=False)
                if not seen["busy"]:
                    same = seen["boot_id"] == seen["boot_id_before"]
                    return {"ended": "yes", "boot": "same" if same else "other"}
                state = {"ended": "no"}
            except NoAnswer:
                state = {"ended": "unreachable"}
            if self.is_stopped() or time.monotonic() > ends:
                return state
            time.sleep(DELAY)

    def reboot(self):
        self.record("rebooting", "")
        self.keep("not rebooted", "the run was ended during the reboot of the Varn; look at this controller")
        session, line = self.at_menu(self.job["reboot_entry"], self.job["reboot_success"])
        return "done" if session == "flashed" else "failed", report.plain(line)

    def update(self):
        job = self.job
        self.keep("unclear", "the run was ended during the session; look at this controller")
        begin = f"timeout {job['command_seconds']} sh -c {shlex.quote(self.record_command('begin'))}"
        session, line = self.at_menu(job["entry"], job["success"], begin)
        facts = dict.fromkeys(outcomes.FACTS, "none")
        facts.update(session=session, ended="yes", boot="unknown")
        if session == "not started":
            self.record("not started", line)
            return "not started", line
        self.keep("unclear", f"{line}; the run was ended before this was checked; look at this controller")
        facts.update(self.await_end())
        if facts["ended"] == "yes" and session == "lost":
            facts["verified"] = self.ask("verify")
        if job["reboot"] and outcomes.judge(facts)[0] == "flashed":
            facts["reboot"], line = self.reboot()
        if outcomes.judge(facts)[0] == "flashed":
            facts["verified"] = self.ask("verify")
        outcome, addition = outcomes.judge(facts)
        line = "; ".join(filter(None, [line, addition]))
        if outcome == "unclear" and facts["ended"] == "yes":
            installed = self.ask("installed")
            line += {"yes": "; varn_firmware_installed_text matches now",
                     "no": "; varn_firmware_installed_text does not match now",
                     "failed": "; varn_firmware_installed_command gives no answer", "none": ""}[installed]
        return outcome, line + self.record(outcome, line)

    def main(self):
        try:
            outcome, line = self.update()
        except Exception as failure:  # whatever it is, nobody knows how the flash goes on
            outcome, line = "unclear", f"{type(failure).__name__}: {failure}; look at this controller"
        print(json.dumps(self.keep(outcome, line)))


if __name__ == "__main__":
    os.umask(0o077)
    Session(json.load(sys.stdin)).main()
