#!/usr/bin/env python3
"""Tests that each form of a goal is judged right, with values worked out by hand."""

import unittest

from support import run_of

import words
from errors import ReportError
from figures import Case
from goals import Curve, Row, parse_goal
from judgement import curve_lines, goal_text, judge, judge_rows


def goal(**keys):
    return parse_goal({"what": "it", **keys}, "here")


def seen(judgement):
    """A judgement as the page words it."""
    return (words.measured(judgement), words.middle_half(judgement), words.medians(judgement),
            words.result(judgement))


class Ratio(unittest.TestCase):
    # The nine quotients are 0.125, 0.2, 0.25, 0.25, 0.375, 0.4, 0.5, 0.6 and 0.75.
    run_ = run_of(a__ours__1=[10, 20, 30], a__std__1=[40, 50, 80])

    def judge(self, limit):
        return seen(judge(goal(time="a/ours/1", over="a/std/1", atMost=limit), self.run_))

    def test_medians_decide_and_the_middle_half_says_how_surely(self):
        figures = ("0.400 x", "0.250 to 0.500", "20.0 ns, 50.0 ns")
        self.assertEqual(self.judge(0.6), (*figures, "reached"))
        self.assertEqual(self.judge(0.5), (*figures, "reached, close"))
        self.assertEqual(self.judge(0.4), (*figures, "reached, close"))
        self.assertEqual(self.judge(0.39), (*figures, "missed, close"))
        self.assertEqual(self.judge(0.24), (*figures, "missed"))

    def test_a_peer_that_is_not_there_is_not_measured(self):
        judgement = judge(goal(time="a/ours/1", over="a/rte_bitmap/1", atMost=9), self.run_)
        self.assertEqual(seen(judgement), ("rte_bitmap is not there", "-", "-", "not measured"))

    def test_a_peer_that_gave_up_is_not_measured(self):
        run = run_of(a__ours__1=[1], a__lttng__1=Case(error="no session daemon"))
        judgement = judge(goal(time="a/ours/1", over="a/lttng/1", atMost=9), run)
        self.assertEqual(words.measured(judgement), "no session daemon")
        self.assertEqual(judgement.result, "not measured")

    def test_a_case_that_took_no_time_is_not_measured(self):
        run = run_of(a__ours__1=[1], a__std__1=[0.0, 0.0])
        judgement = judge(goal(time="a/ours/1", over="a/std/1", atMost=9), run)
        self.assertEqual(judgement.result, "not measured")


class OtherForms(unittest.TestCase):
    def test_difference(self):
        # The nine differences are -3, -2, -1, 1, 2, 2, 3, 3 and 4.
        run = run_of(a__ours__1=[3, 4, 5], a__none__1=[1, 2, 6])
        figures = "-1.00 to 3.00", "4.00 ns, 2.00 ns"
        for limit, unit, measured, result in (
            (2, "ns", "2.00 ns", "reached, close"), (1.9, "ns", "2.00 ns", "missed, close"),
            (3.5, "ns", "2.00 ns", "reached"),
        ):
            keys = {"time": "a/ours/1", "minus": "a/none/1", "atMost": limit, "unit": unit}
            self.assertEqual(seen(judge(goal(**keys), run)), (measured, *figures, result))

    def test_difference_in_a_larger_unit(self):
        run = run_of(a__ours__1=[5000], a__none__1=[3500])
        keys = {"time": "a/ours/1", "minus": "a/none/1", "atMost": 1.4, "unit": "us"}
        self.assertEqual(seen(judge(goal(**keys), run)),
                         ("1.50 us", "1.50 to 1.50", "5.00 us, 3.50 us", "missed"))

    def test_counter(self):
        run = run_of(m__ours__1=Case([7, 8, 9], False, {"each": [260, 200, 220]}))
        for limit, result in ((250, "reached"), (220, "reached, close"), (200, "missed")):
            keys = {"counter": "each", "of": "m/ours/1", "atMost": limit, "unit": "bytes"}
            self.assertEqual(seen(judge(goal(**keys), run)),
                             ("220 bytes", "210 to 240", "-", result))

    def test_a_counter_that_is_not_counted_is_a_mistake(self):
        run = run_of(m__ours__1=[7])
        with self.assertRaisesRegex(ReportError, "m/ours/1 counts no each"):
            judge(goal(counter="each", of="m/ours/1", atMost=1, unit="bytes"), run)

    def test_spread_takes_the_dearest_beside_the_cheapest(self):
        run = run_of(s__ours__1=[11, 11], s__ours__2=[12, 12], s__ours__3=[10, 10])
        names = ["s/ours/1", "s/ours/2", "s/ours/3"]
        for limit, result in ((1.25, "reached"), (1.1, "missed")):
            self.assertEqual(seen(judge(goal(spread=names, atMost=limit), run)),
                             ("1.20 x", "1.20 to 1.20", "11.0 ns, 12.0 ns, 10.0 ns", result))

    def test_rate_counts_up(self):
        run = run_of(r__ours__1=Case([500, 1000, 2000], True))
        for limit, result in ((400000, "reached"), (1000000, "reached, close"),
                              (1000001, "missed, close"), (2000000, "missed")):
            self.assertEqual(seen(judge(goal(rate="r/ours/1", atLeast=limit), run)), (
                "1,000,000 a second", "750,000 to 1,500,000", "1.00 us", result))

    def test_a_rate_without_items_is_a_mistake(self):
        with self.assertRaisesRegex(ReportError, "r/ours/1 counts no items"):
            judge(goal(rate="r/ours/1", atLeast=1), run_of(r__ours__1=[7]))


class Alternative(unittest.TestCase):
    def judge(self, rate, limit, direct="direct"):
        run = run_of(r__ours__1=Case([1000], True), r__direct__1=[500])
        other = {"time": "r/ours/1", "over": f"r/{direct}/1", "atMost": limit}
        return judge(goal(rate="r/ours/1", atLeast=rate, **{"or": other}), run)

    def test_one_of_the_two_is_enough(self):
        self.assertEqual(self.judge(900000, 1.9).result, "reached")
        self.assertEqual(self.judge(2000000, 2.1).result, "reached")
        self.assertEqual(self.judge(2000000, 1.9).result, "missed")

    def test_both_are_shown(self):
        self.assertEqual(seen(self.judge(2000000, 2.1)), (
            "1,000,000 a second; 2.00 x", "1,000,000 to 1,000,000; 2.00 to 2.00",
            "1.00 us; 1.00 us, 500 ns", "reached"))

    def test_what_is_not_measured_leaves_the_goal_open_unless_the_other_is_reached(self):
        self.assertEqual(self.judge(900000, 2.1, "nobody").result, "reached")
        self.assertEqual(self.judge(2000000, 2.1, "nobody").result, "not measured")

    def test_only_what_decides_can_be_close(self):
        self.assertFalse(self.judge(2000000, 2.1).close)
        self.assertTrue(self.judge(2000000, 2.0).close)
        self.assertFalse(self.judge(900000, 2.0).close)
        self.assertFalse(self.judge(2000000, 2.0, "nobody").close)


class Rows(unittest.TestCase):
    goals = [
        goal(time="a/ours/1", over="a/std/1", atMost=1),
        goal(time="b/ours/1", over="b/std/1", atMost=1),
        goal(time="c/ours/1", over="c/std/1", atMost=1),
    ]

    def test_a_filter_leaves_out_what_it_did_not_run(self):
        names = ["b/ours/1", "b/std/1", "c/ours/1"]
        run = run_of(names, a__ours__1=[1], a__std__1=[2])
        ((_, judged),) = judge_rows([Row(1, "A", self.goals, "", "x")], run, only_what_ran=True)
        self.assertEqual([each.goal.cases[0] for each in judged], ["a/ours/1"])

    def test_a_wrong_name_is_an_error_that_says_where(self):
        run = run_of(a__ours__1=[1], a__std__1=[2])
        row = Row(7, "A", self.goals, "", "bench/a/goals.json")
        with self.assertRaisesRegex(ReportError,
                                    "^bench/a/goals.json: row 7: there is no case b/ours/1$"):
            judge_rows([row], run)


class Curves(unittest.TestCase):
    def curve(self, **changes):
        keys = {"file": "f", "title": "T", "x": "entries", "subject": "a", "who": ["ours", "std"],
                "sizes": {"b": 1024, "a": 16}, "path": "bench/a/goals.json"}
        return Curve(**{**keys, **changes})

    def test_lines_go_by_the_numbers_of_the_sizes(self):
        run = run_of(a__ours__a=[1, 2, 3], a__ours__b=[4], a__std__a=[5], a__std__b=[6])
        lines, missing = curve_lines(self.curve(), run)
        self.assertEqual(lines["ours"], [(16, 1.5, 2, 2.5), (1024, 4, 4, 4)])
        self.assertEqual(lines["std"], [(16, 5, 5, 5), (1024, 6, 6, 6)])
        self.assertEqual(missing, {})

    def test_a_line_whose_library_is_not_there_is_told(self):
        run = run_of(a__ours__a=[1], a__ours__b=[2])
        self.assertEqual(curve_lines(self.curve(), run),
                         ({"ours": [(16, 1, 1, 1), (1024, 2, 2, 2)]}, {"std": "std is not there"}))

    def test_a_size_that_is_not_there_is_an_error(self):
        run = run_of(a__ours__a=[1], a__ours__b=[2], a__std__a=[3])
        with self.assertRaisesRegex(ReportError, "goals.json: curve f: there is no case a/std/b"):
            curve_lines(self.curve(), run)

    def test_a_counter(self):
        run = run_of(a__ours__a=Case([9], False, {"each": [3]}),
                     a__ours__b=Case([9], False, {"each": [4]}))
        lines, _ = curve_lines(self.curve(who=["ours"], counter="each", unit="bytes"), run)
        self.assertEqual(lines, {"ours": [(16, 3, 3, 3), (1024, 4, 4, 4)]})
        with self.assertRaisesRegex(ReportError, "counts no other"):
            curve_lines(self.curve(who=["ours"], counter="other", unit="x"), run)


class Words(unittest.TestCase):
    def test_goals(self):
        either = goal(rate="a/ours/1", atLeast=2.5e6,
                      **{"or": {"time": "a/ours/1", "over": "a/direct/1", "atMost": 2}})
        for each, text in (
            (goal(time="a/ours/1", over="a/std/1", atMost=0.5), "at most 0.5 x std"),
            (goal(time="a/ours/1", over="b/ours/1", atMost=2), "at most 2 x b/ours/1"),
            (goal(time="a/ours/1", minus="a/none/1", atMost=0.6, unit="ns"),
             "at most 0.6 ns above none"),
            (goal(counter="each", of="a/ours/1", atMost=64000, unit="bytes"),
             "at most 64,000 bytes"),
            (goal(spread=["a/ours/1", "a/ours/2"], atMost=1.2),
             "at most 1.2 x from the cheapest to the dearest"),
            (either, "at least 2,500,000 a second, or at most 2 x direct"),
        ):
            self.assertEqual(goal_text(each), text)

    def test_numbers(self):
        for value, text in ((0, "0"), (0.05714, "0.0571"), (0.9996, "1.00"), (1.256, "1.26"),
                            (12.34, "12.3"), (231.4, "231"), (999.6, "1,000"),
                            (1234567, "1,230,000"), (-0.25, "-0.250"), (0.00004, "0.0000400")):
            self.assertEqual(words.number(value), text)

    def test_durations(self):
        for time, text in ((0.4, "0.400 ns"), (999.4, "999 ns"), (999.6, "1.00 us"),
                           (31.5e6, "31.5 ms"), (2e9, "2.00 s")):
            self.assertEqual(words.duration(time), text)

    def test_shares(self):
        for share, text in ((0, "0 %"), (0.0123, "1.2 %"), (0.123, "12 %"), (1.5, "150 %")):
            self.assertEqual(words.percent(share), text)

    def test_counts(self):
        run = run_of(a__ours__1=[1], a__std__1=[2])
        judged = [judge(goal(time="a/ours/1", over=f"a/{who}/1", atMost=limit), run)
                  for who, limit in (("std", 1), ("std", 0.6), ("std", 0.4), ("nobody", 1))]
        self.assertEqual(words.counts(judged), "2 reached, 1 missed, 1 not measured")
        self.assertEqual(words.counts(judged[:1]), "1 reached")
        self.assertEqual(words.counts([]), "no goal")


if __name__ == "__main__":
    unittest.main()
