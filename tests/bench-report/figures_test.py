#!/usr/bin/env python3
"""Tests that the figures of a run are read from Google Benchmark's JSON as they are meant."""

import json
import unittest

from support import benchmark_json, repetition

import figures
from errors import NotMeasured, ReportError
from figures import Case, Run


class Names(unittest.TestCase):
    def test_what_google_benchmark_adds_is_stripped(self):
        cases = {
            "churn/ours/1K": ("churn/ours/1K", False),
            "churn/boost::flat_map/1024_50": ("churn/boost::flat_map/1024_50", False),
            "commit/ours/disk/real_time": ("commit/ours/disk", True),
            "commit/ours/disk/manual_time": ("commit/ours/disk", True),
            "commit/ours/disk/process_time": ("commit/ours/disk", False),
            "start/ours/60000/iterations:5/repeats:9/real_time": ("start/ours/60000", True),
            "start/ours/60000/min_time:0.250/threads:1": ("start/ours/60000", False),
            "start/ours/60000/min_warmup_time:0.5": ("start/ours/60000", False),
        }
        for name, expected in cases.items():
            self.assertEqual(figures.case_name(name), expected)

    def test_other_forms_are_refused(self):
        for name in ("churn", "churn/1024", "churn//1024", "churn/ours/1K/50", "a/b/c/iterations"):
            with self.assertRaisesRegex(ReportError, f"{name} is not named subject/who/size"):
                figures.case_name(name)

    def test_two_benchmarks_of_one_name_are_refused(self):
        names = figures.case_names("a/ours/1\na/std/1/real_time\n")
        self.assertEqual(names, {"a/ours/1", "a/std/1"})
        with self.assertRaisesRegex(ReportError, "two cases a/ours/1"):
            figures.case_names("a/ours/1\na/ours/1/real_time\n")


class Reading(unittest.TestCase):
    def read(self, *entries):
        return figures.from_google_benchmark(benchmark_json(*entries), {"a/ours/1"}).cases

    def test_repetitions_are_collected_and_aggregates_left_out(self):
        entries = [repetition("a/ours/1", time) for time in (4.0, 2.0, 9.0)]
        entries.append({**repetition("a/ours/1", 5.0), "run_type": "aggregate"})
        entries.append(repetition("a/std/1", 7.0))
        read = self.read(*entries)
        self.assertEqual(read, {"a/ours/1": Case([4.0, 2.0, 9.0]), "a/std/1": Case([7.0])})

    def test_times_are_nanoseconds_whatever_their_unit(self):
        for unit, time in (("ns", 2.5), ("us", 2500.0), ("ms", 2.5e6), ("s", 2.5e9)):
            case = self.read(repetition("a/ours/1", 2.5, time_unit=unit))["a/ours/1"]
            self.assertEqual(case.times, [time])

    def test_cpu_time_counts_unless_the_name_says_otherwise(self):
        both = {"real_time": 30.0, "cpu_time": 10.0}
        for name, time in (("a/ours/1", 10.0), ("a/ours/1/real_time", 30.0),
                           ("a/ours/1/manual_time", 30.0), ("a/ours/1/process_time", 10.0)):
            self.assertEqual(self.read(repetition(name, 0, **both))["a/ours/1"].times, [time])

    def test_counted_items_make_it_the_time_of_one(self):
        # A thousand items in 40 us of an iteration: 25 million a second, 40 ns each.
        case = self.read(repetition("a/ours/1", 40000.0, items_per_second=25e6))["a/ours/1"]
        self.assertEqual((case.times, case.rates), ([40.0], [25e6]))
        self.assertEqual(self.read(repetition("a/ours/1", 40.0))["a/ours/1"].rates, [])

    def test_other_numbers_are_counters(self):
        more = {"bytesEach": 231.5, "label": "x", "bytes_per_second": 7.0}
        cases = self.read(repetition("a/ours/1", 1.0, **more),
                          repetition("a/ours/1", 1.0, bytesEach=232.5))
        self.assertEqual(cases["a/ours/1"].counters, {"bytesEach": [231.5, 232.5]})

    def test_a_benchmark_that_gave_up_says_why(self):
        failed = repetition("a/lttng/1", 0, error_occurred=True, error_message="no daemon")
        run = Run(self.read(repetition("a/lttng/1", 1.0), failed), {"a/lttng/1"})
        with self.assertRaisesRegex(NotMeasured, "^no daemon$"):
            run.case("a/lttng/1")

    def test_ours_must_not_give_up(self):
        failed = repetition("a/ours/1", 0, error_occurred=True, error_message="no disk")
        with self.assertRaisesRegex(ReportError, "^a/ours/1 failed: no disk$"):
            Run(self.read(failed), {"a/ours/1"}).case("a/ours/1")

    def test_what_is_written_is_read_again(self):
        cases = {
            "a/ours/1": Case([40.123456, 41.0], True, {"bytesEach": [1.0, 2.0]}),
            "a/std/1": Case([7.0]),
            "a/lttng/1": Case(error="no session daemon"),
        }
        written = json.loads(json.dumps(figures.to_results(Run(cases, set(cases)))))
        self.assertEqual(figures.from_results(written), Run(cases, set(cases)))


class Statistics(unittest.TestCase):
    def test_quartiles_by_hand(self):
        # Nine values: the third, the fifth and the seventh.
        self.assertEqual(figures.quartiles([9, 1, 8, 2, 7, 3, 6, 4, 5]), (3, 5, 7))
        # Four values: a quarter of the way between two.
        self.assertEqual(figures.quartiles([10, 20, 30, 40]), (17.5, 25, 32.5))
        self.assertEqual(figures.quartiles([6]), (6, 6, 6))

    def test_noise_is_the_middle_half_relative_to_the_median(self):
        case = Case([90.0, 10.0, 80.0, 20.0, 70.0, 30.0, 60.0, 40.0, 50.0])
        self.assertEqual((case.median, case.noise), (50.0, 0.8))

    def test_rounding_keeps_five_digits(self):
        values = [figures.rounded(value) for value in (123456.0, 1.234567, 0.0)]
        self.assertEqual(values, [123460.0, 1.2346, 0.0])


class Lookup(unittest.TestCase):
    def setUp(self):
        self.run_ = Run({"a/ours/1": Case([1.0])}, {"a/ours/1", "a/std/1"})

    def test_an_unknown_who_is_not_there(self):
        with self.assertRaisesRegex(NotMeasured, "^rte_bitmap is not there$"):
            self.run_.case("a/rte_bitmap/1")

    def test_a_known_who_without_that_case_is_a_mistake(self):
        for name in ("a/std/2", "b/std/1", "a/ours/2"):
            with self.assertRaisesRegex(ReportError, f"^there is no case {name}$"):
                self.run_.case(name)

    def test_ours_is_never_missing(self):
        with self.assertRaisesRegex(ReportError, "there is no case a/ours/1"):
            Run({}, {"a/std/1"}).case("a/ours/1")

    def test_what_a_filter_left_out_did_not_run(self):
        with self.assertRaisesRegex(NotMeasured, "a/std/1 did not run"):
            self.run_.case("a/std/1")
        self.assertFalse(self.run_.has(["a/ours/1", "a/std/1"]))
        self.assertTrue(self.run_.has(["a/ours/1", "a/rte_bitmap/1"]))

    def test_too_few_repetitions_are_refused(self):
        run = Run({"a/ours/1": Case([1.0] * 9), "a/lttng/1": Case(error="none")}, set())
        figures.require_repetitions(run, 9)
        run.cases["a/std/1"] = Case([1.0] * 8)
        with self.assertRaisesRegex(ReportError, "a/std/1 ran 8 times; the page wants 9"):
            figures.require_repetitions(run, 9)

    def test_a_run_without_any_figure_is_refused(self):
        with self.assertRaisesRegex(ReportError, "no case brought a figure"):
            figures.require_repetitions(Run({"a/lttng/1": Case(error="none")}, set()), 9)


if __name__ == "__main__":
    unittest.main()
