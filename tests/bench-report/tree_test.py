#!/usr/bin/env python3
"""Tests that goals, sources, results, page and curves of this tree fit together."""

import re
import unittest

from support import ROOT

import goals
import page
from figures import who_of

DOCS = ROOT / "docs"


def named_cases(rows, curves):
    """Every case that a goal or a curve names."""
    names = {name for row in rows for goal in row.goals for name in goal.all_cases()}
    return names | {
        curve.case(who, size) for curve in curves for who in curve.who for size in curve.sizes
    }


class Tree(unittest.TestCase):
    def setUp(self):
        self.rows, self.curves = goals.read_all(ROOT)
        self.results = (DOCS / "performance/results.json").read_text(encoding="utf-8")

    def test_there_are_goals_and_curves(self):
        self.assertTrue(self.rows and self.curves)

    def test_everyone_whom_a_goal_or_curve_names_is_measured_by_a_source(self):
        """A misspelt name would count as a library that is not there."""
        sources = [path for path in (ROOT / "bench").rglob("*") if path.suffix in (".cpp", ".h")]
        text = "".join(path.read_text(encoding="utf-8") for path in sources)
        names = {who_of(name) for name in named_cases(self.rows, self.curves)}
        self.assertEqual([name for name in sorted(names) if f'"{name}"' not in text], [])

    def test_results_follow_from_their_figures_and_the_goals(self):
        """Otherwise goals have changed: scripts/bench --page."""
        self.assertEqual(page.results_again(self.results, self.rows), self.results)

    def test_page_follows_from_results_goals_and_template(self):
        """Otherwise one of them has changed: scripts/bench --page."""
        template = (ROOT / "bench/report/performance.md.in").read_text(encoding="utf-8")
        text = page.page_text(template, self.results, self.rows, self.curves)
        self.assertEqual((DOCS / "performance.md").read_text(encoding="utf-8"), text)

    def test_every_curve_is_shown_and_every_image_is_there(self):
        text = (DOCS / "performance.md").read_text(encoding="utf-8")
        shown = re.findall(r"!\[[^\]]+\]\((performance/[^)]+)\)", text)
        there = [f"performance/{path.name}" for path in (DOCS / "performance").glob("*.svg")]
        self.assertEqual(sorted(shown), sorted(there))


if __name__ == "__main__":
    unittest.main()
