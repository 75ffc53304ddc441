#!/usr/bin/env python3
"""Checks that the comparison with the figures finds each fault, and nothing else."""

import json
import unittest
from pathlib import Path

import figures
from check_instructions import script

FIGURES = {"pool.churn": 100.0, "trace.off": 7.0}


def findings(**changed):
    """What is found when some counts are others; None: not counted."""
    counts = FIGURES | {name.replace("_", "."): count for name, count in changed.items()}
    counts = {name: count for name, count in counts.items() if count is not None}
    return {name: wrong for name, wrong in figures.findings(FIGURES, counts).items() if wrong}


class Findings(unittest.TestCase):
    """A count is held against its figure in both directions."""

    def test_equal_counts_are_right(self):
        self.assertEqual(findings(), {})

    def test_a_count_within_the_tolerance_is_right(self):
        self.assertEqual(findings(pool_churn=103.9), {})
        self.assertEqual(findings(pool_churn=96.1), {})

    def test_a_count_above_the_tolerance_fails(self):
        self.assertEqual(findings(pool_churn=104.1),
                         {"pool.churn": "costs more than its figure"})

    def test_one_more_instruction_in_a_few_fails(self):
        self.assertEqual(findings(trace_off=8.0), {"trace.off": "costs more than its figure"})

    def test_a_count_below_the_tolerance_asks_for_a_new_figure(self):
        wrong = findings(pool_churn=95.9)["pool.churn"]
        self.assertIn("costs less than its figure", wrong)
        self.assertIn("scripts/renew-instructions", wrong)

    def test_an_operation_without_a_figure_fails(self):
        self.assertIn("has no figure", findings(new=5.0)["new"])

    def test_a_figure_without_an_operation_fails(self):
        self.assertIn("not measured any more", findings(pool_churn=None)["pool.churn"])


class Files(unittest.TestCase):
    """What is read and written."""

    def test_the_total_is_that_of_the_whole_file(self):
        self.assertEqual(figures.total("events: Ir\nfn=(1) main\n1 5\n\ntotals: 2345\n"), 2345)

    def test_a_file_without_a_total_is_refused(self):
        with self.assertRaisesRegex(ValueError, "no totals"):
            figures.total("events: Ir\n# totals: 2345\n")

    def test_figures_that_are_written_are_read_again(self):
        text = figures.dump({"pool.churn": 100.04, "trace.off": 7})
        self.assertEqual(figures.load(text), {"pool.churn": 100.0, "trace.off": 7})

    def test_a_figure_that_is_no_positive_number_is_refused(self):
        for figure in (0, -1, True, "100", None):
            with self.assertRaisesRegex(ValueError, "the figure of pool.churn"):
                figures.load(json.dumps({"pool.churn": figure}))

    def test_the_checked_in_figures_can_be_read(self):
        path = Path(__file__).resolve().parent / "figures.json"
        self.assertIn("client.request", figures.load(path.read_text(encoding="utf-8")))

    def test_the_table_shows_each_operation_with_its_change(self):
        lines = figures.table(FIGURES, {"pool.churn": 110.0, "new": 5.0}).splitlines()
        self.assertEqual([line.split()[:4] for line in lines[1:]], [
            ["pool.churn", "100.0", "110.0", "+10.0%"],
            ["new", "-", "5.0", "has"],
            ["trace.off", "7.0", "-", "has"],
        ])


class Script(unittest.TestCase):
    """What vpagent is given."""

    def test_longer_scripts_differ_in_whole_rounds_only(self):
        short, long = script(1), script(3)
        self.assertTrue(long.startswith(short))
        self.assertEqual(long[len(short):], 2 * "".join(short.splitlines(keepends=True)[2:]))


if __name__ == "__main__":
    unittest.main()
