#!/usr/bin/env python3
"""Tests the bash completion: what it offers for lines, and that it knows what the program knows."""

import os
import subprocess
import tempfile
import unittest
from pathlib import Path

import vpagent

COMPLETION = Path(os.environ["VORNIC_SOURCE"]) / "packaging/completion/vpagent"

# Bash hands a completion the words of the line, the last of which is at the cursor.
COMPLETE = """
set -u
source "$1"
shift
COMP_WORDS=("$@")
COMP_CWORD=$(($# - 1))
_vpagent
((${#COMPREPLY[@]} == 0)) || printf '%s\\n' "${COMPREPLY[@]}"
"""


def bash(script, *arguments, folder=None):
    result = subprocess.run(
        ["bash", "--norc", "-c", script, "bash", *arguments],
        cwd=folder, capture_output=True, text=True, check=False,
    )
    if result.returncode != 0 or result.stderr:
        raise AssertionError(f"{arguments}: {result.returncode}: {result.stderr}")
    return result.stdout


class Completion(unittest.TestCase):
    def setUp(self):
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = Path(folder.name)
        for name in ("leaf.vp", "spine one.vp", "leaf.state", "notes.txt"):
            (self.folder / name).touch()
        (self.folder / "more").mkdir()
        (self.folder / "more/deep.vp").touch()

    def offered(self, *words):
        lines = bash(COMPLETE, COMPLETION, "vpagent", *words, folder=self.folder).splitlines()
        return sorted(lines)

    def test_bash_asks_for_it(self):
        asked = bash('source "$1"; complete -p vpagent', COMPLETION)
        self.assertEqual(asked, "complete -o default -F _vpagent vpagent\n")

    def test_offers_each_option_of_the_program_and_no_other(self):
        expected = sorted(name for names, _ in vpagent.options() for name in names)
        self.assertEqual(sorted(set(self.offered("--") + self.offered("-h"))), expected)

    def test_offers_values_for_each_option_that_takes_words(self):
        words = [(names, value) for names, value in vpagent.options() if "|" in value]
        self.assertEqual(len(words), 3)
        for names, value in words:
            self.assertEqual(self.offered(names[-1], ""), sorted(value.split("|")), names)

    def test_an_option_that_is_there_is_not_offered_again(self):
        self.assertEqual(self.offered("--json", "--j"), [])
        self.assertEqual(self.offered("--js"), ["--json"])

    def test_beginning_of_a_value(self):
        self.assertEqual(self.offered("--reallocation", "of"), ["off"])

    def test_value_behind_an_equals_sign(self):
        self.assertEqual(self.offered("--remote-low", "="), ["off", "on"])
        self.assertEqual(self.offered("--remote-low", "=", "on"), ["on"])
        self.assertEqual(self.offered("--state", "=", "leaf"), ["leaf.state", "leaf.vp"])

    def test_trace_levels(self):
        self.assertEqual(self.offered("--trace", ""), ["1", "5", "7", "all"])
        self.assertEqual(self.offered("--trace", "5,"), ["5,1", "5,7"])
        self.assertEqual(self.offered("--trace", "1,5,"), ["1,5,7"])
        self.assertEqual(self.offered("--trace", "a"), ["all"])

    def test_the_program_takes_each_trace_level_that_is_offered(self):
        for levels in self.offered("--trace", "") + self.offered("--trace", "5,"):
            vpagent.run("--trace", levels)

    def test_a_number_is_left_to_the_user(self):
        self.assertEqual(self.offered("--table-size", ""), [])

    def test_any_file_keeps_the_state(self):
        self.assertEqual(self.offered("--state", "leaf"), ["leaf.state", "leaf.vp"])

    def test_scripts_and_folders(self):
        self.assertEqual(self.offered(""), ["leaf.vp", "more", "spine one.vp"])
        self.assertEqual(self.offered("--json", "leaf.vp", "more/"), ["more/deep.vp"])
        self.assertEqual(self.offered("--state", "leaf.state", "s"), ["spine one.vp"])

    def test_no_options_behind_two_dashes(self):
        self.assertEqual(self.offered("--", "--j"), [])


if __name__ == "__main__":
    unittest.main()
