"""Tests of report.py: what is known of a run, whatever happens to its files."""

import csv
import json
import os
import subprocess
import tempfile
import unittest
from unittest import mock
from xml.etree import ElementTree

from files import report

FLASHED = {"outcome": "flashed", "seconds": 3, "line": "Done."}


class Report(unittest.TestCase):
    def setUp(self):
        work = tempfile.TemporaryDirectory()
        self.addCleanup(work.cleanup)
        self.folder = work.name

    def test_rows_keep_what_is_not_changed_and_their_order(self):
        report.set_rows(self.folder, {"b": {"release": "2.41"}, "a": {}})
        report.set_rows(self.folder, {"b": FLASHED})
        rows = report.read_rows(self.folder)
        self.assertEqual(["b", "a"], list(rows))
        self.assertEqual(("flashed", "2.41", 3), tuple(rows["b"][key] for key in ("outcome", "release", "seconds")))
        self.assertEqual("not tried", rows["a"]["outcome"])

    def test_what_a_server_says_harms_no_reader(self):
        report.set_rows(self.folder, {"=a\1": {**FLASHED, "line": "=1+2 \x1b[1m<b>&\x00\ufffe]]>\u2028\ud800"}})
        with open(self.folder + "/report.csv", encoding="utf-8") as file:
            row, = csv.DictReader(file)
        self.assertEqual(("'=a\1", "'=1+2 <b>& ]]>"), (row["server"], row["line"]))
        case, = ElementTree.parse(self.folder + "/report.xml").getroot()
        self.assertEqual("flashed: =1+2 <b>& ]]>", case.find("system-out").text)

    def test_junit_tells_good_from_bad_and_untried(self):
        report.set_rows(self.folder, {
            outcome: {"outcome": outcome} for outcome in (*report.GOOD, "unclear", "refused", "not tried")})
        suite = ElementTree.parse(self.folder + "/report.xml").getroot()
        self.assertEqual(("7", "2", "1"), tuple(suite.get(key) for key in ("tests", "failures", "skipped")))

    def test_a_damaged_file_is_moved_aside(self):
        for text in ("{", "[1]", '[{"server": "a"}]', "7"):
            with open(self.folder + "/report.json", "w", encoding="utf-8") as file:
                file.write(text)
            report.set_rows(self.folder, {"a": FLASHED})
            self.assertEqual("flashed", report.read_rows(self.folder)["a"]["outcome"])
        self.assertEqual(4, sum(".damaged-" in name for name in os.listdir(self.folder)))

    def test_a_full_disk_loses_no_outcome(self):
        with mock.patch.object(report, "replace", side_effect=OSError(28, "No space left on device")):
            told = report.summary(self.folder, {"a": FLASHED})["lines"]
        self.assertIn("No space left", told[0])
        self.assertIn("a: flashed, 3 s: Done.", told)

    def test_a_summary_says_what_to_do(self):
        told = report.summary(self.folder, {"a": FLASHED, "b": {**FLASHED, "outcome": "unclear"},
                                            "c": {**FLASHED, "outcome": "unclear"}})
        self.assertIn("  -e varn_firmware_acknowledge=b,c", told["lines"])
        self.assertIn(f"1 flashed, 2 unclear; see {self.folder}", told["lines"])
        self.assertFalse(told["good"])
        for outcome in set(report.ADVICE) | {"refused", "not started"}:
            self.assertIn(outcome, report.ADVICE)

    def test_a_summary_between_two_batches_gives_no_advice(self):
        told = report.summary(self.folder, {"a": FLASHED, "b": {**FLASHED, "outcome": "not tried"}})
        self.assertEqual(["a: flashed, 3 s: Done.", f"1 flashed, 1 not tried; see {self.folder}"], told["lines"])

    def test_each_run_has_a_folder_and_keeps_it(self):
        with subprocess.Popen(["sleep", "100"]) as other:
            first = report.start(self.folder, str(os.getpid()), ["a", "b"])
            report.set_rows(first["folder"], {"a": FLASHED})
            again = report.start(self.folder, str(os.getpid()), ["a", "b"])
            second = report.start(self.folder, str(other.pid), ["a"])
            other.kill()
        self.assertEqual((first["folder"], first["run"], 1), (again["folder"], again["run"], again["flashed"]))
        self.assertNotEqual(first["folder"], second["folder"])
        self.assertEqual(second["folder"], os.path.realpath(self.folder + "/latest"))
        self.assertEqual(["flashed", "not tried"],
                         [row["outcome"] for row in report.read_rows(first["folder"]).values()])

    def test_packages_of_a_run_that_has_ended_are_removed(self):
        with subprocess.Popen(["true"]) as other:
            first = report.start(self.folder, str(other.pid), [])["folder"]
            os.mkdir(first + "/packages")
        report.start(self.folder, str(os.getpid()), [])
        self.assertEqual([], [name for name in os.listdir(first) if name == "packages"])

    def test_the_first_name_of_a_server_counts_in_the_whole_run(self):
        self.assertEqual({"a": "a", "b": "a"}, report.first_names(self.folder, {"a": "x", "b": "x"}))
        self.assertEqual({"c": "a", "d": "d"}, report.first_names(self.folder, {"c": "x", "d": "y"}))

    def test_it_works_as_a_program(self):
        done = subprocess.run(["python3", report.__file__, "rows", self.folder], input=json.dumps({"a": FLASHED}),
                              capture_output=True, text=True, check=True)
        self.assertEqual("[]\n", done.stdout)


if __name__ == "__main__":
    unittest.main()
