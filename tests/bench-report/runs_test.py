#!/usr/bin/env python3
"""Tests whole runs, with a made-up program of benchmarks, from the command line to the page."""

import contextlib
import importlib.util
import io
import json
import sys
import tempfile
import unittest
from pathlib import Path
from unittest import mock

from support import ROOT, SURROUNDINGS, benchmark_json, repetition

from errors import ReportError

# The program of the report is a module of that name, as this test is: it is loaded by its path.
spec = importlib.util.spec_from_file_location("report", ROOT / "bench/report/__main__.py")
report = importlib.util.module_from_spec(spec)
spec.loader.exec_module(report)

# Lists the cases that match, or writes the repetitions of those, as often as it was asked to.
PROGRAM = """#!{python}
import json, re, sys
options = dict(a[2:].split("=", 1) if "=" in a else (a[2:], "") for a in sys.argv[1:])
entries = [e for e in json.loads({entries!r}) if re.search(options["benchmark_filter"], e["name"])]
if "benchmark_list_tests" in options:
    print("\\n".join(e["name"] for e in entries))
    sys.exit({list_code})
if options["benchmark_enable_random_interleaving"] != "true":
    sys.exit(3)
repetitions = int(options["benchmark_repetitions"])
runs = [e for e in entries if e["name"] != {silent!r}
        for _ in range(1 if e["name"] == {seldom!r} else repetitions)]
with open(options["benchmark_out"], "w") as out:
    json.dump({{**json.loads({frame!r}), "benchmarks": runs}}, out)
sys.exit({code})
"""
GOALS = {
    "rows": [{"row": 1, "title": "A", "goals": [
        {"what": "beside std", "time": "a/ours/1", "over": "a/std/1", "atMost": 0.5},
        {"what": "beside other", "time": "b/ours/1", "over": "b/other/1", "atMost": 0.5}]}],
    "curves": [{"file": "a", "title": "A", "x": "entries", "subject": "a", "who": ["ours"],
                "sizes": {"1": 1, "2": 2}}],
}
ENTRIES = [repetition("a/ours/1", 10.0), repetition("a/ours/2", 20.0), repetition("a/std/1", 40.0),
           repetition("b/ours/1", 5.0)]


class Runs(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)
        for each in ("bench/a", "build/bench", "docs"):
            (self.root / each).mkdir(parents=True)
        (self.root / "bench/a/goals.json").write_text(json.dumps(GOALS))
        self.program()
        self.drawn = []
        for place, name, value in (
            (report, "ROOT", self.root), (report, "BUILD", self.root / "build"),
            (report, "PROGRAM", self.root / "bench_made_up"), (report, "DOCS", self.root / "docs"),
            (report.machine, "describe", lambda *_: SURROUNDINGS),
            (report, "draw_curves", self.draw),
        ):
            patch = mock.patch.object(place, name, value)
            patch.start()
            self.addCleanup(patch.stop)

    def draw(self, _, curves):
        self.drawn += [curve.file for curve in curves]

    def program(self, entries=ENTRIES, silent="", seldom="", code=0, list_code=0):
        path = self.root / "bench_made_up"
        path.write_text(PROGRAM.format(
            python=sys.executable, entries=json.dumps(entries), frame=benchmark_json(),
            silent=silent, seldom=seldom, code=code, list_code=list_code))
        path.chmod(0o755)

    def bench(self, *arguments):
        out = io.StringIO()
        with contextlib.redirect_stdout(out), contextlib.redirect_stderr(io.StringIO()):
            report.main(arguments)
        return out.getvalue()

    def refuse(self, message, *arguments):
        with self.assertRaisesRegex(ReportError, message):
            self.bench(*arguments)
        self.assertEqual(list((self.root / "docs").iterdir()), [])

    def test_a_pattern_prints_figures_and_goals_and_writes_nothing(self):
        self.assertEqual(self.bench("a/.*/1"), (
            "CASE      MEDIAN   NOISE  COUNTERS\n"
            "a/ours/1  10.0 ns  0 %\n"
            "a/std/1   40.0 ns  0 %\n"
            "\n"
            "ROW  WHAT        GOAL               MEASURED  MIDDLE HALF     RESULT\n"
            "1    beside std  at most 0.5 x std  0.250 x   0.250 to 0.250  reached\n"
        ))
        self.assertEqual((list((self.root / "docs").iterdir()), self.drawn), ([], []))

    def test_a_pattern_that_decides_no_goal_prints_figures_alone(self):
        self.assertEqual(self.bench("a/ours/2"),
                         "CASE      MEDIAN   NOISE  COUNTERS\na/ours/2  20.0 ns  0 %\n")

    def test_all_writes_results_page_and_curves(self):
        self.assertIn("1 reached, 1 not measured: docs/performance.md", self.bench())
        results = json.loads((self.root / "docs/performance/results.json").read_text())
        self.assertEqual(results["benchmark"], {
            "repetitions": 9, "minTime": 0.05, "randomInterleaving": True, "cases": 4})
        self.assertEqual(results["cases"]["a/ours/2"]["repetitions"], [20.0] * 9)
        page = (self.root / "docs/performance.md").read_text()
        self.assertIn("Of 2 goals: 1 reached, 1 not measured.", page)
        self.assertEqual(self.drawn, ["a"])

    def test_the_page_is_made_again_without_a_run(self):
        self.bench()
        page = (self.root / "docs/performance.md").read_text()
        (self.root / "docs/performance.md").unlink()
        (self.root / "bench_made_up").unlink()
        self.bench("--page")
        self.assertEqual((self.root / "docs/performance.md").read_text(), page)

    def test_a_page_without_results_is_refused(self):
        self.refuse("there are no results to make the page of", "--page")

    def test_too_few_repetitions_make_no_page(self):
        self.refuse("the page wants 9 repetitions or more", "--repetitions", "8")
        self.assertIn("a/ours/1", self.bench("--repetitions", "2", "a/ours/1"))
        self.program(seldom="a/std/1")
        self.refuse("a/std/1 ran 1 times; the page wants 9")

    def test_a_goal_of_an_unknown_case_makes_no_page(self):
        self.program([entry for entry in ENTRIES if entry["name"] != "a/ours/2"])
        self.refuse("bench/a/goals.json: curve a: there is no case a/ours/2")
        self.program([entry for entry in ENTRIES if entry["name"] != "b/ours/1"])
        self.refuse("bench/a/goals.json: row 1: there is no case b/ours/1")

    def test_a_program_that_fails_or_keeps_figures_back_is_refused(self):
        self.program(code=1)
        self.refuse("bench_made_up failed with 1")
        self.program(list_code=1)
        self.refuse("could not list its cases")
        self.program(silent="a/std/1")
        self.refuse("these cases brought no figures: a/std/1")
        self.program()
        self.refuse("no case matches nothing", "nothing")


if __name__ == "__main__":
    unittest.main()
