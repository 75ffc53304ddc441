#!/usr/bin/env python3
"""Checks that the export of llvm-cov is read right, with exports written by hand."""

import unittest

import counts
from counts import Condition

CODE, EXPANSION, SKIPPED, GAP = counts.CODE, counts.EXPANSION, counts.SKIPPED, 3


def region(start, end, count, file=0, expanded=0, kind=CODE):
    """A region of a function, from (line, column) to (line, column)."""
    return [*start, *end, count, file, expanded, kind]


def branch(start, end, true, false, file=0):
    """A condition of a function."""
    return [*start, *end, true, false, file, 0, 4]


def export(*functions):
    """An export; a function: its regions and branches."""
    return {"data": [{"functions": [
        {"filenames": ["a.cpp", "macro.h", "inner.h"], "regions": regions, "branches": branches}
        for regions, branches in functions]}]}


class Lines(unittest.TestCase):
    """A line ran as often as the part of it that ran most often."""

    def lines(self, *functions, file="a.cpp"):
        return counts.read(export(*((regions, []) for regions in functions)))[file].lines

    def test_the_lines_of_a_function_ran_as_often_as_it(self):
        self.assertEqual(self.lines([region((3, 12), (5, 2), 7)]), {3: 7, 4: 7, 5: 7})

    def test_lines_without_code_are_not_counted(self):
        self.assertEqual(self.lines([region((1, 5), (1, 20), 1)], [region((4, 5), (4, 20), 0)]),
                         {1: 1, 4: 0})

    def test_a_block_has_its_own_count(self):
        regions = [region((1, 10), (5, 2), 9), region((2, 12), (4, 6), 0)]
        self.assertEqual(self.lines(regions), {1: 9, 2: 9, 3: 0, 4: 0, 5: 9})

    def test_a_line_that_ran_in_part_ran(self):
        regions = [region((1, 10), (3, 2), 9), region((2, 20), (2, 25), 0)]
        self.assertEqual(self.lines(regions), {1: 9, 2: 9, 3: 9})

    def test_code_behind_a_return_did_not_run(self):
        regions = [region((1, 10), (4, 2), 9), region((3, 5), (4, 2), 0)]
        self.assertEqual(self.lines(regions), {1: 9, 2: 9, 3: 9, 4: 0})

    def test_a_line_of_a_statement_that_is_only_white_space_before_it_is_as_the_statement(self):
        regions = [region((1, 10), (5, 2), 5), region((2, 12), (4, 9), 0, kind=GAP),
                   region((4, 9), (4, 20), 0)]
        self.assertEqual(self.lines(regions), {1: 5, 2: 5, 3: 0, 4: 0, 5: 5})

    def test_what_the_preprocessor_skips_is_not_counted(self):
        regions = [region((1, 10), (6, 2), 5), region((3, 1), (5, 1), 0, kind=SKIPPED)]
        self.assertEqual(self.lines(regions), {1: 5, 2: 5, 3: 5, 6: 5})

    def test_a_line_ran_when_any_instantiation_ran_it(self):
        first = [region((1, 10), (5, 2), 7), region((2, 12), (4, 6), 7)]
        other = [region((1, 10), (5, 2), 2), region((2, 12), (2, 13), 0),
                 region((2, 13), (4, 16), 0, kind=GAP), region((4, 16), (4, 20), 2)]
        self.assertEqual(self.lines(first, other), {1: 9, 2: 9, 3: 7, 4: 9, 5: 9})

    def test_a_macro_ran_where_it_is_used_and_where_it_stands(self):
        regions = [region((1, 10), (3, 2), 5), region((2, 5), (2, 11), 4, 0, 1, EXPANSION),
                   region((30, 5), (31, 9), 4, 1)]
        self.assertEqual(self.lines(regions), {1: 5, 2: 5, 3: 5})
        self.assertEqual(self.lines(regions, file="macro.h"), {30: 4, 31: 4})


class Conditions(unittest.TestCase):
    """Conditions are counted where they stand, whoever instantiates them."""

    BODY = region((1, 1), (9, 2), 5)

    def conditions(self, *functions):
        return counts.read(export(*functions))["a.cpp"].conditions

    def test_a_condition_has_its_place_and_its_counts(self):
        read = self.conditions(([self.BODY], [branch((2, 5), (2, 9), 3, 2)]))
        self.assertEqual(read, {Condition((2, 5, 2, 9)): [3, 2]})

    def test_instantiations_are_added_up(self):
        read = self.conditions(([self.BODY], [branch((2, 5), (2, 9), 3, 0)]),
                               ([self.BODY], [branch((2, 5), (2, 9), 0, 4)]))
        self.assertEqual(read, {Condition((2, 5, 2, 9)): [3, 4]})

    def test_two_conditions_of_a_line_are_two(self):
        read = self.conditions(
            ([self.BODY], [branch((2, 5), (2, 9), 3, 2), branch((2, 13), (2, 17), 3, 0)]))
        self.assertEqual(len(read), 2)

    def test_what_the_compiler_decides_is_no_condition(self):
        read = self.conditions(([self.BODY], [branch((2, 5), (2, 9), 0, 0)]))
        self.assertEqual(read, {})

    def test_a_function_that_the_compiler_writes_has_no_conditions(self):
        default = region((2, 50), (2, 51), 5)
        read = self.conditions(([default, default], [branch((2, 50), (2, 51), 5, 0)]))
        self.assertEqual(read, {})

    def test_a_condition_in_code_that_never_runs_is_one(self):
        idle = region((2, 1), (4, 2), 0)
        read = self.conditions(([self.BODY, idle], [branch((3, 5), (3, 9), 0, 0)]))
        self.assertEqual(read, {Condition((3, 5, 3, 9)): [0, 0]})

    def test_a_function_that_never_runs_has_conditions(self):
        idle = region((1, 1), (9, 2), 0)
        read = self.conditions(([idle], [branch((2, 5), (2, 9), 0, 0)]))
        self.assertEqual(read, {Condition((2, 5, 2, 9)): [0, 0]})

    def test_a_macro_counts_at_each_of_its_places(self):
        def use(line, true):
            return ([self.BODY, region((line, 5), (line, 11), 5, 0, 1, EXPANSION),
                     region((30, 5), (32, 9), 5, 1)], [branch((31, 9), (31, 20), true, 5, 1)])
        read = self.conditions(use(2, 0), use(3, 1))
        inner = ("macro.h", 31, 9, 31, 20)
        self.assertEqual(read, {Condition((2, 5, 2, 11), inner): [0, 5],
                                Condition((3, 5, 3, 11), inner): [1, 5]})

    def test_a_macro_in_a_macro_counts_at_the_outer_place(self):
        regions = [self.BODY, region((2, 5), (2, 11), 5, 0, 1, EXPANSION),
                   region((30, 5), (30, 15), 5, 1, 2, EXPANSION), region((7, 1), (7, 30), 5, 2)]
        read = self.conditions((regions, [branch((7, 9), (7, 20), 1, 4, 2)]))
        self.assertEqual(read, {Condition((2, 5, 2, 11), ("inner.h", 7, 9, 7, 20)): [1, 4]})

    def test_conditions_that_one_macro_hands_to_another_are_told_apart(self):
        regions = [self.BODY, region((2, 5), (2, 11), 5, 0, 1, EXPANSION), region((7, 1), (7, 30), 5, 1)]
        function = (regions, [branch((7, 9), (7, 20), 1, 4, 1), branch((7, 9), (7, 20), 5, 0, 1)])
        place, inner = (2, 5, 2, 11), ("macro.h", 7, 9, 7, 20)
        self.assertEqual(self.conditions(function, function),
                         {Condition(place, inner): [2, 8], Condition(place, inner, 1): [10, 0]})

    def test_outcomes_are_two_for_each_condition(self):
        file = counts.File(conditions={Condition((2, 5, 2, 9)): [3, 0]})
        self.assertEqual(list(file.outcomes()), [(Condition((2, 5, 2, 9)), True, 3),
                                                 (Condition((2, 5, 2, 9)), False, 0)])


if __name__ == "__main__":
    unittest.main()
