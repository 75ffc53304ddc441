#!/usr/bin/env python3
"""Checks that everything left is found, and held against its names in both directions."""

import json
import tempfile
import unittest
from pathlib import Path

import left
from counts import Condition, File
from left import Left, Reason

SOURCE = """U32 sign(int value) {
    if (value < 0 ||
        value > limit) {
        return 1;
    }
    CHECK(value);
    return 0;
}
"""
MACRO = """#define CHECK(condition) \\
    if (!(condition)) stop()
"""


class Found(unittest.TestCase):
    """What is left in the counts, with the texts of the sources."""

    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        (self.root / "a.cpp").write_text(SOURCE, encoding="utf-8")
        (self.root / "m.h").write_text(MACRO, encoding="utf-8")

    def find(self, **file):
        return left.find({"a.cpp": File(**file)}, left.Sources(self.root))

    def test_lines_that_run_are_not_left(self):
        self.assertEqual(self.find(lines={1: 1, 4: 7}), [])

    def test_a_line_that_never_runs(self):
        self.assertEqual(self.find(lines={1: 1, 4: 0}), [(4, Left("a.cpp", "return 1;", "run"))])

    def test_lines_that_follow_each_other_are_one(self):
        found = self.find(lines={4: 0, 5: 0, 6: 1, 7: 0, 8: 1})
        self.assertEqual(found, [(4, Left("a.cpp", "return 1; }", "run")),
                                 (7, Left("a.cpp", "return 0;", "run"))])

    def test_an_outcome_that_never_comes_about(self):
        found = self.find(lines={2: 1}, conditions={Condition((2, 9, 2, 18)): [0, 5]})
        self.assertEqual(found, [(2, Left("a.cpp", "if (value < 0 ||", "value < 0 is true"))])

    def test_a_condition_on_two_lines_reads_as_one(self):
        found = self.find(lines={2: 1}, conditions={Condition((2, 9, 3, 22)): [5, 0]})
        self.assertEqual(found[0][1].never, "value < 0 || value > limit is false")

    def test_both_outcomes(self):
        found = self.find(lines={2: 1}, conditions={Condition((2, 9, 2, 18)): [0, 0]})
        self.assertEqual([one.never for _, one in found], ["value < 0 is true", "value < 0 is false"])

    def test_a_line_that_never_runs_stands_for_its_conditions(self):
        found = self.find(lines={2: 0}, conditions={Condition((2, 9, 2, 18)): [0, 0]})
        self.assertEqual([one.never for _, one in found], ["run"])

    def test_a_condition_of_a_macro_has_both_names(self):
        within = Condition((6, 5, 6, 10), ("m.h", 2, 9, 2, 21))
        found = self.find(lines={6: 1}, conditions={within: [0, 5]})
        self.assertEqual(found, [(6, Left("a.cpp", "CHECK(value);", "CHECK: !(condition) is true"))])

    def test_a_macro_is_found_by_its_whole_path(self):
        within = Condition((6, 5, 6, 10), (str(self.root / "m.h"), 2, 9, 2, 21))
        found = self.find(lines={6: 1}, conditions={within: [0, 5]})
        self.assertEqual(found[0][1].never, "CHECK: !(condition) is true")


class Judged(unittest.TestCase):
    """Everything left is named, and nothing else."""

    LINE = Left("a.cpp", "return 1;", "run")

    def judge(self, times_found, **reason):
        reasons = {self.LINE: Reason("Because.", **reason)} if reason else {}
        unnamed, stale = left.judge([(4, self.LINE)] * times_found, reasons)
        return dict(unnamed), dict(stale)

    def test_nothing_left_and_nothing_named(self):
        self.assertEqual(self.judge(0), ({}, {}))

    def test_left_and_named(self):
        self.assertEqual(self.judge(1, times=1), ({}, {}))
        self.assertEqual(self.judge(3, times=3), ({}, {}))

    def test_left_and_not_named(self):
        self.assertEqual(self.judge(1), ({self.LINE: 1}, {}))

    def test_left_more_often_than_named(self):
        self.assertEqual(self.judge(3, times=1), ({self.LINE: 2}, {}))

    def test_named_and_not_left(self):
        self.assertEqual(self.judge(0, times=1), ({}, {self.LINE: 1}))

    def test_named_more_often_than_left(self):
        self.assertEqual(self.judge(1, times=3), ({}, {self.LINE: 2}))

    def test_what_chance_decides_may_be_left_or_not(self):
        for times in (0, 1):
            self.assertEqual(self.judge(times, sometimes=True), ({}, {}))
        self.assertEqual(self.judge(2, sometimes=True), ({self.LINE: 1}, {}))


class Names(unittest.TestCase):
    """left.json, and the list that the page shows."""

    ENTRY = {"code": "return 1;", "never": "run", "why": "Because."}

    def parse(self, *entries):
        return left.parse(json.dumps({"a.cpp": entries}))

    def test_an_entry_names_a_line_or_an_outcome(self):
        other = {**self.ENTRY, "never": "x is true", "times": 2, "sometimes": True}
        self.assertEqual(self.parse(self.ENTRY, other), {
            Left("a.cpp", "return 1;", "run"): Reason("Because."),
            Left("a.cpp", "return 1;", "x is true"): Reason("Because.", 2, True)})

    def test_an_entry_that_is_there_twice_is_refused(self):
        with self.assertRaisesRegex(ValueError, "a.cpp: return 1;: never run: named twice"):
            self.parse(self.ENTRY, self.ENTRY)

    def test_an_entry_without_a_reason_is_refused(self):
        with self.assertRaisesRegex(ValueError, "a.cpp: return 1;: .*'why'"):
            self.parse({"code": "return 1;", "never": "run"})

    def test_an_unknown_key_is_refused(self):
        with self.assertRaisesRegex(ValueError, "a.cpp: return 1;: .*'because'"):
            self.parse({**self.ENTRY, "because": 1})

    def test_the_page_names_each(self):
        reasons = self.parse(self.ENTRY, {**self.ENTRY, "never": "x == 1 is true", "times": 2},
                             {**self.ENTRY, "never": "y is false", "sometimes": True})
        self.assertEqual(left.page(reasons), (
            "`a.cpp`:\n\n"
            "- `return 1;`: never runs. Because.\n"
            "- `return 1;`, 2 times: never `x == 1` is true. Because.\n"
            "- `return 1;`: `y` is false by chance only. Because.\n"))

    def test_the_page_of_this_tree_has_the_list(self):
        """Otherwise left.json has changed: scripts/coverage --page."""
        here = Path(__file__).resolve().parent
        reasons = left.parse((here / "left.json").read_text(encoding="utf-8"))
        page = (here.parents[1] / "docs/reliability.md").read_text(encoding="utf-8")
        self.assertIn(f"\n{left.page(reasons)}", page)

    def test_the_reasons_of_this_tree_are_sentences_about_lines_that_are_there(self):
        here = Path(__file__).resolve().parent
        reasons = left.parse((here / "left.json").read_text(encoding="utf-8"))
        sources = left.Sources(here.parents[1])
        for one, reason in reasons.items():
            text = " ".join(line.strip() for line in sources.lines(one.path))
            self.assertGreaterEqual(text.count(one.code), reason.times, one)
            self.assertRegex(reason.why, r"^[A-Z].*\.$", one)
            self.assertRegex(one.never, "^run$| is (true|false)$", one)


if __name__ == "__main__":
    unittest.main()
