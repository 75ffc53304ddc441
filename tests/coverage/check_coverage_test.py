#!/usr/bin/env python3
"""Checks that figures are judged by their floors, and that what is wrong is said."""

import unittest
from pathlib import Path

import check_coverage
from counts import Condition, File
from left import Left, Reason

ROOT = Path("/work")
FULL = {folder: [100, 100, 100, 100] for folder in check_coverage.FOLDERS}


def file_of(ran, lines, taken, outcomes):
    """A file of so many lines and outcomes; the last ones are not taken. Two outcomes a condition."""
    counts = [1] * taken + [0] * (outcomes - taken)
    return File(lines={line: 1 if line <= ran else 0 for line in range(1, lines + 1)},
                conditions={Condition((1, column, 1, column)): counts[2 * column:2 * column + 2]
                            for column in range(outcomes // 2)})


class Texts:
    """Sources in which each line reads "line N", and each condition "C"."""

    def text(self, path, first, within):
        return f"line {first}"

    def condition(self, path, condition):
        return f"C{condition.place[1]}"


class Figures(unittest.TestCase):
    """The figures of a folder are those of its files."""

    def test_files_are_added_up_by_folder(self):
        totals = check_coverage.figures({"runtime/a.cpp": file_of(3, 4, 1, 2),
                                         "runtime/x/b.h": file_of(5, 6, 7, 8),
                                         "vpstate/c.cpp": file_of(1, 1, 0, 0)})
        self.assertEqual(totals, {"runtime": [8, 10, 8, 10], "vpstate": [1, 1, 0, 0],
                                  "VornicL3Shared": [0, 0, 0, 0]})

    def test_only_files_of_the_folders_count(self):
        names = ["/work/runtime/a.cpp", "/work/build/x/../../vpstate/b.cpp", "/work/agent/c.cpp",
                 "/usr/include/d.h", "/work/tests/runtime/e.cpp"]
        own = check_coverage.own_files({name: File() for name in names}, ROOT)
        self.assertEqual(sorted(own), ["runtime/a.cpp", "vpstate/b.cpp"])

    def test_a_share_is_never_rounded_up(self):
        self.assertEqual(check_coverage.share(99999, 100000), 99.99)
        self.assertEqual(check_coverage.share(7, 7), 100)


class Floors(unittest.TestCase):
    """Each folder has to reach both floors."""

    def below(self, **changed):
        return list(check_coverage.below({**FULL, **changed}))

    def test_figures_on_their_floors_are_right(self):
        self.assertEqual(self.below(runtime=[990, 1000, 950, 1000]), [])

    def test_too_few_lines(self):
        self.assertEqual(self.below(vpstate=[9899, 10000, 1, 1]),
                         ["vpstate/: 98.99 % of the lines; at least 99 %"])

    def test_too_few_branches(self):
        self.assertEqual(self.below(VornicL3Shared=[1, 1, 9499, 10000]),
                         ["VornicL3Shared/: 94.99 % of the branches; at least 95 %"])

    def test_a_folder_that_was_not_counted(self):
        self.assertEqual(self.below(runtime=[0, 0, 0, 0]), ["runtime/: nothing of it was counted"])


class Report(unittest.TestCase):
    """What is printed, and what is wrong."""

    FILES = {f"{folder}/a.cpp": file_of(1000, 1000, 100, 100) for folder in check_coverage.FOLDERS}

    def report(self, reasons, file):
        return check_coverage.report({**self.FILES, "runtime/a.cpp": file}, Texts(), reasons)

    def test_all_taken_and_nothing_named(self):
        lines, wrong = self.report({}, file_of(1000, 1000, 100, 100))
        self.assertEqual(len(lines), 4)
        self.assertEqual(wrong, [])

    def test_what_is_left_is_printed_with_its_reason(self):
        reasons = {Left("runtime/a.cpp", "line 1000", "run"): Reason("Because."),
                   Left("runtime/a.cpp", "line 1", "C49 is false"): Reason("Since.")}
        lines, wrong = self.report(reasons, file_of(999, 1000, 99, 100))
        self.assertEqual(lines[4:], ["runtime/a.cpp:1000: line 1000: never runs: Because.",
                                     "runtime/a.cpp:1: line 1: never `C49` is false: Since."])
        self.assertEqual(wrong, [])

    def test_what_has_no_reason_is_wrong(self):
        lines, wrong = self.report({}, file_of(999, 1000, 100, 100))
        self.assertEqual(lines[4:], ["runtime/a.cpp:1000: line 1000: never runs: NOT NAMED"])
        self.assertEqual(wrong, ["runtime/a.cpp: line 1000: never runs (1 x):"
                                 " tests/coverage/left.json gives no reason"])

    def test_a_reason_for_nothing_is_wrong(self):
        reasons = {Left("runtime/a.cpp", "line 7", "run"): Reason("Because.")}
        _, wrong = self.report(reasons, file_of(1000, 1000, 100, 100))
        self.assertEqual(wrong, ["runtime/a.cpp: line 7: never runs (1 x):"
                                 " tests/coverage/left.json names it, and it is not so"])

    def test_a_floor_counts_whatever_is_named(self):
        reasons = {Left("runtime/a.cpp", "line 990", "run"): Reason("Because.")}
        _, wrong = self.report(reasons, file_of(989, 1000, 100, 100))
        self.assertEqual(wrong, ["runtime/: 98.90 % of the lines; at least 99 %"])


if __name__ == "__main__":
    unittest.main()
