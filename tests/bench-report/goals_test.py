#!/usr/bin/env python3
"""Tests that goals.json is read as bench/README.md says, and that each mistake is named."""

import copy
import json
import tempfile
import unittest
from pathlib import Path

import support  # noqa: F401 the path of the report's modules

import goals
from errors import ReportError

RATIO = {"what": "beside std", "time": "a/ours/1", "over": "a/std/1", "atMost": 0.5}
DIFFERENCE = {"what": "off", "time": "a/ours/1", "minus": "a/none/1", "atMost": 0.6, "unit": "ns"}
COUNTER = {"what": "memory", "counter": "each", "of": "a/ours/1", "atMost": 250, "unit": "bytes"}
SPREAD = {"what": "linear", "spread": ["a/ours/1", "a/ours/2"], "atMost": 1.2}
RATE = {"what": "fast", "rate": "a/ours/1", "atLeast": 1000000}
OR = {**RATE, "or": {"time": "a/ours/1", "over": "a/direct/1", "atMost": 2}}
CURVE = {
    "file": "a", "title": "A by size", "x": "entries", "subject": "a", "who": ["ours", "std"],
    "sizes": {"1": 1, "2": 1024},
}


def content(*some_goals, curves=(CURVE,)):
    row = {"row": 1, "title": "A", "note": "Why.", "goals": list(some_goals)}
    return {"rows": [row], "curves": list(curves)}


class Forms(unittest.TestCase):
    def test_every_form_is_read(self):
        some_goals = (RATIO, DIFFERENCE, COUNTER, SPREAD, RATE, OR)
        rows, curves = goals.parse(json.dumps(content(*some_goals)), "bench/a/goals.json")
        (row,) = rows
        self.assertEqual((row.number, row.title, row.note), (1, "A", "Why."))
        self.assertEqual(
            [(goal.form, goal.what, goal.limit, goal.all_cases()) for goal in row.goals],
            [
                ("ratio", "beside std", 0.5, ["a/ours/1", "a/std/1"]),
                ("difference", "off", 0.6, ["a/ours/1", "a/none/1"]),
                ("counter", "memory", 250, ["a/ours/1"]),
                ("spread", "linear", 1.2, ["a/ours/1", "a/ours/2"]),
                ("rate", "fast", 1000000, ["a/ours/1"]),
                ("rate", "fast", 1000000, ["a/ours/1", "a/ours/1", "a/direct/1"]),
            ],
        )
        self.assertEqual(row.goals[-1].other.form, "ratio")
        self.assertEqual(curves, [goals.Curve(**CURVE, path="bench/a/goals.json")])

    def test_note_and_curves_may_be_left_out(self):
        text = json.dumps({"rows": [{"row": 1, "title": "A", "goals": [RATIO]}]})
        rows, curves = goals.parse(text, "x")
        self.assertEqual((rows[0].note, curves), ("", []))

    def test_a_curve_may_show_a_counter(self):
        curve = {**CURVE, "counter": "bytesEach", "unit": "bytes"}
        _, (parsed,) = goals.parse(json.dumps(content(curves=[curve])), "x")
        self.assertEqual((parsed.counter, parsed.unit), ("bytesEach", "bytes"))


class Mistakes(unittest.TestCase):
    def refuse(self, message, value):
        text = value if isinstance(value, str) else json.dumps(value)
        with self.assertRaisesRegex(ReportError, message):
            goals.parse(text, "bench/a/goals.json")

    def refuse_goal(self, message, goal):
        self.refuse(r"bench/a/goals.json: row 1: goal 1" + message, content(goal))

    def test_no_json(self):
        self.refuse("bench/a/goals.json: Expecting", '{"rows": [')

    def test_wrong_outlines(self):
        self.refuse("goals.json: is no object", [])
        self.refuse("goals.json: has no rows", {})
        self.refuse("goals.json: has the unknown key notes", {"rows": [], "notes": 1})
        self.refuse("goals.json: rows is no list", {"rows": {}})
        self.refuse("row 1: is no object", {"rows": [3]})
        self.refuse("row 7: has no title", {"rows": [{"row": 7, "goals": []}]})
        self.refuse("row R: row is no int", {"rows": [{"row": "R", "title": "A", "goals": []}]})
        self.refuse("row is no int", {"rows": [{"row": True, "title": "A", "goals": []}]})
        twice = {**content(RATIO)["rows"][0], "unit": "ns"}
        self.refuse("row 1: has the unknown key unit", {"rows": [twice]})

    def test_a_goal_of_no_form(self):
        self.refuse_goal(": is no object", "fast")
        self.refuse_goal(": says not what it is", {**RATIO, "what": ""})
        for key in ("time", "over", "atMost"):
            goal = copy.copy(RATIO)
            del goal[key]
            self.refuse_goal(r" \(beside std\): has the keys", goal)
        self.refuse_goal(r" \(beside std\): has the keys .*unit", {**RATIO, "unit": "ns"})
        wrong_way = {"what": "fast", "rate": "a/ours/1", "atMost": 1}
        self.refuse_goal(r" \(fast\): has the keys atMost, rate", wrong_way)

    def test_wrong_values_of_a_goal(self):
        self.refuse_goal(".*the limit '0.5' is no positive number", {**RATIO, "atMost": "0.5"})
        self.refuse_goal(".*the limit True is no positive number", {**RATIO, "atMost": True})
        self.refuse_goal(".*the limit 0 is no positive number", {**RATIO, "atMost": 0})
        self.refuse_goal(".*'a/std' is not of the form", {**RATIO, "over": "a/std"})
        self.refuse_goal(".*'a/std/1/2' is not of the form", {**RATIO, "over": "a/std/1/2"})
        self.refuse_goal(".*3 is not of the form", {**RATIO, "over": 3})
        self.refuse_goal(".*'m' is no unit of time", {**DIFFERENCE, "unit": "m"})
        self.refuse_goal(".*unit is no str", {**COUNTER, "unit": 3})
        self.refuse_goal(".*spread is no list", {**SPREAD, "spread": "a/ours/1"})
        self.refuse_goal(".*two cases or more", {**SPREAD, "spread": ["a/ours/1", "a/ours/1"]})

    def test_a_wrong_alternative(self):
        self.refuse_goal(r" \(fast\): or: has the keys atMost, time", {
            **RATE, "or": {"time": "a/ours/1", "atMost": 2}})
        self.refuse_goal(r" \(fast\): or: is no object", {**RATE, "or": 2})

    def test_wrong_curves(self):
        for message, change in (
            ("curve a: has the unknown key y", {"y": "ns"}),
            ("curve a: a counter wants a unit", {"counter": "bytes"}),
            ("curve a: wants two sizes", {"sizes": {"1": 1}}),
            ("curve a: size 2 is no number", {"sizes": {"1": 1, "2": "two"}}),
            ("curve a: has no lines", {"who": []}),
            ("curve a: 'a/x/y/1' is not of the form", {"who": ["x/y"]}),
        ):
            self.refuse(message, content(curves=[{**CURVE, **change}]))
        self.refuse("curve: is no object", content(curves=["a"]))


class Areas(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.root = Path(folder.name)

    def write(self, area, number, curve):
        row = {"row": number, "title": area, "goals": [RATIO]}
        path = self.root / "bench" / area / "goals.json"
        path.parent.mkdir(parents=True)
        path.write_text(json.dumps({"rows": [row], "curves": [{**CURVE, "file": curve}]}))

    def test_rows_and_curves_stand_in_the_order_of_the_rows(self):
        self.write("apples", 8, "apple")
        self.write("pears", 4, "pear")
        rows, curves = goals.read_all(self.root)
        self.assertEqual([(row.number, row.title) for row in rows], [(4, "pears"), (8, "apples")])
        self.assertEqual([curve.file for curve in curves], ["pear", "apple"])

    def test_a_number_or_a_file_that_two_areas_use_is_refused(self):
        self.write("apples", 8, "apple")
        self.write("pears", 8, "pear")
        with self.assertRaisesRegex(ReportError, "pears/.*: row 8: stands in bench/apples/goals"):
            goals.read_all(self.root)
        self.write("plums", 9, "apple")
        (self.root / "bench/pears/goals.json").unlink()
        with self.assertRaisesRegex(ReportError, "two curves are named apple"):
            goals.read_all(self.root)


if __name__ == "__main__":
    unittest.main()
