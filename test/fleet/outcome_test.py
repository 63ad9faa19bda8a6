"""Tests of outcome.py: whatever is known of a flash, only what is proven is good."""

import itertools
import unittest

from files import outcome

ALL_FACTS = [dict(zip(outcome.FACTS, values)) for values in itertools.product(*outcome.FACTS.values())]
FLASHED = {"session": "flashed", "ended": "yes", "boot": "same", "reboot": "none", "verified": "none"}


def judged(**facts):
    return outcome.judge({**FLASHED, **facts})[0]


class Judge(unittest.TestCase):
    def test_flashed_means_that_all_of_it_is_proven(self):
        for facts in ALL_FACTS:
            proven = (facts["ended"] == "yes" and facts["boot"] == "same" and facts["reboot"] != "failed"
                      and (facts["session"] == "flashed" and facts["verified"] in ("none", "yes")
                           or facts["session"] == "lost" and facts["verified"] == "yes"))
            self.assertEqual(proven, outcome.judge(facts)[0] == "flashed", facts)

    def test_a_session_that_did_not_begin_is_nothing_else(self):
        for facts in ALL_FACTS:
            self.assertEqual(facts["session"] == "not started", outcome.judge(facts)[0] == "not started", facts)

    def test_refused_needs_a_core_program_that_has_ended_on_a_server_that_was_not_rebooted(self):
        self.assertEqual("refused", judged(session="refused"))
        self.assertEqual("unclear", judged(session="refused", boot="other"))
        self.assertEqual("unclear", judged(session="refused", ended="no"))

    def test_a_failed_reboot_is_told_from_a_failed_flash(self):
        self.assertEqual("not rebooted", judged(reboot="failed"))
        self.assertEqual("unclear", judged(reboot="done", verified="no"))

    def test_a_core_program_that_died_is_unclear_even_if_it_is_verified(self):
        self.assertEqual("unclear", judged(session="unclear", verified="yes"))

    def test_what_is_not_known_at_all_is_unclear(self):
        self.assertEqual("unclear", judged(boot="something new", session="something new"))
        self.assertEqual("lost", outcome.SESSIONS.get(-9, "lost"))

    def test_the_line_says_what_to_do_about_an_unclear_one(self):
        for facts in ALL_FACTS:
            found, addition = outcome.judge(facts)
            if found == "unclear" and facts["verified"] in ("none", "yes"):
                self.assertIn("ook at this controller", addition)


class Session(unittest.TestCase):
    def test_status_and_words_have_to_agree(self):
        self.assertEqual(("flashed", "Done."), outcome.session("a", 0, "a: flashed: Done."))
        self.assertEqual(("refused", "no"), outcome.session("a", 1, "a: refused: no"))
        self.assertEqual(("lost", "gone"), outcome.session("a", 5, "a: unclear: gone"))
        self.assertEqual("unclear", outcome.session("a", 4, "a: unclear: both")[0])
        self.assertEqual("not started", outcome.session("a", 2, "usage: ...")[0])

    def test_what_did_not_start_comes_with_advice(self):
        for said, advice in outcome.ADVICE.items():
            self.assertEqual(("not started", f"it says: {said}; {advice}"),
                             outcome.session("a", 3, f"a: not started: it says: {said}\n"))
            self.assertNotIn(advice, outcome.session("a", 1, f"a: refused: it says: {said}")[1])

    def test_a_script_that_crashes_is_lost_whatever_its_status(self):
        for status in (0, 1, 3, 4, 5, -9, 255):
            for printed in ("", "can't write: no space left", "b: flashed: Done.", "x\na: flashed: Done."):
                self.assertEqual("lost", outcome.session("a", status, printed)[0], (status, printed))


class Answer(unittest.TestCase):
    def test_a_whole_line_has_to_match(self):
        self.assertEqual("yes", outcome.answer(0, "a\n  runs 2.4 \n", r"runs 2\.4"))
        self.assertEqual("no", outcome.answer(0, "runs 2.49\n", r"runs 2\.4"))
        self.assertEqual("no", outcome.answer(0, "it runs 2.4\n", r"runs 2\.4"))
        self.assertEqual("no", outcome.answer(0, "", r"runs 2\.4"))
        self.assertEqual("no", outcome.answer(0, "a\nb\n", r"a|c\nb"[2:]))

    def test_a_command_that_fails_is_no_answer(self):
        self.assertEqual("failed", outcome.answer(1, "runs 2.4", r"runs 2\.4"))
        self.assertEqual("failed", outcome.answer(None, "runs 2.4", r"runs 2\.4"))
        self.assertEqual("yes", outcome.answer(3, "runs 2.4", r"runs 2\.4", [0, 3]))


if __name__ == "__main__":
    unittest.main()
