#!/usr/bin/env python3
"""Tests that every fault is still in the tree, and how faults are planted, judged and reported."""

import unittest
from pathlib import Path

import catalogue
import report
import running
from campaign import Noticed
from catalogue import Fault, Malformed
from planting import planted

HERE = Path(__file__).resolve().parent
ROOT = HERE.parents[1]
SOURCE = """bool full() {
    if (count >=
        size) {
        ++failures;
        return true;
    }
    return false;
}
"""


def fault(was, now, **more):
    """A fault of the source above; its number is that of its name."""
    return Fault(**{"name": "f", "area": "a", "file": "runtime/F.cpp", "was": was, "now": now, **more})


def chosen(name):
    """What a program asks."""
    return f"Faults::planted(0x{fault('', '', name=name).number:08X}u)"


class Tree(unittest.TestCase):
    def test_every_fault_has_its_place(self):
        faults = catalogue.read(HERE)
        self.assertGreaterEqual(len(faults), 150)
        texts = {}
        for each in faults:
            texts.setdefault(each.file, []).append(each)
        for file, its_faults in texts.items():
            text = (ROOT / file).read_text(encoding="utf-8")
            planted(text, its_faults)
            for each in its_faults:
                catalogue.place(each, text)

    def test_every_fault_changes_something(self):
        for each in catalogue.read(HERE):
            self.assertNotEqual(each.was, each.now, each.name)


class Reading(unittest.TestCase):
    def test_a_fault_is_a_few_lines(self):
        text = "# why\n\nfault f\nin runtime/F.cpp\nbehind x {\nwas a < b\nis a <= b\nalone\n\n"
        self.assertEqual(list(catalogue.read_text("a", text)),
                         [fault("a < b", "a <= b", behind="x {", alone=True)])

    def test_what_is_removed_is_replaced_by_nothing(self):
        text = "fault f\nin runtime/F.cpp\nwas ++count;\nis\nequivalent it is counted elsewhere"
        self.assertEqual(list(catalogue.read_text("a", text)),
                         [fault("++count;", "", equivalent="it is counted elsewhere")])

    def test_other_lines_are_refused(self):
        for text in ("was a\n", "fault f\nfault g\n", "fault f\nwas a\nwas b\n", "fault f\nnow a\n",
                     "fault f\nin runtime/F.cpp\nwas a\n"):
            with self.assertRaises(Malformed, msg=text):
                list(catalogue.read_text("a", text))


class Planting(unittest.TestCase):
    def test_an_expression_becomes_a_choice_and_keeps_its_lines(self):
        text = planted(SOURCE, [fault("count >= size", "count > size")])
        self.assertIn(f"if (({chosen('f')} ? (count > size) : (count >=\n        size))) {{", text)
        self.assertEqual(text.count("\n"), SOURCE.count("\n"))

    def test_a_statement_becomes_two_branches(self):
        text = planted(SOURCE, [fault("++failures;", "")])
        self.assertIn(f"if ({chosen('f')}) {{}} else {{ ++failures; }}", text)
        text = planted(SOURCE, [fault("++failures;", "--failures;")])
        self.assertIn(f"if ({chosen('f')}) {{ --failures; }} else {{ ++failures; }}", text)

    def test_a_fault_may_lie_within_another(self):
        inner = fault("++failures;", "", name="inner")
        outer = fault("++failures; return true;", "return true;", name="outer")
        whole = (f"if ({chosen('outer')}) {{ return true; }} else {{ if ({chosen('inner')}) {{}} "
                 "else { ++failures; }\n        return true; }")
        self.assertIn(whole, planted(SOURCE, [inner, outer]))

    def test_two_of_one_place_are_both_there(self):
        text = planted(SOURCE, [fault("return false;", "return true;", name="one"),
                                fault("return false;", "return full();", name="two")])
        self.assertIn(chosen("one"), text)
        self.assertIn(chosen("two"), text)

    def test_overlapping_ones_are_refused(self):
        with self.assertRaisesRegex(Malformed, "right overlaps left"):
            planted(SOURCE, [fault("++failures; return", "", name="left"),
                             fault("return true;", "", name="right")])

    def test_it_may_be_told_how_both_are_there(self):
        text = planted(SOURCE, [fault("++failures;", "", chosen="failures += !PLANTED; BEFORE")])
        self.assertIn(f"failures += !{chosen('f')}; ++failures;", text)

    def test_a_first_value_is_chosen_at_the_start(self):
        text = planted(SOURCE, [fault("++failures;", "", chosen="int x = PLANTED_AT_START;")])
        self.assertIn(f"int x = {chosen('f').replace('planted', 'plantedAtStart')};", text)

    def test_one_that_needs_its_own_build_replaces_and_keeps_the_lines(self):
        alone = fault("count >= size", "full", alone=True)
        self.assertEqual(planted(SOURCE, [alone]), SOURCE)
        self.assertIn("if (full\n) {", planted(SOURCE, [alone], alone))

    def test_text_that_is_not_there_once_is_refused(self):
        for was, behind in (("return 1;", ""), ("return", ""), ("count", "return false;"),
                            ("count", "return")):
            with self.assertRaises(Malformed, msg=was):
                planted(SOURCE, [fault(was, "", behind=behind)])

    def test_the_first_behind_another_text_is_taken(self):
        text = planted(SOURCE, [fault("return", "", behind="return true;", chosen="throw")])
        self.assertEqual(text, SOURCE.replace("return false", "throw false"))

    def test_macros_go_on_behind_a_backslash(self):
        self.assertEqual(planted("a + \\\n  b", [fault("a + b", "a", chosen="c")]), "c")


class Judging(unittest.TestCase):
    PASSED = "[ RUN      ] A.B\n[       OK ] A.B (0 ms)\n"

    def test_tests_that_pass_notice_nothing(self):
        self.assertIsNone(running.judged(self.PASSED, 0, False))

    def test_the_first_failed_test_noticed(self):
        output = self.PASSED + "[ RUN      ] A.C\n[  FAILED  ] A.C, where TypeParam = X (0 ms)\n"
        self.assertEqual(running.judged(output, 1, False), ("A.C", "fails"))

    def test_the_test_under_way_noticed_a_crash_and_a_hang(self):
        output = self.PASSED + "[ RUN      ] A.C\n"
        self.assertEqual(running.judged(output, -11, False), ("A.C", "dies of SIGSEGV"))
        self.assertEqual(running.judged(output, 1, False), ("A.C", "ends with 1"))
        self.assertEqual(running.judged(output, -9, True), ("A.C", "hangs"))

    def test_a_crash_beside_the_tests_is_noticed_too(self):
        self.assertEqual(running.judged("", -6, False), ("(beside the tests)", "dies of SIGABRT"))
        self.assertEqual(running.judged(self.PASSED, -6, False)[1], "dies of SIGABRT")

    def test_times_are_no_difference(self):
        early, late = (f"2026-01-0{day}T01:02:03.000004Z  1  text".encode() for day in (1, 2))
        self.assertEqual(running.timeless(early), running.timeless(late))
        self.assertNotEqual(running.timeless(early), running.timeless(late + b"s"))

    def test_slow_tests_run_behind_the_others(self):
        self.assertEqual(running.filters("runtime", ()), ["*"])
        self.assertEqual(running.filters("runtime", ("A.B", "A.C")), ["*-A.B:A.C", "A.B:A.C"])
        without = running.SUITES["VornicL3Shared"][2]
        self.assertEqual(running.filters("VornicL3Shared", ("A.B",)), [f"*-{without}:A.B", "A.B"])
        self.assertEqual(running.filters("model", ()), ["Model.*"])

    def test_the_own_floor_comes_first_and_the_model_last(self):
        seconds = {"runtime": 3, "vpstate": 1, "VornicL3Shared": 2, "agent": 9, "model": 5}
        self.assertEqual(running.order("VornicL3Shared", seconds),
                         ["VornicL3Shared", "vpstate", "runtime", "agent", "model"])
        self.assertEqual(running.order("runtime", seconds)[0], "runtime")


class Reporting(unittest.TestCase):
    def test_the_table_names_the_survivors_and_the_last_line_counts(self):
        results = [
            (fault("a", "b", name="own"), Noticed("runtime", "A.B", "fails", 1)),
            (fault("a", "b", name="other"), Noticed("agent", "C.D", "hangs", 1)),
            (fault("a", "b", name="same", equivalent="so"), Noticed()),
            (fault("a", "b", name="survivor"), Noticed()),
        ]
        lines = report.text(results, {"runtime": 2.0}).split("\n")
        self.assertIn("| own | runtime/F.cpp | own | A.B fails |", lines)
        self.assertIn("| other | runtime/F.cpp | agent | C.D hangs |", lines)
        self.assertIn("| same | runtime/F.cpp | - | equivalent: so |", lines)
        self.assertIn("| survivor | runtime/F.cpp | - | NOT NOTICED |", lines)
        self.assertIn("| runtime | 1 | 0 | 0 | 1 | 0 | 2 |", lines)
        self.assertEqual(lines[-1], "4 faults: 2 noticed, 1 of them by the tests of their own "
                                    "floor; 1 equivalent; 1 not noticed")
        self.assertEqual([report.as_told(*result) for result in results],
                         [True, True, True, False])

    def test_an_equivalent_fault_that_is_noticed_is_told_wrongly(self):
        told = fault("a", "b", equivalent="so")
        self.assertFalse(report.as_told(told, Noticed("runtime", "A.B", "fails", 1)))


if __name__ == "__main__":
    unittest.main()
