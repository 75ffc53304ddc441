#!/usr/bin/env python3
"""Tests the page and the file of results of a small run made by hand."""

import json
import unittest

from support import SURROUNDINGS, run_of

import page
from errors import ReportError
from figures import Case
from goals import Curve, Row, parse_goal

SETTINGS = {"repetitions": 9, "minTime": 0.05, "randomInterleaving": True, "cases": 4}
TEMPLATE = "# Head\n@SUMMARY@\n@NOISE@\n@ROWS@\n@CURVES@\n@SURROUNDINGS@\n"


def goal(what, **keys):
    return parse_goal({"what": what, **keys}, "here")


def rows():
    return [
        Row(1, "First", [goal("beside std", time="a/ours/1", over="a/std/1", atMost=0.5)],
            "Never shown.", "x"),
        Row(2, "Second", [
            goal("a | b", time="a/ours/2", over="a/std/2", atMost=0.5),
            goal("other", time="a/ours/2", over="a/other/2", atMost=0.5),
        ], "This is why.", "x"),
    ]


def curves():
    sizes = {"1": 1, "2": 2000}
    keys = {"title": "A by size", "x": "entries", "subject": "a", "path": "x", "sizes": sizes}
    return [Curve(file="by-size", who=["ours", "std", "other"], **keys),
            Curve(file="nothing", who=["other"], **keys)]


def run():
    return run_of(a__ours__1=[10.0] * 9, a__std__1=[40.0] * 9, a__ours__2=[2500.0] * 9,
                  a__std__2=[4000.0] * 9)


def results():
    return page.results_text(SURROUNDINGS, SETTINGS, rows(), run())


PAGE = """# Head
Of 3 goals: 1 reached, 1 missed, 1 not measured.

| Row | Goals |
|---|---|
| 1. First | 1 reached |
| 2. Second | 1 missed, 1 not measured |
In this run the middle half of a case's repetitions spans at most 0 % of its median for half of the cases, 0 % for three
quarters of them, and 0 % for the noisiest.
### 1. First

| What | Goal | Measured | Middle half | Times | Result |
|---|---|---|---|---|---|
| beside std | at most 0.5 x std | 0.250 x | 0.250 to 0.250 | 10.0 ns, 40.0 ns | reached |

### 2. Second

| What | Goal | Measured | Middle half | Times | Result |
|---|---|---|---|---|---|
| a \\| b | at most 0.5 x std | 0.625 x | 0.625 to 0.625 | 2.50 us, 4.00 us | missed |
| other | at most 0.5 x other | other is not there | - | - | not measured |

This is why.
### A by size

![A by size, from 1 to 2,000 entries: ours 10.0 ns to 2.50 us, std 40.0 ns to 4.00 us](performance/by-size.svg)

Not measured: other is not there.

### A by size

Not measured: other is not there.
- 2026-11-20, 9 repetitions of at least 0.05 s a case, 4 cases
- 2 processors of a virtual machine, Some Processor, 23.5 GiB of memory
- Some System 12; load averages at the start 0.50, 0.25, 0.12
- g++ 12.2.0, Release: -O3
- libstd-dev 1.2-3, libother-dev 4
"""


class Page(unittest.TestCase):
    def test_the_whole_page(self):
        self.maxDiff = None
        self.assertEqual(page.page_text(TEMPLATE, results(), rows(), curves()), PAGE)

    def test_a_template_without_a_part_or_with_one_too_many_is_refused(self):
        with self.assertRaisesRegex(ReportError, "must hold @NOISE@ once"):
            page.page_text(TEMPLATE.replace("@NOISE@", ""), results(), rows(), curves())
        with self.assertRaisesRegex(ReportError, "the unknown part @MORE@"):
            page.page_text(TEMPLATE + "@MORE@", results(), rows(), curves())

    def test_a_curve_of_a_counter_ends_in_its_unit(self):
        cases = {f"m__ours__{size}": Case([5.0], False, {"each": [n]})
                 for size, n in (("1", 300), ("2", 240))}
        curve = Curve("memory", "Bytes", "ports", "m", ["ours"], {"1": 1, "2": 1000}, "x", "each",
                      "bytes")
        self.assertIn("from 1 to 1,000 ports: ours 300 bytes to 240 bytes](performance/memory.svg)",
                      page.curve_section(curve, run_of(**cases)))


class Results(unittest.TestCase):
    def test_goals_and_cases(self):
        content = json.loads(results())
        self.assertEqual(list(content), [*SURROUNDINGS, "benchmark", "goals", "cases"])
        self.assertEqual(content["goals"][0], {
            "row": 1, "what": "beside std", "goal": "at most 0.5 x std", "result": "reached",
            "close": False,
            "measured": [{"atMost": 0.5, "value": 0.25, "middleHalf": [0.25, 0.25], "unit": "x"}],
        })
        self.assertEqual(content["goals"][2]["measured"],
                         [{"result": "not measured", "reason": "other is not there"}])
        self.assertEqual(content["cases"]["a/ours/1"], {
            "median": 10.0, "noise": 0.0, "unit": "ns an iteration", "repetitions": [10.0] * 9})

    def test_results_made_of_results_are_the_same(self):
        self.assertEqual(page.results_again(results(), rows()), results())

    def test_a_changed_limit_shows_without_a_run(self):
        changed = rows()
        changed[0].goals[0].keys["atMost"] = 0.2
        again = json.loads(page.results_again(results(), changed))
        self.assertEqual(again["goals"][0]["result"], "missed")


if __name__ == "__main__":
    unittest.main()
