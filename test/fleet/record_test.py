"""Tests of record.py in a folder of their own."""

import fcntl
import json
import os
import shutil
import subprocess
import tempfile
import unittest
from unittest import mock

from files import record

REQUEST = {"sha256": "a1", "release": "2.41", "entry": "Normal Flash", "server": "server1", "run": "run-1",
           "again": False, "acknowledged": False, "write": True}
LATER = {**REQUEST, "run": "run-2"}


class OnServer(unittest.TestCase):
    def setUp(self):
        work = tempfile.TemporaryDirectory()
        self.addCleanup(work.cleanup)
        self.work = work.name
        for name, path in (("FOLDER", "lib/varn-firmware"), ("LOCK", "lock"), ("BOOT_ID", "boot"),
                           ("MACHINE_ID", "machine")):
            patch = mock.patch.object(record, name, f"{self.work}/{path}")
            patch.start()
            self.addCleanup(patch.stop)
        patch = mock.patch.object(record, "CORE_PROGRAM", "no-such-process")
        patch.start()
        self.addCleanup(patch.stop)
        os.mkdir(self.work + "/lib")
        self.put("boot", "boot-1")
        self.put("machine", "machine-1")
        self.file = self.work + "/lib/varn-firmware/record.json"

    def put(self, name, text):
        with open(f"{self.work}/{name}", "w", encoding="utf-8") as file:
            file.write(text)

    def flash(self, state="flashed", **request):
        record.begin({**REQUEST, **request})
        record.end({**REQUEST, **request, "state": state, "line": "Done."})

    def decision(self, **request):
        return record.look({**LATER, **request})["decision"]

    def kept(self):
        with open(self.file, encoding="utf-8") as file:
            return json.load(file)


class Decide(unittest.TestCase):
    """All of the table: record and request make a decision."""

    def decided(self, state, **request):
        known = {"state": state, "line": "", **dict.fromkeys(record.TEXTS[1:], "x"), **{
            key: REQUEST[key] for key in record.WHAT_THE_PACKAGE_IS}}
        if state in ("none", "damaged"):
            known = {"state": state, "line": ""}
        return record.decide(known, {**LATER, **request})[0]

    def test_only_what_went_well_or_never_began_goes_on(self):
        goes_on = {state for state in record.DECISIONS if self.decided(state) == "go on"}
        self.assertEqual({"none", "not started", "refused", "acknowledged"}, goes_on)

    def test_again_is_for_what_is_flashed_and_acknowledge_for_what_is_unclear(self):
        for state in record.DECISIONS:
            plain = self.decided(state)
            self.assertEqual("go on" if plain == "flashed before" else plain, self.decided(state, again=True), state)
            self.assertEqual(plain if plain == "flashed before" else "go on",
                             self.decided(state, acknowledged=True), state)

    def test_another_package_or_entry_is_flashed_unless_something_is_unclear(self):
        self.assertEqual("flashed before", self.decided("flashed"))
        self.assertEqual("go on", self.decided("flashed", sha256="b2"))
        self.assertEqual("go on", self.decided("flashed", entry="Forced"))
        for state in ("begun", "unclear", "rebooting", "not rebooted"):
            self.assertNotEqual("go on", self.decided(state, sha256="b2", entry="Forced"), state)

    def test_another_name_in_the_same_run_is_the_same_server_whatever_the_request(self):
        for state in set(record.DECISIONS) - {"none", "damaged"}:
            self.assertEqual("same server", self.decided(state, run="run-1", server="server2", again=True,
                                                         acknowledged=True), state)
            self.assertNotEqual("same server", self.decided(state, server="server2"))


class Record(OnServer):
    def test_a_flash_is_known_to_the_next_run(self):
        self.assertEqual("go on", self.decision())
        self.flash()
        seen = record.look(LATER)
        self.assertEqual("flashed before", seen["decision"])
        self.assertIn("run-1", seen["line"])
        self.assertIn("; not rebooted since", seen["line"])
        self.put("boot", "boot-2")
        self.assertNotIn("not rebooted", record.look(LATER)["line"])

    def test_a_flash_without_an_end_is_unclear(self):
        record.begin(REQUEST)
        self.assertEqual("unclear", self.decision())
        with self.assertRaisesRegex(record.Refused, "another run has been here"):
            record.begin(LATER)
        self.assertEqual("run-1", self.kept()["run"])

    def test_only_one_of_two_runs_begins(self):
        self.assertEqual("go on", self.decision(run="run-2"))
        self.assertEqual("go on", self.decision(run="run-3"))
        record.begin({**REQUEST, "run": "run-2"})
        self.assertRaises(record.Refused, record.begin, {**REQUEST, "run": "run-3"})

    def test_an_end_is_written_by_the_run_that_began(self):
        record.begin(REQUEST)
        self.assertFalse(record.end({**LATER, "state": "flashed", "line": ""})["written"])
        self.assertEqual("begun", self.kept()["state"])
        self.assertTrue(record.end({**REQUEST, "state": "flashed", "line": ""})["written"])
        self.assertFalse(record.end({**REQUEST, "state": "refused", "line": ""})["written"])
        self.assertEqual("flashed", self.kept()["state"])

    def test_an_acknowledgement_is_kept_at_once_and_once(self):
        self.flash("unclear")
        self.assertEqual("unclear", self.decision())
        self.assertEqual("unclear", self.decision(again=True))
        self.assertEqual("go on", self.decision(acknowledged=True, write=False))
        self.assertEqual("unclear", self.decision(), "a check must not write it")
        self.assertEqual("go on", self.decision(acknowledged=True))
        self.assertEqual("go on", self.decision())
        self.assertIn("Done.", self.kept()["line"])
        self.flash("unclear", run="run-3")
        self.assertEqual("unclear", self.decision(run="run-4"))

    def test_an_acknowledgement_waits_while_a_flash_is_at_work(self):
        self.flash("unclear")
        with open(record.LOCK, "w", encoding="utf-8") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            record.look({**LATER, "acknowledged": True})
        self.assertEqual("unclear", self.decision())

    def test_damage_is_unclear_and_never_none(self):
        self.flash()
        whole = self.kept()
        broken = ["", "{", "[]", "null", '{"state": "flashed"}', json.dumps({**whole, "state": "none"}),
                  json.dumps({**whole, "state": "odd"}), json.dumps({**whole, "more": ""}),
                  json.dumps({**whole, "run": 1}), json.dumps({**whole, "machine_id": "machine-2"}), "\xff"]
        for text in broken:
            with open(self.file, "w", encoding="latin-1") as file:
                file.write(text)
            self.assertEqual("unclear", self.decision(), text)
            self.assertRaises(record.Refused, record.begin, LATER)
        self.assertEqual("go on", self.decision(acknowledged=True))
        self.assertEqual("acknowledged", self.kept()["state"])

    def test_a_file_of_others_is_damage(self):
        self.flash()
        os.chmod(self.file, 0o644)
        self.assertEqual("unclear", self.decision())
        os.rename(self.file, self.file + ".real")
        os.symlink(self.file + ".real", self.file)
        self.assertEqual("unclear", self.decision())
        os.unlink(self.file)
        os.mkfifo(self.file, 0o600)
        self.assertEqual("unclear", self.decision())

    def test_a_folder_of_others_is_refused(self):
        os.symlink(self.work, record.FOLDER)
        self.assertRaisesRegex(record.Refused, "is a link", record.look, REQUEST)
        os.unlink(record.FOLDER)
        os.mkdir(record.FOLDER)
        os.chmod(record.FOLDER, 0o777)
        self.assertRaises(record.Refused, record.begin, REQUEST)

    def test_root_alone_can_read_it(self):
        self.flash()
        self.assertEqual(0o600, os.stat(self.file).st_mode & 0o777)
        self.assertEqual(0o700, os.stat(record.FOLDER).st_mode & 0o777)

    def test_a_check_writes_nothing(self):
        record.look({**REQUEST, "write": False})
        self.assertFalse(os.path.exists(record.FOLDER))

    def test_it_is_synced_before_it_is_renamed_and_the_folder_after_that(self):
        calls = []
        with mock.patch("os.fsync", side_effect=lambda file: calls.append(os.readlink(f"/proc/self/fd/{file}"))), \
                mock.patch("os.rename", side_effect=lambda *_, **__: calls.append("rename")):
            record.begin(REQUEST)
        self.assertEqual([self.file + ".new", "rename", record.FOLDER], calls)


class Identity(OnServer):
    def test_it_tells_servers_apart_that_were_cloned(self):
        first = record.look(REQUEST)["identity"]
        self.assertEqual(first, record.look(LATER)["identity"])
        os.unlink(record.FOLDER + "/id")
        self.assertNotEqual(first, record.look(REQUEST)["identity"])

    def test_without_a_boot_id_nothing_is_flashed(self):
        os.unlink(record.BOOT_ID)
        self.assertRaises(record.Refused, record.look, REQUEST)
        self.assertRaises(record.Refused, record.begin, REQUEST)


class AtWork(OnServer):
    def test_the_menu_s_lock(self):
        self.assertEqual("", record.at_work())
        with open(record.LOCK, "w", encoding="utf-8") as lock:
            self.assertEqual("", record.at_work())
            fcntl.flock(lock, fcntl.LOCK_EX)
            self.assertIn("another flash", record.at_work())
            self.assertRaises(record.Refused, record.begin, REQUEST)
        self.assertEqual("", record.at_work())

    def test_a_lock_that_cannot_be_tried_is_refused(self):
        os.symlink("/nowhere", record.LOCK)
        self.assertRaises(OSError, record.look, REQUEST)

    def test_a_core_program_without_a_menu(self):
        with self.running("cat") as process, mock.patch.object(record, "CORE_PROGRAM", "cat"):
            self.assertIn(str(process.pid), record.processes_of("cat"))
            self.assertIn("cat is at work", record.at_work())
            process.kill()
            # Not waited for, it is a zombie.
            os.waitid(os.P_PID, process.pid, os.WEXITED | os.WNOWAIT)
            self.assertNotIn(str(process.pid), record.processes_of("cat"))

    def test_a_process_with_an_odd_name_beside_it(self):
        odd = self.work + "/\udcff) Z"
        shutil.copy(shutil.which("cat"), odd)
        with self.running(odd):
            self.assertEqual("", record.at_work())

    def running(self, program):
        """It bears the program's name once it works: that is later than Popen returns."""
        process = subprocess.Popen([program], stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        self.addCleanup(process.kill)
        process.stdin.write(b"\n")
        process.stdin.flush()
        process.stdout.readline()
        return process


class Program(OnServer):
    def test_it_says_in_one_line_what_is_wrong(self):
        for words in (["look", "{}"], ["begin", json.dumps({**REQUEST, "server": 7})]):
            done = subprocess.run(["python3", record.__file__, *words], capture_output=True, text=True, check=False)
            self.assertNotEqual(0, done.returncode, words)


if __name__ == "__main__":
    unittest.main()
